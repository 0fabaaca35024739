// SSE2 row kernels of the Canny detector: 8 cells per step, scalar tails.
#include <emmintrin.h>

#include "a6/canny.h"

namespace orucv {
namespace a6 {
namespace {

inline __m128i load(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
inline void store(void* p, __m128i v) { _mm_storeu_si128(static_cast<__m128i*>(p), v); }

// |v| saturated: -32768 gives 32767.
inline __m128i abs16(__m128i v) { return _mm_max_epi16(v, _mm_subs_epi16(_mm_setzero_si128(), v)); }

inline __m128i select(__m128i mask, __m128i a, __m128i b) {
    return _mm_or_si128(_mm_and_si128(mask, a), _mm_andnot_si128(mask, b));
}

void magnitude(const int16_t* dx, const int16_t* dy, int16_t* mag, int n) {
    int i = 0;
    for (; i + 16 <= n; i += 16) {
        store(mag + i, _mm_adds_epi16(abs16(load(dx + i)), abs16(load(dy + i))));
        store(mag + i + 8, _mm_adds_epi16(abs16(load(dx + i + 8)), abs16(load(dy + i + 8))));
    }
    for (; i + 8 <= n; i += 8) store(mag + i, _mm_adds_epi16(abs16(load(dx + i)), abs16(load(dy + i))));
    scalar::magnitude(dx + i, dy + i, mag + i, n - i);
}

// Signed 16-bit result of c * a - 4096 * b > 0 per cell, from 32-bit
// products of interleaved (a, b) pairs.
inline __m128i exceeds(__m128i ab_lo, __m128i ab_hi, __m128i coefficients) {
    const __m128i t = _mm_packs_epi32(_mm_madd_epi16(ab_lo, coefficients), _mm_madd_epi16(ab_hi, coefficients));
    return _mm_cmpgt_epi16(t, _mm_setzero_si128());
}

void suppress(const CannySuppressRow& r) {
    const __m128i low = _mm_set1_epi16(static_cast<int16_t>(r.low));
    const __m128i high = _mm_set1_epi16(static_cast<int16_t>(r.high));
    const __m128i tan22 = _mm_set1_epi32(static_cast<int>((static_cast<uint32_t>(-kCannyOne) << 16) | kCannyTan22));
    const __m128i tan67 = _mm_set1_epi32(static_cast<int>((static_cast<uint32_t>(-kCannyOne) << 16) | kCannyTan67));
    const __m128i weak = _mm_set1_epi16(kCannyWeak);
    const __m128i edge = _mm_set1_epi16(kCannyEdge);
    const int16_t *up = r.up, *mid = r.mid, *down = r.down;
    uint8_t *map = r.map, *out = r.out;
    const int width = r.width;
    int x = 0;
    for (; x + 8 <= width; x += 8) {
        const __m128i m = load(mid + x);
        const __m128i candidate = _mm_cmpgt_epi16(m, low);
        if (_mm_movemask_epi8(candidate) == 0) {
            _mm_storel_epi64(reinterpret_cast<__m128i*>(map + x), _mm_setzero_si128());
            _mm_storel_epi64(reinterpret_cast<__m128i*>(out + x), _mm_setzero_si128());
            continue;
        }
        const __m128i dx = load(r.dx + x), dy = load(r.dy + x);
        const __m128i a = abs16(dx), b = abs16(dy);
        const __m128i ab_lo = _mm_unpacklo_epi16(a, b), ab_hi = _mm_unpackhi_epi16(a, b);
        const __m128i horizontal = exceeds(ab_lo, ab_hi, tan22);
        const __m128i diagonal = exceeds(ab_lo, ab_hi, tan67);
        const __m128i opposite_signs = _mm_srai_epi16(_mm_xor_si128(dx, dy), 15);

        const __m128i n_h = _mm_max_epi16(load(mid + x - 1), load(mid + x + 1));
        const __m128i n_v = _mm_max_epi16(load(up + x), load(down + x));
        const __m128i n_main = _mm_max_epi16(load(up + x - 1), load(down + x + 1));
        const __m128i n_anti = _mm_max_epi16(load(up + x + 1), load(down + x - 1));
        const __m128i n_d = select(opposite_signs, n_anti, n_main);
        const __m128i n = select(horizontal, n_h, select(diagonal, n_d, n_v));

        const __m128i kept = _mm_and_si128(candidate, _mm_cmpgt_epi16(m, n));
        const __m128i strong = _mm_and_si128(kept, _mm_cmpgt_epi16(m, high));
        const __m128i code = select(strong, edge, _mm_and_si128(kept, weak));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(map + x), _mm_packus_epi16(code, code));
        const __m128i strong8 = _mm_packs_epi16(strong, strong);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(out + x), strong8);

        unsigned bits = static_cast<unsigned>(_mm_movemask_epi8(strong8)) & 0xFFu;
        while (bits) {
            canny_push(r.stack, r.first_cell + static_cast<uint32_t>(x + __builtin_ctz(bits)));
            bits &= bits - 1;
        }
    }
    scalar::suppress_from(r, x);
}

}  // namespace

const CannyKernels canny_kernels_sse2 = {magnitude, suppress};

}  // namespace a6
}  // namespace orucv
