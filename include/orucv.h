/*
 * orucv.h - public C interface of liborucva6, a library of computer-vision
 * image primitives.
 *
 * Conventions shared by every image function:
 *  - An image is passed as a pointer to the first pixel of the region of
 *    interest plus a row step in bytes; the region size (OruSize) is shared
 *    by all images of a call. Rows may be padded.
 *  - Every image function returns an OruStatus: 0 success, negative an error
 *    (nothing was written), positive a warning.
 *  - Arguments are checked in a fixed order per family; the first failing
 *    check decides the status.
 *
 * Valid C99 and C++.
 */
#ifndef ORUCV_H
#define ORUCV_H

#if defined(__GNUC__) || defined(__clang__)
#define ORUCV_API __attribute__((visibility("default")))
#else
#define ORUCV_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Types ------------------------------------------------------------- */

typedef unsigned char Oru8u;
typedef signed char Oru8s;
typedef short Oru16s;
typedef int Oru32s;
typedef float Oru32f;
typedef double Oru64f;

typedef struct OruSize {
    int width;
    int height;
} OruSize;

typedef struct OruPoint {
    int x;
    int y;
} OruPoint;

typedef struct OruRect {
    int x;
    int y;
    int width;
    int height;
} OruRect;

/* Result of every image function. */
typedef int OruStatus;

enum {
    oruStsNoOperation = 1,      /* warning: nothing was processed */
    oruStsOk = 0,
    oruStsError = -1,
    oruStsBadLine = -2,
    oruStsBadArg = -5,
    oruStsSize = -6,
    oruStsNullPointer = -8,
    oruStsMemAlloc = -9,
    oruStsOutOfRange = -11,
    oruStsDataType = -12,
    oruStsStep = -14,
    oruStsContextMismatch = -17,
    oruStsCoi = -52,
    oruStsNumChannels = -53,
    oruStsNotEvenStep = -108
};

/* Data-type codes of the size queries and state constructors. */
enum {
    oruDataType8u = 1,
    oruDataType8s = 2,
    oruDataType32f = 9
};

/* ---- Library frame ------------------------------------------------------ */

typedef struct OruLibVersion {
    int major;
    int minor;
    int majorBuild;
    int build;
    char targetCpu[4];
    const char* Name;
    const char* Version;
    const char* BuildDate;
} OruLibVersion;

/* The one constant version record; never modify or free it. */
ORUCV_API const OruLibVersion* orucvGetLibVersion(void);

/* 32-byte aligned allocation. The block is released with _orcvFree_, which
 * also sets the caller's variable to NULL. Returns NULL when memory is
 * exhausted. oruiAlloc and _orcvAlloc are the same function. */
ORUCV_API void* oruiAlloc(unsigned int length);
ORUCV_API void* _orcvAlloc(unsigned int length);
/* Ignores NULL, a variable holding NULL and pointers not 32-byte aligned. */
ORUCV_API void _orcvFree_(void** ppBlock);

/* Constant tables. */
/* Entry i is the float i - 128; an 8-bit value v (signed or unsigned) is at
 * index v + 128. */
ORUCV_API extern const Oru32f a6__orcv8to32f[384];
/* Row c keeps channel c of eight interleaved 3-channel 8-bit pixels. */
ORUCV_API extern const Oru8u _orcvCoiMask_A6[3][24];
/* Row k expands mask bits: bit b of k sets byte (3 * b) mod 8 to 0xFF. */
ORUCV_API extern const Oru8u _orcvMaskShuffTable_A6[256][8];
/* Eight bytes of 0x80: moves signed bytes to the unsigned range. */
ORUCV_API extern const Oru8u _orcvAdd128_A6[8];

/* Channel copies between interleaved and planar layouts. No argument checks:
 * width and height must be at least 1; coi is 0-based. Return oruStsOk. */
ORUCV_API OruStatus a6_orcvCopy_8u_C3CC1R(const Oru8u* pSrc, int srcStep, Oru8u* pDst, int dstStep,
                                          OruSize roiSize, int coi);
ORUCV_API OruStatus a6_orcvCopy_8u_C4CC1R(const Oru8u* pSrc, int srcStep, Oru8u* pDst, int dstStep,
                                          OruSize roiSize, int coi);
ORUCV_API OruStatus a6_orcvCopy_32f_C3CC1R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep,
                                           OruSize roiSize, int coi);
ORUCV_API OruStatus a6_orcvCopy_32f_C4CC1R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep,
                                           OruSize roiSize, int coi);
