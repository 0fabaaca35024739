// The exported functions of absolute difference and motion history, one
// line each: X(name, shape, pixel type). The wrappers (orcvabsdiff.cpp), the
// tests' and the benchmarks' lists of functions come from this list.
//   Images    |a - b| of two images
//   Constant  |a - value| of an image and a constant
//   Motion    the motion-history update of a float history by a silhouette
#pragma once

#define ORUCV_ABSDIFF_FUNCTIONS(X)                         \
    X(oruiAbsDiff_8u_C1R, Images, Oru8u)                   \
    X(oruiAbsDiffC_8u_C1R, Constant, Oru8u)                \
    X(oruiAbsDiff_32f_C1R, Images, Oru32f)                 \
    X(oruiAbsDiffC_32f_C1R, Constant, Oru32f)              \
    X(oruiUpdateMotionHistory_8u32f_C1IR, Motion, Oru8u)
