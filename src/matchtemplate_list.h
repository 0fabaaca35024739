// The exported functions of template matching, one line each:
// X(name, shape, pixel type, method). The wrappers (orcvmatchtemplate.cpp),
// the method enumeration of the kernels (a6/matchtemplate.h), the tests' and
// the benchmarks' lists of functions come from this list.
//   BufSize  the scratch-size query of a method (type unused); one per
//            method, in the order of the method enumeration
//   Match    the scores of a method over images of that type
#pragma once

#define ORUCV_MATCHTEMPLATE_FUNCTIONS(X)                                           \
    X(oruiMatchTemplateGetBufSize_SqDiff, BufSize, void, SqDiff)                   \
    X(oruiMatchTemplateGetBufSize_SqDiffNormed, BufSize, void, SqDiffNormed)       \
    X(oruiMatchTemplateGetBufSize_Corr, BufSize, void, Corr)                       \
    X(oruiMatchTemplateGetBufSize_CorrNormed, BufSize, void, CorrNormed)           \
    X(oruiMatchTemplateGetBufSize_Coeff, BufSize, void, Coeff)                     \
    X(oruiMatchTemplateGetBufSize_CoeffNormed, BufSize, void, CoeffNormed)         \
    X(oruiMatchTemplate_SqDiff_8u32f_C1R, Match, Oru8u, SqDiff)                    \
    X(oruiMatchTemplate_SqDiff_8s32f_C1R, Match, Oru8s, SqDiff)                    \
    X(oruiMatchTemplate_SqDiff_32f_C1R, Match, Oru32f, SqDiff)                     \
    X(oruiMatchTemplate_SqDiffNormed_8u32f_C1R, Match, Oru8u, SqDiffNormed)        \
    X(oruiMatchTemplate_SqDiffNormed_8s32f_C1R, Match, Oru8s, SqDiffNormed)        \
    X(oruiMatchTemplate_SqDiffNormed_32f_C1R, Match, Oru32f, SqDiffNormed)         \
    X(oruiMatchTemplate_Corr_8u32f_C1R, Match, Oru8u, Corr)                        \
    X(oruiMatchTemplate_Corr_8s32f_C1R, Match, Oru8s, Corr)                        \
    X(oruiMatchTemplate_Corr_32f_C1R, Match, Oru32f, Corr)                         \
    X(oruiMatchTemplate_CorrNormed_8u32f_C1R, Match, Oru8u, CorrNormed)            \
    X(oruiMatchTemplate_CorrNormed_8s32f_C1R, Match, Oru8s, CorrNormed)            \
    X(oruiMatchTemplate_CorrNormed_32f_C1R, Match, Oru32f, CorrNormed)             \
    X(oruiMatchTemplate_Coeff_8u32f_C1R, Match, Oru8u, Coeff)                      \
    X(oruiMatchTemplate_Coeff_8s32f_C1R, Match, Oru8s, Coeff)                      \
    X(oruiMatchTemplate_Coeff_32f_C1R, Match, Oru32f, Coeff)                       \
    X(oruiMatchTemplate_CoeffNormed_8u32f_C1R, Match, Oru8u, CoeffNormed)          \
    X(oruiMatchTemplate_CoeffNormed_8s32f_C1R, Match, Oru8s, CoeffNormed)          \
    X(oruiMatchTemplate_CoeffNormed_32f_C1R, Match, Oru32f, CoeffNormed)