ORUCV_API OruStatus a6_orcvCopy_8u_C3P3R(const Oru8u* pSrc, int srcStep, Oru8u* pDst0, Oru8u* pDst1,
                                         Oru8u* pDst2, int dstStep, OruSize roiSize);
ORUCV_API OruStatus a6_orcvCopy_8u_C4P4R(const Oru8u* pSrc, int srcStep, Oru8u* pDst0, Oru8u* pDst1,
                                         Oru8u* pDst2, Oru8u* pDst3, int dstStep, OruSize roiSize);
ORUCV_API OruStatus a6_orcvCopy_32f_C3P3R(const Oru32f* pSrc, int srcStep, Oru32f* pDst0, Oru32f* pDst1,
                                          Oru32f* pDst2, int dstStep, OruSize roiSize);
ORUCV_API OruStatus a6_orcvCopy_32f_C4P4R(const Oru32f* pSrc, int srcStep, Oru32f* pDst0, Oru32f* pDst1,
                                          Oru32f* pDst2, Oru32f* pDst3, int dstStep, OruSize roiSize);
ORUCV_API OruStatus a6_orcvCopy_8u_P3C3R(const Oru8u* pSrc0, const Oru8u* pSrc1, const Oru8u* pSrc2,
                                         int srcStep, Oru8u* pDst, int dstStep, OruSize roiSize);
ORUCV_API OruStatus a6_orcvCopy_8u_P4C4R(const Oru8u* pSrc0, const Oru8u* pSrc1, const Oru8u* pSrc2,
                                         const Oru8u* pSrc3, int srcStep, Oru8u* pDst, int dstStep,
                                         OruSize roiSize);
ORUCV_API OruStatus a6_orcvCopy_32f_P3C3R(const Oru32f* pSrc0, const Oru32f* pSrc1, const Oru32f* pSrc2,
                                          int srcStep, Oru32f* pDst, int dstStep, OruSize roiSize);
ORUCV_API OruStatus a6_orcvCopy_32f_P4C4R(const Oru32f* pSrc0, const Oru32f* pSrc1, const Oru32f* pSrc2,
                                          const Oru32f* pSrc3, int srcStep, Oru32f* pDst, int dstStep,
                                          OruSize roiSize);

/* ---- Absolute difference and motion history ----------------------------- */
/* Checks: null pointer, step < 1 (oruStsStep), size < 1 (oruStsSize), then for
 * float images a step not divisible by 4 (oruStsNotEvenStep). */

/* dst = |src1 - src2|, exact in 8 bits. */
ORUCV_API OruStatus oruiAbsDiff_8u_C1R(const Oru8u* pSrc1, int src1Step, const Oru8u* pSrc2, int src2Step,
                                       Oru8u* pDst, int dstStep, OruSize roiSize);
/* dst = |src - v| with v = value clamped to 0..255. */
ORUCV_API OruStatus oruiAbsDiffC_8u_C1R(const Oru8u* pSrc, int srcStep, Oru8u* pDst, int dstStep,
                                        OruSize roiSize, int value);
/* dst = src1 - src2 with the sign bit cleared (NaN payloads pass through). */
ORUCV_API OruStatus oruiAbsDiff_32f_C1R(const Oru32f* pSrc1, int src1Step, const Oru32f* pSrc2, int src2Step,
                                        Oru32f* pDst, int dstStep, OruSize roiSize);
ORUCV_API OruStatus oruiAbsDiffC_32f_C1R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep,
                                         OruSize roiSize, Oru32f value);

/* Per pixel: silhouette nonzero -> mhi = timestamp; else mhi below
 * timestamp - mhiDuration -> 0; else unchanged. The comparison orders the
 * float bit patterns, so NaN histories compare by their patterns too.
 * Checks: null pointer; negative size, silhStep < width, mhiStep < 4 * width
 * or not divisible by 4 (all oruStsSize); mhiDuration negative or NaN
 * (oruStsOutOfRange). A zero-sized region returns oruStsOk. */
ORUCV_API OruStatus oruiUpdateMotionHistory_8u32f_C1IR(const Oru8u* pSilhouette, int silhStep, Oru32f* pMHI,
                                                       int mhiStep, OruSize roiSize, Oru32f timestamp,
                                                       Oru32f mhiDuration);

/* ---- Fixed 3x3 derivative filters ---------------------------------------- */

/* ---- Canny edge detector -------------------------------------------------- */

