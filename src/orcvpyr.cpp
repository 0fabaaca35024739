// Gaussian pyramids of 8-bit images (8u, 8s; one or three channels) and the
// scratch-size queries of every pyramid filter.
#include <climits>

#include "a6/pyr.h"
#include "orucv.h"

namespace orucv {
namespace {

OruStatus down_kernel(const Oru8u* s, int ss, Oru8u* d, int ds, OruSize roi, Oru8u* buffer, int ch) {
    return a6::a6_orcvPyrDownG5x5_8u(s, ss, d, ds, roi, buffer, ch);
}
OruStatus down_kernel(const Oru8s* s, int ss, Oru8s* d, int ds, OruSize roi, Oru8u* buffer, int ch) {
    return a6::a6_orcvPyrDownG5x5_8s(reinterpret_cast<const int8_t*>(s), ss, reinterpret_cast<int8_t*>(d), ds, roi,
                                     buffer, ch);
}
OruStatus up_engine(const Oru8u* s, int ss, Oru8u* d, int ds, OruSize roi, Oru8u* buffer, int ch) {
    return ownPyrUpG5x5_8u(s, ss, d, ds, roi, buffer, ch);
}
OruStatus up_engine(const Oru8s* s, int ss, Oru8s* d, int ds, OruSize roi, Oru8u* buffer, int ch) {
    return ownPyrUpG5x5_8s(s, ss, d, ds, roi, buffer, ch);
}

template <class T, int CH>
OruStatus pyr_down(const T* pSrc, int srcStep, T* pDst, int dstStep, OruSize roi, Oru8u* pBuffer) {
    if (OruStatus s = pyr_check(pSrc, srcStep, pDst, dstStep, roi, pBuffer, CH, 1, true)) return s;
    if (roi.width == 0 || roi.height == 0) return oruStsOk;
    return down_kernel(pSrc, srcStep, pDst, dstStep, roi, pBuffer, CH);
}

template <class T, int CH>
OruStatus pyr_up(const T* pSrc, int srcStep, T* pDst, int dstStep, OruSize roi, Oru8u* pBuffer) {
    if (OruStatus s = pyr_check(pSrc, srcStep, pDst, dstStep, roi, pBuffer, CH, 1, false)) return s;
    if (roi.width == 0 || roi.height == 0) return oruStsOk;
    return up_engine(pSrc, srcStep, pDst, dstStep, roi, pBuffer, CH);
}

// PyrUp of 8-bit samples: 16-bit sums in the ring (at most 8 * 255 after
// the horizontal pass), bias 0x80 for 8s.
OruStatus pyr_up_8(const uint8_t* src, int srcStep, uint8_t* dst, int dstStep, OruSize roi, Oru8u* buffer, int Cs,
                   uint8_t bias) {
    if (!(Cs == 1 || Cs == 3)) __assert_fail("Cs == 1 || Cs == 3", "src/orcvpyr", __LINE__, "ownPyrUpG5x5_8");
    const a6::PyrKernels& k = a6::pyr_kernels();
    const int w = roi.width, three = Cs == 3, n = 2 * w * Cs;
    const long long src_bytes = static_cast<long long>(w) * roi.height * Cs;
    const bool stream = a6::pyr_stream(src_bytes, 4 * src_bytes);
    a6::pyr_up_image<uint8_t, uint16_t>(
        src, srcStep, dst, dstStep, roi.height, buffer, a6::pyr_up_row_bytes(w, Cs),
        [&](const uint8_t* s, uint16_t* d, const uint8_t* next) { k.up_h8[three](s, w, d, bias, next); },
        [&](const uint16_t* a, const uint16_t* c, const uint16_t* b, int, uint8_t* even, uint8_t* odd) {
            k.up_v8(a, c, b, n, even, odd, bias, stream);
        });
    return oruStsOk;
}

// Shared by both queries: the size, or the first failing check's status
// with *pBufferSize cleared.
OruStatus store_size(int* pBufferSize, int roiWidth, int dataType, int channels, bool down) {
    if (!pBufferSize) return oruStsNullPointer;
    *pBufferSize = 0;
    if (roiWidth < 0 || (down && roiWidth % 2 != 0)) return oruStsSize;
    if (channels != 1 && channels != 3) return oruStsNumChannels;
    if (dataType != oruDataType8u && dataType != oruDataType8s && dataType != oruDataType32f) return oruStsDataType;
    const long long size = down ? a6::kPyrDownRingRows * a6::pyr_down_row_bytes(roiWidth, channels, dataType == oruDataType32f)
                                : a6::kPyrUpRingRows * a6::pyr_up_row_bytes(roiWidth, channels);
    if (size > INT_MAX) return oruStsSize;
    *pBufferSize = static_cast<int>(size);
    return oruStsOk;
}

}  // namespace

OruStatus ownPyrUpG5x5_8u(const Oru8u* pSrc, int srcStep, Oru8u* pDst, int dstStep, OruSize roi, Oru8u* pBuffer,
                          int Cs) {
    return pyr_up_8(pSrc, srcStep, pDst, dstStep, roi, pBuffer, Cs, 0);
}

OruStatus ownPyrUpG5x5_8s(const Oru8s* pSrc, int srcStep, Oru8s* pDst, int dstStep, OruSize roi, Oru8u* pBuffer,
                          int Cs) {
    return pyr_up_8(reinterpret_cast<const uint8_t*>(pSrc), srcStep, reinterpret_cast<uint8_t*>(pDst), dstStep, roi,
                    pBuffer, Cs, 0x80);
}

}  // namespace orucv

