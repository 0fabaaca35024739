// Absolute difference of two images or of an image and a constant, and the
// motion-history update: one wrapper per line of absdiff_list.h, generated
// by its shape. Each checks in its family's order and hands over.
#include "a6/absdiff.h"
#include "absdiff_list.h"
#include "core/checks.h"
#include "orucv.h"

#include <type_traits>

using namespace orucv;

namespace {

template <class T>
constexpr int kFloatBytes = sizeof(T) == 4 ? 4 : 0;

// The constant operand: an int for 8-bit images, clamped before use.
template <class T>
using ConstantOf = typename std::conditional<sizeof(T) == 1, int, T>::type;

// Order A, then the engine; a constant operand of an 8-bit function is
// clamped to 0..255 first.
template <class T>
OruStatus abs_diff_images(const T* a, int aStep, const T* b, int bStep, T* dst, int dstStep, OruSize roi) {
    if (OruStatus s = check_order_a({a, b, dst}, {aStep, bStep, dstStep}, roi, kFloatBytes<T>)) return s;
    a6::abs_diff(a, aStep, b, bStep, dst, dstStep, roi);
    return oruStsOk;
}

template <class T, class Value>
OruStatus abs_diff_constant(const T* a, int aStep, T* dst, int dstStep, OruSize roi, Value value) {
    if (OruStatus s = check_order_a({a, dst}, {aStep, dstStep}, roi, kFloatBytes<T>)) return s;
    if constexpr (sizeof(T) == 1)
        a6::abs_diff_const(a, aStep, static_cast<T>(value < 0 ? 0 : value > 255 ? 255 : value), dst, dstStep, roi);
    else
        a6::abs_diff_const(a, aStep, value, dst, dstStep, roi);
    return oruStsOk;
}

// Order B, then the duration, then the engine on a non-empty region.
OruStatus motion_history(const Oru8u* silhouette, int silhStep, Oru32f* mhi, int mhiStep, OruSize roi,
                         Oru32f timestamp, Oru32f duration) {
    if (OruStatus s = check_order_b({silhouette, mhi}, {{silhStep, 1}, {mhiStep, 4}}, roi)) return s;
    if (!(duration >= 0.0f)) return oruStsOutOfRange;  // negative or NaN
    if (roi.width == 0 || roi.height == 0) return oruStsOk;
    a6::update_motion_history(silhouette, silhStep, mhi, mhiStep, roi, timestamp, timestamp - duration);
    return oruStsOk;
}

}  // namespace

// The argument lists, by shape.
#define ORUCV_ABSDIFF_Images(name, T)                                                                           \
    extern "C" OruStatus name(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step, T* pDst, int dstStep, \
                              OruSize roiSize) {                                                                \
        return abs_diff_images(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep, roiSize);                       \
    }
#define ORUCV_ABSDIFF_Constant(name, T)                                                                            \
    extern "C" OruStatus name(const T* pSrc, int srcStep, T* pDst, int dstStep, OruSize roiSize,                   \
                              ConstantOf<T> value) {                                          \
        return abs_diff_constant(pSrc, srcStep, pDst, dstStep, roiSize, value);                                    \
    }
#define ORUCV_ABSDIFF_Motion(name, T)                                                                           \
    extern "C" OruStatus name(const T* pSilhouette, int silhStep, Oru32f* pMHI, int mhiStep, OruSize roiSize,   \
                              Oru32f timestamp, Oru32f mhiDuration) {                                           \
        return motion_history(pSilhouette, silhStep, pMHI, mhiStep, roiSize, timestamp, mhiDuration);           \
    }
#define ORUCV_ABSDIFF_WRAPPER(name, shape, T) ORUCV_ABSDIFF_##shape(name, T)
ORUCV_ABSDIFF_FUNCTIONS(ORUCV_ABSDIFF_WRAPPER)
