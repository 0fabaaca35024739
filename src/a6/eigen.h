// Corner eigenvalues: the row kernels (gradient products, the per-pixel
// eigen solutions) with their scalar twins, and the engine that runs the
// image through the general filters in strips.
//
// Scratch, the caller's buffer: three float planes of 8 rows each (the
// products Ix*Ix, Ix*Iy, Iy*Iy). A strip's derivative rows land in rows
// 1..7 of the first and third planes (16-bit values at the start of each
// float row for 8-bit sources), are widened into the three products in
// place, and their box sums come back into rows 0..7 of the same planes.
#pragma once

#include <cstdint>

#include "a6/filter.h"
#include "core/floats.h"
#include "orucv.h"

namespace orucv {
namespace a6 {

struct EigenKernels {
    // xx and yy hold a row of 16-bit derivatives at their start; on return
    // xx = Ix*Ix, xy = Ix*Iy, yy = Iy*Iy as floats.
    void (*products_16s)(float* xx, float* xy, float* yy, int n);
    // xx and yy hold float derivatives.
    void (*products_32f)(float* xx, float* xy, float* yy, int n);
    void (*min_eigen)(const float* sxx, const float* sxy, const float* syy, float* dst, int n, float k);
    void (*eigen_vv)(const float* sxx, const float* sxy, const float* syy, float* dst, int n, float k);
};

extern const EigenKernels eigen_kernels_scalar;
extern const EigenKernels eigen_kernels_sse2;
extern const EigenKernels eigen_kernels_avx2;
const EigenKernels& eigen_kernels();

// The scratch bytes for a region width: 3 planes of 8 rows of floats.
constexpr int kCornerPlaneRows = 8;
static inline long long corner_buffer_bytes(int width) { return 12LL * kCornerPlaneRows * width; }

// Engines: arguments are trusted. box is the window of the sums (the
// aperture for the 8-bit MinEigenVal functions), window the one that
// scales. oruStsOk, or oruStsMemAlloc when a specification cannot be made.
template <class S>
OruStatus corners(const S* src, int srcStep, float* dst, int dstStep, OruSize roi, int aperture, int box, int window,
                  bool vectors, uint8_t* buffer);
extern template OruStatus corners(const uint8_t*, int, float*, int, OruSize, int, int, int, bool, uint8_t*);
extern template OruStatus corners(const int8_t*, int, float*, int, OruSize, int, int, int, bool, uint8_t*);
extern template OruStatus corners(const float*, int, float*, int, OruSize, int, int, int, bool, uint8_t*);

namespace scalar {

// __builtin_sqrtf and __builtin_fabsf become single instructions (no errno
// is kept), where the <cmath> overloads are inline functions that a Debug
// build of an instruction-set file would define as weak symbols.
constexpr float kEigenEpsilon = 1.1920928955078125e-7f;  // 2^-23
constexpr float kEigenThreshold = 0.01f;

static inline void products_16s(float* xx, float* xy, float* yy, int n, int x_end = -1) {
    // Right to left: float x covers the 16-bit samples 2x and 2x + 1, which
    // lie at or right of x and so have been read already.
    for (int x = (x_end < 0 ? n : x_end) - 1; x >= 0; --x) {
        const float dx = ld(reinterpret_cast<const int16_t*>(xx) + x);
        const float dy = ld(reinterpret_cast<const int16_t*>(yy) + x);
        st(xx + x, dx * dx);
        st(xy + x, dx * dy);
        st(yy + x, dy * dy);
    }
}

static inline void products_32f(float* xx, float* xy, float* yy, int n, int x0 = 0) {
    for (int x = x0; x < n; ++x) {
        const float dx = ld(xx + x), dy = ld(yy + x);
        st(xx + x, dx * dx);
        st(xy + x, dx * dy);
        st(yy + x, dy * dy);
    }
}

static inline float min_eigen_value(float sxx, float sxy, float syy, float k) {
    const float p = 0.5f * sxx, q = 0.5f * syy, t = p - q;
    return ((p + q) - __builtin_sqrtf(sxy * sxy + t * t)) * k;
}

static inline void min_eigen(const float* sxx, const float* sxy, const float* syy, float* dst, int n, float k,
                             int x0 = 0) {
    for (int x = x0; x < n; ++x) st(dst + x, canonical_nan(min_eigen_value(ld(sxx + x), ld(sxy + x), ld(syy + x), k)));
}

// l1, l2, x1, y1, x2, y2 of one pixel.
static inline void eigen_vv_pixel(float sxx, float sxy, float syy, float k, float* out) {
    const float a = k * sxx, c = k * syy, b = k * sxy;
    const float t = kEigenThreshold * scalar_maxf(a, c);
    for (int i = 0; i < 6; ++i) out[i] = 0.0f;
    if (scalar_minf(a, c) < t) return;
    if (__builtin_fabsf(b) < t) {
        out[0] = a, out[1] = c, out[2] = 1.0f, out[5] = 1.0f;
        return;
    }
    const float det = a * c - b * b;
    if (det < t) return;
    const float s = a + c;
    const float d = __builtin_sqrtf(s * s - 4.0f * det);
    out[0] = (s + d) * 0.5f;
    out[1] = (s - d) * 0.5f;
    for (int i = 0; i < 2; ++i) {
        const float u = out[i] - a;
        float m = __builtin_sqrtf(u * u + b * b);
        if (m == 0.0f) m = kEigenEpsilon;
        out[2 + 2 * i] = b / m;
        out[3 + 2 * i] = u / m;
    }
}

static inline void eigen_vv(const float* sxx, const float* sxy, const float* syy, float* dst, int n, float k,
                            int x0 = 0) {
    for (int x = x0; x < n; ++x) {
        float out[6];
        eigen_vv_pixel(ld(sxx + x), ld(sxy + x), ld(syy + x), k, out);
        for (int i = 0; i < 6; ++i) st(dst + 6 * x + i, canonical_nan(out[i]));
    }
}

}  // namespace scalar
}  // namespace a6
}  // namespace orucv
