// The exported functions of the Gaussian pyramids, one line each:
// X(name, shape, pixel type, channels). The wrappers (orcvpyr.cpp), the
// tests' and the benchmarks' lists of functions come from this list.
//   Down, Up          one level down (half the sides) or up (twice the sides)
//   DownSize, UpSize  the scratch-size queries (type and channels unused)
#pragma once

#define ORUCV_PYRAMID_FUNCTIONS(X)                          \
    X(oruiPyrDown_Gauss5x5_8u_C1R, Down, Oru8u, 1)          \
    X(oruiPyrDown_Gauss5x5_8u_C3R, Down, Oru8u, 3)          \
    X(oruiPyrDown_Gauss5x5_8s_C1R, Down, Oru8s, 1)          \
    X(oruiPyrDown_Gauss5x5_8s_C3R, Down, Oru8s, 3)          \
    X(oruiPyrDown_Gauss5x5_32f_C1R, Down, Oru32f, 1)        \
    X(oruiPyrDown_Gauss5x5_32f_C3R, Down, Oru32f, 3)        \
    X(oruiPyrUp_Gauss5x5_8u_C1R, Up, Oru8u, 1)              \
    X(oruiPyrUp_Gauss5x5_8u_C3R, Up, Oru8u, 3)              \
    X(oruiPyrUp_Gauss5x5_8s_C1R, Up, Oru8s, 1)              \
    X(oruiPyrUp_Gauss5x5_8s_C3R, Up, Oru8s, 3)              \
    X(oruiPyrUp_Gauss5x5_32f_C1R, Up, Oru32f, 1)            \
    X(oruiPyrUp_Gauss5x5_32f_C3R, Up, Oru32f, 3)            \
    X(oruiPyrDownGetBufSize_Gauss5x5, DownSize, void, 0)    \
    X(oruiPyrUpGetBufSize_Gauss5x5, UpSize, void, 0)
