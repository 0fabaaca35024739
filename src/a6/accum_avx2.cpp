// AVX2 accumulator rows: 16 pixels per step (two groups of eight 8-bit
// sources widened to 32-bit lanes, or two groups of eight floats), scalar
// head and tail. The head
// brings the accumulator to a 32-byte boundary so that no store splits a
// cache line; pixels are independent, so where a row is cut does not change
// any result.
#include <immintrin.h>

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
inline __m256 add_first(__m256 a, __m256 b) {
    __m256 r;
    __asm__("vaddps %2, %1, %0" : "=x"(r) : "x"(a), "x"(b));
    return r;
}
inline __m256 mul_first(__m256 a, __m256 b) {
    __m256 r;
    __asm__("vmulps %2, %1, %0" : "=x"(r) : "x"(a), "x"(b));
    return r;
}

inline __m128i load16(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
inline __m128i load8(const void* p) { return _mm_loadl_epi64(static_cast<const __m128i*>(p)); }

// Eight 8-bit values as eight 32-bit lanes, zero- or sign-extended by the
// source type. Squares and products are formed in these lanes: at most 65025
// in magnitude, they are exact there and after conversion to float.
template <class S>
inline __m256i widen(__m128i x) {
    return kSigned8<S> ? _mm256_cvtepi8_epi32(x) : _mm256_cvtepu8_epi32(x);
}

// Sixteen pixels. Unselected pixels get the addend +0.0 (the 8-bit source
// byte is zeroed before widening, a float addend is cleared bitwise) or, in
// the weighted average, the weight 0.0. Where 32-bit lane masks are needed
// they are widened from 8-byte loads, which takes fewer shuffles than
// widening one 16-byte comparison.
template <AccumOp op, class S, bool kMasked>
inline void block16(const S* s1, const S* s2, const uint8_t* mask, float* acc, __m256 alpha) {
    __m128i unselected8 = _mm_setzero_si128();
    __m256 unselected[2] = {};
    if constexpr (kMasked) {
        if constexpr (!kFloat<S> && op != AccumOp::Weighted) {
            unselected8 = _mm_cmpeq_epi8(load16(mask), _mm_setzero_si128());
        } else {
            #pragma GCC unroll 2
            for (int k = 0; k < 2; ++k)
                unselected[k] = _mm256_castsi256_ps(
                    _mm256_cmpeq_epi32(_mm256_cvtepu8_epi32(load8(mask + 8 * k)), _mm256_setzero_si256()));
        }
    }
    // Addends, or the source values of the weighted average.
    __m256 v[2];
    if constexpr (kFloat<S>) {
        #pragma GCC unroll 2
        for (int k = 0; k < 2; ++k) {
            __m256 x = _mm256_loadu_ps(s1 + 8 * k);
            if constexpr (op == AccumOp::Square) x = _mm256_mul_ps(x, x);
            if constexpr (op == AccumOp::Product) x = mul_first(x, _mm256_loadu_ps(s2 + 8 * k));
            if constexpr (kMasked && op != AccumOp::Weighted) x = _mm256_andnot_ps(unselected[k], x);
            v[k] = x;
        }
    } else {
        __m256i x[2];
        if constexpr (kMasked && op != AccumOp::Weighted) {
            const __m128i bytes = _mm_andnot_si128(unselected8, load16(s1));
            x[0] = widen<S>(bytes);
            x[1] = widen<S>(_mm_unpackhi_epi64(bytes, bytes));
        } else {
            x[0] = widen<S>(load8(s1));
            x[1] = widen<S>(load8(s1 + 8));
        }
        #pragma GCC unroll 2
        for (int k = 0; k < 2; ++k) {
            if constexpr (op == AccumOp::Square) x[k] = _mm256_mullo_epi32(x[k], x[k]);
            if constexpr (op == AccumOp::Product) x[k] = _mm256_mullo_epi32(x[k], widen<S>(load8(s2 + 8 * k)));
            v[k] = _mm256_cvtepi32_ps(x[k]);
        }
    }
    #pragma GCC unroll 2
    for (int k = 0; k < 2; ++k) {
        const __m256 a = _mm256_loadu_ps(acc + 8 * k);
        if constexpr (op == AccumOp::Weighted) {
            const __m256 weight = kMasked ? _mm256_andnot_ps(unselected[k], alpha) : alpha;
            _mm256_storeu_ps(acc + 8 * k, add_first(a, mul_first(_mm256_sub_ps(v[k], a), weight)));
        } else {
            _mm256_storeu_ps(acc + 8 * k, add_first(a, v[k]));
        }
    }
}

template <AccumOp op, class S, bool kMasked>
void row(const void* src1, const void* src2, const uint8_t* mask, float* acc, int n, float alpha) {
    const S* s1 = static_cast<const S*>(src1);
    const S* s2 = static_cast<const S*>(src2);
    const __m256 va = _mm256_set1_ps(alpha);
    const uintptr_t address = reinterpret_cast<uintptr_t>(acc);
    int i = (address & 3) ? 0 : static_cast<int>(((32 - (address & 31)) & 31) / 4);
    if (i > n) i = n;
    scalar::accum_span<op, S, kMasked>(src1, src2, mask, acc, 0, i, alpha);
    for (; i + 16 <= n; i += 16)
        block16<op, S, kMasked>(s1 + i, op == AccumOp::Product ? s2 + i : nullptr, kMasked ? mask + i : nullptr,
                                acc + i, va);
    scalar::accum_span<op, S, kMasked>(src1, src2, mask, acc, i, n, alpha);
}

}  // namespace

const AccumKernels accum_kernels_avx2 = ORUCV_ACCUM_TABLE();

}  // namespace a6
}  // namespace orucv
