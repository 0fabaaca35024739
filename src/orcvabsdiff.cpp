// Absolute difference of two images or of an image and a constant, and the
// motion-history update.
#include "a6/absdiff.h"
#include "core/checks.h"
#include "core/image.h"
#include "orucv.h"

using namespace orucv;

namespace {

// Applies a row kernel to every row; contiguous rows are recast into one.
template <class Src, class Dst, class Row>
void unary_rows(const Src* src, int srcStep, Dst* dst, int dstStep, OruSize roi, Row row) {
    recast_contiguous_rows(roi, {{srcStep, sizeof(Src)}, {dstStep, sizeof(Dst)}});
    for (int y = 0; y < roi.height; ++y) row(row_at(src, srcStep, y), row_at(dst, dstStep, y), roi.width);
}

template <class T, class Row>
void binary_rows(const T* a, int aStep, const T* b, int bStep, T* dst, int dstStep, OruSize roi, Row row) {
    recast_contiguous_rows(roi, {{aStep, sizeof(T)}, {bStep, sizeof(T)}, {dstStep, sizeof(T)}});
    for (int y = 0; y < roi.height; ++y)
        row(row_at(a, aStep, y), row_at(b, bStep, y), row_at(dst, dstStep, y), roi.width);
}

OruStatus ownAbsDiff_8u_C1R(const Oru8u* pSrc1, int src1Step, const Oru8u* pSrc2, int src2Step, Oru8u* pDst,
                            int dstStep, OruSize roi) {
    binary_rows(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep, roi, a6::absdiff_kernels().diff_8u);
    return oruStsOk;
}

OruStatus ownAbsDiffC_8u_C1R(const Oru8u* pSrc, int srcStep, Oru8u* pDst, int dstStep, OruSize roi, Oru8u value) {
    auto kernel = a6::absdiff_kernels().diff_const_8u;
    unary_rows(pSrc, srcStep, pDst, dstStep, roi,
               [&](const Oru8u* s, Oru8u* d, int n) { kernel(s, value, d, n); });
    return oruStsOk;
}

OruStatus ownAbsDiff_32f_C1R(const Oru32f* pSrc1, int src1Step, const Oru32f* pSrc2, int src2Step, Oru32f* pDst,
                             int dstStep, OruSize roi) {
    binary_rows(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep, roi, a6::absdiff_kernels().diff_32f);
    return oruStsOk;
}

OruStatus ownAbsDiffC_32f_C1R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep, OruSize roi,
                              Oru32f value) {
    auto kernel = a6::absdiff_kernels().diff_const_32f;
    unary_rows(pSrc, srcStep, pDst, dstStep, roi,
               [&](const Oru32f* s, Oru32f* d, int n) { kernel(s, value, d, n); });
    return oruStsOk;
}

}  // namespace

extern "C" OruStatus oruiAbsDiff_8u_C1R(const Oru8u* pSrc1, int src1Step, const Oru8u* pSrc2, int src2Step,
                                        Oru8u* pDst, int dstStep, OruSize roiSize) {
    if (OruStatus s = check_order_a({pSrc1, pSrc2, pDst}, {src1Step, src2Step, dstStep}, roiSize)) return s;
    ownAbsDiff_8u_C1R(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep, roiSize);
    return oruStsOk;
}

extern "C" OruStatus oruiAbsDiffC_8u_C1R(const Oru8u* pSrc, int srcStep, Oru8u* pDst, int dstStep,
                                         OruSize roiSize, int value) {
    if (OruStatus s = check_order_a({pSrc, pDst}, {srcStep, dstStep}, roiSize)) return s;
    const Oru8u clamped = static_cast<Oru8u>(value < 0 ? 0 : value > 255 ? 255 : value);
    ownAbsDiffC_8u_C1R(pSrc, srcStep, pDst, dstStep, roiSize, clamped);
    return oruStsOk;
}

extern "C" OruStatus oruiAbsDiff_32f_C1R(const Oru32f* pSrc1, int src1Step, const Oru32f* pSrc2, int src2Step,
                                         Oru32f* pDst, int dstStep, OruSize roiSize) {
    if (OruStatus s = check_order_a({pSrc1, pSrc2, pDst}, {src1Step, src2Step, dstStep}, roiSize, sizeof(Oru32f)))
        return s;
    ownAbsDiff_32f_C1R(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep, roiSize);
    return oruStsOk;
}

extern "C" OruStatus oruiAbsDiffC_32f_C1R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep,
                                          OruSize roiSize, Oru32f value) {
    if (OruStatus s = check_order_a({pSrc, pDst}, {srcStep, dstStep}, roiSize, sizeof(Oru32f))) return s;
    ownAbsDiffC_32f_C1R(pSrc, srcStep, pDst, dstStep, roiSize, value);
    return oruStsOk;
}

extern "C" OruStatus oruiUpdateMotionHistory_8u32f_C1IR(const Oru8u* pSilhouette, int silhStep, Oru32f* pMHI,
                                                        int mhiStep, OruSize roiSize, Oru32f timestamp,
                                                        Oru32f mhiDuration) {
    if (OruStatus s = check_order_b({pSilhouette, pMHI}, {{silhStep, 1}, {mhiStep, 4}}, roiSize)) return s;
    if (!(mhiDuration >= 0.0f)) return oruStsOutOfRange;  // negative or NaN
    recast_contiguous_rows(roiSize, {{silhStep, 1}, {mhiStep, 4}});
    if (roiSize.width == 0 || roiSize.height == 0) return oruStsOk;
    const Oru32f threshold = timestamp - mhiDuration;
    return a6::a6_orcvUpdateMotionHistory_8u32f_C1IR(pSilhouette, silhStep, pMHI, mhiStep, roiSize.width,
                                                     roiSize.height, timestamp, threshold);
}
