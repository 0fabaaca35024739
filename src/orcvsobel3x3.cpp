// Fixed 3x3 Sobel and Scharr derivatives of one-channel images, with the
// nearest region pixel replicated beyond every edge.
#include "a6/sobel3x3.h"
#include "core/checks.h"
#include "orucv.h"

using namespace orucv;
using a6::IntFilter;

namespace {

// Checks shared by every member: pointers, steps >= 1, width >= 1 and
// height >= 2, then the step granularity of the result type (an even
// destination step for 16-bit results; both steps multiples of 4 for float
// images; 8-bit source steps may be anything).
OruStatus check_common(const void* src, int srcStep, const void* dst, int dstStep, OruSize roi, bool is_float) {
    if (any_null({src, dst})) return oruStsNullPointer;
    if (any_step_below({srcStep, dstStep}, 1)) return oruStsStep;
    if (roi.width < 1 || roi.height < 2) return oruStsSize;
    if (is_float ? any_step_not_multiple({srcStep, dstStep}, 4) : dstStep % 2 != 0) return oruStsNotEvenStep;
    return oruStsOk;
}

bool bad_origin(int origin) { return origin != 0 && origin != 1; }

OruStatus filter_8u(IntFilter filter, const Oru8u* pSrc, int srcStep, Oru16s* pDst, int dstStep, OruSize roi,
                    int origin = 0, int shift = 0) {
    a6::a6_orcvFilter3x3_8u16s_C1R(filter, pSrc, srcStep, pDst, dstStep, roi.width, roi.height, origin == 1, shift);
    return oruStsOk;
}

OruStatus filter_8s(IntFilter filter, const Oru8s* pSrc, int srcStep, Oru16s* pDst, int dstStep, OruSize roi,
                    int origin = 0, int shift = 0) {
    a6::a6_orcvFilter3x3_8s16s_C1R(filter, pSrc, srcStep, pDst, dstStep, roi.width, roi.height, origin == 1, shift);
    return oruStsOk;
}

}  // namespace

// ---- 8u -> 16s ------------------------------------------------------------

extern "C" OruStatus oruiSobel3x3_Dx_8u16s_C1R(const Oru8u* pSrc, int srcStep, Oru16s* pDst, int dstStep,
                                               OruSize roiSize) {
    if (OruStatus s = check_common(pSrc, srcStep, pDst, dstStep, roiSize, false)) return s;
    return filter_8u(IntFilter::Dx, pSrc, srcStep, pDst, dstStep, roiSize);
}

extern "C" OruStatus oruiSobel3x3_Dy_8u16s_C1R(const Oru8u* pSrc, int srcStep, Oru16s* pDst, int dstStep,
                                               int origin, OruSize roiSize) {
    if (OruStatus s = check_common(pSrc, srcStep, pDst, dstStep, roiSize, false)) return s;
    if (bad_origin(origin)) return oruStsBadArg;
    return filter_8u(IntFilter::Dy, pSrc, srcStep, pDst, dstStep, roiSize, origin);
}

extern "C" OruStatus oruiSobel3x3_D2x_8u16s_C1R(const Oru8u* pSrc, int srcStep, Oru16s* pDst, int dstStep,
                                                OruSize roiSize) {
    if (OruStatus s = check_common(pSrc, srcStep, pDst, dstStep, roiSize, false)) return s;
    return filter_8u(IntFilter::D2x, pSrc, srcStep, pDst, dstStep, roiSize);
}

// Alone among the members, this one also requires steps that hold a row.
extern "C" OruStatus oruiSobel3x3_D2y_8u16s_C1R(const Oru8u* pSrc, int srcStep, Oru16s* pDst, int dstStep,
                                                OruSize roiSize) {
    if (OruStatus s = check_common(pSrc, srcStep, pDst, dstStep, roiSize, false)) return s;
    if (srcStep < roiSize.width || dstStep < row_bytes(roiSize.width, 2)) return oruStsSize;
    return filter_8u(IntFilter::D2y, pSrc, srcStep, pDst, dstStep, roiSize);
}

extern "C" OruStatus oruiSobel3x3_DxDy_8u16s_C1R(const Oru8u* pSrc, int srcStep, Oru16s* pDst, int dstStep,
                                                 int origin, OruSize roiSize) {
    if (OruStatus s = check_common(pSrc, srcStep, pDst, dstStep, roiSize, false)) return s;
    if (bad_origin(origin)) return oruStsBadArg;
    return filter_8u(IntFilter::DxDy, pSrc, srcStep, pDst, dstStep, roiSize, origin);
}

extern "C" OruStatus oruiScharr_Dx_8u16s_C1R(const Oru8u* pSrc, int srcStep, Oru16s* pDst, int dstStep,
                                             OruSize roiSize, int shift) {
    if (OruStatus s = check_common(pSrc, srcStep, pDst, dstStep, roiSize, false)) return s;
    if (shift < 0) return oruStsBadArg;
    return filter_8u(IntFilter::ScharrDx, pSrc, srcStep, pDst, dstStep, roiSize, 0, shift);
}

extern "C" OruStatus oruiScharr_Dy_8u16s_C1R(const Oru8u* pSrc, int srcStep, Oru16s* pDst, int dstStep, int origin,
                                             OruSize roiSize, int shift) {
    if (OruStatus s = check_common(pSrc, srcStep, pDst, dstStep, roiSize, false)) return s;
    if (bad_origin(origin)) return oruStsBadArg;
    if (shift < 0) return oruStsBadArg;
    return filter_8u(IntFilter::ScharrDy, pSrc, srcStep, pDst, dstStep, roiSize, origin, shift);
}

