// AVX2 kernels of template matching (no FMA: sums and scores round exactly
// as on the other paths).
//  - Bytes: 16 bytes widened to 16-bit per register, products summed in
//    pairs into 32-bit lanes (vpmaddwd), widened to 64 bits before a lane can
//    overflow. A column is done four blocks at a time.
//  - Floats: eight double lanes in two registers; columns of templates whose
//    width is a multiple of 8 are done row by row, four blocks at a time.
//  - Scores: four at a time in double.
#include <immintrin.h>

#include <type_traits>

#include "a6/matchtemplate.h"
#include "a6/matchtemplate_simd.h"

namespace orucv {
namespace a6 {
namespace {

inline __m128i load(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
inline __m128i load8(const void* p) { return _mm_loadl_epi64(static_cast<const __m128i*>(p)); }

// ---- Bytes ----

template <class T>
struct Widen;
template <>
struct Widen<uint8_t> {
    static __m256i of(__m128i v) { return _mm256_cvtepu8_epi16(v); }
};
template <>
struct Widen<int8_t> {
    static __m256i of(__m128i v) { return _mm256_cvtepi8_epi16(v); }
};

template <bool kSq>
inline __m256i madd(__m256i s, __m256i t) {
    if (kSq) {
        const __m256i d = _mm256_sub_epi16(s, t);
        return _mm256_madd_epi16(d, d);
    }
    return _mm256_madd_epi16(s, t);
}

// Adds sixteen bytes of a and b (widened) to the 32-bit lanes.
template <class T, bool kSq>
inline __m256i piece(__m256i acc, __m128i a, __m256i t) {
    return _mm256_add_epi32(acc, madd<kSq>(Widen<T>::of(a), t));
}

// Eight signed 32-bit lanes added to four 64-bit lanes.
inline __m256i widen_add(__m256i acc64, __m256i acc32) {
    acc64 = _mm256_add_epi64(acc64, _mm256_cvtepi32_epi64(_mm256_castsi256_si128(acc32)));
    return _mm256_add_epi64(acc64, _mm256_cvtepi32_epi64(_mm256_extracti128_si256(acc32, 1)));
}

inline int64_t total64(__m256i v) {
    __m128i x = _mm_add_epi64(_mm256_castsi256_si128(v), _mm256_extracti128_si256(v, 1));
    x = _mm_add_epi64(x, _mm_unpackhi_epi64(x, x));
    int64_t r;
    _mm_storel_epi64(reinterpret_cast<__m128i*>(&r), x);
    return r;
}

template <class T>
int64_t sum_bytes(const T* p, int n) {
    const __m256i flip = _mm256_set1_epi8(static_cast<char>(std::is_signed<T>::value ? 0x80 : 0));
    __m256i acc = _mm256_setzero_si256();
    int i = 0;
    for (; i + 32 <= n; i += 32) {
        const __m256i v = _mm256_xor_si256(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + i)), flip);
        acc = _mm256_add_epi64(acc, _mm256_sad_epu8(v, _mm256_setzero_si256()));
    }
    int64_t s = total64(acc);
    if (std::is_signed<T>::value) s -= 128 * static_cast<int64_t>(i);
    return s + scalar::sum_bytes(p + i, n - i);
}

template <class T, bool kSq>
int64_t run_bytes(const T* a, const T* b, int n) {
    __m256i acc64 = _mm256_setzero_si256();
    int i = 0;
    const int main = n & ~31;
    while (i < main) {
        const int stop = main - i > kByteGroup ? i + kByteGroup : main;
        __m256i acc = _mm256_setzero_si256();
        for (; i < stop; i += 32) {
            acc = piece<T, kSq>(acc, load(a + i), Widen<T>::of(load(b + i)));
            acc = piece<T, kSq>(acc, load(a + i + 16), Widen<T>::of(load(b + i + 16)));
        }
        acc64 = widen_add(acc64, acc);
    }
    const int64_t tail = kSq ? scalar::sqdiff_bytes(a + i, b + i, n - i) : scalar::corr_bytes(a + i, b + i, n - i);
    return total64(acc64) + tail;
}

template <class T>
int64_t sqdiff_bytes(const T* a, const T* b, int n) { return run_bytes<T, true>(a, b, n); }
template <class T>
int64_t corr_bytes(const T* a, const T* b, int n) { return run_bytes<T, false>(a, b, n); }

// See the SSE2 kernels: the last piece of a run of n >= 8 bytes and the
// mask of its bytes not yet counted.
template <class T>
inline __m128i tail_piece(const T* p, int n) {
    if (n >= 16) return load(p + n - 16);
    return _mm_unpacklo_epi64(load8(p), load8(p + n - 8));
}
inline __m128i tail_mask(int n) {
    if (n >= 16) return load(kTailMask16 + (n & 15));
    return _mm_or_si128(load(kTailMask16 + n - 8), _mm_set_epi32(0, 0, -1, -1));
}

inline int32_t total32(__m256i a) {
    __m128i x = _mm_add_epi32(_mm256_castsi256_si128(a), _mm256_extracti128_si256(a, 1));
    x = _mm_add_epi32(x, _mm_shuffle_epi32(x, _MM_SHUFFLE(1, 0, 3, 2)));
    x = _mm_add_epi32(x, _mm_shuffle_epi32(x, _MM_SHUFFLE(2, 3, 0, 1)));
    return _mm_cvtsi128_si32(x);
}

// A column of blocks, four at a time, in 32-bit lanes (see the SSE2 kernel).
template <class T, bool kSq>
void column_bytes(const T* runs, int width, int height, int count, const T* tpl, int64_t* out) {
    const int n = width * height;
    if (n < 8 || n > kExactBlock) {
        for (int y = 0; y < count; ++y) out[y] = run_bytes<T, kSq>(runs + static_cast<ptrdiff_t>(y) * width, tpl, n);
        return;
    }
    const int main = n >= 16 ? n & ~15 : 0;
    const bool has_tail = main != n;
    const __m128i mask = tail_mask(n);
    const __m256i tail_t = Widen<T>::of(_mm_and_si128(tail_piece(tpl, n), mask));
    auto tail = [&](const T* s, __m256i acc) {
        if (!has_tail) return acc;
        __m128i v = tail_piece(s, n);
        if (kSq) v = _mm_and_si128(v, mask);
        return piece<T, kSq>(acc, v, tail_t);
    };

    int y = 0;
    for (; y + 4 <= count; y += 4) {
        const T* s0 = runs + static_cast<ptrdiff_t>(y) * width;
        const T* s1 = s0 + width;
        const T* s2 = s1 + width;
        const T* s3 = s2 + width;
        __m256i a0 = _mm256_setzero_si256(), a1 = a0, a2 = a0, a3 = a0;
        for (int i = 0; i < main; i += 16) {
            const __m256i t = Widen<T>::of(load(tpl + i));
            a0 = piece<T, kSq>(a0, load(s0 + i), t);
            a1 = piece<T, kSq>(a1, load(s1 + i), t);
            a2 = piece<T, kSq>(a2, load(s2 + i), t);
            a3 = piece<T, kSq>(a3, load(s3 + i), t);
        }
        a0 = tail(s0, a0);
        a1 = tail(s1, a1);
        a2 = tail(s2, a2);
        a3 = tail(s3, a3);
        // Lanes of block k end up in element k: pairwise sums within each
        // 128-bit half, then the two halves.
        const __m256i h = _mm256_hadd_epi32(_mm256_hadd_epi32(a0, a1), _mm256_hadd_epi32(a2, a3));
        const __m128i s = _mm_add_epi32(_mm256_castsi256_si128(h), _mm256_extracti128_si256(h, 1));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + y), _mm256_cvtepi32_epi64(s));
    }
    for (; y < count; ++y) {
        const T* s = runs + static_cast<ptrdiff_t>(y) * width;
        __m256i a = _mm256_setzero_si256();
        for (int i = 0; i < main; i += 16) a = piece<T, kSq>(a, load(s + i), Widen<T>::of(load(tpl + i)));
        out[y] = total32(tail(s, a));
    }
}

