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

/* ---- Flood fill ------------------------------------------------------------ */

/* ---- Gaussian pyramids ----------------------------------------------------- */

/* ---- Accumulators ---------------------------------------------------------- */

/* ---- Template matching ----------------------------------------------------- */
/* Scores every placement of a template that lies wholly inside the source:
 * the destination is (srcW - tplW + 1) x (srcH - tplH + 1) floats, the score
 * at (x, y) belonging to the template's top-left corner on source pixel
 * (x, y); nothing else of the destination is written. With s the patch
 * pixels under the template and t the template pixels (N = tplW * tplH):
 *   SqDiff        D = sum (s - t)^2
 *   SqDiffNormed  D * r(T2) * r(S2)
 *   Corr          C = sum s * t
 *   CorrNormed    C * r(T2) * r(S2)
 *   Coeff         C - S * T * k
 *   CoeffNormed   (C - S * T * k) * r(T2 - T^2 * k) * r(S2 - S^2 * k)
 * where S, S2, T, T2 are the sums of s, s^2, t, t^2, k = 1 / (N + 2^-52) and
 * r(v) approximates 1 / sqrt(|v| + 2^-23). Byte images are summed exactly in
 * 64-bit integers, float images in double precision.
 *
 * pBuffer is scratch of at least the size the matching
 * oruiMatchTemplateGetBufSize_<Method> query reports for these sizes and
 * type; it need not be aligned and is never checked for size.
 *
 * Checks, in order: a NULL pointer (oruStsNullPointer); tplW < 1, tplH < 1,
 * srcW < tplW or srcH < tplH (oruStsSize); tplStep < tplW * e, then
 * srcStep < srcW * e, then dstStep < 4 * (srcW - tplW + 1), then (float
 * images) a source or template step not divisible by 4 or (every type) a
 * destination step not divisible by 4 (all oruStsStep); e is the element
 * size (1 or 4). Sizes whose scratch would exceed INT_MAX bytes give
 * oruStsSize after these checks. */
ORUCV_API OruStatus oruiMatchTemplate_SqDiff_8u32f_C1R(const Oru8u* pSrc, int srcStep, OruSize srcRoiSize,
                                                       const Oru8u* pTpl, int tplStep, OruSize tplRoiSize,
                                                       Oru32f* pDst, int dstStep, Oru8u* pBuffer);
ORUCV_API OruStatus oruiMatchTemplate_SqDiff_8s32f_C1R(const Oru8s* pSrc, int srcStep, OruSize srcRoiSize,
                                                       const Oru8s* pTpl, int tplStep, OruSize tplRoiSize,
                                                       Oru32f* pDst, int dstStep, Oru8u* pBuffer);
ORUCV_API OruStatus oruiMatchTemplate_SqDiff_32f_C1R(const Oru32f* pSrc, int srcStep, OruSize srcRoiSize,
                                                     const Oru32f* pTpl, int tplStep, OruSize tplRoiSize,
                                                     Oru32f* pDst, int dstStep, Oru8u* pBuffer);
ORUCV_API OruStatus oruiMatchTemplate_SqDiffNormed_8u32f_C1R(const Oru8u* pSrc, int srcStep, OruSize srcRoiSize,
                                                             const Oru8u* pTpl, int tplStep, OruSize tplRoiSize,
                                                             Oru32f* pDst, int dstStep, Oru8u* pBuffer);
ORUCV_API OruStatus oruiMatchTemplate_SqDiffNormed_8s32f_C1R(const Oru8s* pSrc, int srcStep, OruSize srcRoiSize,
                                                             const Oru8s* pTpl, int tplStep, OruSize tplRoiSize,
                                                             Oru32f* pDst, int dstStep, Oru8u* pBuffer);
ORUCV_API OruStatus oruiMatchTemplate_SqDiffNormed_32f_C1R(const Oru32f* pSrc, int srcStep, OruSize srcRoiSize,
                                                           const Oru32f* pTpl, int tplStep, OruSize tplRoiSize,
                                                           Oru32f* pDst, int dstStep, Oru8u* pBuffer);
ORUCV_API OruStatus oruiMatchTemplate_Corr_8u32f_C1R(const Oru8u* pSrc, int srcStep, OruSize srcRoiSize,
                                                     const Oru8u* pTpl, int tplStep, OruSize tplRoiSize,
                                                     Oru32f* pDst, int dstStep, Oru8u* pBuffer);
ORUCV_API OruStatus oruiMatchTemplate_Corr_8s32f_C1R(const Oru8s* pSrc, int srcStep, OruSize srcRoiSize,
                                                     const Oru8s* pTpl, int tplStep, OruSize tplRoiSize,
                                                     Oru32f* pDst, int dstStep, Oru8u* pBuffer);
ORUCV_API OruStatus oruiMatchTemplate_Corr_32f_C1R(const Oru32f* pSrc, int srcStep, OruSize srcRoiSize,
                                                   const Oru32f* pTpl, int tplStep, OruSize tplRoiSize,
                                                   Oru32f* pDst, int dstStep, Oru8u* pBuffer);
