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
/* First and second derivatives of a one-channel image with fixed 3x3 Sobel
 * and Scharr kernels. The destination region has the source's size; every
 * neighbour beyond the region's edges is the nearest region pixel
 * (replication on all four sides), so nothing outside the two regions is
 * read or written. Source and destination must not overlap; destination
 * rows closer than a row width may overlap each other and are written top
 * to bottom, so each value is that of the last row covering it.
 *
 * With d = s(x+1) - s(x-1) and m = s(x-1) + 2 s(x) + s(x+1) along a row:
 *   Dx   = d(y-1) + 2 d(y) + d(y+1)        D2x = [1 -2 1] across, [1 2 1] down
 *   Dy   = m(y+1) - m(y-1)                 D2y = [1 2 1] across, [1 -2 1] down
 *   DxDy = d(y+1) - d(y-1)
 *   Scharr Dx = (3 d(y-1) + 10 d(y) + 3 d(y+1)) >> shift
 *   Scharr Dy = (e(y+1) - e(y-1)) >> shift, e = 3 s(x-1) + 10 s(x) + 3 s(x+1)
 * A one-column image has d = 0. origin 1 (rows stored bottom-up) gives the
 * upper row minus the lower one, the negated y derivative.
 *
 * Scharr shift: integer results are the exact sums divided by 2^shift and
 * rounded toward minus infinity (an arithmetic shift). Every count is
 * accepted: from 13 on every result is 0 or -1 (the sign of the sum), so
 * counts of 32 and more give 0 or -1 too, on every pixel. Float results use
 * the weights 3k, 10k and 13k (edge rows and columns) with k = 1 / 2^shift,
 * 2^shift formed by repeated doubling of 1.0f: from 128 on k is 0.
 *
 * Float sums are formed in single precision in one fixed order: first the
 * row term of each source row (d, or m = (c0 s(x-1) + c1 s(x)) + c2 s(x+1)),
 * then the rows: Dx = (c0 d(y-1) + c1 d(y)) + c2 d(y+1), Dy = m(y+1) - m(y-1).
 * Replicated neighbours collapse into one weight: the first row or column
 * uses big * (edge) + small * (next), the last small * (previous) + big *
 * (edge), with (c0, c1, c2, big, small) = (1, 2, 1, 3, 1) for Sobel and
 * (3k, 10k, 3k, 13k, 3k) for Scharr; a one-column row has
 * m = big * s + small * s (exactly 4 s for Sobel) and d = 0. A NaN result
 * is stored as the quiet NaN 0x7FC00000 whatever payloads met on the way.
 *
 * Checks, first failure returns (nothing is written on failure):
 *   1. pSrc or pDst NULL: oruStsNullPointer;
 *   2. srcStep or dstStep below 1: oruStsStep;
 *   3. width below 1 or height below 2: oruStsSize;
 *   4. 16-bit results: odd dstStep; float images: either step not a multiple
 *      of 4: oruStsNotEvenStep (8-bit source steps may be any value);
 *   5. origin not 0 or 1: oruStsBadArg;
 *   6. shift negative: oruStsBadArg.
 * oruiSobel3x3_D2y_8u16s_C1R alone also returns oruStsSize after step 4 when
 * srcStep < width or dstStep < 2 * width. */
ORUCV_API OruStatus oruiSobel3x3_Dx_8u16s_C1R(const Oru8u* pSrc, int srcStep, Oru16s* pDst, int dstStep,
                                              OruSize roiSize);
ORUCV_API OruStatus oruiSobel3x3_Dy_8u16s_C1R(const Oru8u* pSrc, int srcStep, Oru16s* pDst, int dstStep, int origin,
                                              OruSize roiSize);
ORUCV_API OruStatus oruiSobel3x3_D2x_8u16s_C1R(const Oru8u* pSrc, int srcStep, Oru16s* pDst, int dstStep,
                                               OruSize roiSize);
ORUCV_API OruStatus oruiSobel3x3_D2y_8u16s_C1R(const Oru8u* pSrc, int srcStep, Oru16s* pDst, int dstStep,
                                               OruSize roiSize);
ORUCV_API OruStatus oruiSobel3x3_DxDy_8u16s_C1R(const Oru8u* pSrc, int srcStep, Oru16s* pDst, int dstStep,
                                                int origin, OruSize roiSize);
ORUCV_API OruStatus oruiSobel3x3_Dx_8s16s_C1R(const Oru8s* pSrc, int srcStep, Oru16s* pDst, int dstStep,
                                              OruSize roiSize);
ORUCV_API OruStatus oruiSobel3x3_Dy_8s16s_C1R(const Oru8s* pSrc, int srcStep, Oru16s* pDst, int dstStep, int origin,
                                              OruSize roiSize);
ORUCV_API OruStatus oruiSobel3x3_D2x_8s16s_C1R(const Oru8s* pSrc, int srcStep, Oru16s* pDst, int dstStep,
                                               OruSize roiSize);
ORUCV_API OruStatus oruiSobel3x3_D2y_8s16s_C1R(const Oru8s* pSrc, int srcStep, Oru16s* pDst, int dstStep,
                                               OruSize roiSize);
ORUCV_API OruStatus oruiSobel3x3_DxDy_8s16s_C1R(const Oru8s* pSrc, int srcStep, Oru16s* pDst, int dstStep,
                                                int origin, OruSize roiSize);
ORUCV_API OruStatus oruiSobel3x3_Dx_32f_C1R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep,
                                            OruSize roiSize);
ORUCV_API OruStatus oruiSobel3x3_Dy_32f_C1R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep, int origin,
                                            OruSize roiSize);
ORUCV_API OruStatus oruiScharr_Dx_8u16s_C1R(const Oru8u* pSrc, int srcStep, Oru16s* pDst, int dstStep,
                                            OruSize roiSize, int shift);
ORUCV_API OruStatus oruiScharr_Dy_8u16s_C1R(const Oru8u* pSrc, int srcStep, Oru16s* pDst, int dstStep, int origin,
                                            OruSize roiSize, int shift);
ORUCV_API OruStatus oruiScharr_Dx_8s16s_C1R(const Oru8s* pSrc, int srcStep, Oru16s* pDst, int dstStep,
                                            OruSize roiSize, int shift);
ORUCV_API OruStatus oruiScharr_Dy_8s16s_C1R(const Oru8s* pSrc, int srcStep, Oru16s* pDst, int dstStep, int origin,
                                            OruSize roiSize, int shift);
ORUCV_API OruStatus oruiScharr_Dx_32f_C1R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep,
                                          OruSize roiSize, int shift);
ORUCV_API OruStatus oruiScharr_Dy_32f_C1R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep, int origin,
                                          OruSize roiSize, int shift);


/* ---- Canny edge detector -------------------------------------------------- */

/* Scratch size in bytes for oruiCanny_16s8u_C1R on roiSize:
 * 12 * (width + 2) * (height + 2). Checks: width or height below 1
 * (oruStsSize, tested before the pointer), pBufferSize NULL
 * (oruStsNullPointer), a size whose byte count does not fit an int
 * (oruStsSize, nothing written). */
ORUCV_API OruStatus oruiCannyGetSize(OruSize roiSize, int* pBufferSize);

/* Binary edge map (255 edge, 0 not) from x and y derivative images, such as
 * those of oruiSobel3x3_Dx_8u16s_C1R and oruiSobel3x3_Dy_8u16s_C1R (origin 0).
 *  - magnitude m = |dx| + |dy|, saturated to 16 bits (|-32768| counts as
 *    32767); thresholds are truncated toward zero (10.9 acts as 10);
 *  - a pixel is a candidate when m > low and m is strictly greater than
 *    both neighbours along its gradient direction, quantised with
 *    1697 |dx| > 4096 |dy| (left/right), else 9889 |dx| > 4096 |dy|
 *    (diagonal: upper-left/lower-right when dx and dy have the same sign
 *    bit, upper-right/lower-left otherwise), else up/down. Equal magnitudes
 *    along the direction suppress each other (plateaus give no edge);
 *    outside the image the magnitude is 0;
 *  - edges are the candidates 8-connected through candidates to one with
 *    m > high.
 * The magnitude pass reads row y of the x derivative at pSrcDx + y *
 * srcDyStep and of the y derivative at pSrcDy + y * srcDxStep (the steps are
 * exchanged there, and only there); with equal steps this makes no
 * difference. Output rows closer than the width overlap: each byte keeps the
 * last of the writes of columns 0 .. (width & ~7) - 1 of every row, then of
 * the remaining columns of every row. pBuffer holds at least
 * oruiCannyGetSize bytes and is the only memory used; its contents
 * afterwards are unspecified.
 * Checks, in order: a NULL pointer (oruStsNullPointer); a step below 1
 * (oruStsStep); width or height below 1 (oruStsSize); an odd derivative
 * step (oruStsNotEvenStep; the output step may be odd); not
 * (lowThresh >= 0) or not (highThresh >= lowThresh), NaN included
 * (oruStsBadArg). */
