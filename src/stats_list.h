// The exported functions of the image statistics, one line each:
//   X(name, kind, norm, pixel type, layout, masking, check order)
// The wrappers (orcvmean.cpp, orcvminmaxindx.cpp, orcvnorm.cpp), the kernel
// table (one row kernel per line, indexed by the enum a6/stats.h makes of
// this list), the tests' and the benchmarks' lists of functions come from it.
//   kind        Mean         masked mean
//               MeanStdDev   mean and population standard deviation
//               SumSq        the exported kernel: sum and sum of squares
//               MinMaxIndx   extrema with the location of their first occurrence
//               Norm, NormDiff, NormRel   norm of an image, of a difference,
//                            of a difference relative to the second image
//   norm        Inf, L1, L2 for the norms, None for the others
//   layout      C1 one channel, C3C the channel of interest of three
//   order       C            pointers, size, steps, float step, coi
//               CoiFirst     as C with coi tested before the float step
//               D            pointers, negative sizes, short steps, coi
//               N            pointers, steps, size, coi, float steps
//               Kernel       no checks
#pragma once

#define ORUCV_STATS_FUNCTIONS(X)                                              \
    X(oruiMean_8u_C1MR, Mean, None, Oru8u, C1, Masked, C)                   \
    X(oruiMean_8u_C3CMR, Mean, None, Oru8u, C3C, Masked, C)                 \
    X(oruiMean_8s_C1MR, Mean, None, Oru8s, C1, Masked, C)                   \
    X(oruiMean_8s_C3CMR, Mean, None, Oru8s, C3C, Masked, C)                 \
    X(oruiMean_32f_C1MR, Mean, None, Oru32f, C1, Masked, C)                 \
    X(oruiMean_32f_C3CMR, Mean, None, Oru32f, C3C, Masked, CoiFirst)        \
    X(oruiMean_StdDev_8u_C1R, MeanStdDev, None, Oru8u, C1, Unmasked, C)     \
    X(oruiMean_StdDev_8u_C3CR, MeanStdDev, None, Oru8u, C3C, Unmasked, C)   \
    X(oruiMean_StdDev_8s_C1R, MeanStdDev, None, Oru8s, C1, Unmasked, C)     \
    X(oruiMean_StdDev_8s_C3CR, MeanStdDev, None, Oru8s, C3C, Unmasked, C)   \
    X(oruiMean_StdDev_32f_C1R, MeanStdDev, None, Oru32f, C1, Unmasked, C)   \
    X(oruiMean_StdDev_32f_C3CR, MeanStdDev, None, Oru32f, C3C, Unmasked, C) \
    X(oruiMean_StdDev_8u_C1MR, MeanStdDev, None, Oru8u, C1, Masked, C)      \
    X(oruiMean_StdDev_8u_C3CMR, MeanStdDev, None, Oru8u, C3C, Masked, C)    \
    X(oruiMean_StdDev_8s_C1MR, MeanStdDev, None, Oru8s, C1, Masked, C)      \
    X(oruiMean_StdDev_8s_C3CMR, MeanStdDev, None, Oru8s, C3C, Masked, C)    \
    X(oruiMean_StdDev_32f_C1MR, MeanStdDev, None, Oru32f, C1, Masked, C)    \
    X(oruiMean_StdDev_32f_C3CMR, MeanStdDev, None, Oru32f, C3C, Masked, C)  \
    X(a6_orcvSumSq_8s_C1R, SumSq, None, Oru8s, C1, Unmasked, Kernel)        \
    X(oruiMinMaxIndx_8u_C1R, MinMaxIndx, None, Oru8u, C1, Unmasked, D)      \
    X(oruiMinMaxIndx_8u_C3CR, MinMaxIndx, None, Oru8u, C3C, Unmasked, D)    \
    X(oruiMinMaxIndx_8s_C1R, MinMaxIndx, None, Oru8s, C1, Unmasked, D)      \
    X(oruiMinMaxIndx_8s_C3CR, MinMaxIndx, None, Oru8s, C3C, Unmasked, D)    \
    X(oruiMinMaxIndx_32f_C1R, MinMaxIndx, None, Oru32f, C1, Unmasked, D)    \
    X(oruiMinMaxIndx_32f_C3CR, MinMaxIndx, None, Oru32f, C3C, Unmasked, D)  \
    X(oruiMinMaxIndx_8u_C1MR, MinMaxIndx, None, Oru8u, C1, Masked, D)       \
    X(oruiMinMaxIndx_8u_C3CMR, MinMaxIndx, None, Oru8u, C3C, Masked, D)     \
    X(oruiMinMaxIndx_8s_C1MR, MinMaxIndx, None, Oru8s, C1, Masked, D)       \
    X(oruiMinMaxIndx_8s_C3CMR, MinMaxIndx, None, Oru8s, C3C, Masked, D)     \
    X(oruiMinMaxIndx_32f_C1MR, MinMaxIndx, None, Oru32f, C1, Masked, D)     \
    X(oruiMinMaxIndx_32f_C3CMR, MinMaxIndx, None, Oru32f, C3C, Masked, D)   \
    X(oruiNorm_Inf_8u_C1MR, Norm, Inf, Oru8u, C1, Masked, N)                \
    X(oruiNorm_Inf_8u_C3CMR, Norm, Inf, Oru8u, C3C, Masked, N)              \
    X(oruiNorm_Inf_8s_C1MR, Norm, Inf, Oru8s, C1, Masked, N)                \
    X(oruiNorm_Inf_8s_C3CMR, Norm, Inf, Oru8s, C3C, Masked, N)              \
    X(oruiNorm_Inf_32f_C1MR, Norm, Inf, Oru32f, C1, Masked, N)              \
    X(oruiNorm_Inf_32f_C3CMR, Norm, Inf, Oru32f, C3C, Masked, N)            \
    X(oruiNorm_L1_8u_C1MR, Norm, L1, Oru8u, C1, Masked, N)                  \
    X(oruiNorm_L1_8u_C3CMR, Norm, L1, Oru8u, C3C, Masked, N)                \
    X(oruiNorm_L1_8s_C1MR, Norm, L1, Oru8s, C1, Masked, N)                  \
    X(oruiNorm_L1_8s_C3CMR, Norm, L1, Oru8s, C3C, Masked, N)                \
    X(oruiNorm_L1_32f_C1MR, Norm, L1, Oru32f, C1, Masked, N)                \
    X(oruiNorm_L1_32f_C3CMR, Norm, L1, Oru32f, C3C, Masked, N)              \
    X(oruiNorm_L2_8u_C1MR, Norm, L2, Oru8u, C1, Masked, N)                  \
    X(oruiNorm_L2_8u_C3CMR, Norm, L2, Oru8u, C3C, Masked, N)                \
    X(oruiNorm_L2_8s_C1MR, Norm, L2, Oru8s, C1, Masked, N)                  \
    X(oruiNorm_L2_8s_C3CMR, Norm, L2, Oru8s, C3C, Masked, N)                \
    X(oruiNorm_L2_32f_C1MR, Norm, L2, Oru32f, C1, Masked, N)                \
    X(oruiNorm_L2_32f_C3CMR, Norm, L2, Oru32f, C3C, Masked, N)              \
    X(oruiNormDiff_Inf_8u_C1MR, NormDiff, Inf, Oru8u, C1, Masked, N)        \
    X(oruiNormDiff_Inf_8u_C3CMR, NormDiff, Inf, Oru8u, C3C, Masked, N)      \
    X(oruiNormDiff_Inf_8s_C1MR, NormDiff, Inf, Oru8s, C1, Masked, N)        \
    X(oruiNormDiff_Inf_8s_C3CMR, NormDiff, Inf, Oru8s, C3C, Masked, N)      \
    X(oruiNormDiff_Inf_32f_C1MR, NormDiff, Inf, Oru32f, C1, Masked, N)      \
    X(oruiNormDiff_Inf_32f_C3CMR, NormDiff, Inf, Oru32f, C3C, Masked, N)    \
    X(oruiNormDiff_L1_8u_C1MR, NormDiff, L1, Oru8u, C1, Masked, N)          \
    X(oruiNormDiff_L1_8u_C3CMR, NormDiff, L1, Oru8u, C3C, Masked, N)        \
    X(oruiNormDiff_L1_8s_C1MR, NormDiff, L1, Oru8s, C1, Masked, N)          \
    X(oruiNormDiff_L1_8s_C3CMR, NormDiff, L1, Oru8s, C3C, Masked, N)        \
    X(oruiNormDiff_L1_32f_C1MR, NormDiff, L1, Oru32f, C1, Masked, N)        \
    X(oruiNormDiff_L1_32f_C3CMR, NormDiff, L1, Oru32f, C3C, Masked, N)      \
    X(oruiNormDiff_L2_8u_C1MR, NormDiff, L2, Oru8u, C1, Masked, N)          \
    X(oruiNormDiff_L2_8u_C3CMR, NormDiff, L2, Oru8u, C3C, Masked, N)        \
    X(oruiNormDiff_L2_8s_C1MR, NormDiff, L2, Oru8s, C1, Masked, N)          \
    X(oruiNormDiff_L2_8s_C3CMR, NormDiff, L2, Oru8s, C3C, Masked, N)        \
    X(oruiNormDiff_L2_32f_C1MR, NormDiff, L2, Oru32f, C1, Masked, N)        \
    X(oruiNormDiff_L2_32f_C3CMR, NormDiff, L2, Oru32f, C3C, Masked, N)      \
    X(oruiNormRel_Inf_8u_C1MR, NormRel, Inf, Oru8u, C1, Masked, N)          \
    X(oruiNormRel_Inf_8u_C3CMR, NormRel, Inf, Oru8u, C3C, Masked, N)        \
    X(oruiNormRel_Inf_8s_C1MR, NormRel, Inf, Oru8s, C1, Masked, N)          \
    X(oruiNormRel_Inf_8s_C3CMR, NormRel, Inf, Oru8s, C3C, Masked, N)        \
    X(oruiNormRel_Inf_32f_C1MR, NormRel, Inf, Oru32f, C1, Masked, N)        \
    X(oruiNormRel_Inf_32f_C3CMR, NormRel, Inf, Oru32f, C3C, Masked, N)      \
    X(oruiNormRel_L1_8u_C1MR, NormRel, L1, Oru8u, C1, Masked, N)            \
    X(oruiNormRel_L1_8u_C3CMR, NormRel, L1, Oru8u, C3C, Masked, N)          \
    X(oruiNormRel_L1_8s_C1MR, NormRel, L1, Oru8s, C1, Masked, N)            \
    X(oruiNormRel_L1_8s_C3CMR, NormRel, L1, Oru8s, C3C, Masked, N)          \
    X(oruiNormRel_L1_32f_C1MR, NormRel, L1, Oru32f, C1, Masked, N)          \
    X(oruiNormRel_L1_32f_C3CMR, NormRel, L1, Oru32f, C3C, Masked, N)        \
    X(oruiNormRel_L2_8u_C1MR, NormRel, L2, Oru8u, C1, Masked, N)            \
    X(oruiNormRel_L2_8u_C3CMR, NormRel, L2, Oru8u, C3C, Masked, N)          \
    X(oruiNormRel_L2_8s_C1MR, NormRel, L2, Oru8s, C1, Masked, N)            \
    X(oruiNormRel_L2_8s_C3CMR, NormRel, L2, Oru8s, C3C, Masked, N)          \
    X(oruiNormRel_L2_32f_C1MR, NormRel, L2, Oru32f, C1, Masked, N)          \
    X(oruiNormRel_L2_32f_C3CMR, NormRel, L2, Oru32f, C3C, Masked, N)
