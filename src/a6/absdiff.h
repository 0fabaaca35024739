// Row kernels of absolute difference and the motion-history update.
// The scalar twins are static inline so that every translation unit (each
// compiled for its own instruction set) keeps its own copy for row tails.
#pragma once

#include <cstdint>
#include <cstring>

namespace orucv {
namespace a6 {

struct AbsDiffKernels {
    void (*diff_8u)(const uint8_t* a, const uint8_t* b, uint8_t* dst, int n);
    void (*diff_const_8u)(const uint8_t* a, uint8_t value, uint8_t* dst, int n);
    void (*diff_32f)(const float* a, const float* b, float* dst, int n);
    void (*diff_const_32f)(const float* a, float value, float* dst, int n);
    // Positive threshold: history bit patterns compared directly as signed ints.
    void (*motion_direct)(const uint8_t* silhouette, float* mhi, int n, float timestamp, float threshold);
    // Zero or negative threshold: patterns mapped to an order-preserving int.
    void (*motion_mapped)(const uint8_t* silhouette, float* mhi, int n, float timestamp, float threshold);
};

extern const AbsDiffKernels absdiff_kernels_scalar;
extern const AbsDiffKernels absdiff_kernels_sse2;
extern const AbsDiffKernels absdiff_kernels_avx2;
const AbsDiffKernels& absdiff_kernels();

// Image-level motion-history kernel: picks the comparison loop by the sign
// of the threshold's bit pattern. Arguments are trusted.
int a6_orcvUpdateMotionHistory_8u32f_C1IR(const uint8_t* pSilhouette, int silhStep, float* pMHI, int mhiStep,
                                          int width, int height, float timestamp, float threshold);

namespace scalar {

static inline int32_t float_bits(float f) {
    int32_t b;
    std::memcpy(&b, &f, sizeof b);
    return b;
}

static inline float bits_float(int32_t b) {
    float f;
    std::memcpy(&f, &b, sizeof f);
    return f;
}

// A negative pattern becomes the complement of its magnitude bits, so that
// signed integer order matches float order (-0.0 sorts just below +0.0).
static inline int32_t ordered_bits(int32_t b) { return b < 0 ? ~(b & 0x7FFFFFFF) : b; }

static inline void diff_8u(const uint8_t* a, const uint8_t* b, uint8_t* dst, int n) {
    for (int i = 0; i < n; ++i) dst[i] = static_cast<uint8_t>(a[i] > b[i] ? a[i] - b[i] : b[i] - a[i]);
}

static inline void diff_const_8u(const uint8_t* a, uint8_t value, uint8_t* dst, int n) {
    for (int i = 0; i < n; ++i) dst[i] = static_cast<uint8_t>(a[i] > value ? a[i] - value : value - a[i]);
}

// The sign bit of the single-precision difference is cleared, so NaN
// payloads pass through and -0.0 becomes +0.0.
static inline float abs_diff(float a, float b) { return bits_float(float_bits(a - b) & 0x7FFFFFFF); }

static inline void diff_32f(const float* a, const float* b, float* dst, int n) {
    for (int i = 0; i < n; ++i) dst[i] = abs_diff(a[i], b[i]);
}

static inline void diff_const_32f(const float* a, float value, float* dst, int n) {
    for (int i = 0; i < n; ++i) dst[i] = abs_diff(a[i], value);
}

static inline void motion_direct(const uint8_t* silhouette, float* mhi, int n, float timestamp, float threshold) {
    const int32_t thr = float_bits(threshold);
    for (int i = 0; i < n; ++i) {
        if (silhouette[i]) mhi[i] = timestamp;
        else if (float_bits(mhi[i]) < thr) mhi[i] = 0.0f;
    }
}

static inline void motion_mapped(const uint8_t* silhouette, float* mhi, int n, float timestamp, float threshold) {
    const int32_t thr = ordered_bits(float_bits(threshold));
    for (int i = 0; i < n; ++i) {
        if (silhouette[i]) mhi[i] = timestamp;
        else if (ordered_bits(float_bits(mhi[i])) < thr) mhi[i] = 0.0f;
    }
}

}  // namespace scalar
}  // namespace a6
}  // namespace orucv
