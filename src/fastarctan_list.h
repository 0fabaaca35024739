// The exported fast arctangent: X(name, shape, element type). The wrapper
// (orcvfastarctan.cpp), the tests' and the benchmarks' lists come from it.
//   Vectors  angles of (x, y) vectors given as two arrays, into a third
#pragma once

#define ORUCV_FASTARCTAN_FUNCTIONS(X) \
    X(oruibFastArctan_32f, Vectors, Oru32f)
