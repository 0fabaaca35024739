// The exported functions of the chamfer distance transform, one line each:
// X(name, shape, mask side). The wrappers (orcvdistransform.cpp), the tests'
// and the benchmarks' lists of functions come from this list.
//   Mask       the weights of a standard mask (side unused)
//   Transform  the two-pass transform of an 8-bit image with a mask of that side
#pragma once

#define ORUCV_DISTRANSFORM_FUNCTIONS(X)                 \
    X(oruiGetDistanceTransformMask, Mask, 0)            \
    X(oruiDistanceTransform_3x3_8u32f_C1R, Transform, 3) \
    X(oruiDistanceTransform_5x5_8u32f_C1R, Transform, 5)
