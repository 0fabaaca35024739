// Canny edge detector over given x and y derivative images.
#include <climits>

#include "a6/canny.h"
#include "core/checks.h"
#include "orucv.h"

using namespace orucv;

namespace {

// Truncation toward zero of a threshold already known to be >= 0. Values
// from 32767 up act alike (no 16-bit magnitude exceeds them), so they are
// limited there and never overflow the conversion.
int threshold_to_int(Oru32f t) { return t >= 32767.0f ? 32767 : static_cast<int>(t); }

}  // namespace

extern "C" OruStatus oruiCannyGetSize(OruSize roiSize, int* pBufferSize) {
    if (roiSize.width < 1 || roiSize.height < 1) return oruStsSize;
    if (!pBufferSize) return oruStsNullPointer;
    const long long bytes = a6::canny_buffer_size(roiSize.width, roiSize.height);
    if (bytes < 0) return oruStsSize;  // more bytes than an int counts
    *pBufferSize = static_cast<int>(bytes);
    return oruStsOk;
}

extern "C" OruStatus oruiCanny_16s8u_C1R(const Oru16s* pSrcDx, int srcDxStep, const Oru16s* pSrcDy, int srcDyStep,
                                         Oru8u* pDstEdges, int dstEdgeStep, OruSize roiSize, Oru32f lowThresh,
                                         Oru32f highThresh, Oru8u* pBuffer) {
    if (any_null({pSrcDx, pSrcDy, pDstEdges, pBuffer})) return oruStsNullPointer;
    if (any_step_below({srcDxStep, srcDyStep, dstEdgeStep}, 1)) return oruStsStep;
    if (roiSize.width < 1 || roiSize.height < 1) return oruStsSize;
    if (any_step_not_multiple({srcDxStep, srcDyStep}, 2)) return oruStsNotEvenStep;
    if (!(lowThresh >= 0.0f) || !(highThresh >= lowThresh)) return oruStsBadArg;  // NaN fails too

    const int w = roiSize.width, h = roiSize.height;
    // The buffer holds oruiCannyGetSize bytes; sizes beyond an int cannot be
    // queried but still work with a buffer of 12 bytes per framed cell.
    const long long cells = (w + 2LL) * (h + 2LL);
    const long long buffer_bytes = cells > LLONG_MAX / 12 ? LLONG_MAX : 12 * cells;
    a6::CannyScratch scratch = a6::canny_scratch(pBuffer, buffer_bytes, w, h);
    a6::a6_orcvCanny_16s8u_C1R(pSrcDx, srcDxStep, pSrcDy, srcDyStep, pDstEdges, dstEdgeStep, w, h,
                               threshold_to_int(lowThresh), threshold_to_int(highThresh), scratch);
    return oruStsOk;
}
