// The exported running accumulators, one line each:
// X(name, operation, source type, masked). The wrappers (orcvaccum.cpp), the
// kernel enumeration and tables (a6/accum.h), the tests' and the benchmarks'
// lists of functions come from this list.
//   Add       acc + s
//   Square    acc + s * s
//   Product   acc + s1 * s2 (two sources)
//   Weighted  acc + (s - acc) * alpha
// A masked function (true) takes an 8-bit mask after its sources.
#pragma once

#define ORUCV_ACCUM_FUNCTIONS(X)                                 \
    X(oruiAdd_8u32f_C1IR, Add, Oru8u, false)                     \
    X(oruiAdd_8s32f_C1IR, Add, Oru8s, false)                     \
    X(oruiAdd_32f_C1IMR, Add, Oru32f, true)                      \
    X(oruiAdd_8u32f_C1IMR, Add, Oru8u, true)                     \
    X(oruiAdd_8s32f_C1IMR, Add, Oru8s, true)                     \
    X(oruiAddSquare_8u32f_C1IR, Square, Oru8u, false)            \
    X(oruiAddSquare_8s32f_C1IR, Square, Oru8s, false)            \
    X(oruiAddSquare_32f_C1IR, Square, Oru32f, false)             \
    X(oruiAddSquare_8u32f_C1IMR, Square, Oru8u, true)            \
    X(oruiAddSquare_8s32f_C1IMR, Square, Oru8s, true)            \
    X(oruiAddSquare_32f_C1IMR, Square, Oru32f, true)             \
    X(oruiAddProduct_8u32f_C1IR, Product, Oru8u, false)          \
    X(oruiAddProduct_8s32f_C1IR, Product, Oru8s, false)          \
    X(oruiAddProduct_32f_C1IR, Product, Oru32f, false)           \
    X(oruiAddProduct_8u32f_C1IMR, Product, Oru8u, true)          \
    X(oruiAddProduct_8s32f_C1IMR, Product, Oru8s, true)          \
    X(oruiAddProduct_32f_C1IMR, Product, Oru32f, true)           \
    X(oruiAddWeighted_8u32f_C1IR, Weighted, Oru8u, false)        \
    X(oruiAddWeighted_8s32f_C1IR, Weighted, Oru8s, false)        \
    X(oruiAddWeighted_32f_C1IR, Weighted, Oru32f, false)         \
    X(oruiAddWeighted_8u32f_C1IMR, Weighted, Oru8u, true)        \
    X(oruiAddWeighted_8s32f_C1IMR, Weighted, Oru8s, true)        \
    X(oruiAddWeighted_32f_C1IMR, Weighted, Oru32f, true)