ORUCV_API OruStatus oruiCanny_16s8u_C1R(const Oru16s* pSrcDx, int srcDxStep, const Oru16s* pSrcDy, int srcDyStep,
                                        Oru8u* pDstEdges, int dstEdgeStep, OruSize roiSize, Oru32f lowThresh,
                                        Oru32f highThresh, Oru8u* pBuffer);

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
/* Seeded in-place fills of one-channel images. A fill works in a caller
 * buffer whose size comes from its size query; the buffer's size is never
 * checked against the region, and no input makes a fill touch memory outside
 * the image's rows and that buffer.
 *
 * Size queries: width or height below 1 (oruStsSize), then pBufSize null
 * (oruStsNullPointer); nothing is written on failure. The sizes are computed
 * in unsigned 32-bit arithmetic (6 bytes per pixel, plus (width + 2) x
 * (height + 2) bytes for the gradient fills); for regions of more than about
 * 178 million pixels they wrap around.
 *
 * Fill checks, first failure wins: pImage, pRegion or pBuffer null
 * (oruStsNullPointer); imageStep < 1 (oruStsStep); width or height < 1
 * (oruStsSize); 32f: imageStep not a multiple of 4 (oruStsNotEvenStep); seed
 * outside the region (oruStsOutOfRange); 8u: newVal outside 0..255
 * (oruStsBadArg); gradient fills: a negative (or NaN) tolerance, and for 8u a
 * tolerance sum above 255 (oruStsOutOfRange). After these checks, a region
 * so large that its wrapped buffer size leaves less than the fill's
 * bookkeeping needs (1 bit per pixel, or the gradient fill's byte mask) is
 * refused with oruStsError. On success *pRegion receives the filled area,
 * newVal and the bounding rectangle of the filled pixels. Any buffer
 * contents are scratch. */

/* Result of every flood fill. */
typedef struct OruConnectedComp {
    Oru64f area;  /* number of filled pixels */
    Oru64f value; /* the new value */
    OruRect rect; /* bounding rectangle of the filled pixels */
} OruConnectedComp;

/* Fixed range: every pixel connected to the seed (4- or 8-connectivity)
 * through pixels equal to the seed's value is set to newVal. For 32f, values
 * compare as floats (-0.0 equals +0.0) and NaNs form one class: a NaN seed
 * fills the NaN pixels connected to it, other seeds never take NaN pixels.
 * When the seed pixel already holds newVal (in that sense), or a 32f newVal
 * is a NaN, the call returns oruStsOk at once and writes nothing, pRegion
 * included. */
ORUCV_API OruStatus oruiFloodFillGetSize(OruSize roiSize, int* pBufSize);
ORUCV_API OruStatus oruiFloodFill_4Con_8u_C1IR(Oru8u* pImage, int imageStep, OruSize roiSize, OruPoint seed,
                                               int newVal, OruConnectedComp* pRegion, Oru8u* pBuffer);
ORUCV_API OruStatus oruiFloodFill_8Con_8u_C1IR(Oru8u* pImage, int imageStep, OruSize roiSize, OruPoint seed,
                                               int newVal, OruConnectedComp* pRegion, Oru8u* pBuffer);
ORUCV_API OruStatus oruiFloodFill_4Con_32f_C1IR(Oru32f* pImage, int imageStep, OruSize roiSize, OruPoint seed,
                                                Oru32f newVal, OruConnectedComp* pRegion, Oru8u* pBuffer);
ORUCV_API OruStatus oruiFloodFill_8Con_32f_C1IR(Oru32f* pImage, int imageStep, OruSize roiSize, OruPoint seed,
                                                Oru32f newVal, OruConnectedComp* pRegion, Oru8u* pBuffer);

/* Gradient: a pixel joins the region when its value n is in range of an
 * adjacent pixel c already in it, c - minDelta <= n <= c + maxDelta (for
 * 32f tested as |n + h - c| <= w with h = (minDelta - maxDelta) / 2 and
 * w = (minDelta + maxDelta) / 2 in single precision; NaNs are only in range
 * of NaNs). Every edge out of the region is tested against the original
 * values, so the region is the set of pixels reachable from the seed through
 * in-range steps. All of it is set to newVal, also when the seed already
 * holds newVal. */
ORUCV_API OruStatus oruiFloodFillGetSize_Grad(OruSize roiSize, int* pBufSize);
ORUCV_API OruStatus oruiFloodFill_Grad4Con_8u_C1IR(Oru8u* pImage, int imageStep, OruSize roiSize, OruPoint seed,
                                                   int newVal, int minDelta, int maxDelta,
                                                   OruConnectedComp* pRegion, Oru8u* pBuffer);
ORUCV_API OruStatus oruiFloodFill_Grad8Con_8u_C1IR(Oru8u* pImage, int imageStep, OruSize roiSize, OruPoint seed,
                                                   int newVal, int minDelta, int maxDelta,
                                                   OruConnectedComp* pRegion, Oru8u* pBuffer);
ORUCV_API OruStatus oruiFloodFill_Grad4Con_32f_C1IR(Oru32f* pImage, int imageStep, OruSize roiSize, OruPoint seed,
                                                    Oru32f newVal, Oru32f minDelta, Oru32f maxDelta,
                                                    OruConnectedComp* pRegion, Oru8u* pBuffer);
ORUCV_API OruStatus oruiFloodFill_Grad8Con_32f_C1IR(Oru32f* pImage, int imageStep, OruSize roiSize, OruPoint seed,
                                                    Oru32f newVal, Oru32f minDelta, Oru32f maxDelta,
                                                    OruConnectedComp* pRegion, Oru8u* pBuffer);

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
 * the edge forms 2*(3*c + 4*r1 + r2), 7*c + 4*(l1 + r1) + l2, 8*(c + r1)
 * (down) and 2*(3*c + r), l + 7*c, 8*c (up); the horizontal pass runs first
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
 * 64-bit integers, float images in double precision; a NaN score (from NaN
 * pixels) is stored as the quiet NaN 0x7FC00000.
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

