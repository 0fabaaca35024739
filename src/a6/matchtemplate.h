// Template matching: the kernel table, the engine the wrappers call, and
// the scalar twins of the kernels.
//
// The engine re-lays the source into a strip whose row pitch is the
// template width, so that every template-sized block of a destination column
// is one contiguous run of N = width * height elements starting `width`
// elements after the previous one. The kernels here work on such runs:
//  - run kernels: the sum, the sum of squared differences and the sum of
//    products of one run (with the packed template);
//  - column kernels: the scores of the consecutive blocks of one column,
//    from their sums of squared differences or of products with the
//    template and the patch sums;
//  - strip advances: the strip moved one column on, with the running row
//    sums and the patch sums of the column;
//  - grouped sums (byte images): the row and patch sums of eight columns at
//    once.
// Byte images are summed exactly in 64-bit integers. Float images are summed
// in double precision over eight lanes: lane j adds the terms of elements
// i = j, j + 8, j + 16, ... in that order (the last n mod 8 elements go to
// lanes 0, 1, ...), and the lanes end as ((l0 + l4) + (l2 + l6)) +
// ((l1 + l5) + (l3 + l7)). Every path follows that order, so all paths give
// the same bits.
//
// The scalar twins are static inline so that every translation unit (each
// compiled for its own instruction set) keeps its own copy for tails; the
// vector kernels are in matchtemplate_simd.h.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

#include "matchtemplate_list.h"
#include "orucv.h"

