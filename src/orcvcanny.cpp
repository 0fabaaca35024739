// Canny edge detector over given x and y derivative images: one wrapper per
// line of canny_list.h, by shape. Each checks in the family's order and
// hands over.
#include "a6/canny.h"
#include "canny_list.h"
#include "core/checks.h"
#include "orucv.h"

using namespace orucv;

namespace {

// Truncation toward zero of a threshold already known to be >= 0. Values
// from 32767 up act alike (no 16-bit magnitude exceeds them), so they are
// limited there and never overflow the conversion.
int threshold_to_int(Oru32f t) { return t >= 32767.0f ? 32767 : static_cast<int>(t); }

OruStatus buffer_size(OruSize roi, int* size) {
    if (OruStatus s = check_canny_size_order(roi, size)) return s;
    const long long bytes = a6::canny_buffer_size(roi.width, roi.height);
    if (bytes < 0) return oruStsSize;  // more bytes than an int counts
    *size = static_cast<int>(bytes);
    return oruStsOk;
}

OruStatus detect(const Oru16s* dx, int dxStep, const Oru16s* dy, int dyStep, Oru8u* edges, int edgeStep, OruSize roi,
                 Oru32f low, Oru32f high, Oru8u* buffer) {
    if (OruStatus s = check_canny_order(dx, dxStep, dy, dyStep, edges, edgeStep, roi, low, high, buffer)) return s;
    a6::detect_edges(dx, dxStep, dy, dyStep, edges, edgeStep, roi, threshold_to_int(low), threshold_to_int(high),
                     buffer);
    return oruStsOk;
}

}  // namespace

// The argument lists, by shape.
#define ORUCV_CANNY_BufferSize(name) \
    extern "C" OruStatus name(OruSize roiSize, int* pBufferSize) { return buffer_size(roiSize, pBufferSize); }
#define ORUCV_CANNY_Detect(name)                                                                                \
    extern "C" OruStatus name(const Oru16s* pSrcDx, int srcDxStep, const Oru16s* pSrcDy, int srcDyStep,       \
                              Oru8u* pDstEdges, int dstEdgeStep, OruSize roiSize, Oru32f lowThresh,           \
                              Oru32f highThresh, Oru8u* pBuffer) {                                            \
        return detect(pSrcDx, srcDxStep, pSrcDy, srcDyStep, pDstEdges, dstEdgeStep, roiSize, lowThresh,      \
                      highThresh, pBuffer);                                                                   \
    }
#define ORUCV_CANNY_WRAPPER(name, shape) ORUCV_CANNY_##shape(name)
ORUCV_CANNY_FUNCTIONS(ORUCV_CANNY_WRAPPER)
