// The statistics row kernels written once over the vector operations of
// ops_<isa>.h. Each runs whole vectors and hands the rest of the row to its
// scalar twin, which continues the same lanes, blocks and counts. Channel of
// interest rows gather channel 0 of kBytes (kFloats) pixels per vector and
// keep one pixel to spare after the last vector, so that no load passes the
// row whichever channel the row starts at. Internal linkage: each
// instruction-set file instantiates its own.
#pragma once

#include "a6/stats.h"

namespace orucv {
namespace a6 {
namespace {

template <class V>
struct StatsRows {
    using I = typename V::I;
    using F = typename V::F;
    using D = typename V::D;

    // Integer squares are summed in 32-bit lanes, at most 4 * 255^2 per
    // vector, alternately into two sets, and widened to 64 bits after at most
    // this many vectors (4097 * 4 * 255^2 < 2^31).
    static constexpr int kFlush = 8192;
    // Extrema: pixels per chunk whose extremes are compared with the current
    // ones (a multiple of 32 and of every vector width).
    static constexpr int kChunk8 = 1024;
    static constexpr int kChunkF = 256;
    static constexpr unsigned kAllBytes = ~0u >> (32 - V::kBytes);

    // Where whole vectors may run: to the row's end for one channel, one
    // pixel short of it for the channel of interest.
    template <int C>
    static int vector_end(int n) {
        return C == 1 ? n : n - 1;
    }
    template <int C>
    static I load8(const uint8_t* s, int x) {
        return C == 1 ? V::load(s + x) : V::load_deinterleave3_u8(s + 3 * x);
    }
    template <int C>
    static F loadf(const float* s, int x) {
        return C == 1 ? V::loadf(s + x) : V::load_deinterleave3_f(s + 3 * x);
    }
    // All ones in the 32-bit lanes of unselected pixels.
    static I unselected32(const uint8_t* m, int x) { return V::cmpeq32(V::load_widen4_u8(m + x), V::zero()); }
    static F clear(I mask, F v) { return V::castf(V::andnot(mask, V::cast(v))); }

    // Whole vectors of kWidth pixels from 0 while x + kWidth <= end: body(x,
    // k) alternates k = 0, 1 (two sets of accumulators, so that the adds of
    // one step do not wait for the other's), in runs of at most kFlush
    // vectors, each followed by flush(). Returns where the vectors stopped.
    template <int kWidth, class Body, class Flush>
    static int vector_runs(int end, Body body, Flush flush) {
        int i = 0;
        while (i + kWidth <= end) {
            const int run = (end - i) / kWidth < kFlush ? (end - i) / kWidth : kFlush;
            const int stop = i + run * kWidth;
            for (; i + 2 * kWidth <= stop; i += 2 * kWidth) {
                body(i, 0);
                body(i + kWidth, 1);
            }
            if (i < stop) {
                body(i, 0);
                i += kWidth;
            }
            flush();
        }
        return i;
    }
    // Squares in 32-bit lanes into 64-bit ones.
    static void widen_squares(I& sq32, I& sq64) {
        I lo, hi;
        V::widen_u32(sq32, lo, hi);
        sq64 = V::add64(sq64, V::add64(lo, hi));
        sq32 = V::zero();
    }

    // ---- 8-bit sums. Signed bytes are summed biased by 128, so that sums
    // and squares are those of unsigned bytes, and the bias is taken off at
    // the end.
    template <class T, int C, bool kMasked, bool kSquares>
    static void moments8(const void* a, const uint8_t* m, int n, StatsAcc& acc) {
        constexpr bool kSigned = std::is_same<T, Oru8s>::value;
        const uint8_t* s = static_cast<const uint8_t*>(a);
        const I zero = V::zero();
        I sum[2] = {zero, zero}, count[2] = {zero, zero}, sq32[2] = {zero, zero}, sq64 = zero;
        const int i = vector_runs<V::kBytes>(
            vector_end<C>(n),
            [&](int x, int k) {
                const I v = load8<C>(s, x);
                I u = kSigned ? V::xor_(v, V::set8(0x80)) : v;
                if (kMasked) {
                    const I z = V::cmpeq8(V::load(m + x), zero);
                    u = V::andnot(z, u);
                    count[k] = V::add64(count[k], V::sad_u8(V::andnot(z, V::set8(1)), zero));
                }
                sum[k] = V::add64(sum[k], V::sad_u8(u, zero));
                if (kSquares) sq32[k] = V::add32(sq32[k], V::sumsq4_u8(u));
            },
            [&] {
                widen_squares(sq32[0], sq64);
                widen_squares(sq32[1], sq64);
            });
        // Signed values v were summed as u = v + 128: the sum of v is the sum
        // of u less 128 per pixel, the sum of v^2 that of u^2 - 256 u + 128^2.
        const int64_t selected = kMasked ? V::reduce_add64(V::add64(count[0], count[1])) : i;
        const int64_t sum_u = V::reduce_add64(V::add64(sum[0], sum[1])), sumsq_u = V::reduce_add64(sq64);
        acc.count += selected;
        acc.sum[0] += kSigned ? sum_u - 128 * selected : sum_u;
        acc.sumsq[0] += kSigned ? sumsq_u - 256 * sum_u + 16384 * selected : sumsq_u;
        scalar::moments8<T, C, kMasked, kSquares>(a, m, i, n, acc);
    }

