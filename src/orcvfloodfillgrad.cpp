// Gradient flood fill: a pixel joins the region when its value is in range
// of an adjacent region pixel, so slow ramps are followed.
#include "a6/floodfill.h"
#include "core/checks.h"
#include "orcvfloodfill.h"
#include "orucv.h"

using namespace orucv;

namespace {

template <class T, class V>
OruStatus grad_fill(T* pImage, int imageStep, OruSize roi, OruPoint seed, V newVal, V minDelta, V maxDelta,
                    OruConnectedComp* pRegion, Oru8u* pBuffer, int eight) {
    constexpr bool kFloat = sizeof(T) == 4;
    if (any_null({pImage, pRegion, pBuffer})) return oruStsNullPointer;
    if (imageStep < 1) return oruStsStep;
    if (roi.width < 1 || roi.height < 1) return oruStsSize;
    if (kFloat && imageStep % 4 != 0) return oruStsNotEvenStep;
    if (seed.x < 0 || seed.x >= roi.width || seed.y < 0 || seed.y >= roi.height) return oruStsOutOfRange;
    if constexpr (kFloat) {
        if (!(minDelta >= 0) || !(maxDelta >= 0)) return oruStsOutOfRange;  // NaN fails too
    } else {
        if (newVal < 0 || newVal >= 256) return oruStsBadArg;
        // The sum is widened: two huge tolerances must not wrap into range.
        if (minDelta < 0 || maxDelta < 0 || static_cast<long long>(minDelta) + maxDelta >= 256)
            return oruStsOutOfRange;
    }

    // The mask must fit the buffer the size query describes; only a region
    // whose size wrapped around 32 bits can leave it short.
    const uint32_t bytes = floodfill::grad_bytes(roi.width, roi.height);
    if (bytes < floodfill::mask_bytes(roi.width, roi.height)) return oruStsError;

    a6::GradJob<T, V> job{pImage,   imageStep, roi.width, roi.height, seed.x, seed.y, static_cast<T>(newVal),
                          minDelta, maxDelta,  pBuffer,   bytes,      {}};
    const a6::FloodFillKernels& k = a6::floodfill_kernels();
    if constexpr (kFloat) k.grad_32f[eight](job);
    else k.grad_8u[eight](job);
    *pRegion = job.result.record(static_cast<double>(newVal));
    return oruStsOk;
}

}  // namespace

extern "C" OruStatus oruiFloodFillGetSize_Grad(OruSize roiSize, int* pBufSize) {
    if (roiSize.width < 1 || roiSize.height < 1) return oruStsSize;
    if (!pBufSize) return oruStsNullPointer;
    *pBufSize = static_cast<int>(floodfill::grad_bytes(roiSize.width, roiSize.height));
    return oruStsOk;
}

extern "C" OruStatus oruiFloodFill_Grad4Con_8u_C1IR(Oru8u* pImage, int imageStep, OruSize roiSize, OruPoint seed,
                                                    int newVal, int minDelta, int maxDelta,
                                                    OruConnectedComp* pRegion, Oru8u* pBuffer) {
    return grad_fill(pImage, imageStep, roiSize, seed, newVal, minDelta, maxDelta, pRegion, pBuffer, 0);
}

extern "C" OruStatus oruiFloodFill_Grad8Con_8u_C1IR(Oru8u* pImage, int imageStep, OruSize roiSize, OruPoint seed,
                                                    int newVal, int minDelta, int maxDelta,
                                                    OruConnectedComp* pRegion, Oru8u* pBuffer) {
    return grad_fill(pImage, imageStep, roiSize, seed, newVal, minDelta, maxDelta, pRegion, pBuffer, 1);
}

extern "C" OruStatus oruiFloodFill_Grad4Con_32f_C1IR(Oru32f* pImage, int imageStep, OruSize roiSize, OruPoint seed,
                                                     Oru32f newVal, Oru32f minDelta, Oru32f maxDelta,
                                                     OruConnectedComp* pRegion, Oru8u* pBuffer) {
    return grad_fill(pImage, imageStep, roiSize, seed, newVal, minDelta, maxDelta, pRegion, pBuffer, 0);
}

extern "C" OruStatus oruiFloodFill_Grad8Con_32f_C1IR(Oru32f* pImage, int imageStep, OruSize roiSize, OruPoint seed,
                                                     Oru32f newVal, Oru32f minDelta, Oru32f maxDelta,
                                                     OruConnectedComp* pRegion, Oru8u* pBuffer) {
    return grad_fill(pImage, imageStep, roiSize, seed, newVal, minDelta, maxDelta, pRegion, pBuffer, 1);
}