ORUCV_API OruStatus oruiMatchTemplate_CorrNormed_8u32f_C1R(const Oru8u* pSrc, int srcStep, OruSize srcRoiSize,
                                                           const Oru8u* pTpl, int tplStep, OruSize tplRoiSize,
                                                           Oru32f* pDst, int dstStep, Oru8u* pBuffer);
ORUCV_API OruStatus oruiMatchTemplate_CorrNormed_8s32f_C1R(const Oru8s* pSrc, int srcStep, OruSize srcRoiSize,
                                                           const Oru8s* pTpl, int tplStep, OruSize tplRoiSize,
                                                           Oru32f* pDst, int dstStep, Oru8u* pBuffer);
ORUCV_API OruStatus oruiMatchTemplate_CorrNormed_32f_C1R(const Oru32f* pSrc, int srcStep, OruSize srcRoiSize,
                                                         const Oru32f* pTpl, int tplStep, OruSize tplRoiSize,
                                                         Oru32f* pDst, int dstStep, Oru8u* pBuffer);
ORUCV_API OruStatus oruiMatchTemplate_Coeff_8u32f_C1R(const Oru8u* pSrc, int srcStep, OruSize srcRoiSize,
                                                      const Oru8u* pTpl, int tplStep, OruSize tplRoiSize,
                                                      Oru32f* pDst, int dstStep, Oru8u* pBuffer);
ORUCV_API OruStatus oruiMatchTemplate_Coeff_8s32f_C1R(const Oru8s* pSrc, int srcStep, OruSize srcRoiSize,
                                                      const Oru8s* pTpl, int tplStep, OruSize tplRoiSize,
                                                      Oru32f* pDst, int dstStep, Oru8u* pBuffer);
ORUCV_API OruStatus oruiMatchTemplate_Coeff_32f_C1R(const Oru32f* pSrc, int srcStep, OruSize srcRoiSize,
                                                    const Oru32f* pTpl, int tplStep, OruSize tplRoiSize,
                                                    Oru32f* pDst, int dstStep, Oru8u* pBuffer);
ORUCV_API OruStatus oruiMatchTemplate_CoeffNormed_8u32f_C1R(const Oru8u* pSrc, int srcStep, OruSize srcRoiSize,
                                                            const Oru8u* pTpl, int tplStep, OruSize tplRoiSize,
                                                            Oru32f* pDst, int dstStep, Oru8u* pBuffer);
ORUCV_API OruStatus oruiMatchTemplate_CoeffNormed_8s32f_C1R(const Oru8s* pSrc, int srcStep, OruSize srcRoiSize,
                                                            const Oru8s* pTpl, int tplStep, OruSize tplRoiSize,
                                                            Oru32f* pDst, int dstStep, Oru8u* pBuffer);
ORUCV_API OruStatus oruiMatchTemplate_CoeffNormed_32f_C1R(const Oru32f* pSrc, int srcStep, OruSize srcRoiSize,
                                                          const Oru32f* pTpl, int tplStep, OruSize tplRoiSize,
                                                          Oru32f* pDst, int dstStep, Oru8u* pBuffer);

/* Scratch size in bytes for the match functions of one method, for these
 * sizes and data type (oruDataType8u, oruDataType8s or oruDataType32f).
 * Checks, in order: pBufferSize NULL (oruStsNullPointer, nothing written);
 * then *pBufferSize is set to 0 and tplW <= 0, tplH <= 0, tplW > srcW or
 * tplH > srcH give oruStsSize; an unknown dataType gives oruStsDataType; a
 * size above INT_MAX gives oruStsSize. */
ORUCV_API OruStatus oruiMatchTemplateGetBufSize_SqDiff(OruSize srcRoiSize, OruSize tplRoiSize, int dataType,
                                                       int* pBufferSize);
ORUCV_API OruStatus oruiMatchTemplateGetBufSize_SqDiffNormed(OruSize srcRoiSize, OruSize tplRoiSize, int dataType,
                                                             int* pBufferSize);
ORUCV_API OruStatus oruiMatchTemplateGetBufSize_Corr(OruSize srcRoiSize, OruSize tplRoiSize, int dataType,
                                                     int* pBufferSize);
ORUCV_API OruStatus oruiMatchTemplateGetBufSize_CorrNormed(OruSize srcRoiSize, OruSize tplRoiSize, int dataType,
                                                           int* pBufferSize);
ORUCV_API OruStatus oruiMatchTemplateGetBufSize_Coeff(OruSize srcRoiSize, OruSize tplRoiSize, int dataType,
                                                      int* pBufferSize);
ORUCV_API OruStatus oruiMatchTemplateGetBufSize_CoeffNormed(OruSize srcRoiSize, OruSize tplRoiSize, int dataType,
                                                            int* pBufferSize);

#ifdef __cplusplus
}
#endif

#endif /* ORUCV_H */