    // ---- Float sums in double-double lanes: eight pixels a step, lane j of
    // the eight in double vector j / kDoubles. Every way of adding below
    // leaves in lo the exact rounding error of hi + x, which is one number
    // whichever way finds it (zeros included: lo is never -0.0), so a vector
    // path takes the cheapest that is exact for the operands at hand.
    static void two_sum(D& hi, D& lo, D x) {
        const D s = V::addd(hi, x);
        const D bv = V::subd(s, hi);
        const D e = V::addd(V::subd(hi, V::subd(s, bv)), V::subd(x, bv));
        hi = s;
        lo = V::addd(lo, e);
    }
    // Exact when |hi| >= |x| in every lane.
    static void fast_two_sum(D& hi, D& lo, D x) {
        const D s = V::addd(hi, x);
        lo = V::addd(lo, V::subd(x, V::subd(s, hi)));
        hi = s;
    }
    // Exact for x >= 0 and hi >= 0: the larger of the two is their maximum.
    static void ordered_two_sum(D& hi, D& lo, D x) {
        const D s = V::addd(hi, x);
        lo = V::addd(lo, V::subd(V::mind(hi, x), V::subd(s, V::maxd(hi, x))));
        hi = s;
    }
    static void exact_add(D& hi, D& lo, D x) {
        if (V::movemaskd(V::cmpltd(V::absd(hi), V::absd(x))) == 0) fast_two_sum(hi, lo, x);
        else two_sum(hi, lo, x);
    }
    static void exact_add_nonnegative(D& hi, D& lo, D x) {
        if (V::movemaskd(V::cmpltd(hi, x)) == 0) fast_two_sum(hi, lo, x);
        else ordered_two_sum(hi, lo, x);
    }
    template <int C, bool kMasked, bool kSquares>
    static void moments_dd(const void* a, const uint8_t* m, int n, StatsAcc& acc) {
        constexpr int kD = 8 / V::kDoubles;
        const float* s = static_cast<const float*>(a);
        D hs[kD], ls[kD], hq[kD], lq[kD];
        for (int k = 0; k < kD; ++k) {
            hs[k] = V::loadd(acc.dd[0] + k * V::kDoubles);
            ls[k] = V::loadd(acc.dd[1] + k * V::kDoubles);
            hq[k] = V::loadd(acc.dd[2] + k * V::kDoubles);
            lq[k] = V::loadd(acc.dd[3] + k * V::kDoubles);
        }
        I unselected = V::zero();
        int i = 0;
        for (const int end = vector_end<C>(n); i + 8 <= end; i += 8)
            for (int f = 0; f < 8 / V::kFloats; ++f) {
                const int x = i + f * V::kFloats;
                F v = loadf<C>(s, x);
                if (kMasked) {
                    const I z = unselected32(m, x);
                    v = clear(z, v);
                    unselected = V::sub32(unselected, z);
                }
                const D d0 = V::widen_lo_f(v), d1 = V::widen_hi_f(v);
                exact_add(hs[2 * f], ls[2 * f], d0);
                exact_add(hs[2 * f + 1], ls[2 * f + 1], d1);
                if (kSquares) {
                    exact_add_nonnegative(hq[2 * f], lq[2 * f], V::muld(d0, d0));
                    exact_add_nonnegative(hq[2 * f + 1], lq[2 * f + 1], V::muld(d1, d1));
                }
            }
        for (int k = 0; k < kD; ++k) {
            V::stored(acc.dd[0] + k * V::kDoubles, hs[k]);
            V::stored(acc.dd[1] + k * V::kDoubles, ls[k]);
            V::stored(acc.dd[2] + k * V::kDoubles, hq[k]);
            V::stored(acc.dd[3] + k * V::kDoubles, lq[k]);
        }
        acc.count += i - (kMasked ? V::reduce_add32(unselected) : 0);
        scalar::moments_dd<C, kMasked, kSquares>(a, m, i, n, acc);
    }

