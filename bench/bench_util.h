// Benchmark registration shared by the families: each primitive runs at
// 640x480 and 1920x1080 on every SIMD level and on the scalar twin, and
// streaming primitives sit beside a memcpy moving the same bytes, the
// physical limit of the machine in that run.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "image.h"

namespace orubench {

struct FrameSize {
    int width, height;
};
inline const std::vector<FrameSize>& frame_sizes() {
    static const std::vector<FrameSize> sizes{{640, 480}, {1920, 1080}};
    return sizes;
}

// Builds the buffers for one frame size and returns the call to measure.
using Maker = std::function<std::function<void()>(int width, int height)>;

// The call to measure and what puts its input back between two calls, out
// of the timing: for primitives that change their own input.
struct Restoring {
    std::function<void()> call, restore;
};
using RestoringMaker = std::function<Restoring(int width, int height)>;

// Registers name/WxH/<level> for every SIMD level this machine and build
// have (avx2, sse2) and for the scalar twin, at each of `sizes`.
// bytes_per_pixel is what the primitive reads plus writes per pixel; when
// positive, a memcpy of the same traffic is registered beside it (once per
// distinct traffic).
bool add(const std::string& name, double bytes_per_pixel, Maker make,
         const std::vector<FrameSize>& sizes = frame_sizes());
bool add_restoring(const std::string& name, RestoringMaker make, const std::vector<FrameSize>& sizes = frame_sizes());

// The demo scene, gray, at the given size (rendered once per size).
const orucv_tool::Image& scene(int width, int height, int frame = 0);

// A byte buffer of deterministic pseudo-random content.
std::vector<uint8_t> random_bytes(size_t n, uint32_t seed);

}  // namespace orubench

#define ORUBENCH_CAT2(a, b) a##b
#define ORUBENCH_CAT(a, b) ORUBENCH_CAT2(a, b)
#define ORUBENCH(name, bytes_per_pixel, ...) \
    static const bool ORUBENCH_CAT(orubench_, __COUNTER__) = ::orubench::add(name, bytes_per_pixel, __VA_ARGS__)