/* ---- Chamfer distance transform ------------------------------------------- */
/* Every pixel of the float destination receives the chamfer distance to the
 * nearest source pixel equal to 0 (a feature, distance 0), computed by a
 * forward and a backward raster pass over the region. Step weights:
 * pMetrics[0] = a for a horizontal or vertical step, pMetrics[1] = b for a
 * diagonal step, pMetrics[2] = c for a knight step (1, 2) (5x5 only). The
 * weights are rounded to units of 2^-18 (nearest, ties to even) and the
 * passes add them in 32-bit integers (wrapping, signed comparisons); a pixel
 * that no feature reaches keeps 1073741823 units, which reads 4096.0. Each
 * result is the integer distance converted to float times 2^-18. The
 * destination rows serve as the integer work image: no scratch buffer.
 * Checks: pSrc, pDst or pMetrics null (oruStsNullPointer); then a negative
 * width or height, srcStep < width, dstStep < 4 * width or not a multiple of
 * 4 (all oruStsSize). A zero width or height returns oruStsOk and touches
 * no memory. The weights are not checked. */

/* Writes the weights of a standard mask. maskType = 10 * mask size + norm:
 *   30  3x3 chessboard  a = 1, b = 1
 *   31  3x3 city block  a = 1, b = 2
 *   32  3x3 Euclidean   a = 0.955, b = 1.3693
 *   52  5x5 Euclidean   a = 1, b = 1.4, c = 2.1969
 * Checks: pMetrics null (oruStsNullPointer); any other code, 50 and 51
 * included (oruStsOutOfRange, nothing written). */
ORUCV_API OruStatus oruiGetDistanceTransformMask(int maskType, Oru32f* pMetrics);
/* 3x3 mask: the eight neighbours, weights a and b. */
ORUCV_API OruStatus oruiDistanceTransform_3x3_8u32f_C1R(const Oru8u* pSrc, int srcStep, Oru32f* pDst, int dstStep,
                                                        OruSize roiSize, const Oru32f* pMetrics);
/* 5x5 mask: the eight neighbours plus the eight knight steps, weights a, b
 * and c. */
ORUCV_API OruStatus oruiDistanceTransform_5x5_8u32f_C1R(const Oru8u* pSrc, int srcStep, Oru32f* pDst, int dstStep,
                                                        OruSize roiSize, const Oru32f* pMetrics);

/* ---- Flood fill ------------------------------------------------------------ */

/* ---- Gaussian pyramids ----------------------------------------------------- */

/* ---- Accumulators ---------------------------------------------------------- */
/* Running accumulation into a one-channel float accumulator pSrcDst, updated
 * in place, in single precision:
 *   Add:         acc = acc + s
 *   AddSquare:   acc = acc + s * s
 *   AddProduct:  acc = acc + s1 * s2
 *   AddWeighted: acc = acc + (s - acc) * alpha   (alpha is used unchanged,
 *                whatever its value, also negative, infinite or NaN)
 * 8-bit values are converted exactly; 8-bit squares and products are exact
 * integers before conversion (e.g. -128 * 127 adds -16256.0).
 * Masked forms (C1IMR) rewrite every accumulator pixel: where the mask byte
 * is 0, Add/AddSquare/AddProduct add +0.0 (so -0.0 becomes +0.0) and
 * AddWeighted uses the weight 0.0 (so an infinite or NaN s - acc makes the
 * pixel NaN).
 * Checks, in order: any image pointer NULL (oruStsNullPointer); width or
 * height negative, an 8-bit step (source or mask) below width, a float step
 * below 4 * width or not divisible by 4 (all oruStsSize). A region with zero
 * width or height returns oruStsOk without touching memory. */

ORUCV_API OruStatus oruiAdd_8u32f_C1IR(const Oru8u* pSrc, int srcStep, Oru32f* pSrcDst, int srcDstStep,
                                       OruSize roiSize);
ORUCV_API OruStatus oruiAdd_8s32f_C1IR(const Oru8s* pSrc, int srcStep, Oru32f* pSrcDst, int srcDstStep,
                                       OruSize roiSize);
ORUCV_API OruStatus oruiAdd_8u32f_C1IMR(const Oru8u* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                        Oru32f* pSrcDst, int srcDstStep, OruSize roiSize);
ORUCV_API OruStatus oruiAdd_8s32f_C1IMR(const Oru8s* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                        Oru32f* pSrcDst, int srcDstStep, OruSize roiSize);
/* Float Add exists in the masked form only. */
ORUCV_API OruStatus oruiAdd_32f_C1IMR(const Oru32f* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                      Oru32f* pSrcDst, int srcDstStep, OruSize roiSize);

