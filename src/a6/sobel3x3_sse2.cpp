// SSE2 rows of the fixed 3x3 filters: 16 integer pixels per block as two
// registers of 16-bit lanes, 8 floats as two registers.
#include <emmintrin.h>

#include "a6/sobel3x3_simd.h"

namespace orucv {
namespace a6 {
namespace {

struct Ops {
    struct V {
        __m128i lo, hi;
    };
    using Count = __m128i;

    static V widen(__m128i bytes) {
        const __m128i zero = _mm_setzero_si128();
        return V{_mm_unpacklo_epi8(bytes, zero), _mm_unpackhi_epi8(bytes, zero)};
    }
    static V load(const uint8_t* p) { return widen(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))); }
    // Signed bytes biased by 128 into the unsigned range; the bias cancels.
    static V load(const int8_t* p) {
        return widen(_mm_xor_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)), _mm_set1_epi8(-128)));
    }
    static V add(V a, V b) { return V{_mm_add_epi16(a.lo, b.lo), _mm_add_epi16(a.hi, b.hi)}; }
    static V sub(V a, V b) { return V{_mm_sub_epi16(a.lo, b.lo), _mm_sub_epi16(a.hi, b.hi)}; }
    static V mul(V a, int w) {
        const __m128i k = _mm_set1_epi16(static_cast<short>(w));
        return V{_mm_mullo_epi16(a.lo, k), _mm_mullo_epi16(a.hi, k)};
    }
    static Count count(int n) { return _mm_cvtsi32_si128(n); }
    static V shift(V a, Count n) { return V{_mm_sra_epi16(a.lo, n), _mm_sra_epi16(a.hi, n)}; }
    static void store(int16_t* p, V v) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v.lo);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(p + 8), v.hi);
    }
};

struct FOps {
    struct F {
        __m128 lo, hi;
    };
    static F load(const float* p) { return F{_mm_loadu_ps(p), _mm_loadu_ps(p + 4)}; }
    static F set(float v) { return F{_mm_set1_ps(v), _mm_set1_ps(v)}; }
    static F add(F a, F b) { return F{_mm_add_ps(a.lo, b.lo), _mm_add_ps(a.hi, b.hi)}; }
    static F sub(F a, F b) { return F{_mm_sub_ps(a.lo, b.lo), _mm_sub_ps(a.hi, b.hi)}; }
    static F mul(F a, F b) { return F{_mm_mul_ps(a.lo, b.lo), _mm_mul_ps(a.hi, b.hi)}; }
    // NaN lanes become the quiet NaN 0x7FC00000, as on every path.
    static __m128 canonical(__m128 v) {
        const __m128 nan = _mm_cmpunord_ps(v, v);
        return _mm_or_ps(_mm_andnot_ps(nan, v), _mm_and_ps(nan, _mm_castsi128_ps(_mm_set1_epi32(0x7FC00000))));
    }
    static void store(float* p, F v) {
        _mm_storeu_ps(p, canonical(v.lo));
        _mm_storeu_ps(p + 4, canonical(v.hi));
    }
};

}  // namespace

const Sobel3x3Kernels sobel3x3_kernels_sse2 = make_kernels<Ops, FOps>();

}  // namespace a6
}  // namespace orucv