/* ---- General strip filters ----------------------------------------------- */
/* Separable filters of size n = 3, 5 or 7 over a one-channel image supplied
 * in horizontal strips of any height: the Sobel derivative of orders
 * 0..n-1 in x and in y, the box sum (Blur) and the Laplacian. A filter
 * specification, created for one region width, data type and kernel size,
 * holds the kernels and the rows carried from one strip call to the next,
 * so an image of any height is filtered with memory for a few rows.
 *
 * Kernels. A kernel of n cells and derivative order d starts as 1 0 ... 0,
 * is smoothed n - 1 - d times (c'[k] = c[k] + c[k-1], a binomial row) and
 * differenced d times (c'[0] = -c[0], c'[k] = c[k-1] - c[k]); an odd y
 * derivative with origin 1 (rows stored bottom-up) is negated. n = 3 gives
 * 1 2 1 (d = 0), -1 0 1 (d = 1), 1 -2 1 (d = 2); n = 5, d = 1 gives
 * -1 -2 0 2 1. Cell k weighs pixel x - n/2 + k across and row y - n/2 + k
 * down, so first derivatives are right minus left and, with origin 0, lower
 * minus upper. Pixels and rows beyond the image are replicas of the nearest
 * edge pixel or row.
 *
 *   Sobel    x kernel (order xorder) across, y kernel (order yorder) down.
 *   Blur     the unnormalised sum of the n x n pixels around each pixel.
 *   Laplace  (order 2 across, order 0 down) + (order 0 across, order 2 down).
 *
 * Integer results (8u16s, 8s16s) are computed in 16 bits with wrap-around:
 * each is the exact sum modulo 2^16 (Sobel and Laplace sums of size 5 or 7
 * can exceed the 16-bit range; blur sums never do).
 *
 * Float results follow one order on every path. Across: the products
 * w * s of the pixels the kernel meets, added in increasing k from the
 * first product, where w is cell k, or near the edges the sum of the cells
 * that meet the same replicated pixel (weighed once, at the first of them);
 * weights of 0 drop out and a sum left empty is 0. Down: the same over the
 * across-filtered rows. Laplace adds its two parts in the order above (a
 * part left empty, order 2 down a one-row image, drops out). So size 3 with
 * the orders of the fixed 3x3 filters gives their bits (for example the
 * last row of Dx is d(y-1) + 3 d(y)). Blur: each row's sums run over its n
 * pixels left to right, a replicated edge pixel met m times as m * s (the
 * first sum of a row is (n/2 + 1) s[0] + s[1] + ... + s[n/2]); the column
 * sums start as (n/2 + 1) times the first row's sums, take rows 1..n/2 one
 * by one (col = col + row), and then at each further row
 * col = (col + entering row) - leaving row: the running sums of a float
 * image carry the rounding of the rows before, and a non-finite pixel
 * spoils its column from there on. NaN results are stored as the quiet NaN
 * 0x7FC00000.
 *
 * Strips. Each call passes the next source rows (pRoiSize->height of them)
 * with stripFlag 1 (first strip), 4 (middle), 2 (last), or 0 for the whole
 * image in one call (Blur and Laplace also take 3, the same as 0). A call
 * writes the destination rows whose window of source rows is complete and
 * sets pRoiSize->height to their count: after any call min(n/2, rows so far)
 * rows are held back, and the last strip writes them out, so its
 * destination needs room for its rows plus n/2. Flags 1, 4, ..., 4, 2 over
 * any split of an image give exactly the rows of one flag-0 call. The last
 * strip (or a flag-0 call) ends the pass: the filter specification is fresh again.
 * A fresh specification accepts only flags 0 and 1; flag 1 or 0 given
 * during a pass starts a new one. Destination row j of a call is written
 * only after source row j of the call was read, so the destination may be
 * the source (same pointer and step) or start above it with the same step.
 *
 * Checks of the filter calls, first failure returns (nothing is written and
 * pRoiSize is left as it was):
 *   Sobel (8u16s, 8s16s, 32f):
 *     1. pSrc, pDst, pSpec or pRoiSize NULL: oruStsNullPointer;
 *     2. width or height below 1, srcStep below width * source element
 *        size, dstStep below width * destination element size, or a step
 *        not a multiple of its element size (odd dstStep for 16-bit
 *        results; 32f: either step not a multiple of 4): oruStsSize;
 *     3. stripFlag not 0, 1, 2 or 4: oruStsBadArg.
 *   Blur and Laplace (8u16s, 8s16s, 32f):
 *     1. pSrc, pDst, pSpec or pRoiSize NULL: oruStsNullPointer;
 *     2. srcStep or dstStep below 1: oruStsStep;
 *     3. width or height below 1: oruStsSize;
 *     4. 8-bit sources: dstStep odd; Blur 32f: srcStep or dstStep odd
 *        (float rows may then sit at even addresses); Laplace 32f: srcStep
 *        or dstStep not a multiple of 4: oruStsNotEvenStep;
 *     5. stripFlag below 0 or above 4: oruStsBadArg.
 *   Then, for every filter call:
 *     pSpec not a specification of this filter for this data (8u16s and
 *     8s16s calls take specifications of type oruDataType8u or
 *     oruDataType8s alike, 32f calls those of oruDataType32f) and exactly
 *     this width: oruStsContextMismatch;
 *     a fresh specification given a flag other than 0 and 1: oruStsBadArg.
 *
 * Creation checks, first failure returns (*ppSpec is written on success
 * only):
 *   oruiSobelInitAlloc: ppSpec NULL (oruStsNullPointer); roiWidth below 1
 *   (oruStsSize); origin not 0 or 1 (oruStsBadArg); kernelSize not 3, 5 or
 *   7, or xorder or yorder negative or above kernelSize - 1 (oruStsSize);
 *   dataType not oruDataType8u, oruDataType8s or oruDataType32f
 *   (oruStsBadArg).
 *   oruiBlurInitAlloc, oruiLaplaceInitAlloc: ppSpec NULL
 *   (oruStsNullPointer); roiWidth below 1 or kernelSize not 3, 5 or 7
 *   (oruStsSize); dataType not 1, 2 or 9 (oruStsBadArg).
 *   All three return oruStsMemAlloc when the memory (a header and up to
 *   2 n rows of 4 bytes per pixel) cannot be had.
 * oruiConvolFree releases the filter specification held in *ppSpec and sets
 * *ppSpec to NULL (a variable holding NULL, or a pointer that cannot come
 * from the allocator, is left alone); ppSpec NULL gives oruStsNullPointer. */
typedef struct OruFilterSpec OruFilterSpec;

ORUCV_API OruStatus oruiSobelInitAlloc(int roiWidth, int dataType, int kernelSize, int origin, int xorder,
                                       int yorder, OruFilterSpec** ppSpec);
ORUCV_API OruStatus oruiBlurInitAlloc(int roiWidth, int dataType, int kernelSize, OruFilterSpec** ppSpec);
ORUCV_API OruStatus oruiLaplaceInitAlloc(int roiWidth, int dataType, int kernelSize, OruFilterSpec** ppSpec);
ORUCV_API OruStatus oruiConvolFree(OruFilterSpec** ppSpec);

ORUCV_API OruStatus oruiSobel_8u16s_C1R(const Oru8u* pSrc, int srcStep, Oru16s* pDst, int dstStep,
                                        OruSize* pRoiSize, OruFilterSpec* pSpec, int stripFlag);
ORUCV_API OruStatus oruiSobel_8s16s_C1R(const Oru8s* pSrc, int srcStep, Oru16s* pDst, int dstStep,
                                        OruSize* pRoiSize, OruFilterSpec* pSpec, int stripFlag);
ORUCV_API OruStatus oruiSobel_32f_C1R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep,
                                      OruSize* pRoiSize, OruFilterSpec* pSpec, int stripFlag);
ORUCV_API OruStatus oruiBlur_8u16s_C1R(const Oru8u* pSrc, int srcStep, Oru16s* pDst, int dstStep,
                                       OruSize* pRoiSize, OruFilterSpec* pSpec, int stripFlag);
ORUCV_API OruStatus oruiBlur_8s16s_C1R(const Oru8s* pSrc, int srcStep, Oru16s* pDst, int dstStep,
                                       OruSize* pRoiSize, OruFilterSpec* pSpec, int stripFlag);
ORUCV_API OruStatus oruiBlur_32f_C1R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep,
                                     OruSize* pRoiSize, OruFilterSpec* pSpec, int stripFlag);
ORUCV_API OruStatus oruiLaplace_8u16s_C1R(const Oru8u* pSrc, int srcStep, Oru16s* pDst, int dstStep,
                                          OruSize* pRoiSize, OruFilterSpec* pSpec, int stripFlag);
ORUCV_API OruStatus oruiLaplace_8s16s_C1R(const Oru8s* pSrc, int srcStep, Oru16s* pDst, int dstStep,
                                          OruSize* pRoiSize, OruFilterSpec* pSpec, int stripFlag);
ORUCV_API OruStatus oruiLaplace_32f_C1R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep,
                                        OruSize* pRoiSize, OruFilterSpec* pSpec, int stripFlag);

/* ---- Corner eigenvalues ------------------------------------------------------ */
/* The 2x2 covariance of the image gradient summed over a square window,
 * per pixel: its eigenvalues and eigenvectors (EigenValsVecs) or its
 * smaller eigenvalue (MinEigenVal), the usual corner measures. The
 * gradients are the Sobel first derivatives of size apertureSize (16-bit
 * for 8-bit sources, float for float ones) and the sums are the box sums of
 * the general filters above, so every result equals filtering the whole
 * image with replicated borders. The image goes through in strips of at
 * most 7 rows; the caller's buffer of the queried size is the only scratch,
 * and the filter specifications made inside are released before return.
 *
 * With Ix, Iy the derivatives (as floats), Sxx, Sxy, Syy the window sums of
 * Ix*Ix, Ix*Iy and Iy*Iy (single precision), and
 * k = 1 / (255 * 2^(a-1) * 2^(a-1) * w * w), a = apertureSize,
 * w = avgWindow (255 for every source type):
 *   MinEigenVal: p = 0.5 Sxx, q = 0.5 Syy, t = p - q,
 *     result = ((p + q) - sqrt(Sxy * Sxy + t * t)) * k.
 *     The 8u and 8s functions sum over apertureSize x apertureSize pixels:
 *     there avgWindow enters only k and the checks.
 *   EigenValsVecs: six floats per pixel, l1, l2, x1, y1, x2, y2. With
 *     a = k Sxx, c = k Syy, b = k Sxy, t = 0.01f * max(a, c):
 *     1. min(a, c) < t: all six 0;
 *     2. else |b| < t: l1 = a, l2 = c, vectors (1, 0) and (0, 1), unsorted;
 *     3. else with det = a c - b b: det < t: all six 0;
 *     4. else s = a + c, D = sqrt(s * s - 4 det), l1 = (s + D) * 0.5,
 *        l2 = (s - D) * 0.5, and for each li: u = li - a,
 *        m = sqrt(u * u + b * b) (2^-23 where it is 0), vector (b / m, u / m).
 *     A flat image gives six zeros (case 4 with m = 2^-23).
 * max(a, c) is a > c ? a : c, min(a, c) is a < c ? a : c. NaN results are
 * stored as the quiet NaN 0x7FC00000.
 *
 * Checks, first failure returns (nothing is written):
 *   1. pSrc, the output pointer or pBuffer NULL: oruStsNullPointer;
 *   2. all in one test, oruStsSize: width or height below 1, srcStep below
 *      width * source element size, the output step below 24 * width
 *      (EigenValsVecs) or 4 * width (MinEigenVal) or not a multiple of 4,
 *      apertureSize or avgWindow not 3, 5 or 7.
 *   oruStsMemAlloc when the filter specifications cannot be allocated.
 * The size queries write 96 * roiWidth bytes (12 * roiWidth for each of
 * 8 rows); roiWidth below 1, a size not 3, 5 or 7, or a result beyond the
 * int range give oruStsSize (tested before the pointer), then pBufferSize
 * NULL gives oruStsNullPointer. */
