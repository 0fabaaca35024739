// The exported functions of the general strip filters, one line each:
// X(name, shape, source type, destination type). The wrappers
// (orcvfilter.cpp), the tests' and the benchmarks' lists come from it.
//   SobelInit, BlurInit, LaplaceInit   create a filter specification
//   Free                               release one
//   Sobel, Blur, Laplace               filter one strip through a specification
#pragma once

#define ORUCV_FILTER_FUNCTIONS(X)                        \
    X(oruiSobelInitAlloc, SobelInit, void, void)         \
    X(oruiBlurInitAlloc, BlurInit, void, void)           \
    X(oruiLaplaceInitAlloc, LaplaceInit, void, void)     \
    X(oruiConvolFree, Free, void, void)                  \
    X(oruiSobel_8u16s_C1R, Sobel, Oru8u, Oru16s)         \
    X(oruiSobel_8s16s_C1R, Sobel, Oru8s, Oru16s)         \
    X(oruiSobel_32f_C1R, Sobel, Oru32f, Oru32f)          \
    X(oruiBlur_8u16s_C1R, Blur, Oru8u, Oru16s)           \
    X(oruiBlur_8s16s_C1R, Blur, Oru8s, Oru16s)           \
    X(oruiBlur_32f_C1R, Blur, Oru32f, Oru32f)            \
    X(oruiLaplace_8u16s_C1R, Laplace, Oru8u, Oru16s)     \
    X(oruiLaplace_8s16s_C1R, Laplace, Oru8s, Oru16s)     \
    X(oruiLaplace_32f_C1R, Laplace, Oru32f, Oru32f)
