// Fixed 3x3 Sobel and Scharr derivative filters: row kernels and their
// portable scalar twins.
//
// Every filter is separable: a 3-tap vertical weight vector applied to the
// rows above, at and below the output row, and a 3-tap horizontal one applied
// to the columns left, at and right of the output pixel. Missing neighbours
// are the nearest region pixel: the image-level kernels pass the same row as
// `up` and `mid` (or `mid` and `down`) on the first and last rows, and the row
// kernels clamp the column index on the first and last columns.
//
// Integer results are exact sums (they fit in 16 bits), so every order of
// summation gives the same value. Float results depend on the order of the
// roundings, which is fixed here and followed by every path:
//   horizontal difference  D(x) = s(x+1) - s(x-1)   (0 on a one-column row)
//   horizontal smoothing   M(x) = (c0 s(x-1) + c1 s(x)) + c2 s(x+1),
//                          first column big s(0) + small s(1),
//                          last column small s(w-2) + big s(w-1),
//                          one-column row big s(0) + small s(0)
//   Dx rows                (c0 D(y-1) + c1 D(y)) + c2 D(y+1),
//                          first row big D(0) + small D(1),
//                          last row small D(h-2) + big D(h-1)
//   Dy rows                M(y+1) - M(y-1) (rows clamped)
// Sobel uses c = (1, 2, 1), big 3, small 1; Scharr (3k, 10k, 3k), big 13k,
// small 3k with k = 1 / 2^shift. A one-column row is both the first and the
// last column, its neighbours being the pixel itself: it keeps the two-term
// edge sum (for Sobel exactly 4 s(0); for Scharr not always 16k s(0)).
//
// The scalar twins are static inline so that every translation unit (each
// compiled for its own instruction set) keeps its own copy for row edges.
// NaN results are stored as the one quiet NaN (canonical_nan, core/floats.h):
// which payload a sum of two NaNs keeps depends on the operand order, which
// the compiler chooses.
#pragma once

#include <cstdint>

#include "core/floats.h"
#include "core/rows.h"
#include "orucv.h"