ORUCV_API OruStatus oruiEigenValsVecsGetSize(int roiWidth, int apertureSize, int avgWindow, int* pBufferSize);
ORUCV_API OruStatus oruiMinEigenValGetSize(int roiWidth, int apertureSize, int avgWindow, int* pBufferSize);
ORUCV_API OruStatus oruiEigenValsVecs_8u32f_C1R(const Oru8u* pSrc, int srcStep, Oru32f* pEigenVV, int eigStep,
                                                OruSize roiSize, int apertureSize, int avgWindow, Oru8u* pBuffer);
ORUCV_API OruStatus oruiEigenValsVecs_8s32f_C1R(const Oru8s* pSrc, int srcStep, Oru32f* pEigenVV, int eigStep,
                                                OruSize roiSize, int apertureSize, int avgWindow, Oru8u* pBuffer);
ORUCV_API OruStatus oruiEigenValsVecs_32f_C1R(const Oru32f* pSrc, int srcStep, Oru32f* pEigenVV, int eigStep,
                                              OruSize roiSize, int apertureSize, int avgWindow, Oru8u* pBuffer);
ORUCV_API OruStatus oruiMinEigenVal_8u32f_C1R(const Oru8u* pSrc, int srcStep, Oru32f* pMinEigen, int minEigStep,
                                              OruSize roiSize, int apertureSize, int avgWindow, Oru8u* pBuffer);
ORUCV_API OruStatus oruiMinEigenVal_8s32f_C1R(const Oru8s* pSrc, int srcStep, Oru32f* pMinEigen, int minEigStep,
                                              OruSize roiSize, int apertureSize, int avgWindow, Oru8u* pBuffer);
ORUCV_API OruStatus oruiMinEigenVal_32f_C1R(const Oru32f* pSrc, int srcStep, Oru32f* pMinEigen, int minEigStep,
                                            OruSize roiSize, int apertureSize, int avgWindow, Oru8u* pBuffer);

/* ---- Morphology ------------------------------------------------------------- */
/* Erosion (minimum) and dilation (maximum) over a structuring element, fed
 * in horizontal strips of any height so that an image of any height is
 * filtered with memory for a few rows. A state holds the element and the
 * rows carried from one strip to the next; it serves one image at a time
 * and may be reused for the next image by starting again. */
typedef struct OruMorphState OruMorphState;

/* Structuring element shapes (maskShape). */
enum {
    oruMorphRect = 0,     /* maskSize.width x maskSize.height, every member */
    oruMorphCross = 1,    /* the anchor row and the anchor column */
    oruMorphEllipse = 2,  /* built at creation, then used as a mask */
    oruMorphMask = 100    /* pMask: a nonzero byte is a member */
};

/* Strip positions (stripFlag). */
enum {
    oruMorphWhole = 0,    /* the whole image in one call */
    oruMorphFirst = 1,
    oruMorphLast = 2,     /* its height may be 0: only the held rows are flushed */
    oruMorphMiddle = 4
};

/* Creates a state for strips of at most roiWidth pixels of dataType
 * (oruDataType8u or oruDataType32f) with numChannels channels, and the
 * element of maskSize with its anchor (the element's pixel that lies on the
 * destination pixel). pMask (maskSize.width * maskSize.height bytes, rows
 * back to back) is read only for oruMorphMask.
 * Checks, in order: ppState NULL (oruStsNullPointer); roiWidth, the mask's
 * width or height below 1 (oruStsSize); dataType, then numChannels not
 * supported (oruStsDataType); the anchor outside the element, a negative
 * anchor included (oruStsOutOfRange); an unknown shape (oruStsOutOfRange),
 * oruMorphMask with pMask NULL (oruStsNullPointer). Then *ppState is set to
 * NULL and, when memory cannot be had (or the state's size does not fit an
 * unsigned int), oruStsMemAlloc is returned with nothing allocated.
 * The state's size grows with roiWidth times the element's height.
 *
 * The ellipse, with r = height / 2, c = width / 2 and, for rows i < r,
 * dy = r - i and dx = (width / 2) * sqrt((r^2 - dy^2) * (1 / r^2)) rounded
 * to the nearest integer (ties to even), has the columns max(c - dx, 0) ..
 * min(c + dx, width - 1) in rows i and height - 1 - i. The row r of an odd
 * height has no member, so an ellipse of height 1 or 3 is empty or has only
 * its first and last rows (e.g. 5x5: rows 0 and 4 hold column 2, rows 1
 * and 3 every column, row 2 nothing). */
ORUCV_API OruStatus oruiMorphologyInitAlloc(int roiWidth, int dataType, int numChannels, OruSize maskSize,
                                            OruPoint anchor, int maskShape, const Oru8u* pMask,
                                            OruMorphState** ppState);
/* Releases the state held in *ppState and sets *ppState to NULL; a variable
 * holding NULL is ignored. ppState NULL gives oruStsNullPointer. */
ORUCV_API OruStatus oruiMorphologyFree(OruMorphState** ppState);

/* The strip functions: (pSrc, srcStep, pDst, dstStep, pRoiSize, pState,
 * stripFlag). pRoiSize->width is the strip's width (the same for every strip
 * of an image) and pRoiSize->height the number of source rows on entry; on
 * return it holds the number of destination rows written. An image of H
 * rows is given either in one call with oruMorphWhole, or as a first strip,
 * any middle strips and a last strip (heights of 0 and 1 included); the
 * destination rows come out in order, each as soon as the source rows under
 * the element have been given, and all strips together write exactly the H
 * rows that one call would. With enough rows a first strip writes
 * height - (maskHeight - 1 - anchor.y) rows, a middle strip height rows
 * and the last strip height + (maskHeight - 1 - anchor.y) rows; a
 * destination must have room for the rows its call writes.
 *
 * Result: destination (x, y) is the minimum (erosion) or maximum (dilation)
 * of source (x + j - anchor.x, y + i - anchor.y) over the members (i, j) of
 * the element, each channel on its own; coordinates outside the image are
 * moved to the nearest row and column (replication on all four sides).
 * Nothing outside the source and destination rows is read or written.
 *
 * 32f: the Rect and Cross functions compare the floats directly. Members
 * that compare equal (a -0.0 beside a +0.0) give the one that comes last
 * in the element's row-major order (top row first, each row left to right);
 * any NaN member gives the quiet NaN 0x7FC00000. The mask functions order
 * the bit patterns instead: -0.0 lies below +0.0, NaNs with the sign bit
 * clear above +infinity and those with it set below -infinity, and the
 * result is the exact bits of one member. An element without members (an
 * empty mask, the ellipse of height 1) erodes to 255 or +infinity and
 * dilates to 0 or -infinity.
 *
 * Checks, in order: pSrc, pDst, pState or pRoiSize NULL (oruStsNullPointer);
 * width below 1 or above the state's roiWidth, height below 0
 * (oruStsSize); the state's data type, channels or shape (oruMorphRect for
 * Rect, oruMorphCross for Cross, oruMorphMask or oruMorphEllipse for the
 * others) not those of the function (oruStsContextMismatch); a step below
 * the row's bytes (oruStsStep); stripFlag not 0, 1, 2 or 4
 * (oruStsOutOfRange). Then the warning oruStsNoOperation, with the height
 * set to 0 and the state untouched, for a middle or last strip when no
 * image is in progress, and for a height of 0 with any flag but oruMorphLast.
 * Returns oruStsOk otherwise. */
ORUCV_API OruStatus oruiErodeStrip_Rect_8u_C1R(const Oru8u* pSrc, int srcStep, Oru8u* pDst, int dstStep,
                                               OruSize* pRoiSize, OruMorphState* pState, int stripFlag);
ORUCV_API OruStatus oruiErodeStrip_Rect_8u_C3R(const Oru8u* pSrc, int srcStep, Oru8u* pDst, int dstStep,
                                               OruSize* pRoiSize, OruMorphState* pState, int stripFlag);
ORUCV_API OruStatus oruiErodeStrip_Rect_8u_C4R(const Oru8u* pSrc, int srcStep, Oru8u* pDst, int dstStep,
                                               OruSize* pRoiSize, OruMorphState* pState, int stripFlag);
