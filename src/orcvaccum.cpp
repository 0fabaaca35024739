// Running accumulators: sums, sums of squares, sums of products and weighted
// running averages into a float accumulator. Every public function is one
// line of the kernel list in a6/accum.h, expanded below by its shape.
#include "a6/accum.h"
#include "core/checks.h"
#include "core/rows.h"
#include "orucv.h"

using namespace orucv;
using a6::AccumOp;

namespace {

constexpr AccumOp kOperation[] = {
#define ORUCV_ACCUM_OP(name, op, Src, masked) AccumOp::op,
    ORUCV_ACCUM_KERNELS(ORUCV_ACCUM_OP)
#undef ORUCV_ACCUM_OP
};
constexpr bool kMasked[] = {
#define ORUCV_ACCUM_MASKED(name, op, Src, masked) masked,
    ORUCV_ACCUM_KERNELS(ORUCV_ACCUM_MASKED)
#undef ORUCV_ACCUM_MASKED
};

// Checks in order B: null pointers; then negative sizes, short steps and
// float steps not divisible by 4, all oruStsSize. Contiguous rows are recast
// into one, an empty region returns oruStsOk untouched, and the kernel runs.
// Images a kernel does not take (second source, mask) are ignored: their
// slots repeat the first source so that they never decide a check.
template <a6::AccumKernel id, class S>
OruStatus accumulate(const S* pSrc1, int src1Step, const S* pSrc2, int src2Step, const Oru8u* pMask, int maskStep,
                     Oru32f* pSrcDst, int srcDstStep, OruSize roi, Oru32f alpha) {
    constexpr bool kTwoSources = kOperation[id] == AccumOp::Product;
    constexpr bool kWithMask = kMasked[id];
    constexpr int kSrcBytes = sizeof(S);
    const void* src2 = kTwoSources ? static_cast<const void*>(pSrc2) : pSrc1;
    const void* mask = kWithMask ? static_cast<const void*>(pMask) : pSrc1;
    int& step2 = kTwoSources ? src2Step : src1Step;
    int& mstep = kWithMask ? maskStep : src1Step;
    const int mask_bytes = kWithMask ? 1 : kSrcBytes;

    if (OruStatus s = check_order_b({pSrc1, src2, mask, pSrcDst},
                                    {{src1Step, kSrcBytes}, {step2, kSrcBytes}, {mstep, mask_bytes}, {srcDstStep, 4}},
                                    roi))
        return s;
    recast_contiguous_rows(roi, {{src1Step, kSrcBytes}, {step2, kSrcBytes}, {mstep, mask_bytes}, {srcDstStep, 4}});
    if (roi.width == 0 || roi.height == 0) return oruStsOk;

    a6::AccumImage image{};
    image.src1 = pSrc1;
    image.src1Step = src1Step;
    image.src2 = kTwoSources ? pSrc2 : nullptr;
    image.src2Step = kTwoSources ? src2Step : 0;
    image.mask = kWithMask ? pMask : nullptr;
    image.maskStep = kWithMask ? maskStep : 0;
    image.acc = pSrcDst;
    image.accStep = srcDstStep;
    image.width = roi.width;
    image.height = roi.height;
    image.alpha = alpha;
    return a6::a6_orcvAccumulate(id, image);
}

}  // namespace

// The six argument lists, by operation and masking.
#define ORUCV_ACCUM_ONE_SOURCE(name, Src)                                                                    \
    extern "C" OruStatus orui##name(const Src* pSrc, int srcStep, Oru32f* pSrcDst, int srcDstStep,          \
                                    OruSize roiSize) {                                                      \
        return accumulate<a6::k##name, Src>(pSrc, srcStep, nullptr, 0, nullptr, 0, pSrcDst, srcDstStep,    \
                                            roiSize, 0.0f);                                                 \
    }