template <class T>
void sqdiff_column_bytes(const T* runs, int width, int height, int count, const T* tpl, int64_t* out) {
    column_bytes<T, true>(runs, width, height, count, tpl, out);
}
template <class T>
void corr_column_bytes(const T* runs, int width, int height, int count, const T* tpl, int64_t* out) {
    column_bytes<T, false>(runs, width, height, count, tpl, out);
}

// ---- Floats ----

// Eight lanes: lo = lanes 0-3, hi = lanes 4-7.
struct Lanes {
    __m256d lo, hi;
};

template <class Term>
inline __m256d term(__m256d a, __m256d b);
template <>
inline __m256d term<scalar::SumTerm>(__m256d a, __m256d) { return a; }
template <>
inline __m256d term<scalar::SqDiffTerm>(__m256d a, __m256d b) {
    const __m256d d = _mm256_sub_pd(a, b);
    return _mm256_mul_pd(d, d);
}
template <>
inline __m256d term<scalar::CorrTerm>(__m256d a, __m256d b) { return _mm256_mul_pd(a, b); }

inline __m256d cvt4(const float* p) { return _mm256_cvtps_pd(_mm_loadu_ps(p)); }

// ((l0 + l4) + (l2 + l6)) + ((l1 + l5) + (l3 + l7)).
inline double combine(const Lanes& l) {
    const __m256d v = _mm256_add_pd(l.lo, l.hi);
    const __m128d w = _mm_add_pd(_mm256_castpd256_pd128(v), _mm256_extractf128_pd(v, 1));
    return _mm_cvtsd_f64(_mm_add_sd(w, _mm_unpackhi_pd(w, w)));
}

