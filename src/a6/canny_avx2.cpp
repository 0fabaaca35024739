// AVX2 row kernels of the Canny detector: 16 cells per step, scalar tails.
#include <immintrin.h>

#include "a6/canny.h"

namespace orucv {
namespace a6 {
namespace {

inline __m256i load(const void* p) { return _mm256_loadu_si256(static_cast<const __m256i*>(p)); }
inline void store(void* p, __m256i v) { _mm256_storeu_si256(static_cast<__m256i*>(p), v); }

// |v| saturated: -32768 gives 32767.
inline __m256i abs16(__m256i v) { return _mm256_max_epi16(v, _mm256_subs_epi16(_mm256_setzero_si256(), v)); }

inline __m256i magnitude16(const int16_t* dx, const int16_t* dy) {
    return _mm256_adds_epi16(abs16(load(dx)), abs16(load(dy)));
}

void magnitude(const int16_t* dx, const int16_t* dy, int16_t* mag, int n) {
    int i = 0;
    for (; i + 32 <= n; i += 32) {
        store(mag + i, magnitude16(dx + i, dy + i));
        store(mag + i + 16, magnitude16(dx + i + 16, dy + i + 16));
    }
    for (; i + 16 <= n; i += 16) store(mag + i, magnitude16(dx + i, dy + i));
    scalar::magnitude(dx + i, dy + i, mag + i, n - i);
}

// c * a - 4096 * b > 0 per cell, from 32-bit products of interleaved (a, b)
// pairs; unpack, madd and pack all work within 128-bit lanes, so the cells
// come back in their order.
inline __m256i exceeds(__m256i ab_lo, __m256i ab_hi, __m256i coefficients) {
    const __m256i t =
        _mm256_packs_epi32(_mm256_madd_epi16(ab_lo, coefficients), _mm256_madd_epi16(ab_hi, coefficients));
    return _mm256_cmpgt_epi16(t, _mm256_setzero_si256());
}

void suppress(const CannySuppressRow& r) {
    const __m256i low = _mm256_set1_epi16(static_cast<int16_t>(r.low));
    const __m256i high = _mm256_set1_epi16(static_cast<int16_t>(r.high));
    const __m256i tan22 =
        _mm256_set1_epi32(static_cast<int>((static_cast<uint32_t>(-kCannyOne) << 16) | kCannyTan22));
    const __m256i tan67 =
        _mm256_set1_epi32(static_cast<int>((static_cast<uint32_t>(-kCannyOne) << 16) | kCannyTan67));
    const __m256i weak = _mm256_set1_epi16(kCannyWeak);
    const __m256i edge = _mm256_set1_epi16(kCannyEdge);
    const int16_t *up = r.up, *mid = r.mid, *down = r.down;
    uint8_t *map = r.map, *out = r.out;
    const int width = r.width;
    int x = 0;
    for (; x + 16 <= width; x += 16) {
        const __m256i m = load(mid + x);
        const __m256i candidate = _mm256_cmpgt_epi16(m, low);
        if (_mm256_testz_si256(candidate, candidate)) {
            _mm_storeu_si128(reinterpret_cast<__m128i*>(map + x), _mm_setzero_si128());
            _mm_storeu_si128(reinterpret_cast<__m128i*>(out + x), _mm_setzero_si128());
            continue;
        }
        const __m256i dx = load(r.dx + x), dy = load(r.dy + x);
        const __m256i a = abs16(dx), b = abs16(dy);
        const __m256i ab_lo = _mm256_unpacklo_epi16(a, b), ab_hi = _mm256_unpackhi_epi16(a, b);
        const __m256i horizontal = exceeds(ab_lo, ab_hi, tan22);
        const __m256i diagonal = exceeds(ab_lo, ab_hi, tan67);
        const __m256i opposite_signs = _mm256_srai_epi16(_mm256_xor_si256(dx, dy), 15);

        const __m256i n_h = _mm256_max_epi16(load(mid + x - 1), load(mid + x + 1));
        const __m256i n_v = _mm256_max_epi16(load(up + x), load(down + x));
        const __m256i n_main = _mm256_max_epi16(load(up + x - 1), load(down + x + 1));
        const __m256i n_anti = _mm256_max_epi16(load(up + x + 1), load(down + x - 1));
        const __m256i n_d = _mm256_blendv_epi8(n_main, n_anti, opposite_signs);
        const __m256i n = _mm256_blendv_epi8(_mm256_blendv_epi8(n_v, n_d, diagonal), n_h, horizontal);

        const __m256i kept = _mm256_and_si256(candidate, _mm256_cmpgt_epi16(m, n));
        const __m256i strong = _mm256_and_si256(kept, _mm256_cmpgt_epi16(m, high));
        const __m256i code = _mm256_blendv_epi8(_mm256_and_si256(kept, weak), edge, strong);
        const __m128i bytes = _mm_packus_epi16(_mm256_castsi256_si128(code), _mm256_extracti128_si256(code, 1));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(map + x), bytes);
        const __m128i strong8 = _mm_packs_epi16(_mm256_castsi256_si128(strong), _mm256_extracti128_si256(strong, 1));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + x), strong8);

        unsigned bits = static_cast<unsigned>(_mm_movemask_epi8(strong8));
        while (bits) {
            canny_push(r.stack, r.first_cell + static_cast<uint32_t>(x + __builtin_ctz(bits)));
            bits &= bits - 1;
        }
    }
    scalar::suppress_from(r, x);
}

}  // namespace

const CannyKernels canny_kernels_avx2 = {magnitude, suppress};

}  // namespace a6
}  // namespace orucv