ORUCV_API OruStatus oruiErodeStrip_Cross_8u_C1R(const Oru8u* pSrc, int srcStep, Oru8u* pDst, int dstStep,
                                                OruSize* pRoiSize, OruMorphState* pState, int stripFlag);
ORUCV_API OruStatus oruiErodeStrip_Cross_8u_C3R(const Oru8u* pSrc, int srcStep, Oru8u* pDst, int dstStep,
                                                OruSize* pRoiSize, OruMorphState* pState, int stripFlag);
ORUCV_API OruStatus oruiErodeStrip_Cross_8u_C4R(const Oru8u* pSrc, int srcStep, Oru8u* pDst, int dstStep,
                                                OruSize* pRoiSize, OruMorphState* pState, int stripFlag);
ORUCV_API OruStatus oruiErodeStrip_8u_C1R(const Oru8u* pSrc, int srcStep, Oru8u* pDst, int dstStep,
                                          OruSize* pRoiSize, OruMorphState* pState, int stripFlag);
ORUCV_API OruStatus oruiErodeStrip_8u_C3R(const Oru8u* pSrc, int srcStep, Oru8u* pDst, int dstStep,
                                          OruSize* pRoiSize, OruMorphState* pState, int stripFlag);
ORUCV_API OruStatus oruiErodeStrip_8u_C4R(const Oru8u* pSrc, int srcStep, Oru8u* pDst, int dstStep,
                                          OruSize* pRoiSize, OruMorphState* pState, int stripFlag);
ORUCV_API OruStatus oruiDilateStrip_Rect_8u_C1R(const Oru8u* pSrc, int srcStep, Oru8u* pDst, int dstStep,
                                                OruSize* pRoiSize, OruMorphState* pState, int stripFlag);
ORUCV_API OruStatus oruiDilateStrip_Rect_8u_C3R(const Oru8u* pSrc, int srcStep, Oru8u* pDst, int dstStep,
                                                OruSize* pRoiSize, OruMorphState* pState, int stripFlag);
ORUCV_API OruStatus oruiDilateStrip_Rect_8u_C4R(const Oru8u* pSrc, int srcStep, Oru8u* pDst, int dstStep,
                                                OruSize* pRoiSize, OruMorphState* pState, int stripFlag);
ORUCV_API OruStatus oruiDilateStrip_Cross_8u_C1R(const Oru8u* pSrc, int srcStep, Oru8u* pDst, int dstStep,
                                                 OruSize* pRoiSize, OruMorphState* pState, int stripFlag);
ORUCV_API OruStatus oruiDilateStrip_Cross_8u_C3R(const Oru8u* pSrc, int srcStep, Oru8u* pDst, int dstStep,
                                                 OruSize* pRoiSize, OruMorphState* pState, int stripFlag);
ORUCV_API OruStatus oruiDilateStrip_Cross_8u_C4R(const Oru8u* pSrc, int srcStep, Oru8u* pDst, int dstStep,
                                                 OruSize* pRoiSize, OruMorphState* pState, int stripFlag);
ORUCV_API OruStatus oruiDilateStrip_8u_C1R(const Oru8u* pSrc, int srcStep, Oru8u* pDst, int dstStep,
                                           OruSize* pRoiSize, OruMorphState* pState, int stripFlag);
ORUCV_API OruStatus oruiDilateStrip_8u_C3R(const Oru8u* pSrc, int srcStep, Oru8u* pDst, int dstStep,
                                           OruSize* pRoiSize, OruMorphState* pState, int stripFlag);
ORUCV_API OruStatus oruiDilateStrip_8u_C4R(const Oru8u* pSrc, int srcStep, Oru8u* pDst, int dstStep,
                                           OruSize* pRoiSize, OruMorphState* pState, int stripFlag);
ORUCV_API OruStatus oruiErodeStrip_Rect_32f_C1R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep,
                                                OruSize* pRoiSize, OruMorphState* pState, int stripFlag);
ORUCV_API OruStatus oruiErodeStrip_Rect_32f_C3R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep,
                                                OruSize* pRoiSize, OruMorphState* pState, int stripFlag);
ORUCV_API OruStatus oruiErodeStrip_Rect_32f_C4R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep,
                                                OruSize* pRoiSize, OruMorphState* pState, int stripFlag);
ORUCV_API OruStatus oruiErodeStrip_Cross_32f_C1R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep,
                                                 OruSize* pRoiSize, OruMorphState* pState, int stripFlag);
ORUCV_API OruStatus oruiErodeStrip_Cross_32f_C3R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep,
                                                 OruSize* pRoiSize, OruMorphState* pState, int stripFlag);
ORUCV_API OruStatus oruiErodeStrip_Cross_32f_C4R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep,
                                                 OruSize* pRoiSize, OruMorphState* pState, int stripFlag);
ORUCV_API OruStatus oruiErodeStrip_32f_C1R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep,
                                           OruSize* pRoiSize, OruMorphState* pState, int stripFlag);
ORUCV_API OruStatus oruiErodeStrip_32f_C3R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep,
                                           OruSize* pRoiSize, OruMorphState* pState, int stripFlag);
ORUCV_API OruStatus oruiErodeStrip_32f_C4R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep,
                                           OruSize* pRoiSize, OruMorphState* pState, int stripFlag);
ORUCV_API OruStatus oruiDilateStrip_Rect_32f_C1R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep,
                                                 OruSize* pRoiSize, OruMorphState* pState, int stripFlag);
ORUCV_API OruStatus oruiDilateStrip_Rect_32f_C3R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep,
                                                 OruSize* pRoiSize, OruMorphState* pState, int stripFlag);
ORUCV_API OruStatus oruiDilateStrip_Rect_32f_C4R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep,
                                                 OruSize* pRoiSize, OruMorphState* pState, int stripFlag);
ORUCV_API OruStatus oruiDilateStrip_Cross_32f_C1R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep,
                                                  OruSize* pRoiSize, OruMorphState* pState, int stripFlag);
ORUCV_API OruStatus oruiDilateStrip_Cross_32f_C3R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep,
                                                  OruSize* pRoiSize, OruMorphState* pState, int stripFlag);
ORUCV_API OruStatus oruiDilateStrip_Cross_32f_C4R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep,
                                                  OruSize* pRoiSize, OruMorphState* pState, int stripFlag);
ORUCV_API OruStatus oruiDilateStrip_32f_C1R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep,
                                            OruSize* pRoiSize, OruMorphState* pState, int stripFlag);
ORUCV_API OruStatus oruiDilateStrip_32f_C3R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep,
                                            OruSize* pRoiSize, OruMorphState* pState, int stripFlag);
ORUCV_API OruStatus oruiDilateStrip_32f_C4R(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep,
                                            OruSize* pRoiSize, OruMorphState* pState, int stripFlag);
/* ---- Fast arctangent ------------------------------------------------------- */
/* pDst[i] = direction of the vector (pSrcX[i], pSrcY[i]) in degrees, counter-
 * clockwise from the positive x axis, by a quadratic instead of a library
 * arctangent (error at most about 0.1405 degrees). Per element, in single
 * precision, with ax = |x| and ay = |y|:
 *   t = min(ax, ay) / max(ax, ay, 1e-8f)      (a correctly rounded division)
 *   p = (-15.813189506530762 * t + 61.09419631958008) * t - 0.14050041139125824
 *   a = ay > ax ? 90 - p : p;  then x < 0: a = 180 - a;  then y < 0: a = 360 - a
 * Results lie in about -0.1405 .. 360.1405: (1, 0) and (0, 0) give
 * -0.14050041, (1, 1) gives 45.140506, (1, -1e-6) gives 360.14044.
 * The division is a plain division, not a reciprocal estimate refined by a
 * Newton step, so every processor and code path gives the same bits.
 * Special values: -0.0 counts as 0 (no correction); an infinite component
 * against a finite one gives the axis direction (t = 0), two infinite
 * components the diagonal (t = 1); a NaN in either component gives the quiet
 * NaN 0x7FC00000.
 * No alignment is required; pDst may be pSrcY or pSrcX (in place), other
 * overlaps are not supported. len 0 reads and writes nothing.
 * Checks, in order: a NULL pointer (oruStsNullPointer); len < 0
 * (oruStsSize). */
ORUCV_API OruStatus oruibFastArctan_32f(const Oru32f* pSrcY, const Oru32f* pSrcX, Oru32f* pDst, int len);

