// Flood fills. Fixed range: a frame uniform but for 60 discs, filled from a
// background pixel; successive calls swap two fill values, so each fills the
// same region. Gradient: a diagonal ramp (neighbours differ by at most 1)
// filled with tolerance 1, restored outside the timing. Every fill of the
// list fills most of the frame.
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "bench_util.h"
#include "floodfill_list.h"
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

// Successive calls swap two fill values, so each fills the same region.
template <class T, class Fill>
orubench::Maker fixed(Fill fill) {
    return [fill](int w, int h) {
        auto f = discs<T>(w, h);
        auto swap = std::make_shared<bool>(false);
        return [f, fill, swap, w, h] {
            OruConnectedComp region;
            fill(f->image.data(), w * static_cast<int>(sizeof(T)), OruSize{w, h}, OruPoint{0, 0},
                 *swap ? T(100) : T(50), &region, f->buffer.data());
            *swap = !*swap;
        };
    };
}

// The ramp is restored between calls, out of the timing.
template <class T, class Fill>
orubench::RestoringMaker grad(Fill fill) {
    return [fill](int w, int h) {
        auto f = ramp<T>(w, h);
        return orubench::Restoring{
            [f, fill, w, h] {
                OruConnectedComp region;
                fill(f->image.data(), w * static_cast<int>(sizeof(T)), OruSize{w, h}, OruPoint{w / 2, h / 2}, T(255),
                     T(1), T(1), &region, f->buffer.data());
            },
            [f] { std::memcpy(f->image.data(), f->original.data(), f->image.size() * sizeof(T)); }};
    };
}

}  // namespace

#define BENCH_FixedSize(name, T, connectivity)
#define BENCH_GradSize(name, T, connectivity)
#define BENCH_Fixed(name, T, connectivity) ORUBENCH(#name, 0, fixed<T>(name));
#define BENCH_Grad(name, T, connectivity) \
    static const bool ORUBENCH_CAT(orubench_, __COUNTER__) = orubench::add_restoring(#name, grad<T>(name));
#define BENCH(name, shape, T, connectivity) BENCH_##shape(name, T, connectivity)
ORUCV_FLOODFILL_FUNCTIONS(BENCH)