    // ---- Four single-precision lanes fed in pixel order: a vector of four
    // adds once; a vector of eight adds its first half to lanes 0..3, then its
    // second (the register's upper lanes carry nothing used).
    static void lane_add(F& lanes, F t) {
        if constexpr (V::kFloats == 4) lanes = V::addf(lanes, t);
        else lanes = V::addf(V::addf(lanes, t), V::swap_halvesf(t));
    }

    // The masked float mean: per group of eight, lane j takes pixel j, then
    // j + 4.
    static void mean_lanes(const void* a, const uint8_t* m, int n, StatsAcc& acc) {
        const float* s = static_cast<const float*>(a);
        F lanes = V::loadf(acc.lanes[0]);
        I unselected = V::zero();
        int i = 0;
        for (; i + 8 <= n; i += 8)
            for (int f = 0; f < 8 / V::kFloats; ++f) {
                const I z = unselected32(m, i + f * V::kFloats);
                unselected = V::sub32(unselected, z);
                lane_add(lanes, clear(z, V::loadf(s + i + f * V::kFloats)));
            }
        V::storef(acc.lanes[0], lanes);
        acc.count += i - V::reduce_add32(unselected);
        scalar::mean_lanes(a, m, i, n, acc);
    }

    // ---- Float norms.
    template <StatsKind K, StatsNorm N, int C>
    static void norm_f(const void* a, const void* b, const uint8_t* m, int n, StatsAcc& acc) {
        constexpr bool kRel = K == StatsKind::NormRel;
        const float* s1 = static_cast<const float*>(a);
        const float* s2 = static_cast<const float*>(b);
        const I magnitude = V::set32(0x7FFFFFFF);
        I peak0 = V::zero(), peak1 = V::zero();
        F l0 = V::loadf(acc.lanes[0]), l1 = V::loadf(acc.lanes[1]);
        int i = 0;
        for (const int end = vector_end<C>(n); i + V::kFloats <= end; i += V::kFloats) {
            const I z = unselected32(m, i);
            const F v = loadf<C>(s1, i);
            F w = V::zerof();
            if constexpr (K != StatsKind::Norm) w = loadf<C>(s2, i);
            const F d = clear(z, K == StatsKind::Norm ? v : V::subf(v, w));
            const F r = clear(z, w);
            if constexpr (N == StatsNorm::Inf) {
                peak0 = V::max32(peak0, V::and_(V::cast(d), magnitude));
                if (kRel) peak1 = V::max32(peak1, V::and_(V::cast(r), magnitude));
            } else if constexpr (N == StatsNorm::L1) {
                lane_add(l0, V::absf(d));
                if (kRel) lane_add(l1, V::absf(r));
            } else {
                lane_add(l0, V::mulf(d, d));
                if (kRel) lane_add(l1, V::mulf(r, r));
            }
        }
        const uint32_t p0 = static_cast<uint32_t>(V::reduce_max_s32(peak0));
        const uint32_t p1 = static_cast<uint32_t>(V::reduce_max_s32(peak1));
        acc.peak[0] = p0 > acc.peak[0] ? p0 : acc.peak[0];
        acc.peak[1] = p1 > acc.peak[1] ? p1 : acc.peak[1];
        V::storef(acc.lanes[0], l0);
        V::storef(acc.lanes[1], l1);
        scalar::norm_f<K, N, C>(a, b, m, i, n, acc);
    }

