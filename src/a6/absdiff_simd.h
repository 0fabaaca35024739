// The absolute-difference and motion-history rows, written once over the
// vector operations of ops_<isa>.h: two vectors per step, then one, then
// the scalar twin for the tail. Internal linkage: each instruction-set file
// instantiates its own.
#pragma once

#include "a6/absdiff.h"
#include "a6/loops.h"

namespace orucv {
namespace a6 {
namespace {

template <class V>
struct AbsDiffRows {
    static void diff_8u(const uint8_t* a, const uint8_t* b, uint8_t* dst, int n) {
        const int i = vector_blocks<V::kBytes>(n, [&](int j) { V::store(dst + j, V::absdiff_u8(V::load(a + j), V::load(b + j))); });
        scalar::diff_8u(a + i, b + i, dst + i, n - i);
    }
    static void diff_const_8u(const uint8_t* a, uint8_t value, uint8_t* dst, int n) {
        const typename V::I v = V::set8(value);
        const int i = vector_blocks<V::kBytes>(n, [&](int j) { V::store(dst + j, V::absdiff_u8(V::load(a + j), v)); });
        scalar::diff_const_8u(a + i, value, dst + i, n - i);
    }
    static void diff_32f(const float* a, const float* b, float* dst, int n) {
        const int i = vector_blocks<V::kFloats>(
            n, [&](int j) { V::storef(dst + j, V::absf(V::subf(V::loadf(a + j), V::loadf(b + j)))); });
        scalar::diff_32f(a + i, b + i, dst + i, n - i);
    }
    static void diff_const_32f(const float* a, float value, float* dst, int n) {
        const typename V::F v = V::setf(value);
        const int i =
            vector_blocks<V::kFloats>(n, [&](int j) { V::storef(dst + j, V::absf(V::subf(V::loadf(a + j), v))); });
        scalar::diff_const_32f(a + i, value, dst + i, n - i);
    }

    // Order keys of float bit patterns in 32-bit lanes (core/floats.h).
    static typename V::I order_keys(typename V::I bits) {
        return V::xor_(bits, V::and_(V::template srai32<31>(bits), V::set32(0x7FFFFFFF)));
    }
    template <bool kMapped>
    static void motion(const uint8_t* silhouette, float* mhi, int n, float timestamp, float threshold) {
        using I = typename V::I;
        const I stamp = V::cast(V::setf(timestamp));
        const I thr = kMapped ? order_keys(V::cast(V::setf(threshold))) : V::cast(V::setf(threshold));
        const int i = vector_blocks<V::kFloats>(n, [&](int j) {
            const I still = V::cmpeq32(V::load_widen4_u8(silhouette + j), V::zero());
            const I m = V::load(mhi + j);
            const I expired = V::cmpgt32(thr, kMapped ? order_keys(m) : m);
            V::store(mhi + j, V::select(still, V::andnot(expired, m), stamp));
        });
        scalar::motion<kMapped>(silhouette + i, mhi + i, n - i, timestamp, threshold);
    }

    static constexpr AbsDiffKernels table() {
        AbsDiffKernels k{};
        k.diff_8u = diff_8u;
        k.diff_const_8u = diff_const_8u;
        k.diff_32f = diff_32f;
        k.diff_const_32f = diff_const_32f;
        k.motion_direct = motion<false>;
        k.motion_mapped = motion<true>;
        return k;
    }
};

}  // namespace
}  // namespace a6
}  // namespace orucv
