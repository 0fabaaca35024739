// AVX2 rows of the fixed 3x3 filters: 16 integer pixels per register of
// 16-bit lanes (32 per loop step), 8 floats per register.
#include <immintrin.h>

#include "a6/sobel3x3_simd.h"

namespace orucv {
namespace a6 {
namespace {

struct Ops {
    using V = __m256i;
    using Count = __m128i;

    static V load(const uint8_t* p) {
        return _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
    }
    static V load(const int8_t* p) {
        return _mm256_cvtepi8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
    }
    static V add(V a, V b) { return _mm256_add_epi16(a, b); }
    static V sub(V a, V b) { return _mm256_sub_epi16(a, b); }
    static V mul(V a, int w) { return _mm256_mullo_epi16(a, _mm256_set1_epi16(static_cast<short>(w))); }
    static Count count(int n) { return _mm_cvtsi32_si128(n); }
    static V shift(V a, Count n) { return _mm256_sra_epi16(a, n); }
    static void store(int16_t* p, V v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }
};

struct FOps {
    using F = __m256;
    static F load(const float* p) { return _mm256_loadu_ps(p); }
    static F set(float v) { return _mm256_set1_ps(v); }
    static F add(F a, F b) { return _mm256_add_ps(a, b); }
    static F sub(F a, F b) { return _mm256_sub_ps(a, b); }
    static F mul(F a, F b) { return _mm256_mul_ps(a, b); }
    // NaN lanes become the quiet NaN 0x7FC00000, as on every path.
    static void store(float* p, F v) {
        const __m256 quiet = _mm256_castsi256_ps(_mm256_set1_epi32(0x7FC00000));
        _mm256_storeu_ps(p, _mm256_blendv_ps(v, quiet, _mm256_cmp_ps(v, v, _CMP_UNORD_Q)));
    }
};

}  // namespace

const Sobel3x3Kernels sobel3x3_kernels_avx2 = make_kernels<Ops, FOps>();

}  // namespace a6
}  // namespace orucv