ORUCV_API OruStatus oruiAddSquare_8u32f_C1IR(const Oru8u* pSrc, int srcStep, Oru32f* pSrcDst, int srcDstStep,
                                             OruSize roiSize);
ORUCV_API OruStatus oruiAddSquare_8s32f_C1IR(const Oru8s* pSrc, int srcStep, Oru32f* pSrcDst, int srcDstStep,
                                             OruSize roiSize);
ORUCV_API OruStatus oruiAddSquare_32f_C1IR(const Oru32f* pSrc, int srcStep, Oru32f* pSrcDst, int srcDstStep,
                                           OruSize roiSize);
ORUCV_API OruStatus oruiAddSquare_8u32f_C1IMR(const Oru8u* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                              Oru32f* pSrcDst, int srcDstStep, OruSize roiSize);
ORUCV_API OruStatus oruiAddSquare_8s32f_C1IMR(const Oru8s* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                              Oru32f* pSrcDst, int srcDstStep, OruSize roiSize);
ORUCV_API OruStatus oruiAddSquare_32f_C1IMR(const Oru32f* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                            Oru32f* pSrcDst, int srcDstStep, OruSize roiSize);

ORUCV_API OruStatus oruiAddProduct_8u32f_C1IR(const Oru8u* pSrc1, int src1Step, const Oru8u* pSrc2, int src2Step,
                                              Oru32f* pSrcDst, int srcDstStep, OruSize roiSize);
ORUCV_API OruStatus oruiAddProduct_8s32f_C1IR(const Oru8s* pSrc1, int src1Step, const Oru8s* pSrc2, int src2Step,
                                              Oru32f* pSrcDst, int srcDstStep, OruSize roiSize);
ORUCV_API OruStatus oruiAddProduct_32f_C1IR(const Oru32f* pSrc1, int src1Step, const Oru32f* pSrc2, int src2Step,
                                            Oru32f* pSrcDst, int srcDstStep, OruSize roiSize);
ORUCV_API OruStatus oruiAddProduct_8u32f_C1IMR(const Oru8u* pSrc1, int src1Step, const Oru8u* pSrc2, int src2Step,
                                               const Oru8u* pMask, int maskStep, Oru32f* pSrcDst, int srcDstStep,
                                               OruSize roiSize);
ORUCV_API OruStatus oruiAddProduct_8s32f_C1IMR(const Oru8s* pSrc1, int src1Step, const Oru8s* pSrc2, int src2Step,
                                               const Oru8u* pMask, int maskStep, Oru32f* pSrcDst, int srcDstStep,
                                               OruSize roiSize);
ORUCV_API OruStatus oruiAddProduct_32f_C1IMR(const Oru32f* pSrc1, int src1Step, const Oru32f* pSrc2, int src2Step,
                                             const Oru8u* pMask, int maskStep, Oru32f* pSrcDst, int srcDstStep,
                                             OruSize roiSize);

ORUCV_API OruStatus oruiAddWeighted_8u32f_C1IR(const Oru8u* pSrc, int srcStep, Oru32f* pSrcDst, int srcDstStep,
                                               OruSize roiSize, Oru32f alpha);
ORUCV_API OruStatus oruiAddWeighted_8s32f_C1IR(const Oru8s* pSrc, int srcStep, Oru32f* pSrcDst, int srcDstStep,
                                               OruSize roiSize, Oru32f alpha);
ORUCV_API OruStatus oruiAddWeighted_32f_C1IR(const Oru32f* pSrc, int srcStep, Oru32f* pSrcDst, int srcDstStep,
                                             OruSize roiSize, Oru32f alpha);
ORUCV_API OruStatus oruiAddWeighted_8u32f_C1IMR(const Oru8u* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                                Oru32f* pSrcDst, int srcDstStep, OruSize roiSize, Oru32f alpha);
ORUCV_API OruStatus oruiAddWeighted_8s32f_C1IMR(const Oru8s* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                                Oru32f* pSrcDst, int srcDstStep, OruSize roiSize, Oru32f alpha);
ORUCV_API OruStatus oruiAddWeighted_32f_C1IMR(const Oru32f* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                              Oru32f* pSrcDst, int srcDstStep, OruSize roiSize, Oru32f alpha);

/* ---- Template matching ----------------------------------------------------- */

#ifdef __cplusplus
}
#endif

#endif /* ORUCV_H */
