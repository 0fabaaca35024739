// Flood fill with a fixed range: the pixels connected to the seed through
// pixels equal to the seed's value take the new value.
#include "a6/floodfill.h"
#include "core/checks.h"
#include "core/rows.h"
#include "orcvfloodfill.h"
#include "orucv.h"

using namespace orucv;

namespace {

// Whether the seed pixel already holds the fill value, so that there is
// nothing to fill: floats compare by value, and a NaN fill value counts as
// held by every seed (a NaN seed is unordered with it too).
inline bool holds_fill(Oru8u seed, Oru8u fill) { return seed == fill; }
inline bool holds_fill(Oru32f seed, Oru32f fill) { return seed == fill || fill != fill; }

template <class T, class V>
OruStatus flood_fill(T* pImage, int imageStep, OruSize roi, OruPoint seed, V newVal, OruConnectedComp* pRegion,
                     Oru8u* pBuffer, int eight) {
    constexpr bool kFloat = sizeof(T) == 4;
    if (any_null({pImage, pRegion, pBuffer})) return oruStsNullPointer;
    if (imageStep < 1) return oruStsStep;
    if (roi.width < 1 || roi.height < 1) return oruStsSize;
    if (kFloat && imageStep % 4 != 0) return oruStsNotEvenStep;
    if (seed.x < 0 || seed.x >= roi.width || seed.y < 0 || seed.y >= roi.height) return oruStsOutOfRange;
    if (!kFloat && (newVal < 0 || newVal >= 256)) return oruStsBadArg;
    const T fill = static_cast<T>(newVal);
    if (holds_fill(row_at(pImage, imageStep, seed.y)[seed.x], fill)) return oruStsOk;

    // The buffer the size query describes; only a region whose size wrapped
    // around 32 bits can leave it short of the one bit per pixel that the
    // fill may need once its segment stack is full.
    const uint32_t bytes = floodfill::stack_bytes(roi.width, roi.height);
    if (bytes < floodfill::bitmap_bytes(roi.width, roi.height)) return oruStsError;

    a6::FillJob<T> job{pImage, imageStep, roi.width, roi.height, seed.x, seed.y, fill, pBuffer, bytes, {}};
    const a6::FloodFillKernels& k = a6::floodfill_kernels();
    if constexpr (kFloat) k.fill_32f[eight](job);
    else k.fill_8u[eight](job);
    *pRegion = job.result.record(static_cast<double>(newVal));
    return oruStsOk;
}

}  // namespace

extern "C" OruStatus oruiFloodFillGetSize(OruSize roiSize, int* pBufSize) {
    if (roiSize.width < 1 || roiSize.height < 1) return oruStsSize;
    if (!pBufSize) return oruStsNullPointer;
    *pBufSize = static_cast<int>(floodfill::stack_bytes(roiSize.width, roiSize.height));
    return oruStsOk;
}

extern "C" OruStatus oruiFloodFill_4Con_8u_C1IR(Oru8u* pImage, int imageStep, OruSize roiSize, OruPoint seed,
                                                int newVal, OruConnectedComp* pRegion, Oru8u* pBuffer) {
    return flood_fill(pImage, imageStep, roiSize, seed, newVal, pRegion, pBuffer, 0);
}

extern "C" OruStatus oruiFloodFill_8Con_8u_C1IR(Oru8u* pImage, int imageStep, OruSize roiSize, OruPoint seed,
                                                int newVal, OruConnectedComp* pRegion, Oru8u* pBuffer) {
    return flood_fill(pImage, imageStep, roiSize, seed, newVal, pRegion, pBuffer, 1);
}

extern "C" OruStatus oruiFloodFill_4Con_32f_C1IR(Oru32f* pImage, int imageStep, OruSize roiSize, OruPoint seed,
                                                 Oru32f newVal, OruConnectedComp* pRegion, Oru8u* pBuffer) {
    return flood_fill(pImage, imageStep, roiSize, seed, newVal, pRegion, pBuffer, 0);
}

extern "C" OruStatus oruiFloodFill_8Con_32f_C1IR(Oru32f* pImage, int imageStep, OruSize roiSize, OruPoint seed,
                                                 Oru32f newVal, OruConnectedComp* pRegion, Oru8u* pBuffer) {
    return flood_fill(pImage, imageStep, roiSize, seed, newVal, pRegion, pBuffer, 1);
}
