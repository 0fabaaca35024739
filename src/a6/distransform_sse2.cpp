// SSE2 row kernels of the distance transform: 4 distances per step, scalar
// border columns and tails.
#include <emmintrin.h>

#include "a6/distransform.h"
#include "a6/distransform_simd.h"

namespace orucv {
namespace a6 {
namespace {

inline __m128i load(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
inline void store(void* p, __m128i v) { _mm_storeu_si128(static_cast<__m128i*>(p), v); }

// Signed 32-bit minimum; SSE2 has no pminsd.
inline __m128i min32(__m128i x, __m128i y) {
    const __m128i gt = _mm_cmpgt_epi32(x, y);
    return _mm_or_si128(_mm_and_si128(gt, y), _mm_andnot_si128(gt, x));
}
inline __m128i add(__m128i x, __m128i y) { return _mm_add_epi32(x, y); }

struct Ops {
    using V = __m128i;
    static constexpr int kLanes = 4;
    static V load(const void* p) { return a6::load(p); }
    static void store(void* p, V v) { a6::store(p, v); }
    static V set1(int32_t v) { return _mm_set1_epi32(v); }
    static V min32(V x, V y) { return a6::min32(x, y); }
    static V add(V x, V y) { return a6::add(x, y); }
};

void init_row(const uint8_t* src, dist_t* d, int n) {
    const __m128i zero = _mm_setzero_si128(), far = _mm_set1_epi32(kFarDistance);
    int i = 0;
    for (; i + 16 <= n; i += 16) {
        // 0xFF at the features, widened to 32 bits, clears the far value.
        const __m128i z = _mm_cmpeq_epi8(load(src + i), zero);
        const __m128i lo = _mm_unpacklo_epi8(z, z), hi = _mm_unpackhi_epi8(z, z);
        store(d + i, _mm_andnot_si128(_mm_unpacklo_epi16(lo, lo), far));
        store(d + i + 4, _mm_andnot_si128(_mm_unpackhi_epi16(lo, lo), far));
        store(d + i + 8, _mm_andnot_si128(_mm_unpacklo_epi16(hi, hi), far));
        store(d + i + 12, _mm_andnot_si128(_mm_unpackhi_epi16(hi, hi), far));
    }
    for (; i + 8 <= n; i += 8) {
        const __m128i z = _mm_cmpeq_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(src + i)), zero);
        const __m128i lo = _mm_unpacklo_epi8(z, z);
        store(d + i, _mm_andnot_si128(_mm_unpacklo_epi16(lo, lo), far));
        store(d + i + 4, _mm_andnot_si128(_mm_unpackhi_epi16(lo, lo), far));
    }
    scalar::init_row(src + i, d + i, n - i);
}

void to_float_row(dist_t* d, int n) {
    const __m128 unit = _mm_set1_ps(kDistanceUnit);
    float* f = reinterpret_cast<float*>(d);
    int i = 0;
    for (; i + 8 <= n; i += 8) {
        const __m128i v0 = load(d + i), v1 = load(d + i + 4);
        _mm_storeu_ps(f + i, _mm_mul_ps(_mm_cvtepi32_ps(v0), unit));
        _mm_storeu_ps(f + i + 4, _mm_mul_ps(_mm_cvtepi32_ps(v1), unit));
    }
    for (; i + 4 <= n; i += 4) _mm_storeu_ps(f + i, _mm_mul_ps(_mm_cvtepi32_ps(load(d + i)), unit));
    scalar::to_float_row(d + i, n - i);
}

// The scans take four pixels at once: within the block a prefix minimum in
// two doubling steps (lanes shifted in from outside the block hold the far
// value, which never wins), then the pixel before the block plus 1..4
// weights. This regroups the additions, which is exact only while no sum
// can wrap, so other weights take the pixel-by-pixel scan.
void scan_right(dist_t* d, int n, int32_t a) {
    if (static_cast<uint32_t>(a) > kScanRegroupMax) return scalar::scan_right(d, n, a);
    const __m128i a1 = _mm_set1_epi32(a), a2 = _mm_set1_epi32(2 * a);
    const __m128i ramp = _mm_setr_epi32(a, 2 * a, 3 * a, 4 * a);
    const __m128i far0 = _mm_setr_epi32(kFarDistance, 0, 0, 0), far01 = _mm_setr_epi32(kFarDistance, kFarDistance, 0, 0);
    __m128i carry = _mm_set1_epi32(d[0]);
    int x = 1;
    for (; x + 4 <= n; x += 4) {
        __m128i s = load(d + x);
        s = min32(s, add(_mm_or_si128(_mm_slli_si128(s, 4), far0), a1));
        s = min32(s, add(_mm_or_si128(_mm_slli_si128(s, 8), far01), a2));
        s = min32(s, add(carry, ramp));
        store(d + x, s);
        carry = _mm_shuffle_epi32(s, 0xFF);
    }
    scalar::scan_right_from(d, x, n, a);
}

void scan_left(dist_t* d, int n, int32_t a) {
    if (static_cast<uint32_t>(a) > kScanRegroupMax) return scalar::scan_left(d, n, a);
    const __m128i a1 = _mm_set1_epi32(a), a2 = _mm_set1_epi32(2 * a);
    const __m128i ramp = _mm_setr_epi32(4 * a, 3 * a, 2 * a, a);
    const __m128i far3 = _mm_setr_epi32(0, 0, 0, kFarDistance), far23 = _mm_setr_epi32(0, 0, kFarDistance, kFarDistance);
    __m128i carry = _mm_set1_epi32(d[n - 1]);
    int x = n - 2;  // the highest column still to do; the block ends there
    for (; x >= 3; x -= 4) {
        __m128i s = load(d + x - 3);
        s = min32(s, add(_mm_or_si128(_mm_srli_si128(s, 4), far3), a1));
        s = min32(s, add(_mm_or_si128(_mm_srli_si128(s, 8), far23), a2));
        s = min32(s, add(carry, ramp));
        store(d + x - 3, s);
        carry = _mm_shuffle_epi32(s, 0x00);
    }
    scalar::scan_left_from(d, x, a);
}

}  // namespace

const DistanceKernels distance_kernels_sse2 = {init_row,   to_float_row, near3_row_simd<Ops>, near5_row_simd<Ops>,
                                               scan_right, scan_left};

}  // namespace a6
}  // namespace orucv
