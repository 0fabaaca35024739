// Gaussian pyramids of float images (one or three channels).
#include "a6/pyr.h"
#include "orucv.h"

namespace orucv {
namespace {

template <int CH, bool kDown>
OruStatus pyr_32f(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep, OruSize roi, Oru8u* pBuffer) {
    if (OruStatus s = pyr_check(pSrc, srcStep, pDst, dstStep, roi, pBuffer, CH, 4, kDown)) return s;
    if (roi.width == 0 || roi.height == 0) return oruStsOk;
    return kDown ? ownPyrDownG5x5_32f(pSrc, srcStep, pDst, dstStep, roi, pBuffer, CH)
                 : ownPyrUpG5x5_32f(pSrc, srcStep, pDst, dstStep, roi, pBuffer, CH);
}

}  // namespace

OruStatus ownPyrDownG5x5_32f(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep, OruSize roi,
                             Oru8u* pBuffer, int Cs) {
    if (!(Cs == 1 || Cs == 3)) __assert_fail("Cs == 1 || Cs == 3", "src/orcvpyr32f", __LINE__, "ownPyrDownG5x5_32f");
    const a6::PyrKernels& k = a6::pyr_kernels();
    const int w = roi.width, three = Cs == 3, n = w / 2 * Cs;
    const bool stream = a6::pyr_stream(4ll * w * roi.height * Cs, 4ll * n * (roi.height / 2));
    a6::pyr_down_image<float, float>(
        pSrc, srcStep, pDst, dstStep, roi.height, pBuffer, a6::pyr_down_row_bytes(w, Cs, true),
        [&](const float* s, float* d, const float* next) { k.down_h32[three](s, w, d, next); },
        [&](const float* const* rows, int form, float* d) { k.down_v32(rows, form, n, d, stream); });
    return oruStsOk;
}

OruStatus ownPyrUpG5x5_32f(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep, OruSize roi,
                           Oru8u* pBuffer, int Cs) {
    if (!(Cs == 1 || Cs == 3)) __assert_fail("Cs == 1 || Cs == 3", "src/orcvpyr32f", __LINE__, "ownPyrUpG5x5_32f");
    const a6::PyrKernels& k = a6::pyr_kernels();
    const int w = roi.width, three = Cs == 3, n = 2 * w * Cs;
    const long long src_bytes = 4ll * w * roi.height * Cs;
    const bool stream = a6::pyr_stream(src_bytes, 4 * src_bytes);
    a6::pyr_up_image<float, float>(
        pSrc, srcStep, pDst, dstStep, roi.height, pBuffer, a6::pyr_up_row_bytes(w, Cs),
        [&](const float* s, float* d, const float* next) { k.up_h32[three](s, w, d, next); },
        [&](const float* a, const float* c, const float* b, int band, float* even, float* odd) {
            k.up_v32(a, c, b, band, n, even, odd, stream);
        });
    return oruStsOk;
}

}  // namespace orucv

using orucv::pyr_32f;

extern "C" {

OruStatus oruiPyrDown_Gauss5x5_32f_C1R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep, OruSize roiSize,
                                       Oru8u* pBuffer) {
    return pyr_32f<1, true>(pSrc, srcStep, pDst, dstStep, roiSize, pBuffer);
}
OruStatus oruiPyrDown_Gauss5x5_32f_C3R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep, OruSize roiSize,
                                       Oru8u* pBuffer) {
    return pyr_32f<3, true>(pSrc, srcStep, pDst, dstStep, roiSize, pBuffer);
}
OruStatus oruiPyrUp_Gauss5x5_32f_C1R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep, OruSize roiSize,
                                     Oru8u* pBuffer) {
    return pyr_32f<1, false>(pSrc, srcStep, pDst, dstStep, roiSize, pBuffer);
}
OruStatus oruiPyrUp_Gauss5x5_32f_C3R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep, OruSize roiSize,
                                     Oru8u* pBuffer) {
    return pyr_32f<3, false>(pSrc, srcStep, pDst, dstStep, roiSize, pBuffer);
}

}  // extern "C"
