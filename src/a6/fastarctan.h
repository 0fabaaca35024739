// The fast arctangent: its kernel table, the engine and the scalar twin.
#pragma once

#include <cstdint>

#include "core/floats.h"
#include "orucv.h"

namespace orucv {
namespace a6 {

struct FastArctanKernels {
    // dst[i] = the angle of (x[i], y[i]) in degrees, i < n.
    void (*angles)(const float* y, const float* x, float* dst, int n);
};

extern const FastArctanKernels fastarctan_kernels_scalar;
extern const FastArctanKernels fastarctan_kernels_sse2;
extern const FastArctanKernels fastarctan_kernels_avx2;
const FastArctanKernels& fastarctan_kernels();

// Engine: the arguments are trusted.
void fast_arctan(const Oru32f* y, const Oru32f* x, Oru32f* dst, int n);

// The quadratic p(t) = (kArctanT2 * t + kArctanT1) * t - kArctanT0 approximates
// atan(t) in degrees over 0 <= t <= 1 (error at most about 0.1405 degrees);
// kArctanFloor keeps the division defined at (0, 0).
constexpr float kArctanT2 = -15.813189506530762f;
constexpr float kArctanT1 = 61.09419631958008f;
constexpr float kArctanT0 = 0.14050041139125824f;
constexpr float kArctanFloor = 9.99999993922529e-09f;

namespace scalar {

// m ? a : b without a branch: the signs of gradients are no pattern a
// branch predictor could learn.
static inline float pick(bool m, float a, float b) {
    const uint32_t mask = 0u - static_cast<uint32_t>(m);
    return bits_float((float_bits(a) & mask) | (float_bits(b) & ~mask));
}

// One angle, operation for operation as the vector kernels compute it: a
// correctly rounded division (no reciprocal estimate, whose bits differ
// between processors), replaced by 1 where it is NaN, which makes two
// infinities the diagonal (finite quotients never exceed 1); then the three
// corrections in order. A NaN component gives the quiet NaN.
static inline float fast_arctan(float y, float x) {
    const float ax = bits_float(float_bits(x) & 0x7FFFFFFFu);
    const float ay = bits_float(float_bits(y) & 0x7FFFFFFFu);
    const float big = scalar_maxf(scalar_maxf(ax, ay), kArctanFloor);
    const float small = scalar_minf(ax, ay);
    const float t = scalar_minf(small / big, 1.0f);
    const float p = (kArctanT2 * t + kArctanT1) * t - kArctanT0;
    const float a = pick(ax < ay, 90.0f - p, p);
    const float b = pick(x < 0.0f, 180.0f - a, a);
    const float c = pick(y < 0.0f, 360.0f - b, b);
    return pick(x != x || y != y, quiet_nan(), c);
}

static inline void angles(const float* y, const float* x, float* dst, int n) {
    for (int i = 0; i < n; ++i) dst[i] = fast_arctan(y[i], x[i]);
}

}  // namespace scalar
}  // namespace a6
}  // namespace orucv