#define ORUCV_ACCUM_ONE_SOURCE_MASKED(name, Src)                                                             \
    extern "C" OruStatus orui##name(const Src* pSrc, int srcStep, const Oru8u* pMask, int maskStep,         \
                                    Oru32f* pSrcDst, int srcDstStep, OruSize roiSize) {                     \
        return accumulate<a6::k##name, Src>(pSrc, srcStep, nullptr, 0, pMask, maskStep, pSrcDst, srcDstStep, \
                                            roiSize, 0.0f);                                                 \
    }
#define ORUCV_ACCUM_TWO_SOURCES(name, Src)                                                                   \
    extern "C" OruStatus orui##name(const Src* pSrc1, int src1Step, const Src* pSrc2, int src2Step,         \
                                    Oru32f* pSrcDst, int srcDstStep, OruSize roiSize) {                     \
        return accumulate<a6::k##name, Src>(pSrc1, src1Step, pSrc2, src2Step, nullptr, 0, pSrcDst,          \
                                            srcDstStep, roiSize, 0.0f);                                     \
    }
#define ORUCV_ACCUM_TWO_SOURCES_MASKED(name, Src)                                                            \
    extern "C" OruStatus orui##name(const Src* pSrc1, int src1Step, const Src* pSrc2, int src2Step,         \
                                    const Oru8u* pMask, int maskStep, Oru32f* pSrcDst, int srcDstStep,      \
                                    OruSize roiSize) {                                                      \
        return accumulate<a6::k##name, Src>(pSrc1, src1Step, pSrc2, src2Step, pMask, maskStep, pSrcDst,     \
                                            srcDstStep, roiSize, 0.0f);                                     \
    }
#define ORUCV_ACCUM_WEIGHTED(name, Src)                                                                      \
    extern "C" OruStatus orui##name(const Src* pSrc, int srcStep, Oru32f* pSrcDst, int srcDstStep,          \
                                    OruSize roiSize, Oru32f alpha) {                                        \
        return accumulate<a6::k##name, Src>(pSrc, srcStep, nullptr, 0, nullptr, 0, pSrcDst, srcDstStep,    \
                                            roiSize, alpha);                                                \
    }
#define ORUCV_ACCUM_WEIGHTED_MASKED(name, Src)                                                               \
    extern "C" OruStatus orui##name(const Src* pSrc, int srcStep, const Oru8u* pMask, int maskStep,         \
                                    Oru32f* pSrcDst, int srcDstStep, OruSize roiSize, Oru32f alpha) {       \
        return accumulate<a6::k##name, Src>(pSrc, srcStep, nullptr, 0, pMask, maskStep, pSrcDst, srcDstStep, \
                                            roiSize, alpha);                                                \
    }

#define ORUCV_ACCUM_SHAPE_Add_false ORUCV_ACCUM_ONE_SOURCE
#define ORUCV_ACCUM_SHAPE_Add_true ORUCV_ACCUM_ONE_SOURCE_MASKED
#define ORUCV_ACCUM_SHAPE_Square_false ORUCV_ACCUM_ONE_SOURCE
#define ORUCV_ACCUM_SHAPE_Square_true ORUCV_ACCUM_ONE_SOURCE_MASKED
#define ORUCV_ACCUM_SHAPE_Product_false ORUCV_ACCUM_TWO_SOURCES
#define ORUCV_ACCUM_SHAPE_Product_true ORUCV_ACCUM_TWO_SOURCES_MASKED
#define ORUCV_ACCUM_SHAPE_Weighted_false ORUCV_ACCUM_WEIGHTED
#define ORUCV_ACCUM_SHAPE_Weighted_true ORUCV_ACCUM_WEIGHTED_MASKED

// oruiAdd_8u32f_C1IR, ..., oruiAddWeighted_32f_C1IMR.
#define ORUCV_ACCUM_PUBLIC(name, op, Src, masked) ORUCV_ACCUM_SHAPE_##op##_##masked(name, Src)
ORUCV_ACCUM_KERNELS(ORUCV_ACCUM_PUBLIC)
