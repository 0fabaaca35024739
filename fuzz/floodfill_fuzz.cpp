// The flood fills, fixed-range and gradient, over fuzzed images and over
// structured ones (mazes, spirals, serpentines, checkerboards, stripes)
// that make a fill walk long paths or keep the most segments pending.
#include <cstring>

#include "floodfill_list.h"
#include "support/harness.h"
#include "support/patterns.h"

using namespace orufuzz;

namespace {

template <class T, int Connectivity, auto F>
void fuzz_size(Harness& h, const char* name) {
    int* size = h.cells<int>("size").data<int>();
    h.on_every_level([&] {
        OruSize roi = h.roi(4000, 1 << 30);
        if (h.in.one_in(4)) roi = OruSize{h.in.arg(1, 1 << 16), h.in.arg(1, 1 << 16)};
        h.call(name, [&] { return F(roi, h.maybe_null(size)); });
    });
}
template <class T, int Connectivity, auto F>
void fuzz_FixedSize(Harness& h, const char* name) {
    fuzz_size<T, Connectivity, F>(h, name);
}
template <class T, int Connectivity, auto F>
void fuzz_GradSize(Harness& h, const char* name) {
    fuzz_size<T, Connectivity, F>(h, name);
}

// Draws a pattern: path cells rise and fall by one per step around `base`
// (so a gradient fill of tolerance 1 follows the path), walls hold `wall`.
template <class T>
void draw(Harness& h, Image& image, OruSize roi, OruPoint& seed) {
    const Pattern kind = static_cast<Pattern>(h.in.range(0, static_cast<int>(Pattern::kCount) - 1));
    const std::vector<int> cells = make_pattern(kind, roi.width, roi.height, h.in.seed());
    const int base = h.in.range(0, 120), amplitude = h.in.range(0, 20), wall = h.in.range(160, 255);
    const bool fixed_path = h.in.one_in(2);  // one value along the path, for the fixed fills
    for (int y = 0; y < roi.height; ++y) {
        for (int x = 0; x < roi.width; ++x) {
            const int c = cells[static_cast<size_t>(y) * roi.width + x];
            int v = wall;
            if (c) {
                const int k = amplitude ? c % (2 * amplitude) : 0;
                v = fixed_path ? base : base + (k < amplitude ? k : 2 * amplitude - k);
            }
            const T t = static_cast<T>(v);
            std::memcpy(image.row(y) + x * sizeof(T), &t, sizeof(T));
            if (c == 1) seed = OruPoint{x, y};
        }
    }
}

template <bool Gradient, class T, int Connectivity, auto F, auto Query>
void fuzz_fill(Harness& h, const char* name) {
    const OruSize roi = h.roi(250, 1 << 16);
    Image& image = h.image_of<T>("image", Role::Out, roi.width, 1, roi.height);
    OruPoint seed{h.in.range(0, roi.width > 0 ? roi.width - 1 : 0), h.in.range(0, roi.height > 0 ? roi.height - 1 : 0)};
    if (h.in.one_in(2) && roi.width > 0 && roi.height > 0 && image.step() >= image.row_bytes())
        draw<T>(h, image, roi, seed);
    if (h.in.one_in(16)) seed = OruPoint{h.in.arg(0, roi.width), h.in.arg(0, roi.height)};
    Image& region = h.cells<OruConnectedComp>("region");
    int size = 0;
    if (Query(roi, &size) != oruStsOk) size = 0;
    Image& buffer = h.image("buffer", Role::Scratch, size, 1, 0, 1);
    h.on_every_level([&] {
        Oru8u* work = h.maybe_null(buffer.data());
        OruConnectedComp* out = h.maybe_null(region.data<OruConnectedComp>());
        T* pixels = h.maybe_null(image.data<T>());
        if constexpr (sizeof(T) == 1) {
            const int value = h.in.arg(0, 255);
            const int lo = h.in.one_in(4) ? h.in.arg(0, 255) : h.in.range(0, 3);
            const int hi = h.in.one_in(4) ? h.in.arg(0, 255) : h.in.range(0, 3);
            h.call(name, [&] {
                if constexpr (Gradient) return F(pixels, image.step(), roi, seed, value, lo, hi, out, work);
                else return F(pixels, image.step(), roi, seed, value, out, work);
            });
        } else {
            const float value = h.in.real(-10.0f, 300.0f);
            const float lo = h.in.one_in(4) ? h.in.real() : static_cast<float>(h.in.range(0, 3));
            const float hi = h.in.one_in(4) ? h.in.real() : static_cast<float>(h.in.range(0, 3));
            h.call(name, [&] {
                if constexpr (Gradient) return F(pixels, image.step(), roi, seed, value, lo, hi, out, work);
                else return F(pixels, image.step(), roi, seed, value, out, work);
            });
        }
    });
}

template <class T, int Connectivity, auto F>
void fuzz_Fixed(Harness& h, const char* name) {
    fuzz_fill<false, T, Connectivity, F, oruiFloodFillGetSize>(h, name);
}
template <class T, int Connectivity, auto F>
void fuzz_Grad(Harness& h, const char* name) {
    fuzz_fill<true, T, Connectivity, F, oruiFloodFillGetSize_Grad>(h, name);
}

#define ENTRY(name, shape, T, connectivity) Entry{#name, fuzz_##shape<T, connectivity, name>},
const Entry kEntries[] = {ORUCV_FLOODFILL_FUNCTIONS(ENTRY)};

}  // namespace

ORUFUZZ_TARGET(kEntries)
