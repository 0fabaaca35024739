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
/* One level of a Gaussian pyramid with the separable 5x5 kernel built from
 * the row 1 4 6 4 1; channels are interleaved and filtered independently.
 * Borders mirror about the edge pixel without repeating it (index -1 reads
 * 1, index n reads n - 2); PyrUp mirrors the zero-inserted grid.
 *
 * PyrDown: the source ROI (width and height both even) becomes
 * width/2 x height/2; destination pixel (x, y) is centred on source pixel
 * (2x, 2y). 8u stores (sum + 128) >> 8 of the 256-weight sum, 8s
 * floor((sum + 128) / 256), 32f sum * (1/256).
 * PyrUp: the source ROI becomes 2*width x 2*height (zeros inserted between
 * pixels, smoothed with total weight 64 per output); 8u and 8s store
 * (sum + 32) >> 6 (arithmetic shift), 32f sum * (1/64).
 * 32f sums are evaluated left to right as written: inside
 * 6*c + 4*(l1 + r1) + l2 + r2 (down) and l + 6*c + r, 4*(c + r) (up), with
 * the edge forms 6*c + 8*r1 + 2*r2, 7*c + 4*(l1 + r1) + l2, 8*(c + r1)
 * (down) and 6*c + 2*r, l + 7*c, 8*c (up); the horizontal pass runs first
 * and the vertical pass combines its rows with the same forms. A NaN result
 * is stored as the quiet NaN 0x7FC00000 (payloads are not kept).
 * Destination rows of large images (source and destination together 16 MiB
 * or more) are written with non-temporal stores that bypass the caches.
 *
 * pBuffer is scratch of the size reported by the matching size query for
 * the ROI width, type and channel count; it needs no alignment and its
 * contents on return are unspecified.
 *
 * Checks, first failure wins:
 *  1. pSrc, pDst or pBuffer NULL: oruStsNullPointer.
 *  2. All oruStsSize (never a step status), with e the element size
 *     (4 for 32f, else 1) and ch the channel count:
 *     PyrDown: width or height negative, srcStep < width*ch*e,
 *       dstStep < (width/2)*ch*e, width or height odd;
 *     PyrUp: width or height negative, srcStep < width*ch*e,
 *       dstStep < 2*width*ch*e;
 *     32f: srcStep or dstStep not a multiple of 4.
 *  3. A zero width or height returns oruStsOk and writes nothing. */
ORUCV_API OruStatus oruiPyrDown_Gauss5x5_8u_C1R(const Oru8u* pSrc, int srcStep, Oru8u* pDst, int dstStep,
                                                OruSize roiSize, Oru8u* pBuffer);
ORUCV_API OruStatus oruiPyrDown_Gauss5x5_8u_C3R(const Oru8u* pSrc, int srcStep, Oru8u* pDst, int dstStep,
                                                OruSize roiSize, Oru8u* pBuffer);
ORUCV_API OruStatus oruiPyrDown_Gauss5x5_8s_C1R(const Oru8s* pSrc, int srcStep, Oru8s* pDst, int dstStep,
                                                OruSize roiSize, Oru8u* pBuffer);
ORUCV_API OruStatus oruiPyrDown_Gauss5x5_8s_C3R(const Oru8s* pSrc, int srcStep, Oru8s* pDst, int dstStep,
                                                OruSize roiSize, Oru8u* pBuffer);
ORUCV_API OruStatus oruiPyrDown_Gauss5x5_32f_C1R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep,
                                                 OruSize roiSize, Oru8u* pBuffer);
ORUCV_API OruStatus oruiPyrDown_Gauss5x5_32f_C3R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep,
                                                 OruSize roiSize, Oru8u* pBuffer);
ORUCV_API OruStatus oruiPyrUp_Gauss5x5_8u_C1R(const Oru8u* pSrc, int srcStep, Oru8u* pDst, int dstStep,
                                              OruSize roiSize, Oru8u* pBuffer);
ORUCV_API OruStatus oruiPyrUp_Gauss5x5_8u_C3R(const Oru8u* pSrc, int srcStep, Oru8u* pDst, int dstStep,
                                              OruSize roiSize, Oru8u* pBuffer);
ORUCV_API OruStatus oruiPyrUp_Gauss5x5_8s_C1R(const Oru8s* pSrc, int srcStep, Oru8s* pDst, int dstStep,
                                              OruSize roiSize, Oru8u* pBuffer);
ORUCV_API OruStatus oruiPyrUp_Gauss5x5_8s_C3R(const Oru8s* pSrc, int srcStep, Oru8s* pDst, int dstStep,
                                              OruSize roiSize, Oru8u* pBuffer);
ORUCV_API OruStatus oruiPyrUp_Gauss5x5_32f_C1R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep,
                                               OruSize roiSize, Oru8u* pBuffer);
ORUCV_API OruStatus oruiPyrUp_Gauss5x5_32f_C3R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep,
                                               OruSize roiSize, Oru8u* pBuffer);

/* Scratch sizes in bytes for a source ROI width, a data type (oruDataType8u,
 * oruDataType8s, oruDataType32f) and a channel count (1 or 3):
 *   PyrDown: 6 * R, R = (ch * (width/2 * b + s) + 15) rounded down to a
 *            multiple of 16, b = 2, s = 48 for 8u/8s, b = 4, s = 96 for 32f;
 *   PyrUp:   3 * ((ch * (width * 8 + 96) + 15) rounded down to a multiple
 *            of 16), for every type.
 * Checks: pBufferSize NULL: oruStsNullPointer. Otherwise *pBufferSize is set
 * to 0 and the query fails with oruStsSize for a negative width (PyrDown:
 * also an odd width), then oruStsNumChannels for a channel count other than
 * 1 or 3, then oruStsDataType for an unknown type, then oruStsSize when the
 * size does not fit an int; on success the size is stored. */
ORUCV_API OruStatus oruiPyrDownGetBufSize_Gauss5x5(int roiWidth, int dataType, int channels, int* pBufferSize);
ORUCV_API OruStatus oruiPyrUpGetBufSize_Gauss5x5(int roiWidth, int dataType, int channels, int* pBufferSize);


/* ---- Accumulators ---------------------------------------------------------- */

/* ---- Template matching ----------------------------------------------------- */

#ifdef __cplusplus
}
#endif

#endif /* ORUCV_H */
