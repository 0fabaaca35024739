// The fixed 3x3 Sobel and Scharr derivatives.
#include <type_traits>

#include "sobel3x3_list.h"
#include "support/harness.h"

using namespace orufuzz;

namespace {

enum Arguments { Plain, Origin, Shift, OriginShift };

template <Arguments A, class S, auto F>
void fuzz_derivative(Harness& h, const char* name) {
    using D = typename std::conditional<std::is_same<S, Oru32f>::value, Oru32f, Oru16s>::type;
    const OruSize roi = h.roi();
    Image& src = h.image_of<S>("src", Role::In, roi.width, 1, roi.height);
    Image& dst = h.image_of<D>("dst", Role::Out, roi.width, 1, roi.height);
    h.on_every_level([&] {
        const S* s = h.maybe_null(src.data<S>());
        D* d = h.maybe_null(dst.data<D>());
        const int origin = h.in.arg(0, 1), shift = h.in.arg(0, 40);
        h.call(name, [&] {
            if constexpr (A == Plain) return F(s, src.step(), d, dst.step(), roi);
            else if constexpr (A == Origin) return F(s, src.step(), d, dst.step(), origin, roi);
            else if constexpr (A == Shift) return F(s, src.step(), d, dst.step(), roi, shift);
            else return F(s, src.step(), d, dst.step(), origin, roi, shift);
        });
    });
}

#define ENTRY(name, arguments, S, filter, steps) Entry{#name, fuzz_derivative<arguments, S, name>},
const Entry kEntries[] = {ORUCV_SOBEL3X3_FUNCTIONS(ENTRY)};

}  // namespace

ORUFUZZ_TARGET(kEntries)
