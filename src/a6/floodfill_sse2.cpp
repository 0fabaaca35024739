// SSE2 run primitives: 32 bytes (two registers) or 16 floats (four) per
// block.
#include <emmintrin.h>

#include "a6/floodfill.h"

namespace orucv {
namespace a6 {
namespace {

inline __m128i load(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
inline void store(void* p, __m128i v) { _mm_storeu_si128(static_cast<__m128i*>(p), v); }
inline uint32_t bytes_mask(__m128i v) { return static_cast<uint32_t>(_mm_movemask_epi8(v)); }

struct Bytes {
    static constexpr int N = 32;

    struct FixedC {
        __m128i value, fill;
    };
    static FixedC fixed_const(const Qual8u& q) {
        return {_mm_set1_epi8(static_cast<char>(q.value)), _mm_set1_epi8(static_cast<char>(q.fill))};
    }
    static uint32_t match(const uint8_t* p, const FixedC& c) {
        return bytes_mask(_mm_cmpeq_epi8(load(p), c.value)) | bytes_mask(_mm_cmpeq_epi8(load(p + 16), c.value)) << 16;
    }
    static void store(uint8_t* p, const FixedC& c) {
        a6::store(p, c.fill);
        a6::store(p + 16, c.fill);
    }

    // c - lo <= n <= c + hi as (c -sat n) <= lo and (n -sat c) <= hi.
    struct RangeC {
        __m128i lo, hi;
    };
    static RangeC range_const(const Range8u& r) {
        return {_mm_set1_epi8(static_cast<char>(r.lo8)), _mm_set1_epi8(static_cast<char>(r.hi8))};
    }
    static uint32_t in_range16(const uint8_t* n, const uint8_t* c, const RangeC& g) {
        const __m128i a = load(n), b = load(c);
        const __m128i over =
            _mm_or_si128(_mm_subs_epu8(_mm_subs_epu8(b, a), g.lo), _mm_subs_epu8(_mm_subs_epu8(a, b), g.hi));
        return bytes_mask(_mm_cmpeq_epi8(over, _mm_setzero_si128()));
    }
    static uint32_t in_range(const uint8_t* n, const uint8_t* c, const RangeC& g) {
        return in_range16(n, c, g) | in_range16(n + 16, c + 16, g) << 16;
    }

    static uint32_t free(const uint8_t* m) {
        const __m128i z = _mm_setzero_si128();
        return bytes_mask(_mm_cmpeq_epi8(load(m), z)) | bytes_mask(_mm_cmpeq_epi8(load(m + 16), z)) << 16;
    }
    static void mark(uint8_t* m) {
        const __m128i one = _mm_set1_epi8(floodfill::kVisited);
        a6::store(m, one);
        a6::store(m + 16, one);
    }

    static __m128i value_const(uint8_t v) { return _mm_set1_epi8(static_cast<char>(v)); }
    static void store_value(uint8_t* p, __m128i v) {
        a6::store(p, v);
        a6::store(p + 16, v);
    }
};

struct Floats {
    static constexpr int N = 16;

    // A NaN seed matches the unordered lanes; any other seed the equal ones.
    struct FixedC {
        __m128 value, fill, nan;
    };
    static FixedC fixed_const(const Qual32f& q) {
        return {_mm_set1_ps(q.value), _mm_set1_ps(q.fill), _mm_castsi128_ps(_mm_set1_epi32(q.nan ? -1 : 0))};
    }
    static uint32_t match4(const float* p, const FixedC& c) {
        const __m128 v = _mm_loadu_ps(p);
        const __m128 nan = _mm_and_ps(_mm_cmpunord_ps(v, v), c.nan);
        return static_cast<uint32_t>(_mm_movemask_ps(_mm_or_ps(_mm_cmpeq_ps(v, c.value), nan)));
    }
    static uint32_t match(const float* p, const FixedC& c) {
        return match4(p, c) | match4(p + 4, c) << 4 | match4(p + 8, c) << 8 | match4(p + 12, c) << 12;
    }
    static void store(float* p, const FixedC& c) {
        for (int i = 0; i < 16; i += 4) _mm_storeu_ps(p + i, c.fill);
    }

    struct RangeC {
        __m128 h, w, abs;
    };
    static RangeC range_const(const Range32f& r) {
        return {_mm_set1_ps(r.h), _mm_set1_ps(r.w), _mm_castsi128_ps(_mm_set1_epi32(0x7FFFFFFF))};
    }
    // Fails where |n + h - c| > w, or where exactly one of n, c is a NaN.
    static uint32_t in_range4(const float* n, const float* c, const RangeC& g) {
        const __m128 a = _mm_loadu_ps(n), b = _mm_loadu_ps(c);
        const __m128 d = _mm_and_ps(_mm_sub_ps(_mm_add_ps(a, g.h), b), g.abs);
        const __m128 odd_nan = _mm_xor_ps(_mm_cmpunord_ps(a, a), _mm_cmpunord_ps(b, b));
        const __m128 fail = _mm_or_ps(_mm_cmpgt_ps(d, g.w), odd_nan);
        return ~static_cast<uint32_t>(_mm_movemask_ps(fail)) & 0xFu;
    }
    static uint32_t in_range(const float* n, const float* c, const RangeC& g) {
        return in_range4(n, c, g) | in_range4(n + 4, c + 4, g) << 4 | in_range4(n + 8, c + 8, g) << 8 |
               in_range4(n + 12, c + 12, g) << 12;
    }

    static uint32_t free(const uint8_t* m) {
        return static_cast<uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(load(m), _mm_setzero_si128())));
    }
    static void mark(uint8_t* m) { a6::store(m, _mm_set1_epi8(floodfill::kVisited)); }

    static __m128 value_const(float v) { return _mm_set1_ps(v); }
    static void store_value(float* p, __m128 v) {
        for (int i = 0; i < 16; i += 4) _mm_storeu_ps(p + i, v);
    }
};

}  // namespace

const FloodFillKernels floodfill_kernels_sse2 = make_kernels<BlockOps<Bytes, Floats>>();

}  // namespace a6
}  // namespace orucv
