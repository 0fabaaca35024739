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
        for (; y + 8 <= count; y += 8) blocks<8>(runs + static_cast<ptrdiff_t>(y) * width_, totals + y);
        for (; y + 4 <= count; y += 4) blocks<4>(runs + static_cast<ptrdiff_t>(y) * width_, totals + y);
        for (; y < count; ++y) {
            const T* s = runs + static_cast<ptrdiff_t>(y) * width_;
            __m256i a = _mm256_setzero_si256();
            for (int i = 0; i < main_; i += 16) a = piece<T, kSq>(a, load(s + i), Widen<T>::of(load(tpl_ + i)));
            totals[y] = total32(tail(s, a));
        }
    }

private:
    // G (4 or 8) consecutive blocks, each template piece widened once.
    template <int G>
    void blocks(const T* runs, double* totals) const {
        const T* s[G];
        __m256i a[G];
        for (int g = 0; g < G; ++g) s[g] = runs + static_cast<ptrdiff_t>(g) * width_, a[g] = _mm256_setzero_si256();
        for (int i = 0; i < main_; i += 16) {
            const __m256i t = Widen<T>::of(load(tpl_ + i));
            for (int g = 0; g < G; ++g) a[g] = piece<T, kSq>(a[g], load(s[g] + i), t);
        }
        for (int g = 0; g < G; ++g) a[g] = tail(s[g], a[g]);
        // Lanes of block k end up in element k of a group of four: pairwise
        // sums within each 128-bit half, then the two halves.
        for (int g = 0; g < G; g += 4) {
            const __m256i h = _mm256_hadd_epi32(_mm256_hadd_epi32(a[g], a[g + 1]), _mm256_hadd_epi32(a[g + 2], a[g + 3]));
            const __m128i t4 = _mm_add_epi32(_mm256_castsi256_si128(h), _mm256_extracti128_si256(h, 1));
            _mm256_storeu_pd(totals + g, _mm256_cvtepi32_pd(t4));
        }
    }

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

