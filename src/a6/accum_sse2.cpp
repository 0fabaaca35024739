// SSE2 accumulator rows: 16 pixels per step (one 16-byte group of 8-bit
// sources, or four groups of floats), scalar tails.
#include <emmintrin.h>

#include <type_traits>

#include "a6/accum.h"

namespace orucv {
namespace a6 {
namespace {

template <class S>
constexpr bool kSigned8 = std::is_same<S, Oru8s>::value;
template <class S>
constexpr bool kFloat = std::is_same<S, Oru32f>::value;

// Additions and multiplications keep their operand order, so that of two
// NaN operands the first one is returned on every path (see accum.h).
inline __m128 add_first(__m128 a, __m128 b) {
    __asm__("addps %1, %0" : "+x"(a) : "x"(b));
    return a;
}
inline __m128 mul_first(__m128 a, __m128 b) {
    __asm__("mulps %1, %0" : "+x"(a) : "x"(b));
    return a;
}

inline __m128i load(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }

// Sixteen 8-bit values as two vectors of eight 16-bit lanes, zero- or
// sign-extended by the source type.
template <class S>
inline void widen_8_16(__m128i x, __m128i& lo, __m128i& hi) {
    if constexpr (kSigned8<S>) {
        lo = _mm_srai_epi16(_mm_unpacklo_epi8(x, x), 8);
        hi = _mm_srai_epi16(_mm_unpackhi_epi8(x, x), 8);
    } else {
        lo = _mm_unpacklo_epi8(x, _mm_setzero_si128());
        hi = _mm_unpackhi_epi8(x, _mm_setzero_si128());
    }
}

// Eight 16-bit lanes as two vectors of four floats, with the same extension
// rule (unsigned squares and products reach 65025, past the signed range).
template <class S>
inline void widen_16_float(__m128i v, __m128& lo, __m128& hi) {
    if constexpr (kSigned8<S>) {
        lo = _mm_cvtepi32_ps(_mm_srai_epi32(_mm_unpacklo_epi16(v, v), 16));
        hi = _mm_cvtepi32_ps(_mm_srai_epi32(_mm_unpackhi_epi16(v, v), 16));
    } else {
        lo = _mm_cvtepi32_ps(_mm_unpacklo_epi16(v, _mm_setzero_si128()));
        hi = _mm_cvtepi32_ps(_mm_unpackhi_epi16(v, _mm_setzero_si128()));
    }
}

// Sixteen pixels. Unselected pixels get the addend +0.0 (the 8-bit source
// byte is zeroed before widening, a float addend is cleared bitwise) or, in
// the weighted average, the weight 0.0.
template <AccumOp op, class S, bool kMasked>
inline void block16(const S* s1, const S* s2, const uint8_t* mask, float* acc, __m128 alpha) {
    __m128i unselected8 = _mm_setzero_si128();
    __m128 unselected[4] = {};
    if constexpr (kMasked) {
        unselected8 = _mm_cmpeq_epi8(load(mask), _mm_setzero_si128());
        const __m128i lo16 = _mm_unpacklo_epi8(unselected8, unselected8);
        const __m128i hi16 = _mm_unpackhi_epi8(unselected8, unselected8);
        unselected[0] = _mm_castsi128_ps(_mm_unpacklo_epi16(lo16, lo16));
        unselected[1] = _mm_castsi128_ps(_mm_unpackhi_epi16(lo16, lo16));
        unselected[2] = _mm_castsi128_ps(_mm_unpacklo_epi16(hi16, hi16));
        unselected[3] = _mm_castsi128_ps(_mm_unpackhi_epi16(hi16, hi16));
    }
    // Addends, or the source values of the weighted average.
    __m128 v[4];
    if constexpr (kFloat<S>) {
        #pragma GCC unroll 4
        for (int k = 0; k < 4; ++k) {
            __m128 x = _mm_loadu_ps(s1 + 4 * k);
            if constexpr (op == AccumOp::Square) x = _mm_mul_ps(x, x);
            if constexpr (op == AccumOp::Product) x = mul_first(x, _mm_loadu_ps(s2 + 4 * k));
            if constexpr (kMasked && op != AccumOp::Weighted) x = _mm_andnot_ps(unselected[k], x);
            v[k] = x;
        }
    } else {
        __m128i x = load(s1);
        if constexpr (kMasked && op != AccumOp::Weighted) x = _mm_andnot_si128(unselected8, x);
        __m128i lo, hi;
        widen_8_16<S>(x, lo, hi);
        if constexpr (op == AccumOp::Square) {
            lo = _mm_mullo_epi16(lo, lo);
            hi = _mm_mullo_epi16(hi, hi);
        }
        if constexpr (op == AccumOp::Product) {
            __m128i lo2, hi2;
            widen_8_16<S>(load(s2), lo2, hi2);
            lo = _mm_mullo_epi16(lo, lo2);
            hi = _mm_mullo_epi16(hi, hi2);
        }
        widen_16_float<S>(lo, v[0], v[1]);
        widen_16_float<S>(hi, v[2], v[3]);
    }
    #pragma GCC unroll 4
    for (int k = 0; k < 4; ++k) {
        const __m128 a = _mm_loadu_ps(acc + 4 * k);
        if constexpr (op == AccumOp::Weighted) {
            const __m128 weight = kMasked ? _mm_andnot_ps(unselected[k], alpha) : alpha;
            _mm_storeu_ps(acc + 4 * k, add_first(a, mul_first(_mm_sub_ps(v[k], a), weight)));
        } else {
            _mm_storeu_ps(acc + 4 * k, add_first(a, v[k]));
        }
    }
}

template <AccumOp op, class S, bool kMasked>
void row(const void* src1, const void* src2, const uint8_t* mask, float* acc, int n, float alpha) {
    const S* s1 = static_cast<const S*>(src1);
    const S* s2 = static_cast<const S*>(src2);
    const __m128 va = _mm_set1_ps(alpha);
    int i = 0;
    for (; i + 16 <= n; i += 16)
        block16<op, S, kMasked>(s1 + i, op == AccumOp::Product ? s2 + i : nullptr, kMasked ? mask + i : nullptr,
                                acc + i, va);
    scalar::accum_span<op, S, kMasked>(src1, src2, mask, acc, i, n, alpha);
}

}  // namespace

const AccumKernels accum_kernels_sse2 = ORUCV_ACCUM_TABLE();

}  // namespace a6
}  // namespace orucv
