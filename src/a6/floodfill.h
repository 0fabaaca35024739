// Flood fills, fixed-range and gradient: the kernel table, the jobs the
// kernels work on, and the engines the wrappers call. The kernels are span
// fills written once over run primitives (floodfill_spans.h); the scalar
// table takes them pixel by pixel, the vector tables a block at a time
// (floodfill_simd.h), and every path visits the same runs in the same order.
#pragma once

#include <cstdint>

#include "orucv.h"

namespace orucv {
namespace a6 {

// Where a fill ended up: area and bounding box, plus how often pending runs
// had to be collected because the segment stack was full (0 normally).
struct FillResult {
    int64_t area;
    int min_x, min_y, max_x, max_y;
    int collections;
};

// One fill call, arguments trusted: seed inside the image, buffer of
// buffer_bytes with room for the fill's bookkeeping (see the engines).
template <class T>
struct FillJob {
    T* image;
    int step;
    int width, height, seed_x, seed_y;
    T new_value;
    uint8_t* buffer;
    uint32_t buffer_bytes;
    FillResult result;
};

template <class T, class Tol>
struct GradJob {
    T* image;
    int step;
    int width, height, seed_x, seed_y;
    T new_value;
    Tol min_delta, max_delta;
    uint8_t* buffer;
    uint32_t buffer_bytes;
    FillResult result;
};

using Grad8u = GradJob<uint8_t, int>;
using Grad32f = GradJob<float, float>;

// The kernels of each pixel type, indexed by connectivity.
enum Connectivity { kFourConnected, kEightConnected, kConnectivities };
constexpr Connectivity connectivity(int neighbours) { return neighbours == 8 ? kEightConnected : kFourConnected; }

struct FloodFillKernels {
    void (*fill_8u[kConnectivities])(FillJob<uint8_t>& job);
    void (*fill_32f[kConnectivities])(FillJob<float>& job);
    void (*grad_8u[kConnectivities])(Grad8u& job);
    void (*grad_32f[kConnectivities])(Grad32f& job);
};

extern const FloodFillKernels floodfill_kernels_scalar;
extern const FloodFillKernels floodfill_kernels_sse2;
extern const FloodFillKernels floodfill_kernels_avx2;
const FloodFillKernels& floodfill_kernels();

// Engines; arguments are checked by the wrappers. T is uint8_t (values
// int) or float (values float).
//
// Fixed range: nothing happens when the seed already holds the new value;
// a region whose buffer size wrapped around 32 bits, leaving no room for the
// fill's bookkeeping, is refused with oruStsError before anything is written.
template <class T, class V>
OruStatus flood_fill(Connectivity c, T* image, int step, OruSize roi, OruPoint seed, V new_value,
                     OruConnectedComp* region, uint8_t* buffer);
// Gradient: fills and reports even when the seed holds the new value.
template <class T, class V>
OruStatus gradient_fill(Connectivity c, T* image, int step, OruSize roi, OruPoint seed, V new_value, V min_delta,
                        V max_delta, OruConnectedComp* region, uint8_t* buffer);
// The work-buffer sizes the queries report (roi of at least one pixel).
uint32_t flood_fill_bytes(OruSize roi);
uint32_t gradient_fill_bytes(OruSize roi);

}  // namespace a6
}  // namespace orucv
