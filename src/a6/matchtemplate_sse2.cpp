// SSE2 kernels of template matching.
//  - Bytes: 16-bit products summed in pairs into 32-bit lanes (pmaddwd),
//    widened to 64 bits before a lane can overflow. A column is done four
//    blocks at a time, so each template piece is widened once for four.
//  - Floats: eight double lanes in four registers. Columns of templates
//    whose width is a multiple of 8 are summed row by row, two blocks at a
//    time: each strip row is converted once for every block of the pair
//    that holds it, against the template converted to double once per
//    column.
//  - Scores: two at a time in double, a batch of blocks after its sums.
#include <emmintrin.h>

#include <type_traits>

#include "a6/matchtemplate.h"
#include "a6/matchtemplate_simd.h"

namespace orucv {
namespace a6 {
namespace {

// ---- Bytes ----

template <class T>
struct Widen;
template <>
struct Widen<uint8_t> {
    static __m128i lo(__m128i v) { return _mm_unpacklo_epi8(v, _mm_setzero_si128()); }
    static __m128i hi(__m128i v) { return _mm_unpackhi_epi8(v, _mm_setzero_si128()); }
};
template <>
struct Widen<int8_t> {
    static __m128i lo(__m128i v) { return _mm_srai_epi16(_mm_unpacklo_epi8(v, v), 8); }
    static __m128i hi(__m128i v) { return _mm_srai_epi16(_mm_unpackhi_epi8(v, v), 8); }
};

// Eight 16-bit pairs: products or squared differences, summed in pairs.
template <bool kSq>
inline __m128i madd(__m128i s, __m128i t) {
    if (kSq) {
        const __m128i d = _mm_sub_epi16(s, t);
        return _mm_madd_epi16(d, d);
    }
    return _mm_madd_epi16(s, t);
}

// Adds four signed 32-bit lanes to two 64-bit lanes.
inline __m128i widen_add(__m128i acc64, __m128i acc32) {
    const __m128i sign = _mm_srai_epi32(acc32, 31);
    acc64 = _mm_add_epi64(acc64, _mm_unpacklo_epi32(acc32, sign));
    return _mm_add_epi64(acc64, _mm_unpackhi_epi32(acc32, sign));
}

inline int64_t total64(__m128i v) {
    v = _mm_add_epi64(v, _mm_unpackhi_epi64(v, v));
    int64_t r;
    _mm_storel_epi64(reinterpret_cast<__m128i*>(&r), v);
    return r;
}

// Sum of bytes: psadbw adds eight bytes into a 64-bit lane; signed bytes are
// moved to the unsigned range first and the offset taken off at the end.
template <class T>
int64_t sum_bytes(const T* p, int n) {
    const __m128i flip = _mm_set1_epi8(static_cast<char>(std::is_signed<T>::value ? 0x80 : 0));
    __m128i acc = _mm_setzero_si128();
    int i = 0;
    for (; i + 16 <= n; i += 16) acc = _mm_add_epi64(acc, _mm_sad_epu8(_mm_xor_si128(load(p + i), flip), _mm_setzero_si128()));
    int64_t s = total64(acc);
    if (std::is_signed<T>::value) s -= 128 * static_cast<int64_t>(i);
    return s + scalar::sum_bytes(p + i, n - i);
}

// Sum of products or squared differences of one run.
template <class T, bool kSq>
int64_t run_bytes(const T* a, const T* b, int n) {
    __m128i acc64 = _mm_setzero_si128();
    int i = 0;
    const int main = n & ~15;
    while (i < main) {
        const int stop = main - i > kByteGroup ? i + kByteGroup : main;
        __m128i acc = _mm_setzero_si128();
        for (; i < stop; i += 16) {
            const __m128i va = load(a + i), vb = load(b + i);
            acc = _mm_add_epi32(acc, madd<kSq>(Widen<T>::lo(va), Widen<T>::lo(vb)));
            acc = _mm_add_epi32(acc, madd<kSq>(Widen<T>::hi(va), Widen<T>::hi(vb)));
        }
        acc64 = widen_add(acc64, acc);
    }
    const int64_t tail = kSq ? scalar::sqdiff_bytes(a + i, b + i, n - i) : scalar::corr_bytes(a + i, b + i, n - i);
    return total64(acc64) + tail;
}

// Four blocks' 32-bit lanes to their four totals, block k in element k.
inline __m128i totals4(__m128i a0, __m128i a1, __m128i a2, __m128i a3) {
    const __m128i t01 = _mm_add_epi32(_mm_unpacklo_epi32(a0, a1), _mm_unpackhi_epi32(a0, a1));
    const __m128i t23 = _mm_add_epi32(_mm_unpacklo_epi32(a2, a3), _mm_unpackhi_epi32(a2, a3));
    return _mm_add_epi32(_mm_unpacklo_epi64(t01, t23), _mm_unpackhi_epi64(t01, t23));
}

// Block sums of a column of byte runs, four blocks at a time in 32-bit
// lanes: 16-byte pieces, then the tail piece with the bytes already counted
// masked out (of the template, and for squared differences of the strip
// too). Runs short of 8 bytes, and runs long enough for a 32-bit total to
// overflow, go block by block through the run kernel. Totals are exact in
// double.
template <class T, bool kSq>
class ByteBlocks {
public:
    ByteBlocks(int width, int height, const T* tpl)
        : width_(width), n_(width * height), tpl_(tpl), main_(n_ >= 16 ? n_ & ~15 : 0) {
        if (n_ >= 8) {
            mask_ = tail_mask(n_);
            const __m128i vt = _mm_and_si128(tail_piece(tpl, n_), mask_);
            tail_lo_ = Widen<T>::lo(vt);
            tail_hi_ = Widen<T>::hi(vt);
        }
    }

