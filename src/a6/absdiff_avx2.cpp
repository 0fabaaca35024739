// AVX2 row kernels: 64 bytes or 16 floats per step, scalar tails.
#include <immintrin.h>

#include "a6/absdiff.h"

namespace orucv {
namespace a6 {
namespace {

inline __m256i load(const void* p) { return _mm256_loadu_si256(static_cast<const __m256i*>(p)); }
inline void store(void* p, __m256i v) { _mm256_storeu_si256(static_cast<__m256i*>(p), v); }

inline __m256i absdiff_u8(__m256i a, __m256i b) {
    return _mm256_or_si256(_mm256_subs_epu8(a, b), _mm256_subs_epu8(b, a));
}

void diff_8u(const uint8_t* a, const uint8_t* b, uint8_t* dst, int n) {
    int i = 0;
    for (; i + 64 <= n; i += 64) {
        store(dst + i, absdiff_u8(load(a + i), load(b + i)));
        store(dst + i + 32, absdiff_u8(load(a + i + 32), load(b + i + 32)));
    }
    for (; i + 32 <= n; i += 32) store(dst + i, absdiff_u8(load(a + i), load(b + i)));
    scalar::diff_8u(a + i, b + i, dst + i, n - i);
}

void diff_const_8u(const uint8_t* a, uint8_t value, uint8_t* dst, int n) {
    const __m256i v = _mm256_set1_epi8(static_cast<char>(value));
    int i = 0;
    for (; i + 64 <= n; i += 64) {
        store(dst + i, absdiff_u8(load(a + i), v));
        store(dst + i + 32, absdiff_u8(load(a + i + 32), v));
    }
    for (; i + 32 <= n; i += 32) store(dst + i, absdiff_u8(load(a + i), v));
    scalar::diff_const_8u(a + i, value, dst + i, n - i);
}

inline __m256 clear_sign(__m256 x) { return _mm256_and_ps(x, _mm256_castsi256_ps(_mm256_set1_epi32(0x7FFFFFFF))); }

void diff_32f(const float* a, const float* b, float* dst, int n) {
    int i = 0;
    for (; i + 16 <= n; i += 16) {
        _mm256_storeu_ps(dst + i, clear_sign(_mm256_sub_ps(_mm256_loadu_ps(a + i), _mm256_loadu_ps(b + i))));
        _mm256_storeu_ps(dst + i + 8,
                         clear_sign(_mm256_sub_ps(_mm256_loadu_ps(a + i + 8), _mm256_loadu_ps(b + i + 8))));
    }
    for (; i + 8 <= n; i += 8)
        _mm256_storeu_ps(dst + i, clear_sign(_mm256_sub_ps(_mm256_loadu_ps(a + i), _mm256_loadu_ps(b + i))));
    scalar::diff_32f(a + i, b + i, dst + i, n - i);
}

void diff_const_32f(const float* a, float value, float* dst, int n) {
    const __m256 v = _mm256_set1_ps(value);
    int i = 0;
    for (; i + 16 <= n; i += 16) {
        _mm256_storeu_ps(dst + i, clear_sign(_mm256_sub_ps(_mm256_loadu_ps(a + i), v)));
        _mm256_storeu_ps(dst + i + 8, clear_sign(_mm256_sub_ps(_mm256_loadu_ps(a + i + 8), v)));
    }
    for (; i + 8 <= n; i += 8) _mm256_storeu_ps(dst + i, clear_sign(_mm256_sub_ps(_mm256_loadu_ps(a + i), v)));
    scalar::diff_const_32f(a + i, value, dst + i, n - i);
}

inline __m256i ordered(__m256i bits) {
    return _mm256_xor_si256(bits, _mm256_and_si256(_mm256_srai_epi32(bits, 31), _mm256_set1_epi32(0x7FFFFFFF)));
}

// Eight history values: moving pixels take the time stamp, the others are
// cleared where their key is below the threshold's key.
template <bool kMapped>
inline __m256i update8(const uint8_t* silhouette, __m256i mhi, __m256i thr, __m256i stamp) {
    const __m256i s = _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(silhouette)));
    const __m256i still = _mm256_cmpeq_epi32(s, _mm256_setzero_si256());
    const __m256i key = kMapped ? ordered(mhi) : mhi;
    const __m256i expired = _mm256_cmpgt_epi32(thr, key);
    const __m256i kept = _mm256_andnot_si256(expired, mhi);
    return _mm256_blendv_epi8(stamp, kept, still);
}

template <bool kMapped>
void motion(const uint8_t* silhouette, float* mhi, int n, float timestamp, float threshold) {
    const __m256i stamp = _mm256_castps_si256(_mm256_set1_ps(timestamp));
    __m256i thr = _mm256_castps_si256(_mm256_set1_ps(threshold));
    if (kMapped) thr = ordered(thr);
    int i = 0;
    for (; i + 16 <= n; i += 16) {
        const __m256i m0 = load(mhi + i), m1 = load(mhi + i + 8);
        store(mhi + i, update8<kMapped>(silhouette + i, m0, thr, stamp));
        store(mhi + i + 8, update8<kMapped>(silhouette + i + 8, m1, thr, stamp));
    }
    for (; i + 8 <= n; i += 8) store(mhi + i, update8<kMapped>(silhouette + i, load(mhi + i), thr, stamp));
    if (kMapped) scalar::motion_mapped(silhouette + i, mhi + i, n - i, timestamp, threshold);
    else scalar::motion_direct(silhouette + i, mhi + i, n - i, timestamp, threshold);
}

}  // namespace

const AbsDiffKernels absdiff_kernels_avx2 = {diff_8u, diff_const_8u, diff_32f, diff_const_32f, motion<false>,
                                             motion<true>};

}  // namespace a6
}  // namespace orucv
