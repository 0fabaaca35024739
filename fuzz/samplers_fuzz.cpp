// Line sampling: end points anywhere, inside and outside the region.
#include <cstdlib>

#include "samplers_list.h"
#include "support/harness.h"

using namespace orufuzz;

namespace {

template <class T, int C, auto F>
void fuzz_Line(Harness& h, const char* name) {
    const OruSize roi = h.roi();
    Image& src = h.image_of<T>("src", Role::In, roi.width, C, roi.height);
    auto point = [&] {
        if (h.in.one_in(8)) return OruPoint{h.in.arg(0, roi.width), h.in.arg(0, roi.height)};
        return OruPoint{h.in.range(0, roi.width > 0 ? roi.width - 1 : 0),
                        h.in.range(0, roi.height > 0 ? roi.height - 1 : 0)};
    };
    const OruPoint p1 = point(), p2 = point();
    // Room for the pixels of any line within the region (and a little more).
    const long long span =
        std::llabs(static_cast<long long>(p2.x) - p1.x) > std::llabs(static_cast<long long>(p2.y) - p1.y)
            ? std::llabs(static_cast<long long>(p2.x) - p1.x)
            : std::llabs(static_cast<long long>(p2.y) - p1.y);
    const int n = span < 4096 ? static_cast<int>(span) + 1 : 4097;
    Image& dst = h.image_of<T>("dst", Role::Out, n, C, 1);
    h.on_every_level([&] {
        h.call(name,
               [&] { return F(h.maybe_null(src.data<T>()), src.step(), roi, h.maybe_null(dst.data<T>()), p1, p2); });
    });
}

#define ENTRY(name, shape, T, C) Entry{#name, fuzz_##shape<T, C, name>},
const Entry kEntries[] = {ORUCV_SAMPLERS_FUNCTIONS(ENTRY)};

}  // namespace

ORUFUZZ_TARGET(kEntries)
