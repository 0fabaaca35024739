// AVX2 row kernels of the distance transform: 8 distances per step, scalar
// border columns and tails.
#include <immintrin.h>

#include "a6/distransform.h"
#include "a6/distransform_simd.h"

namespace orucv {
namespace a6 {
namespace {

inline __m256i load(const void* p) { return _mm256_loadu_si256(static_cast<const __m256i*>(p)); }
inline void store(void* p, __m256i v) { _mm256_storeu_si256(static_cast<__m256i*>(p), v); }
inline __m256i min32(__m256i x, __m256i y) { return _mm256_min_epi32(x, y); }
inline __m256i add(__m256i x, __m256i y) { return _mm256_add_epi32(x, y); }

struct Ops {
    using V = __m256i;
    static constexpr int kLanes = 8;
    static V load(const void* p) { return a6::load(p); }
    static void store(void* p, V v) { a6::store(p, v); }
    static V set1(int32_t v) { return _mm256_set1_epi32(v); }
    static V min32(V x, V y) { return a6::min32(x, y); }
    static V add(V x, V y) { return a6::add(x, y); }
};

void init_row(const uint8_t* src, dist_t* d, int n) {
    const __m256i zero = _mm256_setzero_si256(), far = _mm256_set1_epi32(kFarDistance);
    int i = 0;
    for (; i + 16 <= n; i += 16) {
        const __m256i v0 = _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(src + i)));
        const __m256i v1 = _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(src + i + 8)));
        store(d + i, _mm256_andnot_si256(_mm256_cmpeq_epi32(v0, zero), far));
        store(d + i + 8, _mm256_andnot_si256(_mm256_cmpeq_epi32(v1, zero), far));
    }
    for (; i + 8 <= n; i += 8) {
        const __m256i v = _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(src + i)));
        store(d + i, _mm256_andnot_si256(_mm256_cmpeq_epi32(v, zero), far));
    }
    scalar::init_row(src + i, d + i, n - i);
}

void to_float_row(dist_t* d, int n) {
    const __m256 unit = _mm256_set1_ps(kDistanceUnit);
    float* f = reinterpret_cast<float*>(d);
    int i = 0;
    for (; i + 16 <= n; i += 16) {
        const __m256i v0 = load(d + i), v1 = load(d + i + 8);
        _mm256_storeu_ps(f + i, _mm256_mul_ps(_mm256_cvtepi32_ps(v0), unit));
        _mm256_storeu_ps(f + i + 8, _mm256_mul_ps(_mm256_cvtepi32_ps(v1), unit));
    }
    for (; i + 8 <= n; i += 8) _mm256_storeu_ps(f + i, _mm256_mul_ps(_mm256_cvtepi32_ps(load(d + i)), unit));
    scalar::to_float_row(d + i, n - i);
}

// The scans take eight pixels at once: within the block a prefix minimum in
// three doubling steps (lanes moved in from outside the block hold the far
// value, which never wins), then the pixel before the block plus 1..8 weights.
// This regroups the additions, which is exact only while no sum can wrap,
// so other weights take the pixel-by-pixel scan.
void scan_right(dist_t* d, int n, int32_t a) {
    if (static_cast<uint32_t>(a) > kScanRegroupMax) return scalar::scan_right(d, n, a);
    const __m256i far = _mm256_set1_epi32(kFarDistance);
    const __m256i a1 = _mm256_set1_epi32(a), a2 = _mm256_set1_epi32(2 * a), a4 = _mm256_set1_epi32(4 * a);
    const __m256i ramp = _mm256_setr_epi32(a, 2 * a, 3 * a, 4 * a, 5 * a, 6 * a, 7 * a, 8 * a);
    const __m256i up1 = _mm256_setr_epi32(0, 0, 1, 2, 3, 4, 5, 6), up2 = _mm256_setr_epi32(0, 0, 0, 1, 2, 3, 4, 5);
    const __m256i last = _mm256_set1_epi32(7);
    __m256i carry = _mm256_set1_epi32(d[0]);
    int x = 1;
    for (; x + 8 <= n; x += 8) {
        __m256i s = load(d + x);
        s = min32(s, add(_mm256_blend_epi32(_mm256_permutevar8x32_epi32(s, up1), far, 0x01), a1));
        s = min32(s, add(_mm256_blend_epi32(_mm256_permutevar8x32_epi32(s, up2), far, 0x03), a2));
        s = min32(s, add(_mm256_permute2x128_si256(s, far, 0x02), a4));  // low half far, high half s.lo
        s = min32(s, add(carry, ramp));
        store(d + x, s);
        carry = _mm256_permutevar8x32_epi32(s, last);
    }
    scalar::scan_right_from(d, x, n, a);
}

void scan_left(dist_t* d, int n, int32_t a) {
    if (static_cast<uint32_t>(a) > kScanRegroupMax) return scalar::scan_left(d, n, a);
    const __m256i far = _mm256_set1_epi32(kFarDistance);
    const __m256i a1 = _mm256_set1_epi32(a), a2 = _mm256_set1_epi32(2 * a), a4 = _mm256_set1_epi32(4 * a);
    const __m256i ramp = _mm256_setr_epi32(8 * a, 7 * a, 6 * a, 5 * a, 4 * a, 3 * a, 2 * a, a);
    const __m256i down1 = _mm256_setr_epi32(1, 2, 3, 4, 5, 6, 7, 7), down2 = _mm256_setr_epi32(2, 3, 4, 5, 6, 7, 7, 7);
    __m256i carry = _mm256_set1_epi32(d[n - 1]);
    int x = n - 2;  // the highest column still to do; the block ends there
    for (; x >= 7; x -= 8) {
        __m256i s = load(d + x - 7);
        s = min32(s, add(_mm256_blend_epi32(_mm256_permutevar8x32_epi32(s, down1), far, 0x80), a1));
        s = min32(s, add(_mm256_blend_epi32(_mm256_permutevar8x32_epi32(s, down2), far, 0xC0), a2));
        s = min32(s, add(_mm256_permute2x128_si256(s, far, 0x31), a4));  // low half s.hi, high half far
        s = min32(s, add(carry, ramp));
        store(d + x - 7, s);
        carry = _mm256_broadcastd_epi32(_mm256_castsi256_si128(s));
    }
    scalar::scan_left_from(d, x, a);
}

}  // namespace

const DistanceKernels distance_kernels_avx2 = {init_row,   to_float_row, near3_row_simd<Ops>, near5_row_simd<Ops>,
                                               scan_right, scan_left};

}  // namespace a6
}  // namespace orucv