// Adds strip row s, converted once, to blocks g_lo..g_hi of a group, as
// their template rows r - g (t0 is template row r). kChunks is width / 8
// when known at compile time, else 0.
template <class Term, int G, int kChunks>
inline void add_row(Lanes* acc, const float* s, const double* t0, int width, int g_lo, int g_hi) {
    const int chunks = kChunks ? kChunks : width / 8;
    for (int k = 0; k < chunks; ++k) {
        const int c = 8 * k;
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
template <class Term, int G, int kChunks>
void blocks_by_rows(const float* runs, int width, int height, const double* tpl, double* out) {
    Lanes acc[G];
    for (auto& a : acc) a.lo = a.hi = _mm256_setzero_pd();
    for (int r = 0; r < G + height - 1; ++r) {
        const float* s = runs + static_cast<ptrdiff_t>(r) * width;
        const double* t0 = tpl + static_cast<ptrdiff_t>(r) * width;
        if (r >= G - 1 && r < height) {
            add_row<Term, G, kChunks>(acc, s, t0, width, 0, G - 1);  // every block holds row r
        } else {
            add_row<Term, G, kChunks>(acc, s, t0, width, r - height + 1 > 0 ? r - height + 1 : 0,
                                      r < G - 1 ? r : G - 1);
        }
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
        switch (width_ / 8) {  // the widths of common templates unrolled
        case 1: by_rows<1>(runs, count, totals); break;
        case 2: by_rows<2>(runs, count, totals); break;
        case 4: by_rows<4>(runs, count, totals); break;
        default: by_rows<0>(runs, count, totals); break;
        }
    }

private:
    const float* at(const float* runs, int y) const { return runs + static_cast<ptrdiff_t>(y) * width_; }

    template <int kChunks>
    void by_rows(const float* runs, int count, double* totals) const {
        int y = 0;
        for (; y + 4 <= count; y += 4)
            blocks_by_rows<Term, 4, kChunks>(at(runs, y), width_, height_, tpl_d_, totals + y);
        switch (count - y) {
        case 3: blocks_by_rows<Term, 3, kChunks>(at(runs, y), width_, height_, tpl_d_, totals + y); break;
        case 2: blocks_by_rows<Term, 2, kChunks>(at(runs, y), width_, height_, tpl_d_, totals + y); break;
        case 1: blocks_by_rows<Term, 1, kChunks>(at(runs, y), width_, height_, tpl_d_, totals + y); break;
        default: break;
        }
    }

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

// Reciprocal square roots of G vectors, their steps interleaved so that the
// G dependency chains overlap.
template <int G>
inline void rsqrt4xG(__m256d* v) {
    __m256d half_a[G], y[G];
    for (int g = 0; g < G; ++g) {
        const __m256d a =
            _mm256_add_pd(_mm256_andnot_pd(_mm256_set1_pd(-0.0), v[g]), _mm256_set1_pd(scalar::kFloatEpsilon));
        const __m128i b = _mm_castps_si128(_mm256_cvtpd_ps(a));
        const __m128i yb = _mm_srli_epi32(_mm_sub_epi32(_mm_set1_epi32(static_cast<int>(scalar::kRsqrtMagic)), b), 1);
        y[g] = _mm256_cvtps_pd(_mm_castsi128_ps(yb));
        half_a[g] = _mm256_mul_pd(_mm256_set1_pd(0.5), a);
    }
    for (int i = 0; i < 4; ++i)
        for (int g = 0; g < G; ++g)
            y[g] = _mm256_mul_pd(y[g], _mm256_sub_pd(_mm256_set1_pd(1.5), _mm256_mul_pd(_mm256_mul_pd(half_a[g], y[g]), y[g])));
    for (int g = 0; g < G; ++g) v[g] = y[g];
}

// Scores of blocks y0 + k .. y0 + k + 4 G - 1 from their sums; block
// y0 + k + j goes to out[j * step].
template <int M, int G, class Acc>
inline void scores_4xG(const double* totals, int y, const Acc* sum, const Acc* sum_sq, const ScoreConstants& c,
                       float* out, int step) {
    __m256d r[G], den[G];
    for (int g = 0; g < G; ++g) {
        const int yg = y + 4 * g;
        const __m256d b = _mm256_load_pd(totals + 4 * g);
        if (M == kSqDiff || M == kCorr) {
            r[g] = b;
        } else if (M == kSqDiffNormed || M == kCorrNormed) {
            r[g] = _mm256_mul_pd(b, _mm256_set1_pd(c.r_tpl));
            den[g] = load4(sum_sq + yg);
        } else {
            const __m256d s = load4(sum + yg);
            const __m256d sk = _mm256_mul_pd(s, _mm256_set1_pd(c.k));
            r[g] = _mm256_add_pd(b, _mm256_mul_pd(sk, _mm256_set1_pd(c.neg_t)));
            if (M == kCoeffNormed) {
                r[g] = _mm256_mul_pd(r[g], _mm256_set1_pd(c.r_tpl));
                den[g] = _mm256_sub_pd(load4(sum_sq + yg), _mm256_mul_pd(_mm256_mul_pd(s, s), _mm256_set1_pd(c.k)));
            }
        }
    }
    if (method_normed(M)) {
        rsqrt4xG<G>(den);
        for (int g = 0; g < G; ++g) r[g] = _mm256_mul_pd(r[g], den[g]);
    }
    for (int g = 0; g < G; ++g) {
        const __m128 f = _mm256_cvtpd_ps(r[g]);
        float* o = out + static_cast<ptrdiff_t>(4 * g) * step;
        _mm_store_ss(o, f);
        _mm_store_ss(o + step, _mm_shuffle_ps(f, f, 1));
        _mm_store_ss(o + 2 * step, _mm_shuffle_ps(f, f, 2));
        _mm_store_ss(o + 3 * step, _mm_shuffle_ps(f, f, 3));
    }
}

// The batch steps of the column kernels (see SimdColumns).
struct Batch {
    static constexpr int kAlign = 32;

    // Squared differences S2 - 2 C + T2 of the first k of m product totals;
    // returns k.
    static int from_products(double* totals, int m, const int64_t* sum_sq, double t2) {
        int k = 0;
        for (; k + 4 <= m; k += 4) {
            const __m256d twice = _mm256_add_pd(_mm256_load_pd(totals + k), _mm256_load_pd(totals + k));
            _mm256_store_pd(totals + k,
                            _mm256_add_pd(_mm256_sub_pd(load4(sum_sq + k), twice), _mm256_set1_pd(t2)));
        }
        return k;
    }

    // Scores of blocks y0 .. y0 + count - 1 from their sums; block y0 + k goes
    // to out[k * step]. Thirty-two, then four at a time (their reciprocal
    // square roots interleaved), then one at a time.
    template <int M, class Acc>
    static void scores(const double* totals, int y0, int count, const Acc* sum, const Acc* sum_sq,
                       const ScoreConstants& c, float* out, int step);
};

// Defined outside the class so that it is not implicitly inline.
template <int M, class Acc>
void Batch::scores(const double* totals, int y0, int count, const Acc* sum, const Acc* sum_sq,
                   const ScoreConstants& c, float* out, int step) {
    int k = 0;
    for (; k + 32 <= count; k += 32)
        scores_4xG<M, 8>(totals + k, y0 + k, sum, sum_sq, c, out + static_cast<ptrdiff_t>(k) * step, step);
    for (; k + 4 <= count; k += 4)
        scores_4xG<M, 1>(totals + k, y0 + k, sum, sum_sq, c, out + static_cast<ptrdiff_t>(k) * step, step);
    for (; k < count; ++k)
        out[static_cast<ptrdiff_t>(k) * step] = scalar::score_at<M>(totals[k], sum, sum_sq, y0 + k, c);
}

// ---- Strip advance ----

// Prefix sums of four 64-bit lanes.
inline __m256i prefix4(__m256i x) {
    const __m256i zero = _mm256_setzero_si256();
    x = _mm256_add_epi64(x, _mm256_blend_epi32(_mm256_permute4x64_epi64(x, _MM_SHUFFLE(2, 1, 0, 0)), zero, 0x03));
    return _mm256_add_epi64(x, _mm256_blend_epi32(_mm256_permute4x64_epi64(x, _MM_SHUFFLE(1, 0, 0, 0)), zero, 0x0F));
}

inline __m256i load4i(const int64_t* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }
inline void store4i(int64_t* p, __m256i v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }

// Adds the deltas of rows i..i+3 to their row sums and extends the patch
// sums: patch y = patch y - 1 + row y + height - 1 - row y - 1, as a prefix
// sum over the four rows on top of `run`, the last patch sum in every lane,
// which is returned updated. Row y - 1 is read after the new row sums are
// stored, so short templates see the current column's values.
inline __m256i sums4(int64_t* row, __m256i delta, int64_t* patch, int i, int y, __m256i run) {
    const __m256i r = _mm256_add_epi64(load4i(row + i), delta);
    store4i(row + i, r);
    const __m256i p = _mm256_add_epi64(run, prefix4(_mm256_sub_epi64(r, load4i(row + y - 1))));
    store4i(patch + y, p);
    return _mm256_permute4x64_epi64(p, _MM_SHUFFLE(3, 3, 3, 3));
}

// One row of the strip advance: the entering element goes into the row's
// last slot, whose old content (the element leaving the next row) becomes
// `leaving`; returns the entering element.
template <class T>
inline int advance_row(T* slot, const char* src, int src_step, int i, int rows, T& leaving) {
    const int e = *reinterpret_cast<const T*>(src + static_cast<ptrdiff_t>(src_step) * i);
    if (i + 1 < rows) leaving = *slot;
    *slot = static_cast<T>(e);
    return e;
}

// The strip advance of byte images with the scalar twin's arithmetic: rows
// up to the one completing the first patch one at a time, then four rows at
// a time, their deltas gathered into registers and added to the row and
// patch sums with vector prefix sums (integer sums are exact, so the order
// of the additions is free).
template <class T, bool kSum, bool kSq>
void advance_bytes(T* view, const T* src_col, int src_step, int rows, int width, int height, int64_t* row_sum,
                   int64_t* row_sq, int64_t* patch_sum, int64_t* patch_sq) {
    if (!kSum && !kSq) {
        scalar::advance<T, false, false>(view, src_col, src_step, rows, width, height, row_sum, row_sq, patch_sum,
                                         patch_sq);
        return;
    }
    const char* src = reinterpret_cast<const char*>(src_col);
    T leaving = view[-1];
    T* slot = view + width - 1;
    int i = 0;
    auto one_row = [&](int i) {
        const int o = leaving, e = advance_row(slot, src, src_step, i, rows, leaving);
        slot += width;
        if (kSum) row_sum[i] += e - o;
        if (kSq) row_sq[i] += (o + e) * (e - o);
    };
    for (; i < rows && i < height; ++i) one_row(i);
    if (i < height) return;  // no complete patch
    int64_t a = 0, b = 0;
    for (int j = 0; j < height; ++j) {
        if (kSum) a += row_sum[j];
        if (kSq) b += row_sq[j];
    }
    if (kSum) patch_sum[0] = a;
    if (kSq) patch_sq[0] = b;
    __m256i run_sum = _mm256_set1_epi64x(a), run_sq = _mm256_set1_epi64x(b);
    for (; i + 4 <= rows; i += 4) {
        int d[4], q[4];
        for (int u = 0; u < 4; ++u) {
            const int o = leaving, e = advance_row(slot, src, src_step, i + u, rows, leaving);
            slot += width;
            d[u] = e - o;
            q[u] = (o + e) * (e - o);
        }
        const int y = i - height + 1;
        if (kSum) run_sum = sums4(row_sum, _mm256_cvtepi32_epi64(_mm_set_epi32(d[3], d[2], d[1], d[0])), patch_sum, i, y, run_sum);
        if (kSq) run_sq = sums4(row_sq, _mm256_cvtepi32_epi64(_mm_set_epi32(q[3], q[2], q[1], q[0])), patch_sq, i, y, run_sq);
    }
    for (; i < rows; ++i) {
        one_row(i);
        const int y = i - height + 1;
        if (kSum) patch_sum[y] = patch_sum[y - 1] + row_sum[i] - row_sum[y - 1];
        if (kSq) patch_sq[y] = patch_sq[y - 1] + row_sq[i] - row_sq[y - 1];
    }
}

// Eight bytes as eight 32-bit lanes.
inline __m256i widen8(const uint8_t* p) { return _mm256_cvtepu8_epi32(load8(p)); }
inline __m256i widen8(const int8_t* p) { return _mm256_cvtepi8_epi32(load8(p)); }

// Prefix sums of eight 32-bit lanes.
inline __m256i prefix8(__m256i x) {
    x = _mm256_add_epi32(x, _mm256_slli_si256(x, 4));
    x = _mm256_add_epi32(x, _mm256_slli_si256(x, 8));
    const __m256i low_total = _mm256_permutevar8x32_epi32(x, _mm256_set1_epi32(3));
    return _mm256_add_epi32(x, _mm256_blend_epi32(_mm256_setzero_si256(), low_total, 0xF0));
}

// Transposes eight rows of eight 32-bit lanes (v[r] element k becomes
// v[k] element r).
inline void transpose8(__m256i* v) {
    __m256i t[8], u[8];
    for (int r = 0; r < 8; r += 2) {
        t[r] = _mm256_unpacklo_epi32(v[r], v[r + 1]);
        t[r + 1] = _mm256_unpackhi_epi32(v[r], v[r + 1]);
    }
    for (int r = 0; r < 8; r += 4) {
        u[r] = _mm256_unpacklo_epi64(t[r], t[r + 2]);
        u[r + 1] = _mm256_unpackhi_epi64(t[r], t[r + 2]);
        u[r + 2] = _mm256_unpacklo_epi64(t[r + 1], t[r + 3]);
        u[r + 3] = _mm256_unpackhi_epi64(t[r + 1], t[r + 3]);
    }
    for (int k = 0; k < 4; ++k) {
        v[k] = _mm256_permute2x128_si256(u[k], u[k + 4], 0x20);
        v[k + 4] = _mm256_permute2x128_si256(u[k], u[k + 4], 0x31);
    }
}

// Patch sums of eight columns for destination rows y0 .. y0 + n - 1 (n <= 8),
// given as eight-lane vectors p[0..n), stored column by column as 64-bit.
inline void store_patches(const __m256i* rows, int n, int64_t* patch, int count, int y0) {
    __m256i p[8];
    for (int r = 0; r < 8; ++r) p[r] = r < n ? rows[r] : _mm256_setzero_si256();
    transpose8(p);
    for (int k = 0; k < 8; ++k) {
        int64_t* out = patch + static_cast<ptrdiff_t>(k) * count + y0;
        const __m256i lo = _mm256_cvtepi32_epi64(_mm256_castsi256_si128(p[k]));
        const __m256i hi = _mm256_cvtepi32_epi64(_mm256_extracti128_si256(p[k], 1));
        if (n == 8) {
            store4i(out, lo);
            store4i(out + 4, hi);
        } else {
            alignas(32) int64_t tmp[8];
            store4i(tmp, lo);
            store4i(tmp + 4, hi);
            for (int r = 0; r < n; ++r) out[r] = tmp[r];
        }
    }
}

// Grouped row and patch sums of eight columns (see GroupSums): row deltas
// of the eight columns from two 8-byte loads per row, their prefix sums
// across the lanes, then the patch sums down the rows, eight columns per
// vector, transposed into columns. Fewer than eight columns (the last group
// of a band, whose loads would pass the row's end) go through the twin.
template <class T, bool kSum, bool kSq>
void group_sums(const T* src, int src_step, int rows, int width, int height, int x0, int ncols, int32_t* row_sum8,
                int32_t* row_sq8, int64_t* patch_sum, int64_t* patch_sq) {
    if (ncols < 8 || (!kSum && !kSq)) {
        scalar::group_sums<T, kSum, kSq>(src, src_step, rows, width, height, x0, ncols, row_sum8, row_sq8, patch_sum,
                                         patch_sq);
        return;
    }
    auto load_row = [](const int32_t* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); };
    auto store_row = [](int32_t* p, __m256i v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); };
    for (int i = 0; i < rows; ++i) {
        const T* r = reinterpret_cast<const T*>(reinterpret_cast<const char*>(src) + static_cast<ptrdiff_t>(src_step) * i);
        const __m256i o = widen8(r + x0 - 1), e = widen8(r + x0 + width - 1);
        const __m256i d = _mm256_sub_epi32(e, o);
        if (kSum) {
            const __m256i before = _mm256_set1_epi32(row_sum8[8 * i + 7]);
            store_row(row_sum8 + 8 * i, _mm256_add_epi32(before, prefix8(d)));
        }
        if (kSq) {
            const __m256i before = _mm256_set1_epi32(row_sq8[8 * i + 7]);
            const __m256i q = _mm256_mullo_epi32(_mm256_add_epi32(o, e), d);
            store_row(row_sq8 + 8 * i, _mm256_add_epi32(before, prefix8(q)));
        }
    }
    const int count = rows - height + 1;
    __m256i ps = _mm256_setzero_si256(), pq = _mm256_setzero_si256();
    for (int j = 0; j < height; ++j) {
        if (kSum) ps = _mm256_add_epi32(ps, load_row(row_sum8 + 8 * j));
        if (kSq) pq = _mm256_add_epi32(pq, load_row(row_sq8 + 8 * j));
    }
    __m256i vs[8], vq[8];
    for (int y0 = 0; y0 < count; y0 += 8) {
        const int n = count - y0 < 8 ? count - y0 : 8;
        for (int r = 0; r < n; ++r) {
            const int y = y0 + r;
            if (y > 0) {
                if (kSum)
                    ps = _mm256_add_epi32(ps, _mm256_sub_epi32(load_row(row_sum8 + 8 * (y + height - 1)),
                                                               load_row(row_sum8 + 8 * (y - 1))));
                if (kSq)
                    pq = _mm256_add_epi32(pq, _mm256_sub_epi32(load_row(row_sq8 + 8 * (y + height - 1)),
                                                               load_row(row_sq8 + 8 * (y - 1))));
            }
            vs[r] = ps;
            vq[r] = pq;
        }
        if (kSum) store_patches(vs, n, patch_sum, count, y0);
        if (kSq) store_patches(vq, n, patch_sq, count, y0);
    }
}

// ---- Columns ----

using Columns = SimdColumns<ByteBlocks, FloatBlocks, Batch>;

}  // namespace

const MatchKernels match_kernels_avx2 = {
    {sum_bytes<uint8_t>, run_bytes<uint8_t, true>, run_bytes<uint8_t, false>,
     ORUCV_MATCH_COLUMNS(Columns::column_scores, uint8_t), ORUCV_MATCH_ADVANCES(advance_bytes, uint8_t),
     ORUCV_MATCH_GROUP_SUMS(group_sums, uint8_t)},
    {sum_bytes<int8_t>, run_bytes<int8_t, true>, run_bytes<int8_t, false>,
     ORUCV_MATCH_COLUMNS(Columns::column_scores, int8_t), ORUCV_MATCH_ADVANCES(advance_bytes, int8_t),
     ORUCV_MATCH_GROUP_SUMS(group_sums, int8_t)},
    {sum_floats, run_floats<scalar::SqDiffTerm>, run_floats<scalar::CorrTerm>,
     ORUCV_MATCH_COLUMNS(Columns::column_scores, float), ORUCV_MATCH_ADVANCES(scalar::advance, float),
     {nullptr, nullptr, nullptr, nullptr}},
};

}  // namespace a6
}  // namespace orucv