    // ---- 8-bit norms: everything becomes unsigned magnitudes first.
    template <class T, StatsKind K, StatsNorm N, int C>
    static void norm8(const void* a, const void* b, const uint8_t* m, int n, StatsAcc& acc) {
        constexpr bool kSigned = std::is_same<T, Oru8s>::value;
        constexpr bool kRel = K == StatsKind::NormRel;
        const uint8_t* s1 = static_cast<const uint8_t*>(a);
        const uint8_t* s2 = static_cast<const uint8_t*>(b);
        const I zero = V::zero();
        // [k][0] the difference's (or image's), [k][1] the reference's.
        I peak[2][2] = {{zero, zero}, {zero, zero}}, sum[2][2] = {{zero, zero}, {zero, zero}};
        I sq32[2][2] = {{zero, zero}, {zero, zero}}, sq64[2] = {zero, zero};
        const int i = vector_runs<V::kBytes>(
            vector_end<C>(n),
            [&](int x, int k) {
                const I z = V::cmpeq8(V::load(m + x), zero);
                const I v = load8<C>(s1, x);
                I d, r = zero;
                if constexpr (K == StatsKind::Norm) {
                    d = kSigned ? V::abs_s8(v) : v;
                } else {
                    const I w = load8<C>(s2, x);
                    d = kSigned ? V::absdiff_s8(v, w) : V::absdiff_u8(v, w);
                    r = V::andnot(z, kSigned ? V::abs_s8(w) : w);
                }
                d = V::andnot(z, d);
                if constexpr (N == StatsNorm::Inf) {
                    peak[k][0] = V::max_u8(peak[k][0], d);
                    if (kRel) peak[k][1] = V::max_u8(peak[k][1], r);
                } else if constexpr (N == StatsNorm::L1) {
                    sum[k][0] = V::add64(sum[k][0], V::sad_u8(d, zero));
                    if (kRel) sum[k][1] = V::add64(sum[k][1], V::sad_u8(r, zero));
                } else {
                    sq32[k][0] = V::add32(sq32[k][0], V::sumsq4_u8(d));
                    if (kRel) sq32[k][1] = V::add32(sq32[k][1], V::sumsq4_u8(r));
                }
            },
            [&] {
                if constexpr (N == StatsNorm::L2)
                    for (int k = 0; k < 2; ++k)
                        for (int j = 0; j < 2; ++j) widen_squares(sq32[k][j], sq64[j]);
            });
        for (int j = 0; j < 2; ++j) {
            const uint32_t p = static_cast<uint32_t>(V::reduce_max_u8(V::max_u8(peak[0][j], peak[1][j])));
            acc.peak[j] = p > acc.peak[j] ? p : acc.peak[j];
            acc.sum[j] += V::reduce_add64(V::add64(sum[0][j], sum[1][j]));
            acc.sumsq[j] += V::reduce_add64(sq64[j]);
        }
        scalar::norm8<T, K, N, C>(a, b, m, i, n, acc);
    }

    // ---- 8-bit extrema. Values are compared as unsigned bytes (signed ones
    // biased by 128). A chunk of whole blocks is reduced to its extremes;
    // only when one beats the current extreme is the chunk searched again,
    // for the first pixel holding it, whose block start is recorded. Masked
    // chunks give unselected pixels 255 for the minimum and 0 for the
    // maximum, and count only when some pixel is selected.
    template <class T, int C, bool kMasked>
    static void minmax8(const void* a, const uint8_t* m, int n, int64_t first, StatsAcc& acc) {
        constexpr int kBias = std::is_same<T, Oru8s>::value ? 0x80 : 0;
        constexpr int kBlock = C == 1 ? 32 : 8;
        const uint8_t* s = static_cast<const uint8_t*>(a);
        const I zero = V::zero();
        const auto load = [&](int x) {
            const I v = load8<C>(s, x);
            return kBias ? V::xor_(v, V::set8(kBias)) : v;
        };
        // The first pixel of [from, to) holding the (biased) value.
        const auto find = [&](int from, int to, int value) {
            for (int x = from; x < to; x += V::kBytes) {
                I eq = V::cmpeq8(load(x), V::set8(value));
                if (kMasked) eq = V::andnot(V::cmpeq8(V::load(m + x), zero), eq);
                if (const unsigned bits = V::movemask8(eq)) return x + __builtin_ctz(bits);
            }
            return to;  // not reached: the value is in the chunk
        };
        const int end = C == 1 ? n / 32 * 32 : n - 1;
        int lo = acc.lo, hi = acc.hi, i = 0;
        while (i + V::kBytes <= end) {
            const int vectors = (end - i) / V::kBytes < kChunk8 / V::kBytes ? (end - i) / V::kBytes
                                                                             : kChunk8 / V::kBytes;
            const int to = i + vectors * V::kBytes;
            I vmin = V::set8(-1), vmax = zero, any = zero;
            for (int x = i; x < to; x += V::kBytes) {
                const I v = load(x);
                if (kMasked) {
                    const I mk = V::load(m + x);
                    const I z = V::cmpeq8(mk, zero);
                    vmin = V::min_u8(vmin, V::or_(v, z));
                    vmax = V::max_u8(vmax, V::andnot(z, v));
                    any = V::or_(any, mk);
                } else {
                    vmin = V::min_u8(vmin, v);
                    vmax = V::max_u8(vmax, v);
                }
            }
            if (!kMasked || V::movemask8(V::cmpeq8(any, zero)) != kAllBytes) {
                const int cmin = V::reduce_min_u8(vmin), cmax = V::reduce_max_u8(vmax);
                if (cmin - kBias < lo) {
                    lo = cmin - kBias;
                    const int x = find(i, to, cmin);
                    acc.lo_index = first + (x - x % kBlock);
                }
                if (cmax - kBias > hi) {
                    hi = cmax - kBias;
                    const int x = find(i, to, cmax);
                    acc.hi_index = first + (x - x % kBlock);
                }
            }
            i = to;
        }
        acc.lo = lo;
        acc.hi = hi;
        scalar::minmax8<T, C, kMasked>(a, m, i, n, first, acc);
    }

