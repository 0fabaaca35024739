// The exported corner-eigenvalue functions, one line each:
// X(name, shape, source type). The wrappers (orcveigen.cpp), the tests' and
// the benchmarks' lists come from it.
//   GetSize        the scratch size of both kinds
//   EigenValsVecs  both eigenvalues and their eigenvectors per pixel
//   MinEigenVal    the smaller eigenvalue per pixel
#pragma once

#define ORUCV_EIGEN_FUNCTIONS(X)                             \
    X(oruiEigenValsVecsGetSize, GetSize, void)               \
    X(oruiMinEigenValGetSize, GetSize, void)                 \
    X(oruiEigenValsVecs_8u32f_C1R, EigenValsVecs, Oru8u)     \
    X(oruiEigenValsVecs_8s32f_C1R, EigenValsVecs, Oru8s)     \
    X(oruiEigenValsVecs_32f_C1R, EigenValsVecs, Oru32f)      \
    X(oruiMinEigenVal_8u32f_C1R, MinEigenVal, Oru8u)         \
    X(oruiMinEigenVal_8s32f_C1R, MinEigenVal, Oru8s)         \
    X(oruiMinEigenVal_32f_C1R, MinEigenVal, Oru32f)
