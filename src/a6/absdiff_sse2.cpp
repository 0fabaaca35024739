// SSE2 row kernels: 16 bytes or 4 floats per step, scalar tails.
#include <emmintrin.h>

#include "a6/absdiff.h"

namespace orucv {
namespace a6 {
namespace {

inline __m128i load(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
inline void store(void* p, __m128i v) { _mm_storeu_si128(static_cast<__m128i*>(p), v); }

// |a - b| without widening: one of the two saturating differences is zero.
inline __m128i absdiff_u8(__m128i a, __m128i b) { return _mm_or_si128(_mm_subs_epu8(a, b), _mm_subs_epu8(b, a)); }

void diff_8u(const uint8_t* a, const uint8_t* b, uint8_t* dst, int n) {
    int i = 0;
    for (; i + 32 <= n; i += 32) {
        store(dst + i, absdiff_u8(load(a + i), load(b + i)));
        store(dst + i + 16, absdiff_u8(load(a + i + 16), load(b + i + 16)));
    }
    for (; i + 16 <= n; i += 16) store(dst + i, absdiff_u8(load(a + i), load(b + i)));
    scalar::diff_8u(a + i, b + i, dst + i, n - i);
}

void diff_const_8u(const uint8_t* a, uint8_t value, uint8_t* dst, int n) {
    const __m128i v = _mm_set1_epi8(static_cast<char>(value));
    int i = 0;
    for (; i + 32 <= n; i += 32) {
        store(dst + i, absdiff_u8(load(a + i), v));
        store(dst + i + 16, absdiff_u8(load(a + i + 16), v));
    }
    for (; i + 16 <= n; i += 16) store(dst + i, absdiff_u8(load(a + i), v));
    scalar::diff_const_8u(a + i, value, dst + i, n - i);
}

inline __m128 clear_sign(__m128 x) { return _mm_and_ps(x, _mm_castsi128_ps(_mm_set1_epi32(0x7FFFFFFF))); }

void diff_32f(const float* a, const float* b, float* dst, int n) {
    int i = 0;
    for (; i + 8 <= n; i += 8) {
        _mm_storeu_ps(dst + i, clear_sign(_mm_sub_ps(_mm_loadu_ps(a + i), _mm_loadu_ps(b + i))));
        _mm_storeu_ps(dst + i + 4, clear_sign(_mm_sub_ps(_mm_loadu_ps(a + i + 4), _mm_loadu_ps(b + i + 4))));
    }
    scalar::diff_32f(a + i, b + i, dst + i, n - i);
}

void diff_const_32f(const float* a, float value, float* dst, int n) {
    const __m128 v = _mm_set1_ps(value);
    int i = 0;
    for (; i + 8 <= n; i += 8) {
        _mm_storeu_ps(dst + i, clear_sign(_mm_sub_ps(_mm_loadu_ps(a + i), v)));
        _mm_storeu_ps(dst + i + 4, clear_sign(_mm_sub_ps(_mm_loadu_ps(a + i + 4), v)));
    }
    scalar::diff_const_32f(a + i, value, dst + i, n - i);
}

// Four history values: moving pixels take the time stamp, the others are
// cleared where their key is below the threshold's key.
inline __m128i update4(__m128i moving, __m128i mhi, __m128i key, __m128i thr, __m128i stamp) {
    const __m128i expired = _mm_cmplt_epi32(key, thr);
    const __m128i kept = _mm_andnot_si128(expired, mhi);
    return _mm_or_si128(_mm_and_si128(moving, stamp), _mm_andnot_si128(moving, kept));
}

inline __m128i ordered(__m128i bits) {
    return _mm_xor_si128(bits, _mm_and_si128(_mm_srai_epi32(bits, 31), _mm_set1_epi32(0x7FFFFFFF)));
}

template <bool kMapped>
void motion(const uint8_t* silhouette, float* mhi, int n, float timestamp, float threshold) {
    const __m128i stamp = _mm_castps_si128(_mm_set1_ps(timestamp));
    __m128i thr = _mm_castps_si128(_mm_set1_ps(threshold));
    if (kMapped) thr = ordered(thr);
    const __m128i zero = _mm_setzero_si128();
    int i = 0;
    for (; i + 8 <= n; i += 8) {
        const __m128i s8 = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(silhouette + i));
        const __m128i still16 = _mm_cmpeq_epi16(_mm_unpacklo_epi8(s8, zero), zero);
        const __m128i moving_lo = _mm_xor_si128(_mm_unpacklo_epi16(still16, still16), _mm_set1_epi32(-1));
        const __m128i moving_hi = _mm_xor_si128(_mm_unpackhi_epi16(still16, still16), _mm_set1_epi32(-1));
        const __m128i m0 = load(mhi + i), m1 = load(mhi + i + 4);
        store(mhi + i, update4(moving_lo, m0, kMapped ? ordered(m0) : m0, thr, stamp));
        store(mhi + i + 4, update4(moving_hi, m1, kMapped ? ordered(m1) : m1, thr, stamp));
    }
    if (kMapped) scalar::motion_mapped(silhouette + i, mhi + i, n - i, timestamp, threshold);
    else scalar::motion_direct(silhouette + i, mhi + i, n - i, timestamp, threshold);
}

}  // namespace

const AbsDiffKernels absdiff_kernels_sse2 = {diff_8u, diff_const_8u, diff_32f, diff_const_32f, motion<false>,
                                             motion<true>};

}  // namespace a6
}  // namespace orucv
