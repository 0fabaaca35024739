// Means and standard deviations: one wrapper per Mean, MeanStdDev and SumSq
// line of stats_list.h. Each checks in order C, sums with the statistics
// engine and finishes in extended precision.
#include <cmath>

#include "orcvstats.h"

using namespace orucv;
using namespace orucv::stats;
using a6::StatsFunction;

namespace {

// The sum S of the selected values, as the contract accumulates it.
template <class Fn>
long double value_sum(const a6::StatsAcc& acc) {
    if constexpr (!Fn::is_float) {
        return wrap32(acc.sum[0]);
    } else if constexpr (Fn::kind == a6::StatsKind::Mean && Fn::channels == 1) {
        // The four lanes one after the other, then rounded to double.
        const float* l = acc.lanes[0];
        return static_cast<double>(((static_cast<long double>(l[0]) + l[1]) + l[2]) + l[3]);
    } else {
        return a6::dd_lane_total(acc, 0);
    }
}

// The finisher: mean = S / n, variance = Q / n - mean^2 from the unrounded
// mean, deviation = sqrt(|variance|); both 0.0 for no pixel.
void finish_mean_stddev(int32_t n, long double sum, long double squares, Oru64f* pMean, Oru64f* pStdDev) {
    if (n == 0) {
        *pMean = 0.0;
        *pStdDev = 0.0;
        return;
    }
    const long double mean = sum / n;
    const long double variance = squares / n - mean * mean;
    store(pMean, mean);
    store(pStdDev, std::sqrt(std::fabs(variance)));
}

template <StatsFunction F, Order O, class T>
OruStatus mean(const T* src, int srcStep, const Oru8u* mask, int maskStep, OruSize roi, int coi, Oru64f* pMean) {
    using Fn = a6::StatsFnOf<F>;
    const int float_step = Fn::is_float ? srcStep : 0;
    const OruStatus s =
        O == Order::CoiFirst
            ? check_order_c_coi_first({src, mask, pMean}, {srcStep, maskStep}, roi, float_step, coi)
            : check_order_c({src, mask, pMean}, {srcStep, maskStep}, roi, float_step, coi_checked<Fn>(coi));
    if (s) return s;
    a6::StatsAcc acc{};
    a6::stats_reduce(F, src, srcStep, nullptr, 0, mask, maskStep, roi, channel<Fn>(coi), acc);
    const int32_t n = wrap32(acc.count);
    store(pMean, n == 0 ? 0.0L : value_sum<Fn>(acc) / n);
    return oruStsOk;
}

template <StatsFunction F, class T>
OruStatus mean_stddev(const T* src, int srcStep, const Oru8u* mask, int maskStep, OruSize roi, int coi,
                      Oru64f* pMean, Oru64f* pStdDev) {
    using Fn = a6::StatsFnOf<F>;
    // Unmasked forms have no mask: the source stands in for it.
    const void* m = Fn::masked ? static_cast<const void*>(mask) : src;
    const int mStep = Fn::masked ? maskStep : srcStep;
    if (OruStatus s = check_order_c({src, m, pMean, pStdDev}, {srcStep, mStep}, roi, Fn::is_float ? srcStep : 0,
                                    coi_checked<Fn>(coi)))
        return s;
    a6::StatsAcc acc{};
    a6::stats_reduce(F, src, srcStep, nullptr, 0, mask, maskStep, roi, channel<Fn>(coi), acc);
    const int32_t n = Fn::masked ? wrap32(acc.count) : wrap32(static_cast<int64_t>(roi.width) * roi.height);
    const long double squares =
        Fn::is_float ? a6::dd_lane_total(acc, 2) : static_cast<long double>(acc.sumsq[0]);
    finish_mean_stddev(n, value_sum<Fn>(acc), squares, pMean, pStdDev);
    return oruStsOk;
}

}  // namespace

#define ORUCV_STATS_Mean(name, norm, T, layout, mask, order)                                                    \
    extern "C" OruStatus name(const T* pSrc, int srcStep ORUCV_STATS_MASK_PARAMS_##mask, OruSize roiSize,       \
                              ORUCV_STATS_COI_PARAM_##layout Oru64f* pMean) {                                   \
        return mean<a6::kStats_##name, Order::order>(pSrc, srcStep, ORUCV_STATS_MASK_ARGS_##mask, roiSize,      \
                                                      ORUCV_STATS_COI_ARG_##layout, pMean);                     \
    }
#define ORUCV_STATS_MeanStdDev(name, norm, T, layout, mask, order)                                              \
    extern "C" OruStatus name(const T* pSrc, int srcStep ORUCV_STATS_MASK_PARAMS_##mask, OruSize roiSize,       \
                              ORUCV_STATS_COI_PARAM_##layout Oru64f* pMean, Oru64f* pStdDev) {                  \
        return mean_stddev<a6::kStats_##name>(pSrc, srcStep, ORUCV_STATS_MASK_ARGS_##mask, roiSize,             \
                                              ORUCV_STATS_COI_ARG_##layout, pMean, pStdDev);                    \
    }
// The exported kernel: no checks.
#define ORUCV_STATS_SumSq(name, norm, T, layout, mask, order)                                                   \
    extern "C" OruStatus name(const T* pSrc, int srcStep, int width, int height, Oru32s* pSum,                   \
                              long long* pSumSq) {                                                              \
        a6::StatsAcc acc{};                                                                                     \
        a6::stats_reduce(a6::kStats_##name, pSrc, srcStep, nullptr, 0, nullptr, 0, {width, height}, 0, acc);   \
        *pSum = wrap32(acc.sum[0]);                                                                             \
        *pSumSq = acc.sumsq[0];                                                                                 \
        return oruStsOk;                                                                                        \
    }
#define ORUCV_STATS_MinMaxIndx(...)
#define ORUCV_STATS_Norm(...)
#define ORUCV_STATS_NormDiff(...)
#define ORUCV_STATS_NormRel(...)
ORUCV_STATS_FUNCTIONS(ORUCV_STATS_WRAPPER)
