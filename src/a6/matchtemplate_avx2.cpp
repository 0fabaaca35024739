// AVX2 kernels of template matching (no FMA: sums and scores round exactly
// as on the other paths).
//  - Bytes: 16 bytes widened to 16-bit per register, products summed in
//    pairs into 32-bit lanes (vpmaddwd), widened to 64 bits before a lane can
//    overflow. A column is summed four blocks at a time, so each template
//    piece is widened once for four blocks.
//  - Floats: eight double lanes in two registers. Columns of templates whose
//    width is a multiple of 8 are summed row by row, four blocks at a time:
//    each strip row is converted once for every block of the four that
//    holds it, against the template converted to double once per column.
//  - Scores: four at a time in double, a batch of blocks after its sums.
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

// Sixteen 16-bit pairs: products or squared differences, summed in pairs.
template <bool kSq>
inline __m256i madd(__m256i s, __m256i t) {
    if (kSq) {
        const __m256i d = _mm256_sub_epi16(s, t);
        return _mm256_madd_epi16(d, d);
    }
    return _mm256_madd_epi16(s, t);
}

// Adds sixteen bytes of a, widened, against the widened t to the lanes.
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

inline int32_t total32(__m256i a) {
    __m128i x = _mm_add_epi32(_mm256_castsi256_si128(a), _mm256_extracti128_si256(a, 1));
    x = _mm_add_epi32(x, _mm_shuffle_epi32(x, _MM_SHUFFLE(1, 0, 3, 2)));
    x = _mm_add_epi32(x, _mm_shuffle_epi32(x, _MM_SHUFFLE(2, 3, 0, 1)));
    return _mm_cvtsi128_si32(x);
}

// Sum of bytes: vpsadbw adds eight bytes into a 64-bit lane; signed bytes
// are moved to the unsigned range first and the offset taken off at the end.
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

// Sum of products or squared differences of one run of any length.
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

// The last piece of a run of n >= 8 bytes, as 16 bytes of which only those
// set in tail_mask count: the 16 bytes ending at the run's end when n >= 16
// (after the whole 16-byte pieces), else the first 8 and the last 8 bytes.
template <class T>
inline __m128i tail_piece(const T* p, int n) {
    if (n >= 16) return load(p + n - 16);
    return _mm_unpacklo_epi64(load8(p), load8(p + n - 8));
}
inline __m128i tail_mask(int n) {
    if (n >= 16) return load(kTailMask16 + (n & 15));
    return _mm_or_si128(load(kTailMask16 + n - 8), _mm_set_epi32(0, 0, -1, -1));
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
            tail_t_ = Widen<T>::of(_mm_and_si128(tail_piece(tpl, n_), mask_));
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
            __m256i a0 = _mm256_setzero_si256(), a1 = a0, a2 = a0, a3 = a0;
            for (int i = 0; i < main_; i += 16) {
                const __m256i t = Widen<T>::of(load(tpl_ + i));
                a0 = piece<T, kSq>(a0, load(s0 + i), t);
                a1 = piece<T, kSq>(a1, load(s1 + i), t);
                a2 = piece<T, kSq>(a2, load(s2 + i), t);
                a3 = piece<T, kSq>(a3, load(s3 + i), t);
            }
            // Lanes of block k end up in element k: pairwise sums within each
            // 128-bit half, then the two halves.
            const __m256i h = _mm256_hadd_epi32(_mm256_hadd_epi32(tail(s0, a0), tail(s1, a1)),
                                                _mm256_hadd_epi32(tail(s2, a2), tail(s3, a3)));
            const __m128i t4 = _mm_add_epi32(_mm256_castsi256_si128(h), _mm256_extracti128_si256(h, 1));
            _mm256_storeu_pd(totals + y, _mm256_cvtepi32_pd(t4));
        }
        for (; y < count; ++y) {
            const T* s = runs + static_cast<ptrdiff_t>(y) * width_;
            __m256i a = _mm256_setzero_si256();
            for (int i = 0; i < main_; i += 16) a = piece<T, kSq>(a, load(s + i), Widen<T>::of(load(tpl_ + i)));
            totals[y] = total32(tail(s, a));
        }
    }

