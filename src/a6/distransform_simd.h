// The distance transform's rows, written once over the vector operations of
// ops_<isa>.h (V): kFloats distances per vector, scalar border columns and
// tails. Internal linkage: each instruction-set file instantiates its own.
#pragma once

#include "a6/distransform.h"

namespace orucv {
namespace a6 {
namespace {

template <class V>
struct DistanceRows {
    using I = typename V::I;
    static constexpr int L = V::kFloats;  // distances per vector

    // kBytes pixels at a time: the mask of the features, in 32-bit lanes,
    // clears the far value; then kFloats at a time.
    static void init_row(const uint8_t* src, dist_t* d, int n) {
        const I far = V::set32(kFarDistance);
        int i = 0;
        for (; i + V::kBytes <= n; i += V::kBytes) {
            I features[4];
            V::load_eq0_mask32(src + i, features);
            for (int k = 0; k < 4; ++k) V::store(d + i + k * L, V::andnot(features[k], far));
        }
        for (; i + L <= n; i += L) V::store(d + i, V::andnot(V::cmpeq32(V::load_widen4_u8(src + i), V::zero()), far));
        scalar::init_row(src + i, d + i, n - i);
    }

    static void to_float_row(dist_t* d, int n) {
        const typename V::F unit = V::setf(kDistanceUnit);
        float* f = reinterpret_cast<float*>(d);
        auto convert = [&](int i) { V::storef(f + i, V::mulf(V::to_float(V::load(d + i)), unit)); };
        int i = 0;
        for (; i + 2 * L <= n; i += 2 * L) convert(i), convert(i + L);
        for (; i + L <= n; i += L) convert(i);
        scalar::to_float_row(d + i, n - i);
    }

    static I plus(const dist_t* p, I w) { return V::add32(V::load(p), w); }

    static void near3_row(dist_t* d, const dist_t* near, int n, int32_t a, int32_t b) {
        scalar::near3_borders(d, near, n, a, b);
        const I va = V::set32(a), vb = V::set32(b);
        int x = 1;
        for (; x + L <= n - 1; x += L) {
            I m = V::min32(V::load(d + x), plus(near + x, va));
            m = V::min32(m, plus(near + x - 1, vb));
            V::store(d + x, V::min32(m, plus(near + x + 1, vb)));
        }
        scalar::near3_span(d, near, x, n - 1, a, b);
    }

    template <bool kTwoRows>
    static void near5_interior(dist_t* d, const dist_t* near1, const dist_t* near2, int n, int32_t a, int32_t b,
                               int32_t c) {
        const I va = V::set32(a), vb = V::set32(b), vc = V::set32(c);
        int x = 2;
        for (; x + L <= n - 2; x += L) {
            I m = V::min32(V::load(d + x), plus(near1 + x, va));
            m = V::min32(m, plus(near1 + x - 1, vb));
            m = V::min32(m, plus(near1 + x + 1, vb));
            m = V::min32(m, plus(near1 + x - 2, vc));
            m = V::min32(m, plus(near1 + x + 2, vc));
            if (kTwoRows) {
                m = V::min32(m, plus(near2 + x - 1, vc));
                m = V::min32(m, plus(near2 + x + 1, vc));
            }
            V::store(d + x, m);
        }
        scalar::near5_span<kTwoRows>(d, near1, near2, x, n - 2, a, b, c);
    }

    static void near5_row(dist_t* d, const dist_t* near1, const dist_t* near2, int n, int32_t a, int32_t b,
                          int32_t c) {
        scalar::near5_borders(d, near1, near2, n, a, b, c);
        if (near2) near5_interior<true>(d, near1, near2, n, a, b, c);
        else near5_interior<false>(d, near1, near2, n, a, b, c);
    }

    // The scans take a vector of pixels at once: within it a prefix minimum
    // in doubling steps (lanes moved in from outside the block hold the far
    // value, which never wins), then the pixel before the block plus 1..L
    // weights. This regroups the additions, which is exact only while no sum
    // can wrap, so other weights take the pixel-by-pixel scan.
    template <int K>
    static I prefix_right(I s, I far, int32_t a) {
        if constexpr (K >= L) return s;
        else return prefix_right<2 * K>(V::min32(s, V::add32(V::template shift_up32<K>(s, far), V::set32(K * a))), far, a);
    }
    template <int K>
    static I prefix_left(I s, I far, int32_t a) {
        if constexpr (K >= L) return s;
        else return prefix_left<2 * K>(V::min32(s, V::add32(V::template shift_down32<K>(s, far), V::set32(K * a))), far, a);
    }
    // a, 2a, .. L a in lane order, or reversed.
    static I ramp(int32_t a, bool reversed) {
        alignas(32) int32_t r[L];
        for (int j = 0; j < L; ++j) r[j] = (reversed ? L - j : j + 1) * a;
        return V::load(r);
    }

    static void scan_right(dist_t* d, int n, int32_t a) {
        if (static_cast<uint32_t>(a) > kScanRegroupMax) return scalar::scan_right(d, n, a);
        const I far = V::set32(kFarDistance), steps = ramp(a, false);
        I carry = V::set32(d[0]);
        int x = 1;
        for (; x + L <= n; x += L) {
            const I s = V::min32(prefix_right<1>(V::load(d + x), far, a), V::add32(carry, steps));
            V::store(d + x, s);
            carry = V::broadcast_last32(s);
        }
        scalar::scan_right_from(d, x, n, a);
    }

    static void scan_left(dist_t* d, int n, int32_t a) {
        if (static_cast<uint32_t>(a) > kScanRegroupMax) return scalar::scan_left(d, n, a);
        const I far = V::set32(kFarDistance), steps = ramp(a, true);
        I carry = V::set32(d[n - 1]);
        int x = n - 2;  // the highest column still to do; the block ends there
        for (; x >= L - 1; x -= L) {
            const I s = V::min32(prefix_left<1>(V::load(d + x - (L - 1)), far, a), V::add32(carry, steps));
            V::store(d + x - (L - 1), s);
            carry = V::broadcast_first32(s);
        }
        scalar::scan_left_from(d, x, a);
    }

    static constexpr DistanceKernels table() {
        DistanceKernels k{};
        k.init_row = init_row;
        k.to_float_row = to_float_row;
        k.near3_row = near3_row;
        k.near5_row = near5_row;
        k.scan_right = scan_right;
        k.scan_left = scan_left;
        return k;
    }
};

}  // namespace
}  // namespace a6
}  // namespace orucv