    // ---- Float extrema by order keys, chunk by chunk as above; unselected
    // pixels take the largest key for the minimum and the smallest for the
    // maximum, which never beat the starting keys.
    template <int C, bool kMasked>
    static void minmax_f(const void* a, const uint8_t* m, int n, int64_t first, StatsAcc& acc) {
        const float* s = static_cast<const float*>(a);
        const I top = V::set32(INT32_MAX), bottom = V::set32(INT32_MIN);
        const auto keys = [&](int x) {
            const I bits = V::cast(loadf<C>(s, x));
            return V::xor_(bits, V::and_(V::template srai32<31>(bits), top));
        };
        const auto find = [&](int from, int to, int32_t key) {
            for (int x = from; x < to; x += V::kFloats) {
                I eq = V::cmpeq32(keys(x), V::set32(key));
                if (kMasked) eq = V::andnot(unselected32(m, x), eq);
                if (const unsigned bits = V::movemaskf(V::castf(eq))) return x + __builtin_ctz(bits);
            }
            return to;  // not reached
        };
        const int end = vector_end<C>(n);
        int i = 0;
        while (i + V::kFloats <= end) {
            const int vectors = (end - i) / V::kFloats < kChunkF / V::kFloats ? (end - i) / V::kFloats
                                                                               : kChunkF / V::kFloats;
            const int to = i + vectors * V::kFloats;
            I vmin = top, vmax = bottom;
            for (int x = i; x < to; x += V::kFloats) {
                const I k = keys(x);
                if (kMasked) {
                    const I z = unselected32(m, x);
                    vmin = V::min32(vmin, V::select(z, top, k));
                    vmax = V::max32(vmax, V::select(z, bottom, k));
                } else {
                    vmin = V::min32(vmin, k);
                    vmax = V::max32(vmax, k);
                }
            }
            const int32_t cmin = V::reduce_min_s32(vmin), cmax = V::reduce_max_s32(vmax);
            if (cmin < acc.lo) acc.lo = cmin, acc.lo_index = first + find(i, to, cmin);
            if (cmax > acc.hi) acc.hi = cmax, acc.hi_index = first + find(i, to, cmax);
            i = to;
        }
        scalar::minmax_f<C, kMasked>(a, m, i, n, first, acc);
    }

    template <StatsFunction Fn>
    static void row(const void* a, const void* b, const uint8_t* m, int n, int64_t first, StatsAcc* acc) {
        using Tr = StatsFnOf<Fn>;
        using T = typename Tr::T;
        constexpr int C = Tr::channels;
        constexpr StatsKind K = Tr::kind;
        if constexpr (K == StatsKind::MinMaxIndx) {
            if constexpr (Tr::is_float) minmax_f<C, Tr::masked>(a, m, n, first, *acc);
            else minmax8<T, C, Tr::masked>(a, m, n, first, *acc);
        } else if constexpr (K == StatsKind::Norm || K == StatsKind::NormDiff || K == StatsKind::NormRel) {
            if constexpr (Tr::is_float) norm_f<K, Tr::norm, C>(a, b, m, n, *acc);
            else norm8<T, K, Tr::norm, C>(a, b, m, n, *acc);
        } else if constexpr (!Tr::is_float) {
            moments8<T, C, Tr::masked, K != StatsKind::Mean>(a, m, n, *acc);
        } else if constexpr (K == StatsKind::Mean && C == 1) {
            mean_lanes(a, m, n, *acc);
        } else {
            moments_dd<C, Tr::masked, K != StatsKind::Mean>(a, m, n, *acc);
        }
    }

    static constexpr StatsKernels table() {
        StatsKernels k{};
#define ORUCV_STATS_VECTOR(name, ...) k.row[kStats_##name] = row<kStats_##name>;
        ORUCV_STATS_FUNCTIONS(ORUCV_STATS_VECTOR)
#undef ORUCV_STATS_VECTOR
        return k;
    }
};

}  // namespace
}  // namespace a6
}  // namespace orucv