/* ---- Line sampling --------------------------------------------------------- */
/* Copies the pixels of the digital line from pt1 to pt2 into pDst, densely
 * and in order (pixel k at element k * channels): n = max(|x2 - x1|,
 * |y2 - y1|) + 1 pixels, the first pt1 and the last exactly pt2; nothing else
 * of pDst is written, so it must hold n pixels. The line follows Bresenham's
 * integer stepping along its major axis (y when |dx| <= |dy|: a tie counts
 * as steep); after k steps the minor coordinate has moved by
 * ceil(minor * k / major - 1/2), so an exact half rounds toward pt1, and the
 * two directions of one segment can select different pixels. Pixels are
 * copied bit for bit (float NaN payloads included).
 * Checks, in order: pSrc or pDst NULL (oruStsNullPointer); srcStep < 1
 * (oruStsStep); width or height below 1 (oruStsSize); float images: srcStep
 * not a multiple of 4 (oruStsNotEvenStep); then srcStep below the row width
 * in bytes, or a point outside the region (x not in 0 .. width - 1, y not in
 * 0 .. height - 1) give oruStsBadLine. */
ORUCV_API OruStatus oruiSampleLine_8u_C1R(const Oru8u* pSrc, int srcStep, OruSize roiSize, Oru8u* pDst,
                                          OruPoint pt1, OruPoint pt2);
ORUCV_API OruStatus oruiSampleLine_8u_C3R(const Oru8u* pSrc, int srcStep, OruSize roiSize, Oru8u* pDst,
                                          OruPoint pt1, OruPoint pt2);
ORUCV_API OruStatus oruiSampleLine_32f_C1R(const Oru32f* pSrc, int srcStep, OruSize roiSize, Oru32f* pDst,
                                           OruPoint pt1, OruPoint pt2);
ORUCV_API OruStatus oruiSampleLine_32f_C3R(const Oru32f* pSrc, int srcStep, OruSize roiSize, Oru32f* pDst,
                                           OruPoint pt1, OruPoint pt2);

/* ---- Image statistics ----------------------------------------------------- */
/* Means, standard deviations, extrema with their locations and norms of one
 * channel: a one-channel image (C1) or the channel coi (1..3) of a
 * three-channel image (C3C). Masked forms (M) take the pixels whose mask
 * byte is nonzero. Results that are NaN are stored as the quiet NaN
 * 0x7FF8000000000000 (extrema: the float found, bit for bit).
 *
 * Precision, the same bits on the scalar, SSE2 and AVX2 paths and in 32- and
 * 64-bit builds:
 *  - 8-bit sources are summed exactly. The sum of values (and the L1 norm) is
 *    a signed 32-bit integer that wraps above 2147483647 (more than 8421504
 *    pixels of 255); sums of squares are 64-bit.
 *  - oruiMean_32f_C1MR sums in four single-precision lanes: in each group of
 *    eight pixels of a row lane j takes pixel j, then pixel j + 4; the
 *    pixels after the last group of a row go to lane 0; unselected pixels
 *    add +0.0. The lanes are added 0 + 1 + 2 + 3 in extended precision and
 *    the sum is rounded to double.
 *  - The other float means and deviations sum values and squares as
 *    double-double numbers in eight lanes: pixel x of each row goes to lane
 *    x mod 8, each lane a pair of doubles kept exact by an error-free
 *    addition, and the lanes are added in halves (0 + 4, 2 + 6, 1 + 5, 3 + 7,
 *    then again). For every region below 2^42 pixels its error bound is below
 *    that of a sequential sum in extended precision.
 *  - Quotients and square roots are formed in extended precision (x87 long
 *    double) and rounded once to double. Mean and deviation: mean = S / n,
 *    variance = Q / n - mean * mean from the unrounded mean, deviation =
 *    sqrt(|variance|) (population form); divisions rather than a reciprocal,
 *    so a constant region has deviation 0 at every size. An empty mask gives
 *    0.0 and 0.0.
 *
 * Checks, first failure returned, nothing written:
 *  Mean, Mean_StdDev: a null pointer (oruStsNullPointer); width or height
 *    below 1 (oruStsSize); a step below 1 (oruStsStep); a float source step
 *    not divisible by 4 (oruStsNotEvenStep, the mask step is never tested);
 *    coi outside 1..3 (oruStsCoi). oruiMean_32f_C3CMR tests coi before the
 *    float step.
 *  MinMaxIndx: pSrc or pMask null (oruStsNullPointer; the outputs may be
 *    null: not wanted); width or height below 0 (oruStsSize); srcStep below
 *    the row's bytes, maskStep below width, or a float step not divisible
 *    by 4 (oruStsStep); coi outside 1..3 (oruStsCoi).
 *  Norm, NormDiff, NormRel: a null pointer (oruStsNullPointer); any step,
 *    the mask step included, below 1 (oruStsStep); width or height below 1
 *    (oruStsSize); coi outside 1..3 (oruStsCoi); a float image step not
 *    divisible by 4 (oruStsNotEvenStep). */

/* Masked mean: 0.0 when the mask selects nothing. */
ORUCV_API OruStatus oruiMean_8u_C1MR(const Oru8u* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                     OruSize roiSize, Oru64f* pMean);
ORUCV_API OruStatus oruiMean_8u_C3CMR(const Oru8u* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                      OruSize roiSize, int coi, Oru64f* pMean);
ORUCV_API OruStatus oruiMean_8s_C1MR(const Oru8s* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                     OruSize roiSize, Oru64f* pMean);
ORUCV_API OruStatus oruiMean_8s_C3CMR(const Oru8s* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                      OruSize roiSize, int coi, Oru64f* pMean);
ORUCV_API OruStatus oruiMean_32f_C1MR(const Oru32f* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                      OruSize roiSize, Oru64f* pMean);
ORUCV_API OruStatus oruiMean_32f_C3CMR(const Oru32f* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                       OruSize roiSize, int coi, Oru64f* pMean);
/* Mean and population standard deviation of the region or of its masked
 * pixels. */
ORUCV_API OruStatus oruiMean_StdDev_8u_C1R(const Oru8u* pSrc, int srcStep, OruSize roiSize, Oru64f* pMean,
                                           Oru64f* pStdDev);
ORUCV_API OruStatus oruiMean_StdDev_8u_C3CR(const Oru8u* pSrc, int srcStep, OruSize roiSize, int coi, Oru64f* pMean,
                                            Oru64f* pStdDev);
ORUCV_API OruStatus oruiMean_StdDev_8s_C1R(const Oru8s* pSrc, int srcStep, OruSize roiSize, Oru64f* pMean,
                                           Oru64f* pStdDev);
ORUCV_API OruStatus oruiMean_StdDev_8s_C3CR(const Oru8s* pSrc, int srcStep, OruSize roiSize, int coi, Oru64f* pMean,
                                            Oru64f* pStdDev);
ORUCV_API OruStatus oruiMean_StdDev_32f_C1R(const Oru32f* pSrc, int srcStep, OruSize roiSize, Oru64f* pMean,
                                            Oru64f* pStdDev);
ORUCV_API OruStatus oruiMean_StdDev_32f_C3CR(const Oru32f* pSrc, int srcStep, OruSize roiSize, int coi, Oru64f* pMean,
                                             Oru64f* pStdDev);
ORUCV_API OruStatus oruiMean_StdDev_8u_C1MR(const Oru8u* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                            OruSize roiSize, Oru64f* pMean, Oru64f* pStdDev);
ORUCV_API OruStatus oruiMean_StdDev_8u_C3CMR(const Oru8u* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                             OruSize roiSize, int coi, Oru64f* pMean, Oru64f* pStdDev);
ORUCV_API OruStatus oruiMean_StdDev_8s_C1MR(const Oru8s* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                            OruSize roiSize, Oru64f* pMean, Oru64f* pStdDev);
ORUCV_API OruStatus oruiMean_StdDev_8s_C3CMR(const Oru8s* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                             OruSize roiSize, int coi, Oru64f* pMean, Oru64f* pStdDev);
ORUCV_API OruStatus oruiMean_StdDev_32f_C1MR(const Oru32f* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                             OruSize roiSize, Oru64f* pMean, Oru64f* pStdDev);
ORUCV_API OruStatus oruiMean_StdDev_32f_C3CMR(const Oru32f* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                              OruSize roiSize, int coi, Oru64f* pMean, Oru64f* pStdDev);
/* The kernel behind the 8-bit sums: sum (wrapping) and sum of squares of the
 * region. No argument checks: width and height at least 1. Returns
 * oruStsOk. */
ORUCV_API OruStatus a6_orcvSumSq_8s_C1R(const Oru8s* pSrc, int srcStep, int width, int height, Oru32s* pSum,
                                        long long* pSumSq);
/* Smallest and largest value with the location (x column, y row in the
 * region) of the first pixel in raster order that holds each. Floats are
 * ordered by their order keys: -0.0 below +0.0, NaNs beyond the infinities
 * on their sign's side; a pixel of +infinity never becomes the minimum nor
 * one of -infinity the maximum. When no pixel takes part (an empty mask, a
 * zero-sized region) or one extreme is never found (every pixel +infinity,
 * or every pixel -infinity), both values are 0.0 and both locations (0, 0);
 * a region of width 0 gives the same. 8-bit values are converted exactly. */
