// Exported channel-copy kernels: no argument checks, width and height >= 1.
#include "a6/copy.h"

#include "core/cpu.h"
#include "core/rows.h"
#include "orucv.h"

namespace orucv {
namespace a6 {

const CopyKernels copy_kernels_scalar = make_copy_kernels();

const CopyKernels& copy_kernels() { return ORUCV_CHOOSE(copy_kernels); }

}  // namespace a6
}  // namespace orucv

using namespace orucv;

namespace {

template <class T, class Row>
OruStatus copy_channel_rows(const T* src, int srcStep, T* dst, int dstStep, OruSize roi, int coi, Row row) {
    for (int y = 0; y < roi.height; ++y) row(row_at(src, srcStep, y), row_at(dst, dstStep, y), roi.width, coi);
    return oruStsOk;
}

template <class T, int C, class Row>
OruStatus split_rows(const T* src, int srcStep, T* const (&planes)[C], int dstStep, OruSize roi, Row row) {
    for (int y = 0; y < roi.height; ++y) {
        T* rows[C];
        for (int c = 0; c < C; ++c) rows[c] = row_at(planes[c], dstStep, y);
        row(row_at(src, srcStep, y), rows, roi.width);
    }
    return oruStsOk;
}

template <class T, int C, class Row>
OruStatus merge_rows(const T* const (&planes)[C], int srcStep, T* dst, int dstStep, OruSize roi, Row row) {
    for (int y = 0; y < roi.height; ++y) {
        const T* rows[C];
        for (int c = 0; c < C; ++c) rows[c] = row_at(planes[c], srcStep, y);
        row(rows, row_at(dst, dstStep, y), roi.width);
    }
    return oruStsOk;
}

}  // namespace

extern "C" {

OruStatus a6_orcvCopy_8u_C3CC1R(const Oru8u* pSrc, int srcStep, Oru8u* pDst, int dstStep, OruSize roiSize,
                                int coi) {
    return copy_channel_rows(pSrc, srcStep, pDst, dstStep, roiSize, coi, a6::copy_kernels().channel_8u_c3);
}

OruStatus a6_orcvCopy_8u_C4CC1R(const Oru8u* pSrc, int srcStep, Oru8u* pDst, int dstStep, OruSize roiSize,
                                int coi) {
    return copy_channel_rows(pSrc, srcStep, pDst, dstStep, roiSize, coi, a6::copy_kernels().channel_8u_c4);
}

OruStatus a6_orcvCopy_32f_C3CC1R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep, OruSize roiSize,
                                 int coi) {
    return copy_channel_rows(pSrc, srcStep, pDst, dstStep, roiSize, coi, a6::copy_kernels().channel_32f_c3);
}

OruStatus a6_orcvCopy_32f_C4CC1R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep, OruSize roiSize,
                                 int coi) {
    return copy_channel_rows(pSrc, srcStep, pDst, dstStep, roiSize, coi, a6::copy_kernels().channel_32f_c4);
}

OruStatus a6_orcvCopy_8u_C3P3R(const Oru8u* pSrc, int srcStep, Oru8u* pDst0, Oru8u* pDst1, Oru8u* pDst2,
                               int dstStep, OruSize roiSize) {
    Oru8u* const planes[3] = {pDst0, pDst1, pDst2};
    return split_rows(pSrc, srcStep, planes, dstStep, roiSize, a6::copy_kernels().split_8u_c3);
}

OruStatus a6_orcvCopy_8u_C4P4R(const Oru8u* pSrc, int srcStep, Oru8u* pDst0, Oru8u* pDst1, Oru8u* pDst2,
                               Oru8u* pDst3, int dstStep, OruSize roiSize) {
    Oru8u* const planes[4] = {pDst0, pDst1, pDst2, pDst3};
    return split_rows(pSrc, srcStep, planes, dstStep, roiSize, a6::copy_kernels().split_8u_c4);
}

OruStatus a6_orcvCopy_32f_C3P3R(const Oru32f* pSrc, int srcStep, Oru32f* pDst0, Oru32f* pDst1, Oru32f* pDst2,
                                int dstStep, OruSize roiSize) {
    Oru32f* const planes[3] = {pDst0, pDst1, pDst2};
    return split_rows(pSrc, srcStep, planes, dstStep, roiSize, a6::copy_kernels().split_32f_c3);
}

OruStatus a6_orcvCopy_32f_C4P4R(const Oru32f* pSrc, int srcStep, Oru32f* pDst0, Oru32f* pDst1, Oru32f* pDst2,
                                Oru32f* pDst3, int dstStep, OruSize roiSize) {
    Oru32f* const planes[4] = {pDst0, pDst1, pDst2, pDst3};
    return split_rows(pSrc, srcStep, planes, dstStep, roiSize, a6::copy_kernels().split_32f_c4);
}

OruStatus a6_orcvCopy_8u_P3C3R(const Oru8u* pSrc0, const Oru8u* pSrc1, const Oru8u* pSrc2, int srcStep,
                               Oru8u* pDst, int dstStep, OruSize roiSize) {
    const Oru8u* const planes[3] = {pSrc0, pSrc1, pSrc2};
    return merge_rows(planes, srcStep, pDst, dstStep, roiSize, a6::copy_kernels().merge_8u_c3);
}

OruStatus a6_orcvCopy_8u_P4C4R(const Oru8u* pSrc0, const Oru8u* pSrc1, const Oru8u* pSrc2, const Oru8u* pSrc3,
                               int srcStep, Oru8u* pDst, int dstStep, OruSize roiSize) {
    const Oru8u* const planes[4] = {pSrc0, pSrc1, pSrc2, pSrc3};
    return merge_rows(planes, srcStep, pDst, dstStep, roiSize, a6::copy_kernels().merge_8u_c4);
}

OruStatus a6_orcvCopy_32f_P3C3R(const Oru32f* pSrc0, const Oru32f* pSrc1, const Oru32f* pSrc2, int srcStep,
                                Oru32f* pDst, int dstStep, OruSize roiSize) {
    const Oru32f* const planes[3] = {pSrc0, pSrc1, pSrc2};
    return merge_rows(planes, srcStep, pDst, dstStep, roiSize, a6::copy_kernels().merge_32f_c3);
}

OruStatus a6_orcvCopy_32f_P4C4R(const Oru32f* pSrc0, const Oru32f* pSrc1, const Oru32f* pSrc2,
                                const Oru32f* pSrc3, int srcStep, Oru32f* pDst, int dstStep, OruSize roiSize) {
    const Oru32f* const planes[4] = {pSrc0, pSrc1, pSrc2, pSrc3};
    return merge_rows(planes, srcStep, pDst, dstStep, roiSize, a6::copy_kernels().merge_32f_c4);
}

}  // extern "C"
