// Flood fills. Fixed range: a frame uniform but for 60 discs, filled from a
// background pixel; successive calls swap two fill values, so each fills the
// same region. Gradient: a diagonal ramp (neighbours differ by at most 1)
// filled with tolerance 1, restored outside the timing. The figure of merit
// is the filled area per second ("filled/s").
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "bench_util.h"
#include "core/cpu.h"
#include "orucv.h"

namespace {

template <class T>
struct Frame {
    int w, h;
    std::vector<T> image, original;
    std::vector<Oru8u> buffer;
};

template <class T>
std::shared_ptr<Frame<T>> discs(int w, int h) {
    auto f = std::make_shared<Frame<T>>(Frame<T>{w, h, std::vector<T>(static_cast<size_t>(w) * h, T(100)), {}, {}});
    const std::vector<uint8_t> r = orubench::random_bytes(180, 7);
    const int radius = h / 24;
    for (int i = 0; i < 60; ++i) {
        const int cx = r[3 * i] * w / 256, cy = r[3 * i + 1] * h / 256, rr = radius / 2 + r[3 * i + 2] * radius / 256;
        for (int y = cy - rr; y <= cy + rr; ++y)
            for (int x = cx - rr; x <= cx + rr; ++x)
                if (x >= 0 && y >= 0 && x < w && y < h && (x - cx) * (x - cx) + (y - cy) * (y - cy) <= rr * rr)
                    f->image[static_cast<size_t>(y) * w + x] = T(200);
    }
    f->image[0] = T(100);  // the seed
    int bytes = 0;
    oruiFloodFillGetSize({w, h}, &bytes);
    f->buffer.resize(bytes);
    return f;
}

template <class T>
std::shared_ptr<Frame<T>> ramp(int w, int h) {
    auto f = std::make_shared<Frame<T>>(Frame<T>{w, h, std::vector<T>(static_cast<size_t>(w) * h), {}, {}});
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) f->image[static_cast<size_t>(y) * w + x] = T((x + y) * 255 / (w + h - 2));
    f->original = f->image;
    int bytes = 0;
    oruiFloodFillGetSize_Grad({w, h}, &bytes);
    f->buffer.resize(bytes);
    return f;
}

template <class T, class Fill>
void run_fixed(benchmark::State& state, int w, int h, orucv::SimdLevel level, Fill fill) {
    const orucv::SimdLevel previous = orucv::force_simd_level(level);
    auto f = discs<T>(w, h);
    OruConnectedComp region{};
    bool swap = false;
    for (auto _ : state) {
        fill(f->image.data(), w * static_cast<int>(sizeof(T)), OruSize{w, h}, OruPoint{0, 0}, swap ? T(100) : T(50),
             &region, f->buffer.data());
        swap = !swap;
    }
    orucv::force_simd_level(previous);
    state.counters["filled/s"] = benchmark::Counter(region.area * state.iterations(), benchmark::Counter::kIsRate);
}

template <class T, class Fill>
void run_grad(benchmark::State& state, int w, int h, orucv::SimdLevel level, Fill fill) {
    const orucv::SimdLevel previous = orucv::force_simd_level(level);
    auto f = ramp<T>(w, h);
    OruConnectedComp region{};
    for (auto _ : state) {
        fill(f->image.data(), w * static_cast<int>(sizeof(T)), OruSize{w, h}, OruPoint{w / 2, h / 2}, T(255), T(1),
             T(1), &region, f->buffer.data());
        state.PauseTiming();
        std::memcpy(f->image.data(), f->original.data(), f->image.size() * sizeof(T));
        state.ResumeTiming();
    }
    orucv::force_simd_level(previous);
    state.counters["filled/s"] = benchmark::Counter(region.area * state.iterations(), benchmark::Counter::kIsRate);
}

template <class Runner>
bool add(const std::string& name, Runner runner) {
    for (const auto& size : orubench::frame_sizes())
        for (const bool simd : {true, false}) {
            const std::string full =
                name + "/" + std::to_string(size.width) + "x" + std::to_string(size.height) + (simd ? "/simd" : "/scalar");
            const int w = size.width, h = size.height;
            benchmark::RegisterBenchmark(full.c_str(), [=](benchmark::State& s) {
                runner(s, w, h, simd ? orucv::detected_simd_level() : orucv::SimdLevel::Scalar);
            })->Unit(benchmark::kMillisecond);
        }
    return true;
}

#define FIXED(name, T, fn) \
    const bool name##_added = add(#name, [](benchmark::State& s, int w, int h, orucv::SimdLevel l) { run_fixed<T>(s, w, h, l, fn); })
#define GRAD(name, T, fn) \
    const bool name##_added = add(#name, [](benchmark::State& s, int w, int h, orucv::SimdLevel l) { run_grad<T>(s, w, h, l, fn); })

FIXED(FloodFill_4Con_8u, Oru8u, oruiFloodFill_4Con_8u_C1IR);
FIXED(FloodFill_8Con_8u, Oru8u, oruiFloodFill_8Con_8u_C1IR);
FIXED(FloodFill_4Con_32f, Oru32f, oruiFloodFill_4Con_32f_C1IR);
FIXED(FloodFill_8Con_32f, Oru32f, oruiFloodFill_8Con_32f_C1IR);
GRAD(FloodFill_Grad4Con_8u, Oru8u, oruiFloodFill_Grad4Con_8u_C1IR);
GRAD(FloodFill_Grad8Con_8u, Oru8u, oruiFloodFill_Grad8Con_8u_C1IR);
GRAD(FloodFill_Grad4Con_32f, Oru32f, oruiFloodFill_Grad4Con_32f_C1IR);
GRAD(FloodFill_Grad8Con_32f, Oru32f, oruiFloodFill_Grad8Con_32f_C1IR);

}  // namespace