ORUCV_API OruStatus oruiMinMaxIndx_8u_C1R(const Oru8u* pSrc, int srcStep, OruSize roiSize, Oru32f* pMinVal,
                                          Oru32f* pMaxVal, OruPoint* pMinIndex, OruPoint* pMaxIndex);
ORUCV_API OruStatus oruiMinMaxIndx_8u_C3CR(const Oru8u* pSrc, int srcStep, OruSize roiSize, int coi, Oru32f* pMinVal,
                                           Oru32f* pMaxVal, OruPoint* pMinIndex, OruPoint* pMaxIndex);
ORUCV_API OruStatus oruiMinMaxIndx_8s_C1R(const Oru8s* pSrc, int srcStep, OruSize roiSize, Oru32f* pMinVal,
                                          Oru32f* pMaxVal, OruPoint* pMinIndex, OruPoint* pMaxIndex);
ORUCV_API OruStatus oruiMinMaxIndx_8s_C3CR(const Oru8s* pSrc, int srcStep, OruSize roiSize, int coi, Oru32f* pMinVal,
                                           Oru32f* pMaxVal, OruPoint* pMinIndex, OruPoint* pMaxIndex);
ORUCV_API OruStatus oruiMinMaxIndx_32f_C1R(const Oru32f* pSrc, int srcStep, OruSize roiSize, Oru32f* pMinVal,
                                           Oru32f* pMaxVal, OruPoint* pMinIndex, OruPoint* pMaxIndex);
ORUCV_API OruStatus oruiMinMaxIndx_32f_C3CR(const Oru32f* pSrc, int srcStep, OruSize roiSize, int coi,
                                            Oru32f* pMinVal, Oru32f* pMaxVal, OruPoint* pMinIndex,
                                            OruPoint* pMaxIndex);
ORUCV_API OruStatus oruiMinMaxIndx_8u_C1MR(const Oru8u* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                           OruSize roiSize, Oru32f* pMinVal, Oru32f* pMaxVal, OruPoint* pMinIndex,
                                           OruPoint* pMaxIndex);
ORUCV_API OruStatus oruiMinMaxIndx_8u_C3CMR(const Oru8u* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                            OruSize roiSize, int coi, Oru32f* pMinVal, Oru32f* pMaxVal,
                                            OruPoint* pMinIndex, OruPoint* pMaxIndex);
ORUCV_API OruStatus oruiMinMaxIndx_8s_C1MR(const Oru8s* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                           OruSize roiSize, Oru32f* pMinVal, Oru32f* pMaxVal, OruPoint* pMinIndex,
                                           OruPoint* pMaxIndex);
ORUCV_API OruStatus oruiMinMaxIndx_8s_C3CMR(const Oru8s* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                            OruSize roiSize, int coi, Oru32f* pMinVal, Oru32f* pMaxVal,
                                            OruPoint* pMinIndex, OruPoint* pMaxIndex);
ORUCV_API OruStatus oruiMinMaxIndx_32f_C1MR(const Oru32f* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                            OruSize roiSize, Oru32f* pMinVal, Oru32f* pMaxVal, OruPoint* pMinIndex,
                                            OruPoint* pMaxIndex);
ORUCV_API OruStatus oruiMinMaxIndx_32f_C3CMR(const Oru32f* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                             OruSize roiSize, int coi, Oru32f* pMinVal, Oru32f* pMaxVal,
                                             OruPoint* pMinIndex, OruPoint* pMaxIndex);
/* Norms of the masked pixels (of the channel coi): Inf the largest
 * magnitude, L1 the sum of magnitudes, L2 the square root of the sum of
 * squares; 0 when the mask selects nothing. 8-bit magnitudes are exact
 * (|-128| is 128); the 8-bit L1 norm is the wrapping 32-bit sum. Float sums
 * are single precision in four lanes (pixel x of a row in lane x mod 4),
 * added (0 + 2) + (1 + 3); the float Inf norm is the largest magnitude, a NaN
 * above every number. */
ORUCV_API OruStatus oruiNorm_Inf_8u_C1MR(const Oru8u* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                         OruSize roiSize, Oru64f* pNorm);
ORUCV_API OruStatus oruiNorm_Inf_8u_C3CMR(const Oru8u* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                          OruSize roiSize, int coi, Oru64f* pNorm);
ORUCV_API OruStatus oruiNorm_Inf_8s_C1MR(const Oru8s* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                         OruSize roiSize, Oru64f* pNorm);
ORUCV_API OruStatus oruiNorm_Inf_8s_C3CMR(const Oru8s* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                          OruSize roiSize, int coi, Oru64f* pNorm);
ORUCV_API OruStatus oruiNorm_Inf_32f_C1MR(const Oru32f* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                          OruSize roiSize, Oru64f* pNorm);
ORUCV_API OruStatus oruiNorm_Inf_32f_C3CMR(const Oru32f* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                           OruSize roiSize, int coi, Oru64f* pNorm);
ORUCV_API OruStatus oruiNorm_L1_8u_C1MR(const Oru8u* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                        OruSize roiSize, Oru64f* pNorm);
ORUCV_API OruStatus oruiNorm_L1_8u_C3CMR(const Oru8u* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                         OruSize roiSize, int coi, Oru64f* pNorm);
ORUCV_API OruStatus oruiNorm_L1_8s_C1MR(const Oru8s* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                        OruSize roiSize, Oru64f* pNorm);
ORUCV_API OruStatus oruiNorm_L1_8s_C3CMR(const Oru8s* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                         OruSize roiSize, int coi, Oru64f* pNorm);
ORUCV_API OruStatus oruiNorm_L1_32f_C1MR(const Oru32f* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                         OruSize roiSize, Oru64f* pNorm);
ORUCV_API OruStatus oruiNorm_L1_32f_C3CMR(const Oru32f* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                          OruSize roiSize, int coi, Oru64f* pNorm);
ORUCV_API OruStatus oruiNorm_L2_8u_C1MR(const Oru8u* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                        OruSize roiSize, Oru64f* pNorm);
ORUCV_API OruStatus oruiNorm_L2_8u_C3CMR(const Oru8u* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                         OruSize roiSize, int coi, Oru64f* pNorm);
ORUCV_API OruStatus oruiNorm_L2_8s_C1MR(const Oru8s* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                        OruSize roiSize, Oru64f* pNorm);
ORUCV_API OruStatus oruiNorm_L2_8s_C3CMR(const Oru8s* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                         OruSize roiSize, int coi, Oru64f* pNorm);
ORUCV_API OruStatus oruiNorm_L2_32f_C1MR(const Oru32f* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                         OruSize roiSize, Oru64f* pNorm);
ORUCV_API OruStatus oruiNorm_L2_32f_C3CMR(const Oru32f* pSrc, int srcStep, const Oru8u* pMask, int maskStep,
                                          OruSize roiSize, int coi, Oru64f* pNorm);
/* The same norms of the difference pSrc1 - pSrc2 (float: in single
 * precision). */
ORUCV_API OruStatus oruiNormDiff_Inf_8u_C1MR(const Oru8u* pSrc1, int src1Step, const Oru8u* pSrc2, int src2Step,
                                             const Oru8u* pMask, int maskStep, OruSize roiSize, Oru64f* pNorm);
ORUCV_API OruStatus oruiNormDiff_Inf_8u_C3CMR(const Oru8u* pSrc1, int src1Step, const Oru8u* pSrc2, int src2Step,
                                              const Oru8u* pMask, int maskStep, OruSize roiSize, int coi,
                                              Oru64f* pNorm);
ORUCV_API OruStatus oruiNormDiff_Inf_8s_C1MR(const Oru8s* pSrc1, int src1Step, const Oru8s* pSrc2, int src2Step,
                                             const Oru8u* pMask, int maskStep, OruSize roiSize, Oru64f* pNorm);
ORUCV_API OruStatus oruiNormDiff_Inf_8s_C3CMR(const Oru8s* pSrc1, int src1Step, const Oru8s* pSrc2, int src2Step,
                                              const Oru8u* pMask, int maskStep, OruSize roiSize, int coi,
                                              Oru64f* pNorm);
ORUCV_API OruStatus oruiNormDiff_Inf_32f_C1MR(const Oru32f* pSrc1, int src1Step, const Oru32f* pSrc2, int src2Step,
                                              const Oru8u* pMask, int maskStep, OruSize roiSize, Oru64f* pNorm);
ORUCV_API OruStatus oruiNormDiff_Inf_32f_C3CMR(const Oru32f* pSrc1, int src1Step, const Oru32f* pSrc2, int src2Step,
                                               const Oru8u* pMask, int maskStep, OruSize roiSize, int coi,
                                               Oru64f* pNorm);
ORUCV_API OruStatus oruiNormDiff_L1_8u_C1MR(const Oru8u* pSrc1, int src1Step, const Oru8u* pSrc2, int src2Step,
                                            const Oru8u* pMask, int maskStep, OruSize roiSize, Oru64f* pNorm);