namespace orucv {
namespace a6 {

// Accumulator of each pixel type: exact integers for bytes, double for floats.
template <class T>
struct MatchAcc {
    using type = int64_t;
};
template <>
struct MatchAcc<float> {
    using type = double;
};

// The methods, k<Method> in the order of the list's size queries.
#define ORUCV_MATCH_METHOD_BufSize(method) k##method,
#define ORUCV_MATCH_METHOD_Match(method)
#define ORUCV_MATCH_METHOD(name, shape, T, method) ORUCV_MATCH_METHOD_##shape(method)
enum MatchMethod { ORUCV_MATCHTEMPLATE_FUNCTIONS(ORUCV_MATCH_METHOD) kMatchMethods };
#undef ORUCV_MATCH_METHOD
#undef ORUCV_MATCH_METHOD_Match
#undef ORUCV_MATCH_METHOD_BufSize

namespace {  // internal linkage: instruction-set files include this header
constexpr bool method_coeff(int m) { return m == kCoeff || m == kCoeffNormed; }
constexpr bool method_normed(int m) { return m == kSqDiffNormed || m == kCorrNormed || m == kCoeffNormed; }
constexpr bool method_sqdiff(int m) { return m == kSqDiff || m == kSqDiffNormed; }
}  // namespace

// Per-call constants of the score formulas.
struct ScoreConstants {
    double k;      // 1 / (N + 2^-52)
    double neg_t;  // -T
    double r_tpl;  // r(T2) or r(T2 - T^2 k)
    double t2;     // T2, exact for bytes (normalised methods)
};

// Scores of `count` consecutive blocks of one destination column: block y
// is the run at runs + y * width (width * height elements), its sum of
// squared differences (SqDiff methods) or of products (the others) with the
// template meets the patch sums sum[y] and sum_sq[y] (read only by the
// methods that use them) in the method's formula, and the float goes to
// out[y * out_step]. Reads nothing outside the runs, the template and the
// sums it uses.
template <class T>
using ColumnScores = void (*)(const T* runs, int width, int height, int count, const T* tpl,
                              const typename MatchAcc<T>::type* sum, const typename MatchAcc<T>::type* sum_sq,
                              const ScoreConstants& c, float* out, int out_step);

// Moves the strip view of a column one column right and brings the row
// sums (row_sum, row_sq) and the patch sums of the column (patch_sum,
// patch_sq) along; see scalar::advance. The sums a method does not use are
// null and not touched.
template <class T>
using Advance = void (*)(T* view, const T* src_col, int src_step, int rows, int width, int height,
                         typename MatchAcc<T>::type* row_sum, typename MatchAcc<T>::type* row_sq,
                         typename MatchAcc<T>::type* patch_sum, typename MatchAcc<T>::type* patch_sq);

// The row and patch sums of up to 8 consecutive columns x0 .. x0 + ncols - 1
// of a band of a byte image at once (what the strip advance does to them,
// for several columns). src is the band's first row at column 0, rows its
// number of rows. Row sums are 32-bit, 8 per row: row_sum8[8 i + k] is the
// sum of row i at column x0 + k; on entry row_sum8[8 i + 7] holds the one
// at column x0 - 1. Patch sums go out column by column: patch_sum[k *
// count + y] for column x0 + k, count = rows - height + 1. Only for runs of
// at most 32768 elements, whose sums all fit 32 bits; unused sums are null.
template <class T>
using GroupSums = void (*)(const T* src, int src_step, int rows, int width, int height, int x0, int ncols,
                           int32_t* row_sum8, int32_t* row_sq8, int64_t* patch_sum, int64_t* patch_sq);

template <class T>
struct BlockKernels {
    using Acc = typename MatchAcc<T>::type;
    // Sum of p[0..n), n >= 1.
    Acc (*sum)(const T* p, int n);
    // Sum of (a[i] - b[i])^2 and of a[i] * b[i] over i < n, n >= 1.
    Acc (*sqdiff)(const T* a, const T* b, int n);
    Acc (*corr)(const T* a, const T* b, int n);
    // Indexed by MatchMethod.
    ColumnScores<T> column_scores[kMatchMethods];
    // Indexed by sums_index(row sums used, row sums of squares used).
    Advance<T> advance[4];
    // Byte images only (null for floats); indexed as advance.
    GroupSums<T> group_sums[4];
};

struct MatchKernels {
    BlockKernels<uint8_t> u8;
    BlockKernels<int8_t> s8;
    BlockKernels<float> f32;
};

extern const MatchKernels match_kernels_scalar;
extern const MatchKernels match_kernels_sse2;
extern const MatchKernels match_kernels_avx2;
const MatchKernels& match_kernels();

// Engine; arguments checked by the wrappers. The scratch size of a method
// for a source and template of element size 1 or 4 (the template no larger
// than the source), or -1 where it would not fit an int.
int64_t match_buffer_bytes(MatchMethod m, OruSize src, OruSize tpl, int element);
// The scores into dst, with the caller's scratch of match_buffer_bytes;
// oruStsSize where that size would not fit an int.
template <class T>
OruStatus match_template(MatchMethod m, const T* src, int srcStep, OruSize src_size, const T* tpl, int tplStep,
                         OruSize tpl_size, float* dst, int dstStep, uint8_t* buffer);

namespace {  // internal linkage: instruction-set files include this header

constexpr int sums_index(bool sum, bool sum_sq) { return int(sum) + 2 * int(sum_sq); }

template <class T>
inline const BlockKernels<T>& block_kernels(const MatchKernels& k) {
    if constexpr (sizeof(T) == 4) return k.f32;
    else if constexpr (std::is_signed<T>::value) return k.s8;
    else return k.u8;
}

// A table of one pixel type filled by name from a kernel set K with the
// static member templates sum<T>, sqdiff<T>, corr<T>, column_scores<T, M>,
// advance<T, kSum, kSq> and (byte images) group_sums<T, kSum, kSq>.
template <class T, class K, int... M>
constexpr void fill_columns(BlockKernels<T>& k, std::integer_sequence<int, M...>) {
    ((k.column_scores[M] = K::template column_scores<T, M>), ...);
}

template <class T, class K, bool kSum, bool kSq>
constexpr void fill_sums(BlockKernels<T>& k) {
    k.advance[sums_index(kSum, kSq)] = K::template advance<T, kSum, kSq>;
    if constexpr (sizeof(T) == 1) k.group_sums[sums_index(kSum, kSq)] = K::template group_sums<T, kSum, kSq>;
}

template <class T, class K>
constexpr BlockKernels<T> block_table() {
    BlockKernels<T> k{};
    k.sum = K::template sum<T>;
    k.sqdiff = K::template sqdiff<T>;
    k.corr = K::template corr<T>;
    fill_columns<T, K>(k, std::make_integer_sequence<int, kMatchMethods>());
    fill_sums<T, K, false, false>(k);
    fill_sums<T, K, true, false>(k);
    fill_sums<T, K, false, true>(k);
    fill_sums<T, K, true, true>(k);
    return k;
}

template <class K>
constexpr MatchKernels match_table() {
    MatchKernels t{};
    t.u8 = block_table<uint8_t, K>();
    t.s8 = block_table<int8_t, K>();
    t.f32 = block_table<float, K>();
    return t;
}

}  // namespace

namespace scalar {
namespace {  // internal linkage: instruction-set files include this header

constexpr double kDoubleEpsilon = 2.220446049250313e-16;  // 2^-52
constexpr double kFloatEpsilon = 1.1920928955078125e-07;  // 2^-23
constexpr uint32_t kRsqrtMagic = 0xBE6F0000u;

// 1 / sqrt(|v| + 2^-23): an estimate from the bits of the single-precision
// value, then four Newton steps y = y * (1.5 - ((a / 2) * y) * y) in double.
static inline double rsqrt(double v) {
    const double a = std::fabs(v) + kFloatEpsilon;
    const float af = static_cast<float>(a);
    uint32_t b;
    std::memcpy(&b, &af, sizeof b);
    const uint32_t yb = (kRsqrtMagic - b) >> 1;
    float y0;
    std::memcpy(&y0, &yb, sizeof y0);
    const double half_a = 0.5 * a;
    double y = y0;
    for (int i = 0; i < 4; ++i) y = y * (1.5 - half_a * y * y);
    return y;
}

// Exact for the integer sums of byte images, which stay far below 2^51.
static inline double to_double(int64_t v) { return static_cast<double>(v); }
static inline double to_double(double v) { return v; }

// The score of a block whose sum (exact for bytes) is b. The coefficient
// numerator is C + (S k)(-T); the variance terms square first, then scale:
// S2 - (S S) k, as T2 - (T T) k for the template.
template <int M, class Acc>
static inline float score(double b, Acc sum, Acc sum_sq, const ScoreConstants& c) {
    if (M == kSqDiff || M == kCorr) return static_cast<float>(b);
    if (M == kSqDiffNormed || M == kCorrNormed) return static_cast<float>(b * c.r_tpl * rsqrt(to_double(sum_sq)));
    const double s = to_double(sum);
    const double sk = s * c.k;
    const double num = b + sk * c.neg_t;
    if (M == kCoeff) return static_cast<float>(num);
    const double patch = to_double(sum_sq) - s * s * c.k;
    return static_cast<float>(num * c.r_tpl * rsqrt(patch));
}

// The score of block y, reading only the patch sums the method uses.
template <int M, class Acc>
static inline float score_at(double b, const Acc* sum, const Acc* sum_sq, int y, const ScoreConstants& c) {
    return score<M>(b, sum ? sum[y] : Acc(0), sum_sq ? sum_sq[y] : Acc(0), c);
}

// Moves the strip view one column right: row i of the new view takes the
// source element src_col[i * src_step bytes] in its last slot, which held
// the first element of row i + 1 of the previous view; that element leaves
// row i + 1, so it is read before being overwritten. Row sums follow with
// old = the leaving and new = the entering element: sum += new - old and
// sum of squares += (old + new) * (new - old), formed in 32-bit integers
// for bytes and in double for floats. The patch sums of the column follow
// in the same pass: patch y is complete once row y + height - 1 is; the
// first adds rows 0..height-1, each next one adds the row entering at the
// bottom and subtracts the one leaving at the top.
template <class T, bool kSum, bool kSq>
static inline void advance(T* view, const T* src_col, int src_step, int rows, int width, int height,
                           typename MatchAcc<T>::type* row_sum, typename MatchAcc<T>::type* row_sq,
                           typename MatchAcc<T>::type* patch_sum, typename MatchAcc<T>::type* patch_sq) {
    using Acc = typename MatchAcc<T>::type;
    T leaving = view[-1];
    Acc ps = 0, pq = 0;
    for (int i = 0; i < rows; ++i) {
        T* slot = view + static_cast<ptrdiff_t>(i) * width + width - 1;
        const T entering = *reinterpret_cast<const T*>(reinterpret_cast<const char*>(src_col) +
                                                        static_cast<ptrdiff_t>(src_step) * i);
        const T next_leaving = i + 1 < rows ? *slot : T(0);
        *slot = entering;
        if (kSum || kSq) {
            // The new row sums stay in registers for the patch sums.
            Acc rs = 0, rq = 0;
            if (sizeof(T) == 1) {
                const int o = leaving, e = entering;
                if (kSum) row_sum[i] = rs = row_sum[i] + (e - o);
                if (kSq) row_sq[i] = rq = row_sq[i] + static_cast<Acc>((o + e) * (e - o));
            } else {
                const double o = leaving, e = entering;
                if (kSum) row_sum[i] = rs = row_sum[i] + (e - o);
                if (kSq) row_sq[i] = rq = row_sq[i] + (o + e) * (e - o);
            }
            const int y = i - height + 1;
            if (y == 0) {
                for (int j = 0; j < height; ++j) {
                    if (kSum) ps += row_sum[j];
                    if (kSq) pq += row_sq[j];
                }
            } else if (y > 0) {
                if (kSum) ps = ps + rs - row_sum[y - 1];
                if (kSq) pq = pq + rq - row_sq[y - 1];
            }
            if (y >= 0) {
                if (kSum) patch_sum[y] = ps;
                if (kSq) patch_sq[y] = pq;
            }
        }
        leaving = next_leaving;
    }
}

// The scalar twin of the grouped row and patch sums (see GroupSums).
template <class T, bool kSum, bool kSq>
static inline void group_sums(const T* src, int src_step, int rows, int width, int height, int x0, int ncols,
                              int32_t* row_sum8, int32_t* row_sq8, int64_t* patch_sum, int64_t* patch_sq) {
    for (int i = 0; i < rows; ++i) {
        const T* r = reinterpret_cast<const T*>(reinterpret_cast<const char*>(src) + static_cast<ptrdiff_t>(src_step) * i);
        int32_t rs = kSum ? row_sum8[8 * i + 7] : 0, rq = kSq ? row_sq8[8 * i + 7] : 0;
        for (int k = 0; k < ncols; ++k) {
            const int o = r[x0 - 1 + k], e = r[x0 + width - 1 + k];
            if (kSum) row_sum8[8 * i + k] = rs = rs + (e - o);
            if (kSq) row_sq8[8 * i + k] = rq = rq + (o + e) * (e - o);
        }
    }
    const int count = rows - height + 1;
    for (int k = 0; k < ncols; ++k) {
        int64_t ps = 0, pq = 0;
        for (int j = 0; j < height; ++j) {
            if (kSum) ps += row_sum8[8 * j + k];
            if (kSq) pq += row_sq8[8 * j + k];
        }
        for (int y = 0; y < count; ++y) {
            if (y > 0) {
                if (kSum) ps += row_sum8[8 * (y + height - 1) + k] - row_sum8[8 * (y - 1) + k];
                if (kSq) pq += row_sq8[8 * (y + height - 1) + k] - row_sq8[8 * (y - 1) + k];
            }
            if (kSum) patch_sum[static_cast<ptrdiff_t>(k) * count + y] = ps;
            if (kSq) patch_sq[static_cast<ptrdiff_t>(k) * count + y] = pq;
        }
    }
}

// ---- Byte images: exact integer sums ----

template <class T>
static inline int64_t sum_bytes(const T* p, int n) {
    int64_t s = 0;
    for (int i = 0; i < n; ++i) s += p[i];
    return s;
}

template <class T>
static inline int64_t sqdiff_bytes(const T* a, const T* b, int n) {
    int64_t s = 0;
    for (int i = 0; i < n; ++i) {
        const int d = a[i] - b[i];
        s += d * d;
    }
    return s;
}

template <class T>
static inline int64_t corr_bytes(const T* a, const T* b, int n) {
    int64_t s = 0;
    for (int i = 0; i < n; ++i) s += a[i] * b[i];
    return s;
}

// ---- Float images: eight lanes in double ----

static inline double combine_lanes(const double* l) {
    const double v0 = l[0] + l[4], v1 = l[1] + l[5], v2 = l[2] + l[6], v3 = l[3] + l[7];
    return (v0 + v2) + (v1 + v3);
}

struct SumTerm {
    static double term(float a, float) { return a; }
};
struct SqDiffTerm {
    static double term(float a, float b) {
        const double d = static_cast<double>(a) - static_cast<double>(b);
        return d * d;
    }
};
struct CorrTerm {
    static double term(float a, float b) { return static_cast<double>(a) * static_cast<double>(b); }
};

// Adds the terms of elements from..n-1 to the lanes, from a multiple of 8.
template <class Term>
static inline void add_lanes(double* l, const float* a, const float* b, int from, int n) {
    int i = from;
    for (; i + 8 <= n; i += 8)
        for (int j = 0; j < 8; ++j) l[j] += Term::term(a[i + j], b[i + j]);
    for (int j = 0; i + j < n; ++j) l[j] += Term::term(a[i + j], b[i + j]);
}

template <class Term>
static inline double lanes_sum(const float* a, const float* b, int n) {
    double l[8] = {0, 0, 0, 0, 0, 0, 0, 0};
    add_lanes<Term>(l, a, b, 0, n);
    return combine_lanes(l);
}

static inline double sum_32f(const float* p, int n) { return lanes_sum<SumTerm>(p, p, n); }
static inline double sqdiff_32f(const float* a, const float* b, int n) { return lanes_sum<SqDiffTerm>(a, b, n); }
static inline double corr_32f(const float* a, const float* b, int n) { return lanes_sum<CorrTerm>(a, b, n); }

static inline int64_t sum_run(const uint8_t* p, int n) { return sum_bytes(p, n); }
static inline int64_t sum_run(const int8_t* p, int n) { return sum_bytes(p, n); }
static inline double sum_run(const float* p, int n) { return sum_32f(p, n); }
static inline int64_t sqdiff_run(const uint8_t* a, const uint8_t* b, int n) { return sqdiff_bytes(a, b, n); }
static inline int64_t sqdiff_run(const int8_t* a, const int8_t* b, int n) { return sqdiff_bytes(a, b, n); }
static inline double sqdiff_run(const float* a, const float* b, int n) { return sqdiff_32f(a, b, n); }
static inline int64_t corr_run(const uint8_t* a, const uint8_t* b, int n) { return corr_bytes(a, b, n); }
static inline int64_t corr_run(const int8_t* a, const int8_t* b, int n) { return corr_bytes(a, b, n); }
static inline double corr_run(const float* a, const float* b, int n) { return corr_32f(a, b, n); }

// A column through the run kernels, one block at a time.
template <class T, int M>
static inline void column_scores(const T* runs, int width, int height, int count, const T* tpl,
                                 const typename MatchAcc<T>::type* sum, const typename MatchAcc<T>::type* sum_sq,
                                 const ScoreConstants& c, float* out, int out_step) {
    const int n = width * height;
    for (int y = 0; y < count; ++y) {
        const T* run = runs + static_cast<ptrdiff_t>(y) * width;
        const auto block = method_sqdiff(M) ? sqdiff_run(run, tpl, n) : corr_run(run, tpl, n);
        out[static_cast<ptrdiff_t>(y) * out_step] = score_at<M>(to_double(block), sum, sum_sq, y, c);
    }
}

// The twins as a kernel set (see block_table).
struct ScalarKernels {
    template <class T>
    static typename MatchAcc<T>::type sum(const T* p, int n) {
        return sum_run(p, n);
    }
    template <class T>
    static typename MatchAcc<T>::type sqdiff(const T* a, const T* b, int n) {
        return sqdiff_run(a, b, n);
    }
    template <class T>
    static typename MatchAcc<T>::type corr(const T* a, const T* b, int n) {
        return corr_run(a, b, n);
    }
    template <class T, int M>
    static void column_scores(const T* runs, int width, int height, int count, const T* tpl,
                              const typename MatchAcc<T>::type* sum, const typename MatchAcc<T>::type* sum_sq,
                              const ScoreConstants& c, float* out, int out_step) {
        scalar::column_scores<T, M>(runs, width, height, count, tpl, sum, sum_sq, c, out, out_step);
    }
    template <class T, bool kSum, bool kSq>
    static void advance(T* view, const T* src_col, int src_step, int rows, int width, int height,
                        typename MatchAcc<T>::type* row_sum, typename MatchAcc<T>::type* row_sq,
                        typename MatchAcc<T>::type* patch_sum, typename MatchAcc<T>::type* patch_sq) {
        scalar::advance<T, kSum, kSq>(view, src_col, src_step, rows, width, height, row_sum, row_sq, patch_sum,
                                      patch_sq);
    }
    template <class T, bool kSum, bool kSq>
    static void group_sums(const T* src, int src_step, int rows, int width, int height, int x0, int ncols,
                           int32_t* row_sum8, int32_t* row_sq8, int64_t* patch_sum, int64_t* patch_sq) {
        scalar::group_sums<T, kSum, kSq>(src, src_step, rows, width, height, x0, ncols, row_sum8, row_sq8,
                                         patch_sum, patch_sq);
    }
};

}  // namespace
}  // namespace scalar
}  // namespace a6
}  // namespace orucv