    void sums(const T* runs, int count, double* totals) const {
        if (n_ < 8 || n_ > kExactBlock) {
            for (int y = 0; y < count; ++y)
                totals[y] = static_cast<double>(run_bytes<T, kSq>(runs + static_cast<ptrdiff_t>(y) * width_, tpl_, n_));
            return;
        }
        int y = 0;
        for (; y + 4 <= count; y += 4) {
            const T* s0 = runs + static_cast<ptrdiff_t>(y) * width_;
            const T* s1 = s0 + width_;
            const T* s2 = s1 + width_;
            const T* s3 = s2 + width_;
            __m128i a0 = _mm_setzero_si128(), a1 = a0, a2 = a0, a3 = a0;
            for (int i = 0; i < main_; i += 16) {
                const __m128i t = load(tpl_ + i);
                const __m128i tl = Widen<T>::lo(t), th = Widen<T>::hi(t);
                a0 = piece(a0, load(s0 + i), tl, th);
                a1 = piece(a1, load(s1 + i), tl, th);
                a2 = piece(a2, load(s2 + i), tl, th);
                a3 = piece(a3, load(s3 + i), tl, th);
            }
            const __m128i t4 = totals4(tail(s0, a0), tail(s1, a1), tail(s2, a2), tail(s3, a3));
            _mm_storeu_pd(totals + y, _mm_cvtepi32_pd(t4));
            _mm_storeu_pd(totals + y + 2, _mm_cvtepi32_pd(_mm_unpackhi_epi64(t4, t4)));
        }
        for (; y < count; ++y) {
            const T* s = runs + static_cast<ptrdiff_t>(y) * width_;
            __m128i a = _mm_setzero_si128();
            for (int i = 0; i < main_; i += 16) {
                const __m128i t = load(tpl_ + i);
                a = piece(a, load(s + i), Widen<T>::lo(t), Widen<T>::hi(t));
            }
            a = tail(s, a);
            a = _mm_add_epi32(a, _mm_shuffle_epi32(a, _MM_SHUFFLE(1, 0, 3, 2)));
            a = _mm_add_epi32(a, _mm_shuffle_epi32(a, _MM_SHUFFLE(2, 3, 0, 1)));
            totals[y] = _mm_cvtsi128_si32(a);
        }
    }

private:
    static __m128i piece(__m128i acc, __m128i v, __m128i tl, __m128i th) {
        return _mm_add_epi32(acc, _mm_add_epi32(madd<kSq>(Widen<T>::lo(v), tl), madd<kSq>(Widen<T>::hi(v), th)));
    }
    __m128i tail(const T* s, __m128i acc) const {
        if (main_ == n_) return acc;
        __m128i v = tail_piece(s, n_);
        if (kSq) v = _mm_and_si128(v, mask_);
        return piece(acc, v, tail_lo_, tail_hi_);
    }

