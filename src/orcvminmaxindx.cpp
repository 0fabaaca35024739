// Minimum and maximum with locations: one wrapper per MinMaxIndx line of
// stats_list.h (order D), the block locators that turn the block an 8-bit
// extreme was first found in into its pixel, and the result writer.
#include "core/assert.h"
#include "core/rows.h"
#include "orcvstats.h"

using namespace orucv;
using namespace orucv::stats;
using a6::StatsFunction;

namespace {

// The block starting at linear index `block` of the region (row = index /
// width, column = index mod width when there is more than one row), from
// its first sample; src is at the channel of interest.
template <class T>
const T* block_start(const T* src, int srcStep, int width, int height, int nch, int64_t block) {
    int64_t row = 0, column = block;
    if (height > 1) row = block / width, column = block % width;
    return row_at(src, srcStep, static_cast<int>(row)) + column * nch;
}

// The linear index of the first pixel of the block equal to value; -1
// (nothing recorded) passes through. The value is in the block by
// construction: a scan leaving the block is an internal fault.
template <class T>
int64_t locate(const T* src, int srcStep, int width, int height, int nch, int64_t block, int value) {
    if (block < 0) return block;
    const T* p = block_start(src, srcStep, width, height, nch, block);
    int j = 0;
    while (p[j * nch] != value) {
        ++j;
        ORUCV_ASSERT(j < (nch == 1 ? 32 : 8), "src/orcvminmaxindx", "ownMinMaxIndxLocate");
    }
    return block + j;
}

// As locate, for the first selected pixel equal to value; k counts the
// block's bytes.
template <class T>
int64_t locate_masked(const T* src, int srcStep, const Oru8u* mask, int maskStep, int width, int height, int nch,
                      int64_t block, int value) {
    if (block < 0) return block;
    const T* p = block_start(src, srcStep, width, height, nch, block);
    const Oru8u* m = block_start(mask, maskStep, width, height, 1, block);
    int k = 0;
    while (!(p[k] == value && m[k / nch])) {
        k += nch;
        ORUCV_ASSERT(k < 32, "src/orcvminmaxindx", "ownMinMaxIndxLocateMasked");
    }
    return block + k / nch;
}

OruPoint location(int64_t index, int width) {
    // A zero-width region has no pixel: its (never requested) location is (0, 0).
    if (width == 0) return OruPoint{0, 0};
    return OruPoint{static_cast<int>(index % width), static_cast<int>(index / width)};
}

// The result writer: when either extreme was never found, both values are
// 0.0 and both locations (0, 0); null outputs are not wanted.
void write_result(Oru32f lo, Oru32f hi, int64_t lo_index, int64_t hi_index, int width, Oru32f* pMinVal,
                  Oru32f* pMaxVal, OruPoint* pMinIndex, OruPoint* pMaxIndex) {
    if (lo_index < 0 || hi_index < 0) {
        lo_index = hi_index = 0;
        lo = hi = 0.0f;
    }
    if (pMinVal) *pMinVal = lo;
    if (pMaxVal) *pMaxVal = hi;
    if (pMinIndex) *pMinIndex = location(lo_index, width);
    if (pMaxIndex) *pMaxIndex = location(hi_index, width);
}

template <StatsFunction F, class T>
OruStatus min_max_indx(const T* src, int srcStep, const Oru8u* mask, int maskStep, OruSize roi, int coi,
                       Oru32f* pMinVal, Oru32f* pMaxVal, OruPoint* pMinIndex, OruPoint* pMaxIndex) {
    using Fn = a6::StatsFnOf<F>;
    constexpr int kPixelBytes = static_cast<int>(sizeof(T)) * Fn::channels;
    // Unmasked forms have no mask: the source stands in for it.
    const void* m = Fn::masked ? static_cast<const void*>(mask) : src;
    const StepOf mStep = Fn::masked ? StepOf{maskStep, 1} : StepOf{srcStep, kPixelBytes};
    if (OruStatus s = check_order_d({src, m}, {{srcStep, kPixelBytes}, mStep}, roi, coi_checked<Fn>(coi))) return s;
    a6::StatsAcc acc{};
    a6::start_extrema(acc, Fn::is_float);
    a6::stats_reduce(F, src, srcStep, nullptr, 0, mask, maskStep, roi, channel<Fn>(coi), acc);
    if constexpr (Fn::is_float) {
        write_result(key_float(acc.lo), key_float(acc.hi), acc.lo_index, acc.hi_index, roi.width, pMinVal, pMaxVal,
                     pMinIndex, pMaxIndex);
    } else {
        const T* s = src + channel<Fn>(coi);
        const int nch = Fn::channels;
        int64_t lo, hi;
        if constexpr (Fn::masked) {
            lo = locate_masked(s, srcStep, mask, maskStep, roi.width, roi.height, nch, acc.lo_index, acc.lo);
            hi = locate_masked(s, srcStep, mask, maskStep, roi.width, roi.height, nch, acc.hi_index, acc.hi);
        } else {
            lo = locate(s, srcStep, roi.width, roi.height, nch, acc.lo_index, acc.lo);
            hi = locate(s, srcStep, roi.width, roi.height, nch, acc.hi_index, acc.hi);
        }
        write_result(static_cast<Oru32f>(acc.lo), static_cast<Oru32f>(acc.hi), lo, hi, roi.width, pMinVal, pMaxVal,
                     pMinIndex, pMaxIndex);
    }
    return oruStsOk;
}

}  // namespace

int64_t orucv::stats::min_max_locate_8u(const Oru8u* src, int srcStep, int width, int height, int nch,
                                        int64_t block, int value) {
    return locate(src, srcStep, width, height, nch, block, value);
}
int64_t orucv::stats::min_max_locate_masked_8u(const Oru8u* src, int srcStep, const Oru8u* mask, int maskStep,
                                               int width, int height, int nch, int64_t block, int value) {
    return locate_masked(src, srcStep, mask, maskStep, width, height, nch, block, value);
}

#define ORUCV_STATS_MinMaxIndx(name, norm, T, layout, mask, order)                                               \
    extern "C" OruStatus name(const T* pSrc, int srcStep ORUCV_STATS_MASK_PARAMS_##mask, OruSize roiSize,        \
                              ORUCV_STATS_COI_PARAM_##layout Oru32f* pMinVal, Oru32f* pMaxVal,                   \
                              OruPoint* pMinIndex, OruPoint* pMaxIndex) {                                        \
        return min_max_indx<a6::kStats_##name>(pSrc, srcStep, ORUCV_STATS_MASK_ARGS_##mask, roiSize,             \
                                               ORUCV_STATS_COI_ARG_##layout, pMinVal, pMaxVal, pMinIndex,        \
                                               pMaxIndex);                                                       \
    }
#define ORUCV_STATS_Mean(...)
#define ORUCV_STATS_MeanStdDev(...)
#define ORUCV_STATS_SumSq(...)
#define ORUCV_STATS_Norm(...)
#define ORUCV_STATS_NormDiff(...)
#define ORUCV_STATS_NormRel(...)
ORUCV_STATS_FUNCTIONS(ORUCV_STATS_WRAPPER)