// ---- 8s -> 16s ------------------------------------------------------------

extern "C" OruStatus oruiSobel3x3_Dx_8s16s_C1R(const Oru8s* pSrc, int srcStep, Oru16s* pDst, int dstStep,
                                               OruSize roiSize) {
    if (OruStatus s = check_common(pSrc, srcStep, pDst, dstStep, roiSize, false)) return s;
    return filter_8s(IntFilter::Dx, pSrc, srcStep, pDst, dstStep, roiSize);
}

extern "C" OruStatus oruiSobel3x3_Dy_8s16s_C1R(const Oru8s* pSrc, int srcStep, Oru16s* pDst, int dstStep,
                                               int origin, OruSize roiSize) {
    if (OruStatus s = check_common(pSrc, srcStep, pDst, dstStep, roiSize, false)) return s;
    if (bad_origin(origin)) return oruStsBadArg;
    return filter_8s(IntFilter::Dy, pSrc, srcStep, pDst, dstStep, roiSize, origin);
}

extern "C" OruStatus oruiSobel3x3_D2x_8s16s_C1R(const Oru8s* pSrc, int srcStep, Oru16s* pDst, int dstStep,
                                                OruSize roiSize) {
    if (OruStatus s = check_common(pSrc, srcStep, pDst, dstStep, roiSize, false)) return s;
    return filter_8s(IntFilter::D2x, pSrc, srcStep, pDst, dstStep, roiSize);
}

extern "C" OruStatus oruiSobel3x3_D2y_8s16s_C1R(const Oru8s* pSrc, int srcStep, Oru16s* pDst, int dstStep,
                                                OruSize roiSize) {
    if (OruStatus s = check_common(pSrc, srcStep, pDst, dstStep, roiSize, false)) return s;
    return filter_8s(IntFilter::D2y, pSrc, srcStep, pDst, dstStep, roiSize);
}

extern "C" OruStatus oruiSobel3x3_DxDy_8s16s_C1R(const Oru8s* pSrc, int srcStep, Oru16s* pDst, int dstStep,
                                                 int origin, OruSize roiSize) {
    if (OruStatus s = check_common(pSrc, srcStep, pDst, dstStep, roiSize, false)) return s;
    if (bad_origin(origin)) return oruStsBadArg;
    return filter_8s(IntFilter::DxDy, pSrc, srcStep, pDst, dstStep, roiSize, origin);
}

extern "C" OruStatus oruiScharr_Dx_8s16s_C1R(const Oru8s* pSrc, int srcStep, Oru16s* pDst, int dstStep,
                                             OruSize roiSize, int shift) {
    if (OruStatus s = check_common(pSrc, srcStep, pDst, dstStep, roiSize, false)) return s;
    if (shift < 0) return oruStsBadArg;
    return filter_8s(IntFilter::ScharrDx, pSrc, srcStep, pDst, dstStep, roiSize, 0, shift);
}

extern "C" OruStatus oruiScharr_Dy_8s16s_C1R(const Oru8s* pSrc, int srcStep, Oru16s* pDst, int dstStep, int origin,
                                             OruSize roiSize, int shift) {
    if (OruStatus s = check_common(pSrc, srcStep, pDst, dstStep, roiSize, false)) return s;
    if (bad_origin(origin)) return oruStsBadArg;
    if (shift < 0) return oruStsBadArg;
    return filter_8s(IntFilter::ScharrDy, pSrc, srcStep, pDst, dstStep, roiSize, origin, shift);
}

// ---- 32f ------------------------------------------------------------------

extern "C" OruStatus oruiSobel3x3_Dx_32f_C1R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep,
                                             OruSize roiSize) {
    if (OruStatus s = check_common(pSrc, srcStep, pDst, dstStep, roiSize, true)) return s;
    a6::a6_orcvDx3x3_32f_C1R(pSrc, srcStep, pDst, dstStep, roiSize.width, roiSize.height, a6::sobel_weights_32f());
    return oruStsOk;
}

extern "C" OruStatus oruiSobel3x3_Dy_32f_C1R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep, int origin,
                                             OruSize roiSize) {
    if (OruStatus s = check_common(pSrc, srcStep, pDst, dstStep, roiSize, true)) return s;
    if (bad_origin(origin)) return oruStsBadArg;
    a6::a6_orcvDy3x3_32f_C1R(pSrc, srcStep, pDst, dstStep, roiSize.width, roiSize.height, origin == 1,
                             a6::sobel_weights_32f());
    return oruStsOk;
}

extern "C" OruStatus oruiScharr_Dx_32f_C1R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep,
                                           OruSize roiSize, int shift) {
    if (OruStatus s = check_common(pSrc, srcStep, pDst, dstStep, roiSize, true)) return s;
    if (shift < 0) return oruStsBadArg;
    a6::a6_orcvDx3x3_32f_C1R(pSrc, srcStep, pDst, dstStep, roiSize.width, roiSize.height,
                             a6::scharr_weights_32f(shift));
    return oruStsOk;
}

extern "C" OruStatus oruiScharr_Dy_32f_C1R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep, int origin,
                                           OruSize roiSize, int shift) {
    if (OruStatus s = check_common(pSrc, srcStep, pDst, dstStep, roiSize, true)) return s;
    if (bad_origin(origin)) return oruStsBadArg;
    if (shift < 0) return oruStsBadArg;
    a6::a6_orcvDy3x3_32f_C1R(pSrc, srcStep, pDst, dstStep, roiSize.width, roiSize.height, origin == 1,
                             a6::scharr_weights_32f(shift));
    return oruStsOk;
}