    int width_, n_;
    const T* tpl_;
    int main_;
    __m128i mask_ = _mm_setzero_si128(), tail_lo_ = _mm_setzero_si128(), tail_hi_ = _mm_setzero_si128();
};

// ---- Floats ----

// Eight lanes: x[0] = lanes 0-1, x[1] = 2-3, x[2] = 4-5, x[3] = 6-7.
struct Lanes {
    __m128d x[4];
};

inline void cvt8(const float* p, __m128d* d) {
    const __m128 lo = _mm_loadu_ps(p), hi = _mm_loadu_ps(p + 4);
    d[0] = _mm_cvtps_pd(lo);
    d[1] = _mm_cvtps_pd(_mm_movehl_ps(lo, lo));
    d[2] = _mm_cvtps_pd(hi);
    d[3] = _mm_cvtps_pd(_mm_movehl_ps(hi, hi));
}

template <class Term>
inline __m128d term(__m128d a, __m128d b);
template <>
inline __m128d term<scalar::SumTerm>(__m128d a, __m128d) { return a; }
template <>
inline __m128d term<scalar::SqDiffTerm>(__m128d a, __m128d b) {
    const __m128d d = _mm_sub_pd(a, b);
    return _mm_mul_pd(d, d);
}
template <>
inline __m128d term<scalar::CorrTerm>(__m128d a, __m128d b) { return _mm_mul_pd(a, b); }

// The lanes' total: ((l0 + l4) + (l2 + l6)) + ((l1 + l5) + (l3 + l7)).
inline double combine(const Lanes& l) {
    const __m128d w = _mm_add_pd(_mm_add_pd(l.x[0], l.x[2]), _mm_add_pd(l.x[1], l.x[3]));
    return _mm_cvtsd_f64(_mm_add_sd(w, _mm_unpackhi_pd(w, w)));
}

template <class Term>
double run_floats(const float* a, const float* b, int n) {
    Lanes l;
    for (auto& x : l.x) x = _mm_setzero_pd();
    int i = 0;
    for (; i + 8 <= n; i += 8) {
        __m128d da[4], db[4];
        cvt8(a + i, da);
        cvt8(b + i, db);
        for (int q = 0; q < 4; ++q) l.x[q] = _mm_add_pd(l.x[q], term<Term>(da[q], db[q]));
    }
    if (i == n) return combine(l);
    double lanes[8];
    for (int q = 0; q < 4; ++q) _mm_storeu_pd(lanes + 2 * q, l.x[q]);
    scalar::add_lanes<Term>(lanes, a, b, i, n);
    return scalar::combine_lanes(lanes);
}

double sum_floats(const float* p, int n) { return run_floats<scalar::SumTerm>(p, p, n); }

// Adds strip row s, converted once, to blocks g_lo..g_hi of a group, as
// their template rows r - g (t0 is template row r).
template <class Term, int G>
inline void add_row(Lanes* acc, const float* s, const double* t0, int width, int g_lo, int g_hi) {
    for (int c = 0; c < width; c += 8) {
        __m128d d[4];
        cvt8(s + c, d);
        for (int g = 0; g < G; ++g) {
            if (g < g_lo || g > g_hi) continue;
            const double* t = t0 - static_cast<ptrdiff_t>(g) * width + c;
            for (int q = 0; q < 4; ++q) acc[g].x[q] = _mm_add_pd(acc[g].x[q], term<Term>(d[q], _mm_load_pd(t + 2 * q)));
        }
    }
}

// G consecutive blocks of a template `width` (a multiple of 8) wide, row by
// row: strip row r goes to every block g of the group that holds it, as its
// template row r - g. Each lane of each block still takes its elements in
// increasing order, so the sums equal the run kernel's.
template <class Term, int G>
void blocks_by_rows(const float* runs, int width, int height, const double* tpl, double* out) {
    Lanes acc[G];
    for (auto& a : acc)
        for (auto& x : a.x) x = _mm_setzero_pd();
    for (int r = 0; r < G + height - 1; ++r) {
        const float* s = runs + static_cast<ptrdiff_t>(r) * width;
        const double* t0 = tpl + static_cast<ptrdiff_t>(r) * width;
        if (r >= G - 1 && r < height) add_row<Term, G>(acc, s, t0, width, 0, G - 1);  // every block holds row r
        else add_row<Term, G>(acc, s, t0, width, r - height + 1 > 0 ? r - height + 1 : 0, r < G - 1 ? r : G - 1);
    }
    for (int g = 0; g < G; ++g) out[g] = combine(acc[g]);
}

// Block sums of a column of float runs.
template <bool kSq>
class FloatBlocks {
    using Term = typename std::conditional<kSq, scalar::SqDiffTerm, scalar::CorrTerm>::type;

public:
    FloatBlocks(int width, int height, const float* tpl)
        : width_(width), height_(height), tpl_(tpl), by_rows_(width % 8 == 0 && width * height <= kStackTemplate) {
        if (by_rows_)
            for (int i = 0; i < width * height; i += 8) {
                __m128d d[4];
                cvt8(tpl + i, d);
                for (int q = 0; q < 4; ++q) _mm_store_pd(tpl_d_ + i + 2 * q, d[q]);
            }
    }