using orucv::pyr_down;
using orucv::pyr_up;

extern "C" {

OruStatus oruiPyrDown_Gauss5x5_8u_C1R(const Oru8u* pSrc, int srcStep, Oru8u* pDst, int dstStep, OruSize roiSize,
                                      Oru8u* pBuffer) {
    return pyr_down<Oru8u, 1>(pSrc, srcStep, pDst, dstStep, roiSize, pBuffer);
}
OruStatus oruiPyrDown_Gauss5x5_8u_C3R(const Oru8u* pSrc, int srcStep, Oru8u* pDst, int dstStep, OruSize roiSize,
                                      Oru8u* pBuffer) {
    return pyr_down<Oru8u, 3>(pSrc, srcStep, pDst, dstStep, roiSize, pBuffer);
}
OruStatus oruiPyrDown_Gauss5x5_8s_C1R(const Oru8s* pSrc, int srcStep, Oru8s* pDst, int dstStep, OruSize roiSize,
                                      Oru8u* pBuffer) {
    return pyr_down<Oru8s, 1>(pSrc, srcStep, pDst, dstStep, roiSize, pBuffer);
}
OruStatus oruiPyrDown_Gauss5x5_8s_C3R(const Oru8s* pSrc, int srcStep, Oru8s* pDst, int dstStep, OruSize roiSize,
                                      Oru8u* pBuffer) {
    return pyr_down<Oru8s, 3>(pSrc, srcStep, pDst, dstStep, roiSize, pBuffer);
}

OruStatus oruiPyrUp_Gauss5x5_8u_C1R(const Oru8u* pSrc, int srcStep, Oru8u* pDst, int dstStep, OruSize roiSize,
                                    Oru8u* pBuffer) {
    return pyr_up<Oru8u, 1>(pSrc, srcStep, pDst, dstStep, roiSize, pBuffer);
}
OruStatus oruiPyrUp_Gauss5x5_8u_C3R(const Oru8u* pSrc, int srcStep, Oru8u* pDst, int dstStep, OruSize roiSize,
                                    Oru8u* pBuffer) {
    return pyr_up<Oru8u, 3>(pSrc, srcStep, pDst, dstStep, roiSize, pBuffer);
}
OruStatus oruiPyrUp_Gauss5x5_8s_C1R(const Oru8s* pSrc, int srcStep, Oru8s* pDst, int dstStep, OruSize roiSize,
                                    Oru8u* pBuffer) {
    return pyr_up<Oru8s, 1>(pSrc, srcStep, pDst, dstStep, roiSize, pBuffer);
}
OruStatus oruiPyrUp_Gauss5x5_8s_C3R(const Oru8s* pSrc, int srcStep, Oru8s* pDst, int dstStep, OruSize roiSize,
                                    Oru8u* pBuffer) {
    return pyr_up<Oru8s, 3>(pSrc, srcStep, pDst, dstStep, roiSize, pBuffer);
}

OruStatus oruiPyrDownGetBufSize_Gauss5x5(int roiWidth, int dataType, int channels, int* pBufferSize) {
    return orucv::store_size(pBufferSize, roiWidth, dataType, channels, true);
}
OruStatus oruiPyrUpGetBufSize_Gauss5x5(int roiWidth, int dataType, int channels, int* pBufferSize) {
    return orucv::store_size(pBufferSize, roiWidth, dataType, channels, false);
}

}  // extern "C"
