// AVX2 run primitives: 32 bytes or 16 floats per block.
#include <immintrin.h>

#include "a6/floodfill.h"

namespace orucv {
namespace a6 {
namespace {

inline __m256i load(const void* p) { return _mm256_loadu_si256(static_cast<const __m256i*>(p)); }
inline void store(void* p, __m256i v) { _mm256_storeu_si256(static_cast<__m256i*>(p), v); }
inline uint32_t bytes_mask(__m256i v) { return static_cast<uint32_t>(_mm256_movemask_epi8(v)); }

struct Bytes {
    static constexpr int N = 32;

    struct FixedC {
        __m256i value, fill;
    };
    static FixedC fixed_const(const Qual8u& q) {
        return {_mm256_set1_epi8(static_cast<char>(q.value)), _mm256_set1_epi8(static_cast<char>(q.fill))};
    }
    static uint32_t match(const uint8_t* p, const FixedC& c) { return bytes_mask(_mm256_cmpeq_epi8(load(p), c.value)); }
    static void store(uint8_t* p, const FixedC& c) { a6::store(p, c.fill); }

    // c - lo <= n <= c + hi as (c -sat n) <= lo and (n -sat c) <= hi.
    struct RangeC {
        __m256i lo, hi;
    };
    static RangeC range_const(const Range8u& r) {
        return {_mm256_set1_epi8(static_cast<char>(r.lo8)), _mm256_set1_epi8(static_cast<char>(r.hi8))};
    }
    static uint32_t in_range(const uint8_t* n, const uint8_t* c, const RangeC& g) {
        const __m256i a = load(n), b = load(c);
        const __m256i over = _mm256_or_si256(_mm256_subs_epu8(_mm256_subs_epu8(b, a), g.lo),
                                             _mm256_subs_epu8(_mm256_subs_epu8(a, b), g.hi));
        return bytes_mask(_mm256_cmpeq_epi8(over, _mm256_setzero_si256()));
    }

    static uint32_t free(const uint8_t* m) { return bytes_mask(_mm256_cmpeq_epi8(load(m), _mm256_setzero_si256())); }
    static void mark(uint8_t* m) { a6::store(m, _mm256_set1_epi8(floodfill::kVisited)); }

    static __m256i value_const(uint8_t v) { return _mm256_set1_epi8(static_cast<char>(v)); }
    static void store_value(uint8_t* p, __m256i v) { a6::store(p, v); }
};

struct Floats {
    static constexpr int N = 16;

    // A NaN seed matches the unordered lanes; any other seed the equal ones.
    struct FixedC {
        __m256 value, fill, nan;
    };
    static FixedC fixed_const(const Qual32f& q) {
        return {_mm256_set1_ps(q.value), _mm256_set1_ps(q.fill),
                _mm256_castsi256_ps(_mm256_set1_epi32(q.nan ? -1 : 0))};
    }
    static uint32_t match8(const float* p, const FixedC& c) {
        const __m256 v = _mm256_loadu_ps(p);
        const __m256 eq = _mm256_cmp_ps(v, c.value, _CMP_EQ_OQ);
        const __m256 nan = _mm256_and_ps(_mm256_cmp_ps(v, v, _CMP_UNORD_Q), c.nan);
        return static_cast<uint32_t>(_mm256_movemask_ps(_mm256_or_ps(eq, nan)));
    }
    static uint32_t match(const float* p, const FixedC& c) { return match8(p, c) | match8(p + 8, c) << 8; }
    static void store(float* p, const FixedC& c) {
        _mm256_storeu_ps(p, c.fill);
        _mm256_storeu_ps(p + 8, c.fill);
    }

    struct RangeC {
        __m256 h, w, abs;
    };
    static RangeC range_const(const Range32f& r) {
        return {_mm256_set1_ps(r.h), _mm256_set1_ps(r.w), _mm256_castsi256_ps(_mm256_set1_epi32(0x7FFFFFFF))};
    }
    // Fails where |n + h - c| > w, or where exactly one of n, c is a NaN.
    static uint32_t in_range8(const float* n, const float* c, const RangeC& g) {
        const __m256 a = _mm256_loadu_ps(n), b = _mm256_loadu_ps(c);
        const __m256 d = _mm256_and_ps(_mm256_sub_ps(_mm256_add_ps(a, g.h), b), g.abs);
        const __m256 odd_nan = _mm256_xor_ps(_mm256_cmp_ps(a, a, _CMP_UNORD_Q), _mm256_cmp_ps(b, b, _CMP_UNORD_Q));
        const __m256 fail = _mm256_or_ps(_mm256_cmp_ps(d, g.w, _CMP_GT_OQ), odd_nan);
        return ~static_cast<uint32_t>(_mm256_movemask_ps(fail)) & 0xFFu;
    }
    static uint32_t in_range(const float* n, const float* c, const RangeC& g) {
        return in_range8(n, c, g) | in_range8(n + 8, c + 8, g) << 8;
    }

    static uint32_t free(const uint8_t* m) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(m));
        return static_cast<uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(v, _mm_setzero_si128())));
    }
    static void mark(uint8_t* m) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(m), _mm_set1_epi8(floodfill::kVisited));
    }

    static __m256 value_const(float v) { return _mm256_set1_ps(v); }
    static void store_value(float* p, __m256 v) {
        _mm256_storeu_ps(p, v);
        _mm256_storeu_ps(p + 8, v);
    }
};

}  // namespace

const FloodFillKernels floodfill_kernels_avx2 = make_kernels<BlockOps<Bytes, Floats>>();

}  // namespace a6
}  // namespace orucv
