// The exported line samplers, one line each: X(name, shape, pixel type,
// channels). The wrappers (orcvsamplers.cpp), the engine's instantiations,
// the tests' and the benchmarks' lists of functions come from this list.
//   Line  the pixels of a digital line segment, copied densely
#pragma once

#define ORUCV_SAMPLERS_FUNCTIONS(X)            \
    X(oruiSampleLine_8u_C1R, Line, Oru8u, 1)   \
    X(oruiSampleLine_8u_C3R, Line, Oru8u, 3)   \
    X(oruiSampleLine_32f_C1R, Line, Oru32f, 1) \
    X(oruiSampleLine_32f_C3R, Line, Oru32f, 3)
