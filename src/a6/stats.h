// Image statistics: one reduction engine behind the means, deviations,
// extrema and norms. Every function of stats_list.h has one row kernel: it
// reads one row of one or two images (channel 0 of the row, the row's start
// moved to the channel of interest beforehand) and a mask, and adds to the
// call's accumulator. The kernels are templates over the function's traits
// (kind, norm, pixel type, layout, masking); the engine walks the rows and
// the wrappers finish the accumulator into the results.
#pragma once

#include <cstdint>
#include <type_traits>

#include "core/floats.h"
#include "orucv.h"
#include "stats_list.h"

namespace orucv {
namespace a6 {

enum class StatsKind { Mean, MeanStdDev, SumSq, MinMaxIndx, Norm, NormDiff, NormRel };
enum class StatsNorm { None, Inf, L1, L2 };
enum class StatsLayout { C1, C3C };
enum class StatsMasking { Unmasked, Masked };

// One enumerator per line of the list: kStats_<name>.
enum StatsFunction : int {
#define ORUCV_STATS_ENUM(name, ...) kStats_##name,
    ORUCV_STATS_FUNCTIONS(ORUCV_STATS_ENUM)
#undef ORUCV_STATS_ENUM
        kStatsFunctionCount
};

// What a row kernel adds to. Each kind uses its own part; a call starts from
// a zeroed accumulator (extrema: start_extrema).
struct StatsAcc {
    // 8-bit sums: [0] the image or the difference, [1] the reference of a
    // relative norm. Values (signed for 8s), magnitudes (L1), squares.
    int64_t count;  // selected pixels
    int64_t sum[2];
    int64_t sumsq[2];
    // Inf norms: the largest 8-bit magnitude, or the largest float
    // magnitude's bit pattern (a NaN pattern lies above every number's).
    uint32_t peak[2];
    // Single-precision lanes of float norms and of the masked float mean:
    // lanes 0..3 are the sums, 4..7 room for a 32-byte register.
    float lanes[2][8];
    // Double-double lanes of float sums: value hi, value lo, square hi,
    // square lo, lane x mod 8 for pixel x of a row.
    double dd[4][8];
    // Extrema: 8-bit values or float order keys, and the linear index of the
    // block (8-bit) or of the pixel (float) where each was first found; -1
    // while none was.
    int32_t lo, hi;
    int64_t lo_index, hi_index;
};

// The starting extremes: 256 and -256 for bytes, the keys of +infinity and
// -infinity for floats (compared strictly, so neither ever wins).
void start_extrema(StatsAcc& acc, bool float_keys);

// A row: a (and b) at channel 0 of the row, the mask row, n pixels, and the
// linear raster index of the row's first pixel.
using StatsRow = void (*)(const void* a, const void* b, const uint8_t* mask, int n, int64_t first, StatsAcc* acc);

struct StatsKernels {
    StatsRow row[kStatsFunctionCount];
};

extern const StatsKernels stats_kernels_scalar;
extern const StatsKernels stats_kernels_sse2;
extern const StatsKernels stats_kernels_avx2;
const StatsKernels& stats_kernels();

// The engine: adds every row of the region to acc with function f's kernel.
// coi is 0-based (0 for C1); absent images are null. Arguments are trusted.
// Order-free reductions (8-bit sums, extrema) walk contiguous rows as one.
void stats_reduce(StatsFunction f, const void* a, int aStep, const void* b, int bStep, const uint8_t* mask,
                  int maskStep, OruSize roi, int coi, StatsAcc& acc);

// The single-precision lanes folded in halves: (l0 + l2) + (l1 + l3).
float fold_lanes4(const float* lanes);
// A double-double lane sum (dd[0..1] values, dd[2..3] squares) added in
// halves and rounded once to extended precision. When a lane is not finite
// the lanes' high parts are added instead (an infinity or a NaN, as a plain
// sum would give).
long double dd_lane_total(const StatsAcc& acc, int part);

namespace {  // internal linkage: instruction-set files include this too

// The traits of a function of the list.
template <StatsKind K, StatsNorm N, class Pixel, StatsLayout L, StatsMasking M>
struct StatsFn {
    using T = Pixel;
    static constexpr StatsKind kind = K;
    static constexpr StatsNorm norm = N;
    static constexpr int channels = L == StatsLayout::C3C ? 3 : 1;
    static constexpr bool masked = M == StatsMasking::Masked;
    static constexpr bool is_float = std::is_same<Pixel, Oru32f>::value;
    static constexpr bool is_signed = std::is_same<Pixel, Oru8s>::value;
    static constexpr bool two_images = K == StatsKind::NormDiff || K == StatsKind::NormRel;
    // Float sums follow lanes by position in the row; the rest is order-free.
    static constexpr bool joinable = !is_float || K == StatsKind::MinMaxIndx;
};

template <StatsFunction F>
struct StatsFnOf;
#define ORUCV_STATS_TRAITS(name, kind, norm, T, layout, mask, order)                                        \
    template <>                                                                                             \
    struct StatsFnOf<kStats_##name>                                                                         \
        : StatsFn<StatsKind::kind, StatsNorm::norm, T, StatsLayout::layout, StatsMasking::mask> {};
ORUCV_STATS_FUNCTIONS(ORUCV_STATS_TRAITS)
#undef ORUCV_STATS_TRAITS

}  // namespace

namespace scalar {

// Sample x of a row whose pixels are C samples apart.
template <class T, int C>
static inline T sample(const void* row, int x) {
    return static_cast<const T*>(row)[x * C];
}

// Adds x to the double-double hi + lo: the sum's rounding error, found
// exactly by the two-sum, goes to lo. The error is one number however it is
// found, so the vector paths may take the shorter fast two-sum where it is
// exact (|hi| >= |x|) and keep the same bits. Once hi is not finite, lo
// means nothing.
static inline void dd_add(double& hi, double& lo, double x) {
    const double s = hi + x;
    const double bv = s - hi;
    const double e = (hi - (s - bv)) + (x - bv);
    hi = s;
    lo = lo + e;
}

// Adds x >= 0 (a square) to hi + lo, hi >= 0: with the larger of the two
// known, the rounding error of their sum is small - (s - big) exactly (the
// fast two-sum), in fewer operations than the general two-sum. Both leave
// the same error in lo, so the vector paths choose per vector.
static inline void dd_add_nonnegative(double& hi, double& lo, double x) {
    const double s = hi + x;
    const double big = hi > x ? hi : x, small = hi > x ? x : hi;
    lo = lo + (small - (s - big));
    hi = s;
}

// ---- 8-bit sums of values (and squares) and the count of selected pixels.
template <class T, int C, bool kMasked, bool kSquares>
static inline void moments8(const void* a, const uint8_t* m, int x0, int n, StatsAcc& acc) {
    int64_t count = 0, sum = 0, sq = 0;
    for (int x = x0; x < n; ++x) {
        const int selected = !kMasked || m[x] != 0;
        const int v = sample<T, C>(a, x) * selected;
        count += selected;
        sum += v;
        if (kSquares) sq += v * v;
    }
    acc.count += count;
    acc.sum[0] += sum;
    acc.sumsq[0] += sq;
}

// ---- Float sums of values (and squares) in double-double lanes; unselected
// pixels add 0.0, which changes no lane.
template <int C, bool kMasked, bool kSquares>
static inline void moments_dd(const void* a, const uint8_t* m, int x0, int n, StatsAcc& acc) {
    for (int x = x0; x < n; ++x) {
        const bool selected = !kMasked || m[x];
        const double v = selected ? static_cast<double>(sample<float, C>(a, x)) : 0.0;
        const int lane = x & 7;
        dd_add(acc.dd[0][lane], acc.dd[1][lane], v);
        if (kSquares) dd_add_nonnegative(acc.dd[2][lane], acc.dd[3][lane], v * v);
        acc.count += selected;
    }
}

// ---- The masked float mean's four single-precision lanes: in each group of
// eight pixels lane j takes pixel j, then pixel j + 4; the pixels after the
// last group go to lane 0. x0 is 0 or the end of a group.
static inline void mean_lanes(const void* a, const uint8_t* m, int x0, int n, StatsAcc& acc) {
    const float* s = static_cast<const float*>(a);
    float* lane = acc.lanes[0];
    const auto term = [&](int x) { return m[x] ? s[x] : 0.0f; };
    int x = x0;
    for (; x + 8 <= n; x += 8)
        for (int j = 0; j < 4; ++j) {
            lane[j] = lane[j] + term(x + j);
            lane[j] = lane[j] + term(x + j + 4);
        }
    for (; x < n; ++x) lane[0] = lane[0] + term(x);
    for (x = x0; x < n; ++x) acc.count += m[x] != 0;
}

// ---- 8-bit norms: magnitudes of v (|v|, -128 giving 128) or of v - w, and
// for relative norms of w beside them; unselected pixels add nothing.
template <class T, StatsKind K, StatsNorm N, int C>
static inline void norm8(const void* a, const void* b, const uint8_t* m, int x0, int n, StatsAcc& acc) {
    const auto magnitude = [](int v) { return static_cast<uint32_t>(v < 0 ? -v : v); };
    for (int x = x0; x < n; ++x) {
        const uint32_t selected = m[x] != 0;
        const int v = sample<T, C>(a, x);
        const int w = K == StatsKind::Norm ? 0 : sample<T, C>(b, x);
        const uint32_t d = magnitude(K == StatsKind::Norm ? v : v - w) * selected, r = magnitude(w) * selected;
        if (N == StatsNorm::Inf) {
            acc.peak[0] = d > acc.peak[0] ? d : acc.peak[0];
            if (K == StatsKind::NormRel) acc.peak[1] = r > acc.peak[1] ? r : acc.peak[1];
        } else if (N == StatsNorm::L1) {
            acc.sum[0] += d;
            if (K == StatsKind::NormRel) acc.sum[1] += r;
        } else {
            acc.sumsq[0] += d * d;
            if (K == StatsKind::NormRel) acc.sumsq[1] += r * r;
        }
    }
}

// ---- Float norms: v or v - w in single precision, unselected pixels +0.0;
// L1 and L2 sum in four lanes (pixel x in lane x mod 4), Inf keeps the
// largest magnitude's bit pattern.
template <StatsKind K, StatsNorm N, int C>
static inline void norm_f(const void* a, const void* b, const uint8_t* m, int x0, int n, StatsAcc& acc) {
    for (int x = x0; x < n; ++x) {
        const bool selected = m[x] != 0;
        const float v = sample<float, C>(a, x);
        const float w = K == StatsKind::Norm ? 0.0f : sample<float, C>(b, x);
        const float d = selected ? (K == StatsKind::Norm ? v : v - w) : 0.0f;
        const float r = selected ? w : 0.0f;
        const uint32_t dm = float_bits(d) & 0x7FFFFFFFu, rm = float_bits(r) & 0x7FFFFFFFu;
        if (N == StatsNorm::Inf) {
            acc.peak[0] = dm > acc.peak[0] ? dm : acc.peak[0];
            if (K == StatsKind::NormRel) acc.peak[1] = rm > acc.peak[1] ? rm : acc.peak[1];
        } else {
            float* l0 = acc.lanes[0];
            float* l1 = acc.lanes[1];
            const int j = x & 3;
            l0[j] = l0[j] + (N == StatsNorm::L1 ? bits_float(dm) : d * d);
            if (K == StatsKind::NormRel) l1[j] = l1[j] + (N == StatsNorm::L1 ? bits_float(rm) : r * r);
        }
    }
}

// ---- 8-bit extrema by blocks: one channel in blocks of 32 pixels, then 8,
// then single pixels; the channel of interest in blocks of at most 8. A
// block whose smallest selected value is below the current minimum records
// its first pixel's linear index (likewise for the maximum); x0 is where a
// block starts. Unselected pixels count as 256 for the minimum and -256 for
// the maximum, values that never win.
template <class T, int C, bool kMasked>
static inline void minmax8(const void* a, const uint8_t* m, int x0, int n, int64_t first, StatsAcc& acc) {
    const auto block = [&](int x, int len) {
        int lo = 256, hi = -256;
        for (int j = x; j < x + len; ++j) {
            const int keep = kMasked ? -static_cast<int>(m[j] != 0) : -1;
            const int v = sample<T, C>(a, j);
            const int v_lo = (v & keep) | (256 & ~keep), v_hi = (v & keep) | (-256 & ~keep);
            lo = v_lo < lo ? v_lo : lo;
            hi = v_hi > hi ? v_hi : hi;
        }
        if (lo < acc.lo) acc.lo = lo, acc.lo_index = first + x;
        if (hi > acc.hi) acc.hi = hi, acc.hi_index = first + x;
    };
    int x = x0;
    if (C == 1) {
        for (; x + 32 <= n; x += 32) block(x, 32);
        for (; x + 8 <= n; x += 8) block(x, 8);
        for (; x < n; ++x) block(x, 1);
    } else {
        for (; x < n; x += 8) block(x, n - x < 8 ? n - x : 8);
    }
}

// ---- Float extrema, pixel by pixel, by order keys compared strictly.
template <int C, bool kMasked>
static inline void minmax_f(const void* a, const uint8_t* m, int x0, int n, int64_t first, StatsAcc& acc) {
    for (int x = x0; x < n; ++x) {
        // Unselected pixels take the keys that never win.
        const int32_t keep = kMasked ? -static_cast<int32_t>(m[x] != 0) : -1;
        const int32_t key = order_key(sample<float, C>(a, x));
        const int32_t key_lo = (key & keep) | (INT32_MAX & ~keep), key_hi = (key & keep) | (INT32_MIN & ~keep);
        if (key_lo < acc.lo) acc.lo = key_lo, acc.lo_index = first + x;
        if (key_hi > acc.hi) acc.hi = key_hi, acc.hi_index = first + x;
    }
}

// Pixels x0..n-1 of a row with function F's reduction. x0 is 0, or where a
// vector kernel stopped: a multiple of 8 pixels, at a block's start.
template <StatsFunction F>
static inline void stats_row_from(const void* a, const void* b, const uint8_t* m, int x0, int n, int64_t first,
                                  StatsAcc& acc) {
    using Fn = StatsFnOf<F>;
    using T = typename Fn::T;
    constexpr int C = Fn::channels;
    constexpr StatsKind K = Fn::kind;
    if constexpr (K == StatsKind::MinMaxIndx) {
        if constexpr (Fn::is_float) minmax_f<C, Fn::masked>(a, m, x0, n, first, acc);
        else minmax8<T, C, Fn::masked>(a, m, x0, n, first, acc);
    } else if constexpr (K == StatsKind::Norm || K == StatsKind::NormDiff || K == StatsKind::NormRel) {
        if constexpr (Fn::is_float) norm_f<K, Fn::norm, C>(a, b, m, x0, n, acc);
        else norm8<T, K, Fn::norm, C>(a, b, m, x0, n, acc);
    } else if constexpr (!Fn::is_float) {
        moments8<T, C, Fn::masked, K != StatsKind::Mean>(a, m, x0, n, acc);
    } else if constexpr (K == StatsKind::Mean && C == 1) {
        mean_lanes(a, m, x0, n, acc);
    } else {
        moments_dd<C, Fn::masked, K != StatsKind::Mean>(a, m, x0, n, acc);
    }
}

template <StatsFunction F>
static void stats_row(const void* a, const void* b, const uint8_t* m, int n, int64_t first, StatsAcc* acc) {
    stats_row_from<F>(a, b, m, 0, n, first, *acc);
}

}  // namespace scalar
}  // namespace a6
}  // namespace orucv
