// Block kernels and score kernels of template matching.
//
// The matcher re-lays the source into a strip whose row pitch is the
// template width, so that every template-sized block of a destination column
// is one contiguous run of N = width * height elements starting `width`
// elements after the previous one. The kernels here work on such runs:
//  - run kernels: the sum, the sum of squared differences and the sum of
//    products of one run (with the packed template);
//  - column kernels: the sums of squared differences or of products of
//    `count` consecutive blocks of one column with the template;
//  - score kernels: the scores of one destination column from the block
//    results and the patch sums.
// Byte images are summed exactly in 64-bit integers. Float images are summed
// in double precision over eight lanes: lane j adds the terms of elements
// i = j, j + 8, j + 16, ... in that order (the last n mod 8 elements go to
// lanes 0, 1, ...), and the lanes end as ((l0 + l4) + (l2 + l6)) +
// ((l1 + l5) + (l3 + l7)). Every path follows that order, so all paths give
// the same bits.
//
// The scalar twins are static inline so that every translation unit (each
// compiled for its own instruction set) keeps its own copy for tails.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

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

enum MatchMethod { kSqDiff, kSqDiffNormed, kCorr, kCorrNormed, kCoeff, kCoeffNormed, kMatchMethods };

constexpr bool method_coeff(int m) { return m == kCoeff || m == kCoeffNormed; }
constexpr bool method_normed(int m) { return m == kSqDiffNormed || m == kCorrNormed || m == kCoeffNormed; }
constexpr bool method_sqdiff(int m) { return m == kSqDiff || m == kSqDiffNormed; }

// Per-call constants of the score formulas.
struct ScoreConstants {
    double k;      // 1 / (N + 2^-52)
    double neg_t;  // -T
    double r_tpl;  // r(T2) or r(T2 - T^2 k)
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
};

struct MatchKernels {
    BlockKernels<uint8_t> u8;
    BlockKernels<int8_t> s8;
    BlockKernels<float> f32;
};

// The six column kernels of one pixel type, in method order.
#define ORUCV_MATCH_COLUMNS(fn, T)                                                                    \
    {                                                                                                 \
        fn<T, ::orucv::a6::kSqDiff>, fn<T, ::orucv::a6::kSqDiffNormed>, fn<T, ::orucv::a6::kCorr>,    \
            fn<T, ::orucv::a6::kCorrNormed>, fn<T, ::orucv::a6::kCoeff>, fn<T, ::orucv::a6::kCoeffNormed> \
    }

extern const MatchKernels match_kernels_scalar;
extern const MatchKernels match_kernels_sse2;
extern const MatchKernels match_kernels_avx2;
const MatchKernels& match_kernels();

template <class T>
inline const BlockKernels<T>& block_kernels(const MatchKernels& k);
template <>
inline const BlockKernels<uint8_t>& block_kernels<uint8_t>(const MatchKernels& k) { return k.u8; }
template <>
inline const BlockKernels<int8_t>& block_kernels<int8_t>(const MatchKernels& k) { return k.s8; }
template <>
inline const BlockKernels<float>& block_kernels<float>(const MatchKernels& k) { return k.f32; }

namespace scalar {

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

// The score of a block whose sum (exact for bytes) is b.
template <int M, class Acc>
static inline float score(double b, Acc sum, Acc sum_sq, const ScoreConstants& c) {
    if (M == kSqDiff || M == kCorr) return static_cast<float>(b);
    if (M == kSqDiffNormed || M == kCorrNormed) return static_cast<float>(b * c.r_tpl * rsqrt(to_double(sum_sq)));
    const double s = to_double(sum);
    const double sk = s * c.k;
    const double num = b + sk * c.neg_t;
    if (M == kCoeff) return static_cast<float>(num);
    const double patch = to_double(sum_sq) - sk * s;
    return static_cast<float>(num * c.r_tpl * rsqrt(patch));
}

// The score of block y, reading only the patch sums the method uses.
template <int M, class Acc>
static inline float score_at(double b, const Acc* sum, const Acc* sum_sq, int y, const ScoreConstants& c) {
    return score<M>(b, sum ? sum[y] : Acc(0), sum_sq ? sum_sq[y] : Acc(0), c);
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

}  // namespace scalar
}  // namespace a6
}  // namespace orucv