template <class Term>
double run_floats(const float* a, const float* b, int n) {
    Lanes l{_mm256_setzero_pd(), _mm256_setzero_pd()};
    int i = 0;
    for (; i + 8 <= n; i += 8) {
        l.lo = _mm256_add_pd(l.lo, term<Term>(cvt4(a + i), cvt4(b + i)));
        l.hi = _mm256_add_pd(l.hi, term<Term>(cvt4(a + i + 4), cvt4(b + i + 4)));
    }
    if (i == n) return combine(l);
    double lanes[8];
    _mm256_storeu_pd(lanes, l.lo);
    _mm256_storeu_pd(lanes + 4, l.hi);
    scalar::add_lanes<Term>(lanes, a, b, i, n);
    return scalar::combine_lanes(lanes);
}

double sum_floats(const float* p, int n) { return run_floats<scalar::SumTerm>(p, p, n); }
double sqdiff_floats(const float* a, const float* b, int n) { return run_floats<scalar::SqDiffTerm>(a, b, n); }
double corr_floats(const float* a, const float* b, int n) { return run_floats<scalar::CorrTerm>(a, b, n); }

// G consecutive blocks row by row (see the SSE2 kernel): strip row r is
// converted once and added to every block g of the group containing it, as
// its template row r - g; each lane still takes its elements in order.
template <class Term, int G>
void blocks_by_rows(const float* runs, int width, int height, const double* tpl, double* out) {
    Lanes acc[G];
    for (auto& a : acc) a.lo = a.hi = _mm256_setzero_pd();
    const int strip_rows = G + height - 1;
    for (int r = 0; r < strip_rows; ++r) {
        const float* s = runs + static_cast<ptrdiff_t>(r) * width;
        const int g_lo = r - height + 1 > 0 ? r - height + 1 : 0;
        const int g_hi = r < G - 1 ? r : G - 1;
        for (int c = 0; c < width; c += 8) {
            const __m256d s_lo = cvt4(s + c), s_hi = cvt4(s + c + 4);
            for (int g = 0; g < G; ++g) {
                if (g < g_lo || g > g_hi) continue;
                const double* t = tpl + static_cast<ptrdiff_t>(r - g) * width + c;
                acc[g].lo = _mm256_add_pd(acc[g].lo, term<Term>(s_lo, _mm256_load_pd(t)));
                acc[g].hi = _mm256_add_pd(acc[g].hi, term<Term>(s_hi, _mm256_load_pd(t + 4)));
            }
        }
    }
    for (int g = 0; g < G; ++g) out[g] = combine(acc[g]);
}

template <class Term>
void column_floats(const float* runs, int width, int height, int count, const float* tpl, double* out) {
    const int n = width * height;
    if (width % 8 != 0 || n > kStackTemplate) {
        for (int y = 0; y < count; ++y) out[y] = run_floats<Term>(runs + static_cast<ptrdiff_t>(y) * width, tpl, n);
        return;
    }
    alignas(32) double tpl_d[kStackTemplate];
    for (int i = 0; i < n; i += 4) _mm256_store_pd(tpl_d + i, cvt4(tpl + i));
    int y = 0;
    for (; y + 4 <= count; y += 4)
        blocks_by_rows<Term, 4>(runs + static_cast<ptrdiff_t>(y) * width, width, height, tpl_d, out + y);
    const float* rest = runs + static_cast<ptrdiff_t>(y) * width;
    switch (count - y) {
    case 3: blocks_by_rows<Term, 3>(rest, width, height, tpl_d, out + y); break;
    case 2: blocks_by_rows<Term, 2>(rest, width, height, tpl_d, out + y); break;
    case 1: blocks_by_rows<Term, 1>(rest, width, height, tpl_d, out + y); break;
    default: break;
    }
}