ORUCV_API OruStatus oruiNormDiff_L1_8u_C3CMR(const Oru8u* pSrc1, int src1Step, const Oru8u* pSrc2, int src2Step,
                                             const Oru8u* pMask, int maskStep, OruSize roiSize, int coi,
                                             Oru64f* pNorm);
ORUCV_API OruStatus oruiNormDiff_L1_8s_C1MR(const Oru8s* pSrc1, int src1Step, const Oru8s* pSrc2, int src2Step,
                                            const Oru8u* pMask, int maskStep, OruSize roiSize, Oru64f* pNorm);
ORUCV_API OruStatus oruiNormDiff_L1_8s_C3CMR(const Oru8s* pSrc1, int src1Step, const Oru8s* pSrc2, int src2Step,
                                             const Oru8u* pMask, int maskStep, OruSize roiSize, int coi,
                                             Oru64f* pNorm);
ORUCV_API OruStatus oruiNormDiff_L1_32f_C1MR(const Oru32f* pSrc1, int src1Step, const Oru32f* pSrc2, int src2Step,
                                             const Oru8u* pMask, int maskStep, OruSize roiSize, Oru64f* pNorm);
ORUCV_API OruStatus oruiNormDiff_L1_32f_C3CMR(const Oru32f* pSrc1, int src1Step, const Oru32f* pSrc2, int src2Step,
                                              const Oru8u* pMask, int maskStep, OruSize roiSize, int coi,
                                              Oru64f* pNorm);
ORUCV_API OruStatus oruiNormDiff_L2_8u_C1MR(const Oru8u* pSrc1, int src1Step, const Oru8u* pSrc2, int src2Step,
                                            const Oru8u* pMask, int maskStep, OruSize roiSize, Oru64f* pNorm);
ORUCV_API OruStatus oruiNormDiff_L2_8u_C3CMR(const Oru8u* pSrc1, int src1Step, const Oru8u* pSrc2, int src2Step,
                                             const Oru8u* pMask, int maskStep, OruSize roiSize, int coi,
                                             Oru64f* pNorm);
ORUCV_API OruStatus oruiNormDiff_L2_8s_C1MR(const Oru8s* pSrc1, int src1Step, const Oru8s* pSrc2, int src2Step,
                                            const Oru8u* pMask, int maskStep, OruSize roiSize, Oru64f* pNorm);
ORUCV_API OruStatus oruiNormDiff_L2_8s_C3CMR(const Oru8s* pSrc1, int src1Step, const Oru8s* pSrc2, int src2Step,
                                             const Oru8u* pMask, int maskStep, OruSize roiSize, int coi,
                                             Oru64f* pNorm);
ORUCV_API OruStatus oruiNormDiff_L2_32f_C1MR(const Oru32f* pSrc1, int src1Step, const Oru32f* pSrc2, int src2Step,
                                             const Oru8u* pMask, int maskStep, OruSize roiSize, Oru64f* pNorm);
ORUCV_API OruStatus oruiNormDiff_L2_32f_C3CMR(const Oru32f* pSrc1, int src1Step, const Oru32f* pSrc2, int src2Step,
                                              const Oru8u* pMask, int maskStep, OruSize roiSize, int coi,
                                              Oru64f* pNorm);
/* NormDiff relative to the same norm of pSrc2 (L2: the square root of the
 * quotient of the sums of squares). A zero reference gives the quotient
 * with 2^-52 in its place: the 8-bit forms multiply the numerator by 2^52,
 * the float forms divide by 2^-52 when the reference equals 0.0 (a NaN
 * reference is used as it is). */
ORUCV_API OruStatus oruiNormRel_Inf_8u_C1MR(const Oru8u* pSrc1, int src1Step, const Oru8u* pSrc2, int src2Step,
                                            const Oru8u* pMask, int maskStep, OruSize roiSize, Oru64f* pNorm);
ORUCV_API OruStatus oruiNormRel_Inf_8u_C3CMR(const Oru8u* pSrc1, int src1Step, const Oru8u* pSrc2, int src2Step,
                                             const Oru8u* pMask, int maskStep, OruSize roiSize, int coi,
                                             Oru64f* pNorm);
ORUCV_API OruStatus oruiNormRel_Inf_8s_C1MR(const Oru8s* pSrc1, int src1Step, const Oru8s* pSrc2, int src2Step,
                                            const Oru8u* pMask, int maskStep, OruSize roiSize, Oru64f* pNorm);
ORUCV_API OruStatus oruiNormRel_Inf_8s_C3CMR(const Oru8s* pSrc1, int src1Step, const Oru8s* pSrc2, int src2Step,
                                             const Oru8u* pMask, int maskStep, OruSize roiSize, int coi,
                                             Oru64f* pNorm);
ORUCV_API OruStatus oruiNormRel_Inf_32f_C1MR(const Oru32f* pSrc1, int src1Step, const Oru32f* pSrc2, int src2Step,
                                             const Oru8u* pMask, int maskStep, OruSize roiSize, Oru64f* pNorm);
ORUCV_API OruStatus oruiNormRel_Inf_32f_C3CMR(const Oru32f* pSrc1, int src1Step, const Oru32f* pSrc2, int src2Step,
                                              const Oru8u* pMask, int maskStep, OruSize roiSize, int coi,
                                              Oru64f* pNorm);
ORUCV_API OruStatus oruiNormRel_L1_8u_C1MR(const Oru8u* pSrc1, int src1Step, const Oru8u* pSrc2, int src2Step,
                                           const Oru8u* pMask, int maskStep, OruSize roiSize, Oru64f* pNorm);
ORUCV_API OruStatus oruiNormRel_L1_8u_C3CMR(const Oru8u* pSrc1, int src1Step, const Oru8u* pSrc2, int src2Step,
                                            const Oru8u* pMask, int maskStep, OruSize roiSize, int coi,
                                            Oru64f* pNorm);
ORUCV_API OruStatus oruiNormRel_L1_8s_C1MR(const Oru8s* pSrc1, int src1Step, const Oru8s* pSrc2, int src2Step,
                                           const Oru8u* pMask, int maskStep, OruSize roiSize, Oru64f* pNorm);
ORUCV_API OruStatus oruiNormRel_L1_8s_C3CMR(const Oru8s* pSrc1, int src1Step, const Oru8s* pSrc2, int src2Step,
                                            const Oru8u* pMask, int maskStep, OruSize roiSize, int coi,
                                            Oru64f* pNorm);
ORUCV_API OruStatus oruiNormRel_L1_32f_C1MR(const Oru32f* pSrc1, int src1Step, const Oru32f* pSrc2, int src2Step,
                                            const Oru8u* pMask, int maskStep, OruSize roiSize, Oru64f* pNorm);
ORUCV_API OruStatus oruiNormRel_L1_32f_C3CMR(const Oru32f* pSrc1, int src1Step, const Oru32f* pSrc2, int src2Step,
                                             const Oru8u* pMask, int maskStep, OruSize roiSize, int coi,
                                             Oru64f* pNorm);
ORUCV_API OruStatus oruiNormRel_L2_8u_C1MR(const Oru8u* pSrc1, int src1Step, const Oru8u* pSrc2, int src2Step,
                                           const Oru8u* pMask, int maskStep, OruSize roiSize, Oru64f* pNorm);
ORUCV_API OruStatus oruiNormRel_L2_8u_C3CMR(const Oru8u* pSrc1, int src1Step, const Oru8u* pSrc2, int src2Step,
                                            const Oru8u* pMask, int maskStep, OruSize roiSize, int coi,
                                            Oru64f* pNorm);
ORUCV_API OruStatus oruiNormRel_L2_8s_C1MR(const Oru8s* pSrc1, int src1Step, const Oru8s* pSrc2, int src2Step,
                                           const Oru8u* pMask, int maskStep, OruSize roiSize, Oru64f* pNorm);
ORUCV_API OruStatus oruiNormRel_L2_8s_C3CMR(const Oru8s* pSrc1, int src1Step, const Oru8s* pSrc2, int src2Step,
                                            const Oru8u* pMask, int maskStep, OruSize roiSize, int coi,
                                            Oru64f* pNorm);
ORUCV_API OruStatus oruiNormRel_L2_32f_C1MR(const Oru32f* pSrc1, int src1Step, const Oru32f* pSrc2, int src2Step,
                                            const Oru8u* pMask, int maskStep, OruSize roiSize, Oru64f* pNorm);
ORUCV_API OruStatus oruiNormRel_L2_32f_C3CMR(const Oru32f* pSrc1, int src1Step, const Oru32f* pSrc2, int src2Step,
                                             const Oru8u* pMask, int maskStep, OruSize roiSize, int coi,
                                             Oru64f* pNorm);

#ifdef __cplusplus
}
#endif

#endif /* ORUCV_H */
