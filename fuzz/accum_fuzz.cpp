// The running accumulators, plain and masked.
#include "accum_list.h"
#include "support/harness.h"

using namespace orufuzz;

namespace {

enum Operation { Add, Square, Product, Weighted };

template <Operation Op, class T, bool Masked, auto F>
void fuzz_accum(Harness& h, const char* name) {
    const OruSize roi = h.roi();
    Image& s1 = h.image_of<T>("src1", Role::In, roi.width, 1, roi.height);
    Image& s2 = h.image_of<T>("src2", Role::In, roi.width, 1, roi.height);
    Image& m = h.image_of<Oru8u>("mask", Role::In, roi.width, 1, roi.height);
    Image& acc = h.image_of<Oru32f>("acc", Role::Out, roi.width, 1, roi.height);
    h.on_every_level([&] {
        const T* a = h.maybe_null(s1.data<T>());
        const T* b = h.maybe_null(s2.data<T>());
        const Oru8u* mask = h.maybe_null(m.data<Oru8u>());
        Oru32f* d = h.maybe_null(acc.data<Oru32f>());
        const float alpha = h.in.real(-2.0f, 2.0f);
        h.call(name, [&] {
            if constexpr (Op == Product && Masked)
                return F(a, s1.step(), b, s2.step(), mask, m.step(), d, acc.step(), roi);
            else if constexpr (Op == Product) return F(a, s1.step(), b, s2.step(), d, acc.step(), roi);
            else if constexpr (Op == Weighted && Masked)
                return F(a, s1.step(), mask, m.step(), d, acc.step(), roi, alpha);
            else if constexpr (Op == Weighted) return F(a, s1.step(), d, acc.step(), roi, alpha);
            else if constexpr (Masked) return F(a, s1.step(), mask, m.step(), d, acc.step(), roi);
            else return F(a, s1.step(), d, acc.step(), roi);
        });
    });
}

#define ENTRY(name, op, T, masked) Entry{#name, fuzz_accum<op, T, masked, name>},
const Entry kEntries[] = {ORUCV_ACCUM_FUNCTIONS(ENTRY)};

}  // namespace

ORUFUZZ_TARGET(kEntries)
