// The Canny detector over derivative images: fuzzed ones, and structured
// ones (mazes, spirals, serpentines, checkerboards) whose ridges make the
// edge tracking walk long paths or start from the most seeds.
#include <cstring>
#include <utility>

#include "canny_list.h"
#include "support/harness.h"
#include "support/patterns.h"

using namespace orufuzz;

namespace {

template <auto F>
void fuzz_BufferSize(Harness& h, const char* name) {
    int* size = h.cells<int>("size").data<int>();
    h.on_every_level([&] {
        OruSize roi = h.roi(4000, 1 << 30);
        if (h.in.one_in(4)) roi = OruSize{h.in.arg(1, 1 << 16), h.in.arg(1, 1 << 16)};
        h.call(name, [&] { return F(roi, h.maybe_null(size)); });
    });
}

// Derivatives that draw the pattern as ridges: path cells get a magnitude
// above the high threshold (or, far from the path's start, between the
// thresholds, so only tracking along the path reaches them), walls a small
// one; the direction is mostly across the path.
void draw(Harness& h, Image& dx, Image& dy, OruSize roi) {
    const Pattern kind = static_cast<Pattern>(h.in.range(0, static_cast<int>(Pattern::kCount) - 1));
    const std::vector<int> cells = make_pattern(kind, roi.width, roi.height, h.in.seed());
    const int strong = h.in.range(100, 32767), weak = h.in.range(20, 99), wall = h.in.range(0, 19);
    const int seeds = h.in.range(1, 4);  // path cells below this order are strong
    const bool vertical = h.in.one_in(2);
    for (int y = 0; y < roi.height; ++y) {
        for (int x = 0; x < roi.width; ++x) {
            const int c = cells[static_cast<size_t>(y) * roi.width + x];
            const int m = c == 0 ? wall : c <= seeds || kind == Pattern::Checkerboard ? strong : weak;
            Oru16s gx = static_cast<Oru16s>(vertical ? m : m / 3), gy = static_cast<Oru16s>(vertical ? m / 3 : m);
            if ((x ^ y) & 4) gx = static_cast<Oru16s>(-gx);
            std::memcpy(dx.row(y) + 2 * x, &gx, 2);
            std::memcpy(dy.row(y) + 2 * x, &gy, 2);
        }
    }
}

template <auto F>
void fuzz_Detect(Harness& h, const char* name) {
    const OruSize roi = h.roi(200, 1 << 15);
    const bool structured = h.in.one_in(2);
    // One step for both: the magnitude pass reads each image with the
    // other's step, so different steps are the caller's to make safe.
    Image& dx = h.image_of<Oru16s>("dx", Role::In, roi.width, 1, roi.height);
    Image& dy = h.image("dy", Role::In, dx.row_bytes(), roi.height, dx.step(), 2);
    if (structured && dx.step() >= dx.row_bytes() && roi.width > 0 && roi.height > 0) draw(h, dx, dy, roi);
    else fill<Oru16s>(dy, h.in);
    Image& dst = h.image_of<Oru8u>("edges", Role::Out, roi.width, 1, roi.height);
    int size = 0;
    if (oruiCannyGetSize(roi, &size) != oruStsOk) size = 0;
    Image& buffer = h.image("buffer", Role::Scratch, size, 1, 0, 1);
    h.on_every_level([&] {
        float low = structured ? static_cast<float>(h.in.range(0, 30)) : h.in.real(-10.0f, 3000.0f);
        float high = structured ? static_cast<float>(h.in.range(50, 120)) : h.in.real(-10.0f, 6000.0f);
        if (!structured && h.in.one_in(3) && !(high >= low)) std::swap(low, high);
        h.call(name, [&] {
            return F(h.maybe_null(dx.data<Oru16s>()), dy.step(), h.maybe_null(dy.data<Oru16s>()), dx.step(),
                     h.maybe_null(dst.data()), dst.step(), roi, low, high, h.maybe_null(buffer.data()));
        });
    });
}

#define ENTRY(name, shape) Entry{#name, fuzz_##shape<name>},
const Entry kEntries[] = {ORUCV_CANNY_FUNCTIONS(ENTRY)};

}  // namespace

ORUFUZZ_TARGET(kEntries)