private:
    __m256i tail(const T* s, __m256i acc) const {
        if (main_ == n_) return acc;
        __m128i v = tail_piece(s, n_);
        if (kSq) v = _mm_and_si128(v, mask_);
        return piece<T, kSq>(acc, v, tail_t_);
    }

    int width_, n_;
    const T* tpl_;
    int main_;
    __m128i mask_ = _mm_setzero_si128();
    __m256i tail_t_ = _mm256_setzero_si256();
};

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

// Adds strip row s, converted once, to blocks g_lo..g_hi of a group, as
// their template rows r - g (t0 is template row r).
template <class Term, int G>
inline void add_row(Lanes* acc, const float* s, const double* t0, int width, int g_lo, int g_hi) {
    for (int c = 0; c < width; c += 8) {
        const __m256d lo = cvt4(s + c), hi = cvt4(s + c + 4);
        for (int g = 0; g < G; ++g) {
            if (g < g_lo || g > g_hi) continue;
            const double* t = t0 - static_cast<ptrdiff_t>(g) * width + c;
            acc[g].lo = _mm256_add_pd(acc[g].lo, term<Term>(lo, _mm256_load_pd(t)));
            acc[g].hi = _mm256_add_pd(acc[g].hi, term<Term>(hi, _mm256_load_pd(t + 4)));
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
    for (auto& a : acc) a.lo = a.hi = _mm256_setzero_pd();
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
            for (int i = 0; i < width * height; i += 4) _mm256_store_pd(tpl_d_ + i, cvt4(tpl + i));
    }

    void sums(const float* runs, int count, double* totals) const {
        if (!by_rows_) {
            const int n = width_ * height_;
            for (int y = 0; y < count; ++y) totals[y] = run_floats<Term>(runs + static_cast<ptrdiff_t>(y) * width_, tpl_, n);
            return;
        }
        int y = 0;
        for (; y + 4 <= count; y += 4) blocks_by_rows<Term, 4>(at(runs, y), width_, height_, tpl_d_, totals + y);
        switch (count - y) {
        case 3: blocks_by_rows<Term, 3>(at(runs, y), width_, height_, tpl_d_, totals + y); break;
        case 2: blocks_by_rows<Term, 2>(at(runs, y), width_, height_, tpl_d_, totals + y); break;
        case 1: blocks_by_rows<Term, 1>(at(runs, y), width_, height_, tpl_d_, totals + y); break;
        default: break;
        }
    }

private:
    const float* at(const float* runs, int y) const { return runs + static_cast<ptrdiff_t>(y) * width_; }

    int width_, height_;
    const float* tpl_;
    bool by_rows_;
    alignas(32) double tpl_d_[kStackTemplate];
};

// ---- Scores, four at a time (the scalar formulas, lane by lane) ----

inline __m256d load4(const double* p) { return _mm256_loadu_pd(p); }
// Exact for |v| < 2^51: the integer is added into the significand of 1.5 * 2^52.
inline __m256d load4(const int64_t* p) {
    const __m256i magic = _mm256_set1_epi64x(kInt64ToDoubleBits);
    const __m256i v = _mm256_add_epi64(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)), magic);
    return _mm256_sub_pd(_mm256_castsi256_pd(v), _mm256_castsi256_pd(magic));
}

// Reciprocal square roots of four vectors, their steps interleaved so that
// the four dependency chains overlap.
inline void rsqrt4x4(__m256d* v) {
    __m256d half_a[4], y[4];
    for (int g = 0; g < 4; ++g) {
        const __m256d a =
            _mm256_add_pd(_mm256_andnot_pd(_mm256_set1_pd(-0.0), v[g]), _mm256_set1_pd(scalar::kFloatEpsilon));
        const __m128i b = _mm_castps_si128(_mm256_cvtpd_ps(a));
        const __m128i yb = _mm_srli_epi32(_mm_sub_epi32(_mm_set1_epi32(static_cast<int>(scalar::kRsqrtMagic)), b), 1);
        y[g] = _mm256_cvtps_pd(_mm_castsi128_ps(yb));
        half_a[g] = _mm256_mul_pd(_mm256_set1_pd(0.5), a);
    }
    for (int i = 0; i < 4; ++i)
        for (int g = 0; g < 4; ++g)
            y[g] = _mm256_mul_pd(y[g], _mm256_sub_pd(_mm256_set1_pd(1.5), _mm256_mul_pd(_mm256_mul_pd(half_a[g], y[g]), y[g])));
    for (int g = 0; g < 4; ++g) v[g] = y[g];
}

