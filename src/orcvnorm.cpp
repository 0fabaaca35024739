// Norms, difference norms and relative norms: one wrapper per Norm,
// NormDiff and NormRel line of stats_list.h. Each checks in its order, lets
// the statistics engine accumulate in one pass and forms the norm.
#include <cmath>

#include "orcvstats.h"

using namespace orucv;
using namespace orucv::stats;
using a6::StatsFunction;
using a6::StatsKind;
using a6::StatsNorm;

namespace {

constexpr long double kTwo52 = 4503599627370496.0L;
constexpr long double kEpsilon = 1.0L / kTwo52;  // 2^-52, the double epsilon

// The norm from the accumulators: the difference's (or image's) in [0], the
// reference's in [1]. Quotients and square roots in extended precision.
template <class Fn>
long double finish(const a6::StatsAcc& acc) {
    constexpr bool kRel = Fn::kind == StatsKind::NormRel, kL2 = Fn::norm == StatsNorm::L2;
    long double d, r;
    if constexpr (!Fn::is_float) {
        d = Fn::norm == StatsNorm::Inf ? acc.peak[0] : Fn::norm == StatsNorm::L1 ? wrap32(acc.sum[0]) : acc.sumsq[0];
        r = Fn::norm == StatsNorm::Inf ? acc.peak[1] : Fn::norm == StatsNorm::L1 ? wrap32(acc.sum[1]) : acc.sumsq[1];
        // A zero reference: the numerator times 2^52.
        if (kRel) d = r == 0 ? d * kTwo52 : d / r;
    } else {
        const float df = Fn::norm == StatsNorm::Inf ? bits_float(acc.peak[0]) : a6::fold_lanes4(acc.lanes[0]);
        const float rf = Fn::norm == StatsNorm::Inf ? bits_float(acc.peak[1]) : a6::fold_lanes4(acc.lanes[1]);
        d = df;
        r = rf;
        // A reference equal to 0.0 gives way to the epsilon; a NaN stays.
        if (kRel) d = d / (rf == 0.0f ? kEpsilon : r);
    }
    return kL2 ? std::sqrt(d) : d;
}

template <StatsFunction F, class T>
OruStatus norm(const T* a, int aStep, const T* b, int bStep, const Oru8u* mask, int maskStep, OruSize roi, int coi,
               Oru64f* pNorm) {
    using Fn = a6::StatsFnOf<F>;
    // One-image norms: the first image stands in for the second.
    const T* b_or_a = Fn::two_images ? b : a;
    const int b_step = Fn::two_images ? bStep : aStep;
    // 8-bit steps need no alignment: 4 stands in for them.
    const int fa = Fn::is_float ? aStep : 4, fb = Fn::is_float ? b_step : 4;
    if (OruStatus s = check_order_norm({a, b_or_a, mask, pNorm}, {aStep, b_step, maskStep}, roi,
                                       coi_checked<Fn>(coi), {fa, fb}))
        return s;
    a6::StatsAcc acc{};
    a6::stats_reduce(F, a, aStep, b, bStep, mask, maskStep, roi, channel<Fn>(coi), acc);
    store(pNorm, finish<Fn>(acc));
    return oruStsOk;
}

}  // namespace

#define ORUCV_STATS_Norm(name, norm_kind, T, layout, mask, order)                                              \
    extern "C" OruStatus name(const T* pSrc, int srcStep, const Oru8u* pMask, int maskStep, OruSize roiSize,   \
                              ORUCV_STATS_COI_PARAM_##layout Oru64f* pNorm) {                                  \
        return norm<a6::kStats_##name, T>(pSrc, srcStep, nullptr, 0, pMask, maskStep, roiSize,                 \
                                          ORUCV_STATS_COI_ARG_##layout, pNorm);                                \
    }
#define ORUCV_STATS_NormDiff(name, norm_kind, T, layout, mask, order)                                          \
    extern "C" OruStatus name(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step, const Oru8u* pMask,  \
                              int maskStep, OruSize roiSize, ORUCV_STATS_COI_PARAM_##layout Oru64f* pNorm) {   \
        return norm<a6::kStats_##name>(pSrc1, src1Step, pSrc2, src2Step, pMask, maskStep, roiSize,             \
                                       ORUCV_STATS_COI_ARG_##layout, pNorm);                                   \
    }
#define ORUCV_STATS_NormRel ORUCV_STATS_NormDiff
#define ORUCV_STATS_Mean(...)
#define ORUCV_STATS_MeanStdDev(...)
#define ORUCV_STATS_SumSq(...)
#define ORUCV_STATS_MinMaxIndx(...)
ORUCV_STATS_FUNCTIONS(ORUCV_STATS_WRAPPER)