void sqdiff_column_floats(const float* runs, int width, int height, int count, const float* tpl, double* out) {
    column_floats<scalar::SqDiffTerm>(runs, width, height, count, tpl, out);
}
void corr_column_floats(const float* runs, int width, int height, int count, const float* tpl, double* out) {
    column_floats<scalar::CorrTerm>(runs, width, height, count, tpl, out);
}

// ---- Scores, four at a time ----

inline __m256d load4(const double* p) { return _mm256_loadu_pd(p); }
inline __m256d load4(const int64_t* p) {
    const __m256i magic = _mm256_set1_epi64x(kInt64ToDoubleBits);
    const __m256i v = _mm256_add_epi64(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)), magic);
    return _mm256_sub_pd(_mm256_castsi256_pd(v), _mm256_castsi256_pd(magic));
}

inline __m256d rsqrt4(__m256d v) {
    const __m256d a = _mm256_add_pd(_mm256_andnot_pd(_mm256_set1_pd(-0.0), v), _mm256_set1_pd(scalar::kFloatEpsilon));
    const __m128i b = _mm_castps_si128(_mm256_cvtpd_ps(a));
    const __m128i yb = _mm_srli_epi32(_mm_sub_epi32(_mm_set1_epi32(static_cast<int>(scalar::kRsqrtMagic)), b), 1);
    __m256d y = _mm256_cvtps_pd(_mm_castsi128_ps(yb));
    const __m256d half_a = _mm256_mul_pd(_mm256_set1_pd(0.5), a), three_halves = _mm256_set1_pd(1.5);
    for (int i = 0; i < 4; ++i)
        y = _mm256_mul_pd(y, _mm256_sub_pd(three_halves, _mm256_mul_pd(_mm256_mul_pd(half_a, y), y)));
    return y;
}

template <int M, class Acc>
void score_column(const Acc* block, const Acc* sum, const Acc* sum_sq, int count, const ScoreConstants& c, float* dst,
                  ptrdiff_t dst_step) {
    int y = 0;
    for (; y + 4 <= count; y += 4) {
        const __m256d b = load4(block + y);
        __m256d r;
        if (M == kSqDiff || M == kCorr) {
            r = b;
        } else if (M == kSqDiffNormed || M == kCorrNormed) {
            r = _mm256_mul_pd(_mm256_mul_pd(b, _mm256_set1_pd(c.r_tpl)), rsqrt4(load4(sum_sq + y)));
        } else {
            const __m256d s = load4(sum + y);
            const __m256d sk = _mm256_mul_pd(s, _mm256_set1_pd(c.k));
            const __m256d num = _mm256_add_pd(b, _mm256_mul_pd(sk, _mm256_set1_pd(c.neg_t)));
            if (M == kCoeff) {
                r = num;
            } else {
                const __m256d patch = _mm256_sub_pd(load4(sum_sq + y), _mm256_mul_pd(sk, s));
                r = _mm256_mul_pd(_mm256_mul_pd(num, _mm256_set1_pd(c.r_tpl)), rsqrt4(patch));
            }
        }
        const __m128 f = _mm256_cvtpd_ps(r);
        _mm_store_ss(scalar::float_at(dst, dst_step, y), f);
        _mm_store_ss(scalar::float_at(dst, dst_step, y + 1), _mm_shuffle_ps(f, f, 1));
        _mm_store_ss(scalar::float_at(dst, dst_step, y + 2), _mm_shuffle_ps(f, f, 2));
        _mm_store_ss(scalar::float_at(dst, dst_step, y + 3), _mm_shuffle_ps(f, f, 3));
    }
    if (y < count)
        scalar::score_column<M>(block + y, sum ? sum + y : nullptr, sum_sq ? sum_sq + y : nullptr, count - y, c,
                                scalar::float_at(dst, dst_step, y), dst_step);
}

}  // namespace

const MatchKernels match_kernels_avx2 = {
    {sum_bytes<uint8_t>, sqdiff_bytes<uint8_t>, corr_bytes<uint8_t>, sqdiff_column_bytes<uint8_t>,
     corr_column_bytes<uint8_t>},
    {sum_bytes<int8_t>, sqdiff_bytes<int8_t>, corr_bytes<int8_t>, sqdiff_column_bytes<int8_t>,
     corr_column_bytes<int8_t>},
    {sum_floats, sqdiff_floats, corr_floats, sqdiff_column_floats, corr_column_floats},
    ORUCV_MATCH_SCORES(score_column, int64_t),
    ORUCV_MATCH_SCORES(score_column, double),
};

}  // namespace a6
}  // namespace orucv