    void sums(const float* runs, int count, double* totals) const {
        if (!by_rows_) {
            const int n = width_ * height_;
            for (int y = 0; y < count; ++y) totals[y] = run_floats<Term>(runs + static_cast<ptrdiff_t>(y) * width_, tpl_, n);
            return;
        }
        int y = 0;
        for (; y + 2 <= count; y += 2)
            blocks_by_rows<Term, 2>(runs + static_cast<ptrdiff_t>(y) * width_, width_, height_, tpl_d_, totals + y);
        if (y < count)
            blocks_by_rows<Term, 1>(runs + static_cast<ptrdiff_t>(y) * width_, width_, height_, tpl_d_, totals + y);
    }

private:
    int width_, height_;
    const float* tpl_;
    bool by_rows_;
    alignas(16) double tpl_d_[kStackTemplate];
};

// ---- Scores, two at a time (the scalar formulas, lane by lane) ----

inline __m128d load2(const double* p) { return _mm_loadu_pd(p); }
// Exact for |v| < 2^51: the integer is added into the significand of 1.5 * 2^52.
inline __m128d load2(const int64_t* p) {
    const __m128i magic = _mm_set1_epi64x(kInt64ToDoubleBits);
    const __m128i v = _mm_add_epi64(load(p), magic);
    return _mm_sub_pd(_mm_castsi128_pd(v), _mm_castsi128_pd(magic));
}

inline __m128d rsqrt2(__m128d v) {
    const __m128d a = _mm_add_pd(_mm_andnot_pd(_mm_set1_pd(-0.0), v), _mm_set1_pd(scalar::kFloatEpsilon));
    const __m128i b = _mm_castps_si128(_mm_cvtpd_ps(a));
    const __m128i yb = _mm_srli_epi32(_mm_sub_epi32(_mm_set1_epi32(static_cast<int>(scalar::kRsqrtMagic)), b), 1);
    __m128d y = _mm_cvtps_pd(_mm_castsi128_ps(yb));
    const __m128d half_a = _mm_mul_pd(_mm_set1_pd(0.5), a), three_halves = _mm_set1_pd(1.5);
    for (int i = 0; i < 4; ++i)
        y = _mm_mul_pd(y, _mm_sub_pd(three_halves, _mm_mul_pd(_mm_mul_pd(half_a, y), y)));
    return y;
}

// The batch steps of the column kernels (see SimdColumns).
struct Batch {
    static constexpr int kAlign = 16;

