// The exported fixed 3x3 derivative filters, one line each:
// X(name, arguments, source type, filter, steps). The wrappers
// (orcvsobel3x3.cpp), the tests' and the benchmarks' lists of functions come
// from this list.
//   arguments  Plain        (pSrc, srcStep, pDst, dstStep, roiSize)
//              Origin       (pSrc, srcStep, pDst, dstStep, origin, roiSize)
//              Shift        (pSrc, srcStep, pDst, dstStep, roiSize, shift)
//              OriginShift  (pSrc, srcStep, pDst, dstStep, origin, roiSize, shift)
//   filter     the kernel, a6::Filter3x3 (a6/sobel3x3.h)
//   steps      Any: only whole elements; Rows: also at least a row
// 8-bit sources give 16-bit results, float sources float results.
#pragma once

#define ORUCV_SOBEL3X3_FUNCTIONS(X)                                    \
    X(oruiSobel3x3_Dx_8u16s_C1R, Plain, Oru8u, Dx, Any)                \
    X(oruiSobel3x3_Dy_8u16s_C1R, Origin, Oru8u, Dy, Any)               \
    X(oruiSobel3x3_D2x_8u16s_C1R, Plain, Oru8u, D2x, Any)              \
    X(oruiSobel3x3_D2y_8u16s_C1R, Plain, Oru8u, D2y, Rows)             \
    X(oruiSobel3x3_DxDy_8u16s_C1R, Origin, Oru8u, DxDy, Any)           \
    X(oruiSobel3x3_Dx_8s16s_C1R, Plain, Oru8s, Dx, Any)                \
    X(oruiSobel3x3_Dy_8s16s_C1R, Origin, Oru8s, Dy, Any)               \
    X(oruiSobel3x3_D2x_8s16s_C1R, Plain, Oru8s, D2x, Any)              \
    X(oruiSobel3x3_D2y_8s16s_C1R, Plain, Oru8s, D2y, Any)              \
    X(oruiSobel3x3_DxDy_8s16s_C1R, Origin, Oru8s, DxDy, Any)           \
    X(oruiSobel3x3_Dx_32f_C1R, Plain, Oru32f, Dx, Any)                 \
    X(oruiSobel3x3_Dy_32f_C1R, Origin, Oru32f, Dy, Any)                \
    X(oruiScharr_Dx_8u16s_C1R, Shift, Oru8u, ScharrDx, Any)            \
    X(oruiScharr_Dy_8u16s_C1R, OriginShift, Oru8u, ScharrDy, Any)      \
    X(oruiScharr_Dx_8s16s_C1R, Shift, Oru8s, ScharrDx, Any)            \
    X(oruiScharr_Dy_8s16s_C1R, OriginShift, Oru8s, ScharrDy, Any)      \
    X(oruiScharr_Dx_32f_C1R, Shift, Oru32f, ScharrDx, Any)             \
    X(oruiScharr_Dy_32f_C1R, OriginShift, Oru32f, ScharrDy, Any)
