// Chamfer distance transforms (3x3 and 5x5 masks) of 8-bit images into
// float distance maps, and the standard mask weights.
#include <cstdint>
#include <cstring>

#include "a6/distransform.h"
#include "core/checks.h"
#include "orucv.h"

using namespace orucv;

namespace {

// A weight in units of 2^-18, rounded to nearest with ties to even: adding
// 1.5 * 2^52 pushes the fraction out of the double, whose low 32 bits then
// hold the rounded value (in two's complement for negative weights).
int32_t fixed_point(Oru32f weight) {
    const double shifted = static_cast<double>(weight) * 262144.0 + 6755399441055744.0;
    uint64_t bits;
    std::memcpy(&bits, &shifted, sizeof bits);
    return static_cast<int32_t>(static_cast<uint32_t>(bits));
}

// Pointers, then sizes and steps together: negative sizes, short rows and a
// destination step that is not a whole number of floats all report
// oruStsSize. Zero-sized regions pass.
OruStatus check_transform(const Oru8u* pSrc, int srcStep, const Oru32f* pDst, int dstStep, OruSize roi,
                          const Oru32f* pMetrics) {
    return check_order_b({pSrc, pDst, pMetrics}, {{srcStep, 1}, {dstStep, sizeof(Oru32f)}}, roi);
}

}  // namespace

extern "C" OruStatus oruiGetDistanceTransformMask(int maskType, Oru32f* pMetrics) {
    if (!pMetrics) return oruStsNullPointer;
    switch (maskType) {
    case 30:  // 3x3 chessboard
        pMetrics[0] = 1.0f;
        pMetrics[1] = 1.0f;
        return oruStsOk;
    case 31:  // 3x3 city block
        pMetrics[0] = 1.0f;
        pMetrics[1] = 2.0f;
        return oruStsOk;
    case 32:  // 3x3 Euclidean: 0x3F747AE1, 0x3FAF4539
        pMetrics[0] = 0.955f;
        pMetrics[1] = 1.3693f;
        return oruStsOk;
    case 52:  // 5x5 Euclidean: 0x3F800000, 0x3FB33333, 0x400C9A02
        pMetrics[0] = 1.0f;
        pMetrics[1] = 1.4f;
        pMetrics[2] = 2.1969f;
        return oruStsOk;
    default:  // 5x5 chessboard and city block (50, 51) are not offered
        return oruStsOutOfRange;
    }
}

extern "C" OruStatus oruiDistanceTransform_3x3_8u32f_C1R(const Oru8u* pSrc, int srcStep, Oru32f* pDst, int dstStep,
                                                         OruSize roiSize, const Oru32f* pMetrics) {
    if (OruStatus s = check_transform(pSrc, srcStep, pDst, dstStep, roiSize, pMetrics)) return s;
    if (roiSize.width == 0 || roiSize.height == 0) return oruStsOk;
    a6::a6_orcvDistanceTransform_3x3_8u32f_C1R(pSrc, srcStep, pDst, dstStep, roiSize.width, roiSize.height,
                                               fixed_point(pMetrics[0]), fixed_point(pMetrics[1]));
    return oruStsOk;
}

extern "C" OruStatus oruiDistanceTransform_5x5_8u32f_C1R(const Oru8u* pSrc, int srcStep, Oru32f* pDst, int dstStep,
                                                         OruSize roiSize, const Oru32f* pMetrics) {
    if (OruStatus s = check_transform(pSrc, srcStep, pDst, dstStep, roiSize, pMetrics)) return s;
    if (roiSize.width == 0 || roiSize.height == 0) return oruStsOk;
    a6::a6_orcvDistanceTransform_5x5_8u32f_C1R(pSrc, srcStep, pDst, dstStep, roiSize.width, roiSize.height,
                                               fixed_point(pMetrics[0]), fixed_point(pMetrics[1]),
                                               fixed_point(pMetrics[2]));
    return oruStsOk;
}
