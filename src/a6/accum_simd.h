// The accumulator rows, written once over the vector operations of
// ops_<isa>.h: blocks of kBytes pixels (four vectors of floats), a scalar
// head that aligns the accumulator and the scalar twin for the tail.
// Internal linkage: each instruction-set file instantiates its own.
#pragma once

#include <cstdint>
#include <type_traits>

#include "a6/accum.h"

namespace orucv {
namespace a6 {
namespace {

template <class V>
struct AccumRows {
    using I = typename V::I;
    using F = typename V::F;
    static constexpr int kBlock = V::kBytes;  // pixels: four vectors of floats

    template <class S>
    static constexpr bool kSigned = std::is_same<S, Oru8s>::value;

    // kBlock 8-bit values of type S in 32-bit lanes, zero- or sign-extended,
    // and their products, exact there too; from memory, or from a register
    // whose bytes were cleared first (a second factor from memory: where the
    // first is 0 the product is 0).
    template <class S>
    static void widen32(const S* p, I (&out)[4]) {
        if constexpr (kSigned<S>) V::load_widen32_s8(p, out);
        else V::load_widen32_u8(p, out);
    }
    template <class S>
    static void widen32(I x, I (&out)[4]) {
        if constexpr (kSigned<S>) V::widen32_s8(x, out);
        else V::widen32_u8(x, out);
    }
    template <class S>
    static void mul_widen32(const S* a, const S* b, I (&out)[4]) {
        if constexpr (kSigned<S>) V::load_mul_widen32_s8(a, b, out);
        else V::load_mul_widen32_u8(a, b, out);
    }
    template <class S, class B>
    static void mul_widen32(I a, B b, I (&out)[4]) {
        if constexpr (kSigned<S>) V::mul_widen32_s8(a, b, out);
        else V::mul_widen32_u8(a, b, out);
    }
    // The 8-bit addends of a block, or its values for the weighted average.
    template <AccumOp op, class S, class A>
    static void addends(A a, const S* b, I (&out)[4]) {
        if constexpr (op == AccumOp::Square) mul_widen32<S>(a, a, out);
        else if constexpr (op == AccumOp::Product) mul_widen32<S>(a, b, out);
        else widen32<S>(a, out);
    }

    // One block. Unselected pixels get the addend +0.0 (an 8-bit source is
    // zeroed before conversion, a float addend is cleared bitwise) or, in
    // the weighted average, the weight 0.0.
    template <AccumOp op, class S, bool kMasked>
    static void block(const S* s1, const S* s2, const uint8_t* mask, float* acc, F alpha) {
        constexpr bool kClearAddend = kMasked && op != AccumOp::Weighted;
        constexpr bool kFloat = std::is_same<S, float>::value;
        // Lane masks, where a weight or a float addend is to be cleared.
        F unselected[4];
        if constexpr (kMasked && (kFloat || op == AccumOp::Weighted)) {
            I m[4];
            V::load_eq0_mask32(mask, m);
            for (int k = 0; k < 4; ++k) unselected[k] = V::castf(m[k]);
        }
        // Addends, or the source values of the weighted average.
        F v[4];
        if constexpr (kFloat) {
            for (int k = 0; k < 4; ++k) {
                F x = V::loadf(s1 + k * V::kFloats);
                if constexpr (op == AccumOp::Square) x = V::mulf(x, x);
                if constexpr (op == AccumOp::Product) x = V::mulf_pinned(x, V::loadf(s2 + k * V::kFloats));
                if constexpr (kClearAddend) x = V::andnotf(unselected[k], x);
                v[k] = x;
            }
        } else {
            I x[4];
            if constexpr (kClearAddend) {
                const I a = V::andnot(V::cmpeq8(V::load(mask), V::zero()), V::load(s1));
                addends<op, S>(a, s2, x);
            } else {
                addends<op, S>(s1, s2, x);
            }
            for (int k = 0; k < 4; ++k) v[k] = V::to_float(x[k]);
        }
        for (int k = 0; k < 4; ++k) {
            float* a = acc + k * V::kFloats;
            const F old = V::loadf(a);
            if constexpr (op == AccumOp::Weighted) {
                F weight = alpha;
                if constexpr (kMasked) weight = V::andnotf(unselected[k], alpha);
                V::storef(a, V::addf_pinned(old, V::mulf_pinned(V::subf(v[k], old), weight)));
            } else {
                V::storef(a, V::addf_pinned(old, v[k]));
            }
        }
    }

    // The head brings the accumulator to a vector boundary, so that no store
    // splits a cache line; pixels are independent, so where a row is cut
    // changes no result.
    template <AccumOp op, class S, bool kMasked>
    static void row(const void* src1, const void* src2, const uint8_t* mask, float* acc, int n, float alpha) {
        const S* s1 = static_cast<const S*>(src1);
        const S* s2 = static_cast<const S*>(src2);
        const uintptr_t address = reinterpret_cast<uintptr_t>(acc);
        int head = address % 4 ? 0 : static_cast<int>((V::kBytes - address % V::kBytes) % V::kBytes / 4);
        if (head > n) head = n;
        scalar::accum_span<op, S, kMasked>(src1, src2, mask, acc, 0, head, alpha);
        const F va = V::setf(alpha);
        int i = head;
        for (; i + kBlock <= n; i += kBlock)
            block<op, S, kMasked>(s1 + i, op == AccumOp::Product ? s2 + i : nullptr, kMasked ? mask + i : nullptr,
                                  acc + i, va);
        scalar::accum_span<op, S, kMasked>(src1, src2, mask, acc, i, n, alpha);
    }
};

}  // namespace
}  // namespace a6
}  // namespace orucv
