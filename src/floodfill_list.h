// The exported functions of the flood fills, one line each:
// X(name, shape, pixel type, connectivity). The wrappers (orcvfloodfill.cpp),
// the kernel table, the tests' and the benchmarks' lists of functions come
// from this list.
//   FixedSize, GradSize  the work-buffer size queries (type and connectivity unused)
//   Fixed                pixels equal to the seed's value take the new value
//   Grad                 pixels in range of an adjacent region pixel take it
#pragma once

#define ORUCV_FLOODFILL_FUNCTIONS(X)                       \
    X(oruiFloodFillGetSize, FixedSize, void, 0)            \
    X(oruiFloodFill_4Con_8u_C1IR, Fixed, Oru8u, 4)         \
    X(oruiFloodFill_8Con_8u_C1IR, Fixed, Oru8u, 8)         \
    X(oruiFloodFill_4Con_32f_C1IR, Fixed, Oru32f, 4)       \
    X(oruiFloodFill_8Con_32f_C1IR, Fixed, Oru32f, 8)       \
    X(oruiFloodFillGetSize_Grad, GradSize, void, 0)        \
    X(oruiFloodFill_Grad4Con_8u_C1IR, Grad, Oru8u, 4)      \
    X(oruiFloodFill_Grad8Con_8u_C1IR, Grad, Oru8u, 8)      \
    X(oruiFloodFill_Grad4Con_32f_C1IR, Grad, Oru32f, 4)    \
    X(oruiFloodFill_Grad8Con_32f_C1IR, Grad, Oru32f, 8)