// Scores of blocks y0 .. y0 + count - 1 from their sums; block y0 + k goes
// to out[k * step]. Sixteen at a time, then one at a time.
template <int M, class Acc>
void scores(const double* totals, int y0, int count, const Acc* sum, const Acc* sum_sq, const ScoreConstants& c,
            float* out, int step) {
    int k = 0;
    for (; k + 16 <= count; k += 16) {
        __m256d r[4], den[4];
        for (int g = 0; g < 4; ++g) {
            const int y = y0 + k + 4 * g;
            const __m256d b = _mm256_load_pd(totals + k + 4 * g);
            if (M == kSqDiff || M == kCorr) {
                r[g] = b;
            } else if (M == kSqDiffNormed || M == kCorrNormed) {
                r[g] = _mm256_mul_pd(b, _mm256_set1_pd(c.r_tpl));
                den[g] = load4(sum_sq + y);
            } else {
                const __m256d s = load4(sum + y);
                const __m256d sk = _mm256_mul_pd(s, _mm256_set1_pd(c.k));
                r[g] = _mm256_add_pd(b, _mm256_mul_pd(sk, _mm256_set1_pd(c.neg_t)));
                if (M == kCoeffNormed) {
                    r[g] = _mm256_mul_pd(r[g], _mm256_set1_pd(c.r_tpl));
                    den[g] = _mm256_sub_pd(load4(sum_sq + y), _mm256_mul_pd(sk, s));
                }
            }
        }
        if (method_normed(M)) {
            rsqrt4x4(den);
            for (int g = 0; g < 4; ++g) r[g] = _mm256_mul_pd(r[g], den[g]);
        }
        for (int g = 0; g < 4; ++g) {
            const __m128 f = _mm256_cvtpd_ps(r[g]);
            float* o = out + static_cast<ptrdiff_t>(k + 4 * g) * step;
            _mm_store_ss(o, f);
            _mm_store_ss(o + step, _mm_shuffle_ps(f, f, 1));
            _mm_store_ss(o + 2 * step, _mm_shuffle_ps(f, f, 2));
            _mm_store_ss(o + 3 * step, _mm_shuffle_ps(f, f, 3));
        }
    }
    for (; k < count; ++k)
        out[static_cast<ptrdiff_t>(k) * step] = scalar::score_at<M>(totals[k], sum, sum_sq, y0 + k, c);
}

// ---- Columns ----

template <class T, bool kSq>
struct Blocks {
    using type = ByteBlocks<T, kSq>;
};
template <bool kSq>
struct Blocks<float, kSq> {
    using type = FloatBlocks<kSq>;
};

template <class T, int M>
void column_scores(const T* runs, int width, int height, int count, const T* tpl,
                   const typename MatchAcc<T>::type* sum, const typename MatchAcc<T>::type* sum_sq,
                   const ScoreConstants& c, float* out, int out_step) {
    const typename Blocks<T, method_sqdiff(M)>::type blocks(width, height, tpl);
    alignas(32) double totals[kBatch];
    for (int y = 0; y < count; y += kBatch) {
        const int m = count - y < kBatch ? count - y : kBatch;
        blocks.sums(runs + static_cast<ptrdiff_t>(y) * width, m, totals);
        scores<M>(totals, y, m, sum, sum_sq, c, out + static_cast<ptrdiff_t>(y) * out_step, out_step);
    }
}

}  // namespace

const MatchKernels match_kernels_avx2 = {
    {sum_bytes<uint8_t>, sqdiff_bytes<uint8_t>, corr_bytes<uint8_t>, ORUCV_MATCH_COLUMNS(column_scores, uint8_t)},
    {sum_bytes<int8_t>, sqdiff_bytes<int8_t>, corr_bytes<int8_t>, ORUCV_MATCH_COLUMNS(column_scores, int8_t)},
    {sum_floats, sqdiff_floats, corr_floats, ORUCV_MATCH_COLUMNS(column_scores, float)},
};

}  // namespace a6
}  // namespace orucv
