// Chamfer distance transform: row kernels and the image-level passes.
//
// Distances are 32-bit integers in units of 2^-18, held in the destination
// rows until the final conversion to float. Sums wrap like the processor's
// 32-bit additions and comparisons are signed, so any weights give a defined
// result. The scalar twins are static inline so that every translation unit
// (each compiled for its own instruction set) keeps its own copy for tails;
// the vector rows are in distransform_simd.h.
#pragma once

#include <cstdint>

#include "orucv.h"

namespace orucv {
namespace a6 {

// The destination memory is the caller's float image; the passes view it as
// integers, so every scalar access goes through these aliasing types.
typedef int32_t dist_t __attribute__((__may_alias__));
typedef float distf_t __attribute__((__may_alias__));

// Start value of a pixel that is not a feature.
constexpr int32_t kFarDistance = 0x3FFFFFFF;
// Float value of one integer unit: 2^-18.
constexpr float kDistanceUnit = 1.0f / 262144.0f;
// Largest horizontal weight for which the vector scans may regroup the
// additions: values never exceed kFarDistance, so kFarDistance plus eight
// such weights stays below 2^31 and no sum can wrap. Larger (or negative)
// weights take the pixel-by-pixel scan, which wraps exactly like the
// definition.
constexpr uint32_t kScanRegroupMax = 1u << 26;

struct DistanceKernels {
    // d = 0 where the source byte is 0, else kFarDistance.
    void (*init_row)(const uint8_t* src, dist_t* d, int n);
    // In place: integer d becomes the float d * 2^-18.
    void (*to_float_row)(dist_t* d, int n);
    // Candidates of the neighbouring row (above in the forward pass, below
    // in the backward pass) of the 3x3 mask: d = min(d, near +a, near[x-+1] +b).
    // n >= 2.
    void (*near3_row)(dist_t* d, const dist_t* near, int n, int32_t a, int32_t b);
    // The same for the 5x5 mask with the nearest row near1 (+c, +b, +a, +b, +c
    // at x-2..x+2) and the row beyond it near2 (+c at x-+1), which may be
    // null. n >= 4.
    void (*near5_row)(dist_t* d, const dist_t* near1, const dist_t* near2, int n, int32_t a, int32_t b,
                      int32_t c);
    // d[x] = min(d[x], d[x-1] + a) for x = 1 .. n-1, in this order.
    void (*scan_right)(dist_t* d, int n, int32_t a);
    // d[x] = min(d[x], d[x+1] + a) for x = n-2 .. 0, in this order.
    void (*scan_left)(dist_t* d, int n, int32_t a);
};

extern const DistanceKernels distance_kernels_scalar;
extern const DistanceKernels distance_kernels_sse2;
extern const DistanceKernels distance_kernels_avx2;
const DistanceKernels& distance_kernels();

// Engines; arguments are trusted (checked by the wrappers).
// The weights of a standard mask (maskType 30, 31, 32 or 52).
void distance_mask(int maskType, float* metrics);
// The transform with a mask of `side` 3 or 5 over a region of at least one
// pixel: the float weights in fixed point, then the passes.
void distance_transform(int side, const uint8_t* src, int srcStep, float* dst, int dstStep, OruSize roi,
                        const float* metrics);

// The passes themselves. width and height >= 1, srcStep >= width, dstStep
// >= 4 * width and a multiple of 4; a, b, c are the fixed-point weights.
void a6_orcvDistanceTransform_3x3_8u32f_C1R(const uint8_t* pSrc, int srcStep, float* pDst, int dstStep, int width,
                                            int height, int32_t a, int32_t b);
// Takes the unrolled path when width and height are at least 4, else the
// candidate-list path.
void a6_orcvDistanceTransform_5x5_8u32f_C1R(const uint8_t* pSrc, int srcStep, float* pDst, int dstStep, int width,
                                            int height, int32_t a, int32_t b, int32_t c);
// The candidate-list path of the 5x5 transform on any size (the transform
// uses it for images narrower or lower than 4).
void distance_5x5_general(const uint8_t* pSrc, int srcStep, float* pDst, int dstStep, int width, int height,
                          int32_t a, int32_t b, int32_t c);
// Closes a transform: the row pointer the passes ended on must be the first
// destination row (aborts otherwise), then the first `rows` rows still held
// as integers are converted to float.
void distance_finish(const dist_t* idist, float* pDst, int dstStep, int width, int rows);

namespace scalar {

static inline int32_t add_wrap(int32_t v, int32_t w) {
    return static_cast<int32_t>(static_cast<uint32_t>(v) + static_cast<uint32_t>(w));
}
static inline int32_t min2(int32_t x, int32_t y) { return y < x ? y : x; }

static inline void init_row(const uint8_t* src, dist_t* d, int n) {
    for (int i = 0; i < n; ++i) d[i] = src[i] ? kFarDistance : 0;
}

static inline void to_float_row(dist_t* d, int n) {
    distf_t* f = reinterpret_cast<distf_t*>(d);
    for (int i = 0; i < n; ++i) f[i] = static_cast<float>(d[i]) * kDistanceUnit;
}

// Columns x0 .. x1-1, each with both diagonal neighbours inside the row.
static inline void near3_span(dist_t* d, const dist_t* near, int x0, int x1, int32_t a, int32_t b) {
    for (int x = x0; x < x1; ++x) {
        int32_t m = min2(d[x], add_wrap(near[x], a));
        m = min2(m, add_wrap(near[x - 1], b));
        d[x] = min2(m, add_wrap(near[x + 1], b));
    }
}

static inline void near3_borders(dist_t* d, const dist_t* near, int n, int32_t a, int32_t b) {
    d[0] = min2(min2(d[0], add_wrap(near[0], a)), add_wrap(near[1], b));
    d[n - 1] = min2(min2(d[n - 1], add_wrap(near[n - 1], a)), add_wrap(near[n - 2], b));
}

static inline void near3_row(dist_t* d, const dist_t* near, int n, int32_t a, int32_t b) {
    near3_borders(d, near, n, a, b);
    near3_span(d, near, 1, n - 1, a, b);
}

// Columns x0 .. x1-1, each at least two columns away from both row ends.
template <bool kTwoRows>
static inline void near5_span(dist_t* d, const dist_t* near1, const dist_t* near2, int x0, int x1, int32_t a,
                              int32_t b, int32_t c) {
    for (int x = x0; x < x1; ++x) {
        int32_t m = min2(d[x], add_wrap(near1[x], a));
        m = min2(m, add_wrap(near1[x - 1], b));
        m = min2(m, add_wrap(near1[x + 1], b));
        m = min2(m, add_wrap(near1[x - 2], c));
        m = min2(m, add_wrap(near1[x + 2], c));
        if (kTwoRows) {
            m = min2(m, add_wrap(near2[x - 1], c));
            m = min2(m, add_wrap(near2[x + 1], c));
        }
        d[x] = m;
    }
}

// One column of the 5x5 near-row candidates with the row ends checked.
static inline void near5_column(dist_t* d, const dist_t* near1, const dist_t* near2, int n, int x, int32_t a,
                                int32_t b, int32_t c) {
    int32_t m = min2(d[x], add_wrap(near1[x], a));
    if (x >= 1) m = min2(m, add_wrap(near1[x - 1], b));
    if (x + 1 < n) m = min2(m, add_wrap(near1[x + 1], b));
    if (x >= 2) m = min2(m, add_wrap(near1[x - 2], c));
    if (x + 2 < n) m = min2(m, add_wrap(near1[x + 2], c));
    if (near2) {
        if (x >= 1) m = min2(m, add_wrap(near2[x - 1], c));
        if (x + 1 < n) m = min2(m, add_wrap(near2[x + 1], c));
    }
    d[x] = m;
}

static inline void near5_borders(dist_t* d, const dist_t* near1, const dist_t* near2, int n, int32_t a,
                                 int32_t b, int32_t c) {
    near5_column(d, near1, near2, n, 0, a, b, c);
    near5_column(d, near1, near2, n, 1, a, b, c);
    near5_column(d, near1, near2, n, n - 2, a, b, c);
    near5_column(d, near1, near2, n, n - 1, a, b, c);
}

static inline void near5_row(dist_t* d, const dist_t* near1, const dist_t* near2, int n, int32_t a, int32_t b,
                             int32_t c) {
    near5_borders(d, near1, near2, n, a, b, c);
    if (near2) near5_span<true>(d, near1, near2, 2, n - 2, a, b, c);
    else near5_span<false>(d, near1, near2, 2, n - 2, a, b, c);
}

// The scans from column x0 on (x0 >= 1), respectively down from column x0
// (x0 <= n-2), pixel by pixel.
static inline void scan_right_from(dist_t* d, int x0, int n, int32_t a) {
    int32_t prev = d[x0 - 1];
    for (int x = x0; x < n; ++x) {
        prev = min2(d[x], add_wrap(prev, a));
        d[x] = prev;
    }
}

static inline void scan_left_from(dist_t* d, int x0, int32_t a) {
    int32_t prev = d[x0 + 1];
    for (int x = x0; x >= 0; --x) {
        prev = min2(d[x], add_wrap(prev, a));
        d[x] = prev;
    }
}

static inline void scan_right(dist_t* d, int n, int32_t a) { scan_right_from(d, 1, n, a); }
static inline void scan_left(dist_t* d, int n, int32_t a) { scan_left_from(d, n - 2, a); }

}  // namespace scalar
}  // namespace a6
}  // namespace orucv