    // Squared differences S2 - 2 C + T2 of the first k of m product totals;
    // returns k.
    static int from_products(double* totals, int m, const int64_t* sum_sq, double t2) {
        int k = 0;
        for (; k + 2 <= m; k += 2) {
            const __m128d twice = _mm_add_pd(_mm_load_pd(totals + k), _mm_load_pd(totals + k));
            _mm_store_pd(totals + k, _mm_add_pd(_mm_sub_pd(load2(sum_sq + k), twice), _mm_set1_pd(t2)));
        }
        return k;
    }

    // Scores of blocks y0 .. y0 + count - 1 from their sums; block y0 + k goes
    // to out[k * step].
    template <int M, class Acc>
    static void scores(const double* totals, int y0, int count, const Acc* sum, const Acc* sum_sq,
                       const ScoreConstants& c, float* out, int step);
};

// Defined outside the class so that it is not implicitly inline.
template <int M, class Acc>
void Batch::scores(const double* totals, int y0, int count, const Acc* sum, const Acc* sum_sq,
                   const ScoreConstants& c, float* out, int step) {
    int k = 0;
    for (; k + 2 <= count; k += 2) {
        const int y = y0 + k;
        const __m128d b = _mm_load_pd(totals + k);
        __m128d r;
        if (M == kSqDiff || M == kCorr) {
            r = b;
        } else if (M == kSqDiffNormed || M == kCorrNormed) {
            r = _mm_mul_pd(_mm_mul_pd(b, _mm_set1_pd(c.r_tpl)), rsqrt2(load2(sum_sq + y)));
        } else {
            const __m128d s = load2(sum + y);
            const __m128d sk = _mm_mul_pd(s, _mm_set1_pd(c.k));
            const __m128d num = _mm_add_pd(b, _mm_mul_pd(sk, _mm_set1_pd(c.neg_t)));
            if (M == kCoeff) {
                r = num;
            } else {
                const __m128d patch =
                    _mm_sub_pd(load2(sum_sq + y), _mm_mul_pd(_mm_mul_pd(s, s), _mm_set1_pd(c.k)));
                r = _mm_mul_pd(_mm_mul_pd(num, _mm_set1_pd(c.r_tpl)), rsqrt2(patch));
            }
        }
        const __m128 f = _mm_cvtpd_ps(r);
        float* o = out + static_cast<ptrdiff_t>(k) * step;
        _mm_store_ss(o, f);
        _mm_store_ss(o + step, _mm_shuffle_ps(f, f, 1));
    }
    for (; k < count; ++k)
        out[static_cast<ptrdiff_t>(k) * step] = scalar::score_at<M>(totals[k], sum, sum_sq, y0 + k, c);
}

// ---- Columns ----

using Columns = SimdColumns<ByteBlocks, FloatBlocks, Batch>;

}  // namespace

// The strip advance and the grouped sums are the scalar twin's: without
// 64-bit lane inserts, gathering the deltas of strided rows into SSE2
// registers costs more than it saves.
const MatchKernels match_kernels_sse2 = {
    {sum_bytes<uint8_t>, run_bytes<uint8_t, true>, run_bytes<uint8_t, false>,
     ORUCV_MATCH_COLUMNS(Columns::column_scores, uint8_t), ORUCV_MATCH_ADVANCES(scalar::advance, uint8_t),
     ORUCV_MATCH_GROUP_SUMS(scalar::group_sums, uint8_t)},
    {sum_bytes<int8_t>, run_bytes<int8_t, true>, run_bytes<int8_t, false>,
     ORUCV_MATCH_COLUMNS(Columns::column_scores, int8_t), ORUCV_MATCH_ADVANCES(scalar::advance, int8_t),
     ORUCV_MATCH_GROUP_SUMS(scalar::group_sums, int8_t)},
    {sum_floats, run_floats<scalar::SqDiffTerm>, run_floats<scalar::CorrTerm>,
     ORUCV_MATCH_COLUMNS(Columns::column_scores, float), ORUCV_MATCH_ADVANCES(scalar::advance, float),
     {nullptr, nullptr, nullptr, nullptr}},
};

}  // namespace a6
}  // namespace orucv
