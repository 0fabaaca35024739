// General separable filters of size 3, 5 or 7 over images fed in strips:
// the filter specification (kernels, ring of row buffers, pass state), the
// row kernels with their scalar twins, and the engine that drives a strip.
//
// Rows flow through the filter specification's ring: each source row is filtered
// across once into a ring row (16-bit for 8-bit sources, float for float
// sources); a destination row is formed down the ring rows of its window as
// soon as the row below its window has arrived, or when the last strip
// replicates the last row. A strip may so emit fewer rows than it was given;
// the last strip emits the rest.
//
// Integer filters compute in 16 bits with wrap-around, so their results are
// the exact sums modulo 2^16 whatever the order. Float filters sum in one
// order on every path: across, c[k] * s(x - r + k) over the nonzero
// coefficients in increasing k, starting from the first product; down, the
// same over the ring rows; NaN results are stored as the one quiet NaN.
// Near the edges the cells that meet the same replicated pixel or row add
// into one weight at the first of them (the scalar edge code and the
// engine's choice of rows do this; the vector loops see interior pixels
// and rows only).
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "core/floats.h"
#include "orucv.h"

namespace orucv {
namespace a6 {

constexpr int kMaxKernel = 7;

// The nonzero coefficients of one 1-D kernel, in increasing index k.
struct Taps {
    int32_t count;
    int32_t index[kMaxKernel];
    int16_t c16[kMaxKernel + 1];
    float cf[kMaxKernel + 1];
};

enum FilterKind : int32_t { kSobel = 1, kBlur = 2, kLaplace = 3 };

// One allocation from _orcvAlloc: this header, then `row_count` row buffers
// of `row_bytes` each, `rows_offset` bytes from the start. Offsets, never
// addresses, so the layout is the same on 32- and 64-bit builds.
struct FilterSpec {
    uint32_t magic;
    int32_t kind;       // FilterKind
    int32_t data_type;  // 1, 2 (16-bit rows) or 9 (float rows)
    int32_t size;       // kernel size n, 3, 5 or 7
    int32_t origin, xorder, yorder;
    int32_t width;      // the region width it serves
    int32_t started;    // a pass is under way (a first strip came)
    int32_t received;   // source rows of the pass so far
    int32_t emitted;    // destination rows of the pass so far
    int32_t row_bytes;
    int32_t row_count;
    int32_t rows_offset;
    // The generated kernels, cell k meeting s(x - n/2 + k) (row y - n/2 + k
    // for y); Blur leaves them zero. Laplace: x = order 2, y = order 0.
    int16_t kx16[kMaxKernel + 1], ky16[kMaxKernel + 1];
    float kxf[kMaxKernel + 1], kyf[kMaxKernel + 1];
    Taps tx, ty;
};

constexpr uint32_t kFilterSpecMagic = 0x4C544946u;  // "FILT"

static inline bool is_float_type(int data_type) { return data_type == oruDataType32f; }

// Kernel generation: n cells, derivative order d; an odd derivative with
// origin 1 is negated. In 16-bit integers (kx16) and in float (kxf).
void make_kernel(int n, int d, int origin, int16_t* c16, float* cf);

// Creation: oruStsOk with *out set, or oruStsMemAlloc (nothing set).
// Arguments are trusted.
OruStatus create_sobel(int width, int data_type, int size, int origin, int xorder, int yorder, FilterSpec** out);
OruStatus create_blur(int width, int data_type, int size, FilterSpec** out);
OruStatus create_laplace(int width, int data_type, int size, FilterSpec** out);
void release(FilterSpec** fspec);

// Whether the filter specification serves a call of this kind on this data (8-bit
// or float) and width; and whether a strip with this flag may start or go on.
bool spec_fits(const FilterSpec* fspec, FilterKind kind, bool float_data, int width);
bool spec_accepts_flag(const FilterSpec* fspec, int flag);

// One strip: `height` source rows in, the count of destination rows written
// out. flag 1 first, 4 middle, 2 last, 0 or 3 the whole image. A height of 0
// is allowed here (the corner functions' cascade), not in the public calls.
// Destination row j of a call is written only after source row j of the
// call has been read, so the destination may start at the source or above
// it with the same step.
int run_strip(FilterSpec* fspec, const uint8_t* src, int srcStep, int16_t* dst, int dstStep, int height, int flag);
int run_strip(FilterSpec* fspec, const int8_t* src, int srcStep, int16_t* dst, int dstStep, int height, int flag);
int run_strip(FilterSpec* fspec, const float* src, int srcStep, float* dst, int dstStep, int height, int flag);

// ---- Row kernels
// The cells of the kernel of size n and order d (negated for an odd order
// with origin 1) as constants, so vector loops can be specialised on them.
struct KernelCells {
    int c[kMaxKernel];
    int count;  // nonzero cells
    int first;  // the first nonzero cell
};
static constexpr KernelCells kernel_cells(int n, int d, bool negate) {
    int c[kMaxKernel + 1] = {1, 0, 0, 0, 0, 0, 0, 0};
    for (int i = 0; i < n - 1 - d; ++i)
        for (int k = n; k >= 1; --k) c[k] = c[k] + c[k - 1];
    for (int i = 0; i < d; ++i) {
        for (int k = n; k >= 1; --k) c[k] = c[k - 1] - c[k];
        c[0] = -c[0];
    }
    KernelCells out{{0, 0, 0, 0, 0, 0, 0}, 0, -1};
    for (int k = 0; k < n; ++k) {
        out.c[k] = negate && d % 2 == 1 ? -c[k] : c[k];
        if (out.c[k] != 0) {
            if (out.first < 0) out.first = k;
            ++out.count;
        }
    }
    return out;
}

// The row kernels of the separable filters work on pixels [x0, x1) of a
// row of n, so the engine can run across and down a piece at a time.
// Across: dst[x] = sum over the taps of c * src[clamp(x + index - r)].
template <class S, class D>
using AcrossRow = void (*)(const S* src, D* dst, int n, int r, const Taps& taps, int x0, int x1);
// Laplace across: a = order-2 taps, b = order-0 taps of one source row.
template <class S, class D>
using LaplaceAcrossRow = void (*)(const S* src, D* a, D* b, int n, int r, const Taps& second, const Taps& smooth,
                                  int x0, int x1);
// Down: dst[x] = sum over taps t of coeff[t] * rows[t][x].
template <class D>
using DownRow = void (*)(const D* const* rows, D* dst, const D* coeff, int x0, int x1);
// Laplace down: (sum of ca[t] * a[t][x]) + (sum of cb[t] * b[t][x]).
template <class D>
using LaplaceRow = void (*)(const D* const* a, const D* ca, const D* const* b, const D* cb, D* dst, int x0, int x1);
template <class D>
using LaplaceAnyRow = void (*)(const D* const* a, const D* ca, int ma, const D* const* b, const D* cb, int mb, D* dst,
                               int x0, int x1);
// Box across: dst[x] = sum of src[clamp(x + j)], j = -r..r in order.
template <class S, class D>
using BoxRow = void (*)(const S* src, D* dst, int n);
// Column sums: col = col + in (- out when out is given); dst = col when
// dst is given. Init: col = factor * in.
template <class D>
using ColumnRow = void (*)(D* col, const D* in, const D* out, D* dst, int n);
template <class D>
using ColumnInit = void (*)(D* col, const D* in, int factor, int n);

// Radius r = n / 2 indexes 1..3; d the derivative order; neg 1 for a
// negated (origin 1, odd order) y kernel.
struct FilterKernels {
    AcrossRow<uint8_t, int16_t> across_8u[4][kMaxKernel];
    AcrossRow<int8_t, int16_t> across_8s[4][kMaxKernel];
    AcrossRow<float, float> across_32f[4][kMaxKernel];
    DownRow<int16_t> down_16s[4][kMaxKernel][2];
    DownRow<float> down_32f[4][kMaxKernel][2];
    // Rows whose taps merged at the image's top or bottom, by tap count.
    DownRow<int16_t> down_any_16s[kMaxKernel + 1];
    DownRow<float> down_any_32f[kMaxKernel + 1];
    LaplaceAcrossRow<uint8_t, int16_t> laplace_across_8u[4];
    LaplaceAcrossRow<int8_t, int16_t> laplace_across_8s[4];
    LaplaceAcrossRow<float, float> laplace_across_32f[4];
    LaplaceRow<int16_t> laplace_16s[4];
    LaplaceRow<float> laplace_32f[4];
    // Laplace rows whose taps merged: any counts (ma, mb), an empty part
    // left out.
    LaplaceAnyRow<int16_t> laplace_any_16s;
    LaplaceAnyRow<float> laplace_any_32f;
    BoxRow<uint8_t, int16_t> box_8u[4];
    BoxRow<int8_t, int16_t> box_8s[4];
    BoxRow<float, float> box_32f[4];
    ColumnRow<int16_t> column_16s;
    ColumnRow<float> column_32f;
    ColumnInit<int16_t> column_init_16s;
    ColumnInit<float> column_init_32f;
};

extern const FilterKernels filter_kernels_scalar;
extern const FilterKernels filter_kernels_sse2;
extern const FilterKernels filter_kernels_avx2;
const FilterKernels& filter_kernels();

// The nonzero taps of the Laplace kernels of each size (order 0 and 2).
static constexpr int laplace_taps_smooth(int r) { return kernel_cells(2 * r + 1, 0, false).count; }
static constexpr int laplace_taps_second(int r) { return kernel_cells(2 * r + 1, 2, false).count; }

namespace scalar {

// Caller memory is read and written through these: float rows may sit at
// any even address (the float blur accepts steps that are 2 mod 4).
template <class T>
static inline T ld(const T* p) {
    T v;
    std::memcpy(&v, p, sizeof v);
    return v;
}
template <class T>
static inline void st(T* p, T v) {
    std::memcpy(p, &v, sizeof v);
}

// Arithmetic of the two ring types: 16-bit wrap-around or single precision.
static inline int16_t mul(int16_t c, int16_t v) { return static_cast<int16_t>(c * v); }
static inline int16_t add(int16_t a, int16_t b) { return static_cast<int16_t>(a + b); }
static inline int16_t sub(int16_t a, int16_t b) { return static_cast<int16_t>(a - b); }
static inline float mul(float c, float v) { return c * v; }
static inline float add(float a, float b) { return a + b; }
static inline float sub(float a, float b) { return a - b; }
static inline int16_t finish(int16_t v) { return v; }
static inline float finish(float v) { return canonical_nan(v); }

// A source sample in the ring type.
template <class D, class S>
static inline D sample(const S* p) {
    return static_cast<D>(ld(p));
}

static inline int clamp_index(int i, int n) { return i < 0 ? 0 : i >= n ? n - 1 : i; }

// Across pixels [x0, x1) with replicated edges: the cells that meet the
// same pixel are added into one weight at the place of the first of them,
// and weights of 0 drop out (an empty sum is 0).
template <class S, class D, class C>
static inline void across_range(const S* src, D* dst, int n, int r, const int32_t* index, const C* coeff, int count,
                                int x0, int x1) {
    for (int x = x0; x < x1; ++x) {
        D acc = 0;
        bool any = false;
        for (int t = 0; t < count;) {
            const int i = clamp_index(x + index[t] - r, n);
            C weight = coeff[t];
            for (++t; t < count && clamp_index(x + index[t] - r, n) == i; ++t) weight = static_cast<C>(weight + coeff[t]);
            if (weight == 0) continue;
            const D p = mul(static_cast<D>(weight), sample<D>(src + i));
            acc = any ? add(acc, p) : p;
            any = true;
        }
        dst[x] = acc;
    }
}

static inline const int16_t* coeffs_of(const Taps& t, int16_t) { return t.c16; }
static inline const float* coeffs_of(const Taps& t, float) { return t.cf; }

template <int M, class S, class D>
static inline void across(const S* src, D* dst, int n, int r, const Taps& taps, int x0, int x1) {
    const int32_t* index = taps.index;
    const auto* coeff = coeffs_of(taps, D());
    int inner0 = r < n ? r : n, inner1 = n - r > inner0 ? n - r : inner0;
    inner0 = inner0 < x0 ? x0 : inner0 > x1 ? x1 : inner0;
    inner1 = inner1 > x1 ? x1 : inner1 < inner0 ? inner0 : inner1;
    across_range(src, dst, n, r, index, coeff, M, x0, inner0);
    for (int x = inner0; x < inner1; ++x) {  // no clamping needed
        const S* s = src + x - r;
        D acc = mul(static_cast<D>(coeff[0]), sample<D>(s + index[0]));
        for (int t = 1; t < M; ++t) acc = add(acc, mul(static_cast<D>(coeff[t]), sample<D>(s + index[t])));
        dst[x] = acc;
    }
    across_range(src, dst, n, r, index, coeff, M, inner1, x1);
}

template <int MA, int MB, class S, class D>
static inline void laplace_across(const S* src, D* a, D* b, int n, int r, const Taps& second, const Taps& smooth,
                                  int x0, int x1) {
    across<MA>(src, a, n, r, second, x0, x1);
    across<MB>(src, b, n, r, smooth, x0, x1);
}

template <int M, class D, class C>
static inline D down_pixel(const D* const* rows, const C* coeff, int x) {
    D acc = mul(static_cast<D>(coeff[0]), rows[0][x]);
    for (int t = 1; t < M; ++t) acc = add(acc, mul(static_cast<D>(coeff[t]), rows[t][x]));
    return acc;
}

template <int M, class D, class C>
static inline void down(const D* const* rows, D* dst, const C* coeff, int x0, int x1) {
    for (int x = x0; x < x1; ++x) st(dst + x, finish(down_pixel<M>(rows, coeff, x)));
}

template <int MA, int MB, class D, class C>
static inline void laplace(const D* const* a, const C* ca, const D* const* b, const C* cb, D* dst, int x0, int x1) {
    for (int x = x0; x < x1; ++x) st(dst + x, finish(add(down_pixel<MA>(a, ca, x), down_pixel<MB>(b, cb, x))));
}

// Laplace rows whose taps merged at the image's top or bottom: any counts,
// an empty part left out.
template <class D, class C>
static inline void laplace_any(const D* const* a, const C* ca, int ma, const D* const* b, const C* cb, int mb, D* dst,
                               int x0, int x1) {
    for (int x = x0; x < x1; ++x) {
        D va = 0, vb = 0;
        for (int t = 0; t < ma; ++t) va = t ? add(va, mul(static_cast<D>(ca[t]), a[t][x])) : mul(static_cast<D>(ca[t]), a[t][x]);
        for (int t = 0; t < mb; ++t) vb = t ? add(vb, mul(static_cast<D>(cb[t]), b[t][x])) : mul(static_cast<D>(cb[t]), b[t][x]);
        st(dst + x, finish(ma && mb ? add(va, vb) : ma ? va : vb));
    }
}

// Box sums of pixels [x0, x1): a pixel met m times by the replicated
// edges counts once, as m * s.
template <int R, class S, class D>
static inline void box_range(const S* src, D* dst, int n, int x0, int x1) {
    for (int x = x0; x < x1; ++x) {
        D acc = 0;
        for (int j = -R; j <= R;) {
            const int i = clamp_index(x + j, n);
            const int first = j;
            for (++j; j <= R && clamp_index(x + j, n) == i; ++j) {
            }
            const D v = sample<D>(src + i);
            const D p = j - first == 1 ? v : mul(static_cast<D>(j - first), v);
            acc = first == -R ? p : add(acc, p);
        }
        dst[x] = acc;
    }
}

template <int R, class S, class D>
static inline void box(const S* src, D* dst, int n) {
    const int inner0 = R < n ? R : n, inner1 = n - R > inner0 ? n - R : inner0;
    box_range<R>(src, dst, n, 0, inner0);
    for (int x = inner0; x < inner1; ++x) {
        D acc = sample<D>(src + x - R);
        for (int j = -R + 1; j <= R; ++j) acc = add(acc, sample<D>(src + x + j));
        dst[x] = acc;
    }
    box_range<R>(src, dst, n, inner1, n);
}

template <class D>
static inline void column(D* col, const D* in, const D* out, D* dst, int n, int x0 = 0) {
    for (int x = x0; x < n; ++x) {
        D c = add(col[x], in[x]);
        if (out) c = sub(c, out[x]);
        col[x] = c;
        if (dst) st(dst + x, finish(c));
    }
}

template <class D>
static inline void column_init(D* col, const D* in, int factor, int n, int x0 = 0) {
    const D f = static_cast<D>(factor);
    for (int x = x0; x < n; ++x) col[x] = mul(f, in[x]);
}

}  // namespace scalar
}  // namespace a6
}  // namespace orucv