namespace orucv {
namespace a6 {

// A kernel's weights: result = sum of v[i] * h[j] * s(x - 1 + j, y - 1 + i).
// Scharr results are then shifted right arithmetically.
template <int V0, int V1, int V2, int H0, int H1, int H2, bool Shifted = false>
struct Kernel3x3 {
    static constexpr int v0 = V0, v1 = V1, v2 = V2;
    static constexpr int h0 = H0, h1 = H1, h2 = H2;
    static constexpr bool shifted = Shifted;
    // Horizontal pass first when it is a difference: fewer operations.
    static constexpr bool rows_first = H0 == -H2 && H1 == 0;
    // Kernels that weigh three rows have a form for two output rows, in
    // which each source row's horizontal term serves both.
    static constexpr bool pairs = V1 != 0;
    static_assert((V0 + V1 + V2) * (H0 + H1 + H2) == 0, "derivative kernels sum to zero");
};

// The filters: X(name, vertical weights, horizontal weights, shifted). Each
// has a kernel type Kernel<name> and an entry Filter3x3::<name>.
#define ORUCV_SOBEL3X3_FILTERS(X)          \
    X(Dx, 1, 2, 1, -1, 0, 1, false)        \
    X(Dy, -1, 0, 1, 1, 2, 1, false)        \
    X(D2x, 1, 2, 1, 1, -2, 1, false)       \
    X(D2y, 1, -2, 1, 1, 2, 1, false)       \
    X(DxDy, -1, 0, 1, -1, 0, 1, false)     \
    X(ScharrDx, 3, 10, 3, -1, 0, 1, true)  \
    X(ScharrDy, -1, 0, 1, 3, 10, 3, true)

#define ORUCV_SOBEL3X3_KERNEL(name, ...) using Kernel##name = Kernel3x3<__VA_ARGS__>;
ORUCV_SOBEL3X3_FILTERS(ORUCV_SOBEL3X3_KERNEL)
#undef ORUCV_SOBEL3X3_KERNEL

enum class Filter3x3 : int {
#define ORUCV_SOBEL3X3_ID(name, ...) name,
    ORUCV_SOBEL3X3_FILTERS(ORUCV_SOBEL3X3_ID)
#undef ORUCV_SOBEL3X3_ID
};
#define ORUCV_SOBEL3X3_ONE(...) +1
constexpr int kFilter3x3Count = 0 ORUCV_SOBEL3X3_FILTERS(ORUCV_SOBEL3X3_ONE);
#undef ORUCV_SOBEL3X3_ONE

// The Scharr shift count as applied: the unshifted sums stay below 2^13 in
// magnitude, so any count from 15 on gives the same 0 or -1 as 15.
static inline int clamp_shift(int shift) { return shift < 15 ? shift : 15; }

// Float weights of one filter (see the header comment).
struct Weights32f {
    float c0, c1, c2;
    float big, small;
};

// Integer row: up, mid, down are the source rows y-1, y, y+1 (replicated at
// the image's edges), count the clamped shift (Scharr only).
typedef void (*Row8u)(const uint8_t* up, const uint8_t* mid, const uint8_t* down, int16_t* dst, int width,
                      int count);
typedef void (*Row8s)(const int8_t* up, const int8_t* mid, const int8_t* down, int16_t* dst, int width,
                      int count);
// Two integer rows at once: rows r0, r1, r2 give d0; r1, r2, r3 give d1.
// For the kernels that weigh three rows (Dx, D2x, D2y, Scharr Dx) each
// source row's horizontal term then serves two outputs.
typedef void (*Pair8u)(const uint8_t* r0, const uint8_t* r1, const uint8_t* r2, const uint8_t* r3, int16_t* d0,
                       int16_t* d1, int width, int count);
typedef void (*Pair8s)(const int8_t* r0, const int8_t* r1, const int8_t* r2, const int8_t* r3, int16_t* d0,
                       int16_t* d1, int width, int count);
// Float Dx rows: three-term interior rows and two-term first and last rows.
typedef void (*RowDx3_32f)(const float* up, const float* mid, const float* down, float* dst, int width,
                           const Weights32f& w);
// Two interior rows at once: rows r0, r1, r2 give d0; r1, r2, r3 give d1.
typedef void (*RowDx3x2_32f)(const float* r0, const float* r1, const float* r2, const float* r3, float* d0,
                             float* d1, int width, const Weights32f& w);
typedef void (*RowDx2_32f)(const float* a, const float* b, float* dst, int width, float ca, float cb);
// Float Dy rows: M(down) - M(up).
typedef void (*RowDy32f)(const float* up, const float* down, float* dst, int width, const Weights32f& w);
// Four interior Dy rows at once: output row i (0..3) from source rows i and
// i + 2 counted from `first` (M(i + 2) - M(i), or M(i) - M(i + 2) when
// flipped), so each source row's smoothing serves two outputs.
typedef void (*RowDy4_32f)(const float* first, int srcStep, float* dst, int dstStep, int width, bool flip,
                           const Weights32f& w);

struct Sobel3x3Kernels {
    // Integer rows, indexed by Filter3x3; pair forms of the kernels that
    // weigh three rows, null for the others.
    Row8u row_8u[kFilter3x3Count];
    Row8s row_8s[kFilter3x3Count];
    Pair8u pair_8u[kFilter3x3Count];
    Pair8s pair_8s[kFilter3x3Count];
    RowDx3_32f dx3_32f;
    RowDx3x2_32f dx3x2_32f;
    RowDx2_32f dx2_32f;
    RowDy32f dy_32f;
    RowDy4_32f dy4_32f;
};

// The table of a set of rows: Rows::row<Kernel, S> and Rows::pair<Kernel, S>
// for every filter and source type, and the float rows, set by name.
template <class Rows>
static constexpr Sobel3x3Kernels sobel3x3_table() {
    Sobel3x3Kernels k{};
#define ORUCV_SOBEL3X3_ENTRY(name, ...)                                                  \
    k.row_8u[static_cast<int>(Filter3x3::name)] = Rows::template row<Kernel##name, uint8_t>; \
    k.row_8s[static_cast<int>(Filter3x3::name)] = Rows::template row<Kernel##name, int8_t>;  \
    if constexpr (Kernel##name::pairs) {                                                  \
        k.pair_8u[static_cast<int>(Filter3x3::name)] = Rows::template pair<Kernel##name, uint8_t>; \
        k.pair_8s[static_cast<int>(Filter3x3::name)] = Rows::template pair<Kernel##name, int8_t>;  \
    }
    ORUCV_SOBEL3X3_FILTERS(ORUCV_SOBEL3X3_ENTRY)
#undef ORUCV_SOBEL3X3_ENTRY
    k.dx3_32f = Rows::dx3_32f;
    k.dx3x2_32f = Rows::dx3x2_32f;
    k.dx2_32f = Rows::dx2_32f;
    k.dy_32f = Rows::dy_32f;
    k.dy4_32f = Rows::dy4_32f;
    return k;
}

extern const Sobel3x3Kernels sobel3x3_kernels_scalar;
extern const Sobel3x3Kernels sobel3x3_kernels_sse2;
extern const Sobel3x3Kernels sobel3x3_kernels_avx2;
const Sobel3x3Kernels& sobel3x3_kernels();

// The engines. Arguments are trusted: width >= 1, height >= 2, steps of
// whole elements, source and destination not overlapping. `flip` swaps the
// rows above and below (origin 1: upper minus lower row); `shift` is the
// Scharr scale exponent (>= 0). Float images take Dx, Dy, ScharrDx and
// ScharrDy.
void filter_3x3(Filter3x3 filter, const uint8_t* src, int srcStep, int16_t* dst, int dstStep, OruSize roi,
                bool flip, int shift);
void filter_3x3(Filter3x3 filter, const int8_t* src, int srcStep, int16_t* dst, int dstStep, OruSize roi,
                bool flip, int shift);
void filter_3x3(Filter3x3 filter, const float* src, int srcStep, float* dst, int dstStep, OruSize roi, bool flip,
                int shift);

namespace scalar {

// One integer pixel with clamped columns.
template <class K, class S>
static inline int16_t pixel_clamped(const S* up, const S* mid, const S* down, int x, int width, int count) {
    const int xl = x > 0 ? x - 1 : 0;
    const int xr = x < width - 1 ? x + 1 : width - 1;
    auto h = [&](const S* r) { return K::h0 * r[xl] + K::h1 * r[x] + K::h2 * r[xr]; };
    int sum = K::v0 * h(up) + K::v1 * h(mid) + K::v2 * h(down);
    if (K::shifted) sum >>= count;
    return static_cast<int16_t>(sum);
}

// Pixels x0 .. x1-1 of an integer row, 0 < x0 <= x1 < width (no clamping).
template <class K, class S>
static inline void row_int_interior(const S* up, const S* mid, const S* down, int16_t* dst, int x0, int x1,
                                    int count) {
    for (int x = x0; x < x1; ++x) {
        auto h = [&](const S* r) { return K::h0 * r[x - 1] + K::h1 * r[x] + K::h2 * r[x + 1]; };
        int sum = K::v0 * h(up) + K::v1 * h(mid) + K::v2 * h(down);
        if (K::shifted) sum >>= count;
        dst[x] = static_cast<int16_t>(sum);
    }
}

// The first and last pixels of an integer row (width >= 1).
template <class K, class S>
static inline void row_int_edges(const S* up, const S* mid, const S* down, int16_t* dst, int width, int count) {
    dst[0] = pixel_clamped<K>(up, mid, down, 0, width, count);
    if (width > 1) dst[width - 1] = pixel_clamped<K>(up, mid, down, width - 1, width, count);
}

template <class K, class S>
static inline void row_int(const S* up, const S* mid, const S* down, int16_t* dst, int width, int count) {
    row_int_edges<K>(up, mid, down, dst, width, count);
    if (width > 2) row_int_interior<K>(up, mid, down, dst, 1, width - 1, count);
}

template <class K, class S>
static inline void row_int_pair(const S* r0, const S* r1, const S* r2, const S* r3, int16_t* d0, int16_t* d1,
                                int width, int count) {
    row_int<K>(r0, r1, r2, d0, width, count);
    row_int<K>(r1, r2, r3, d1, width, count);
}

// Horizontal difference with clamped columns; 0 on a one-column row.
static inline float diff_32f(const float* r, int x, int width) {
    if (width == 1) return 0.0f;
    const int xl = x > 0 ? x - 1 : 0;
    const int xr = x < width - 1 ? x + 1 : width - 1;
    return r[xr] - r[xl];
}

// Horizontal smoothing with the collapsed edge sums.
static inline float smooth_32f(const float* r, int x, int width, const Weights32f& w) {
    if (width == 1) return w.big * r[0] + w.small * r[0];
    if (x == 0) return w.big * r[0] + w.small * r[1];
    if (x == width - 1) return w.small * r[x - 1] + w.big * r[x];
    return (w.c0 * r[x - 1] + w.c1 * r[x]) + w.c2 * r[x + 1];
}

static inline float dx3_pixel(const float* up, const float* mid, const float* down, int x, int width,
                              const Weights32f& w) {
    return canonical_nan((w.c0 * diff_32f(up, x, width) + w.c1 * diff_32f(mid, x, width)) +
                         w.c2 * diff_32f(down, x, width));
}

static inline float dx2_pixel(const float* a, const float* b, int x, int width, float ca, float cb) {
    return canonical_nan(ca * diff_32f(a, x, width) + cb * diff_32f(b, x, width));
}

static inline float dy_pixel(const float* up, const float* down, int x, int width, const Weights32f& w) {
    return canonical_nan(smooth_32f(down, x, width, w) - smooth_32f(up, x, width, w));
}

static inline void dx3_32f_edges(const float* up, const float* mid, const float* down, float* dst, int width,
                                 const Weights32f& w) {
    dst[0] = dx3_pixel(up, mid, down, 0, width, w);
    if (width > 1) dst[width - 1] = dx3_pixel(up, mid, down, width - 1, width, w);
}

static inline void dx2_32f_edges(const float* a, const float* b, float* dst, int width, float ca, float cb) {
    dst[0] = dx2_pixel(a, b, 0, width, ca, cb);
    if (width > 1) dst[width - 1] = dx2_pixel(a, b, width - 1, width, ca, cb);
}

static inline void dy_32f_edges(const float* up, const float* down, float* dst, int width, const Weights32f& w) {
    dst[0] = dy_pixel(up, down, 0, width, w);
    if (width > 1) dst[width - 1] = dy_pixel(up, down, width - 1, width, w);
}

static inline void dx3_32f(const float* up, const float* mid, const float* down, float* dst, int width,
                           const Weights32f& w) {
    dx3_32f_edges(up, mid, down, dst, width, w);
    for (int x = 1; x < width - 1; ++x)
        dst[x] = canonical_nan((w.c0 * (up[x + 1] - up[x - 1]) + w.c1 * (mid[x + 1] - mid[x - 1])) +
                               w.c2 * (down[x + 1] - down[x - 1]));
}

static inline void dx3x2_32f(const float* r0, const float* r1, const float* r2, const float* r3, float* d0,
                             float* d1, int width, const Weights32f& w) {
    dx3_32f(r0, r1, r2, d0, width, w);
    dx3_32f(r1, r2, r3, d1, width, w);
}

static inline void dx2_32f(const float* a, const float* b, float* dst, int width, float ca, float cb) {
    dx2_32f_edges(a, b, dst, width, ca, cb);
    for (int x = 1; x < width - 1; ++x)
        dst[x] = canonical_nan(ca * (a[x + 1] - a[x - 1]) + cb * (b[x + 1] - b[x - 1]));
}

static inline void dy_32f(const float* up, const float* down, float* dst, int width, const Weights32f& w) {
    dy_32f_edges(up, down, dst, width, w);
    for (int x = 1; x < width - 1; ++x) {
        const float m_down = (w.c0 * down[x - 1] + w.c1 * down[x]) + w.c2 * down[x + 1];
        const float m_up = (w.c0 * up[x - 1] + w.c1 * up[x]) + w.c2 * up[x + 1];
        dst[x] = canonical_nan(m_down - m_up);
    }
}

static inline void dy4_32f(const float* first, int srcStep, float* dst, int dstStep, int width, bool flip,
                           const Weights32f& w) {
    for (int i = 0; i < 4; ++i) {
        const float* up = row_at(first, srcStep, flip ? i + 2 : i);
        const float* down = row_at(first, srcStep, flip ? i : i + 2);
        dy_32f(up, down, row_at(dst, dstStep, i), width, w);
    }
}

}  // namespace scalar
}  // namespace a6
}  // namespace orucv
