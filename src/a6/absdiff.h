// Absolute difference and the motion-history update: the row kernels, their
// scalar twins and the engines that drive them over an image.
#pragma once

#include <cstdint>

#include "core/floats.h"
#include "orucv.h"

namespace orucv {
namespace a6 {

struct AbsDiffKernels {
    void (*diff_8u)(const uint8_t* a, const uint8_t* b, uint8_t* dst, int n);
    void (*diff_const_8u)(const uint8_t* a, uint8_t value, uint8_t* dst, int n);
    void (*diff_32f)(const float* a, const float* b, float* dst, int n);
    void (*diff_const_32f)(const float* a, float value, float* dst, int n);
    // Positive threshold: history bit patterns compared directly as signed ints.
    void (*motion_direct)(const uint8_t* silhouette, float* mhi, int n, float timestamp, float threshold);
    // Zero or negative threshold: patterns compared by their order keys.
    void (*motion_mapped)(const uint8_t* silhouette, float* mhi, int n, float timestamp, float threshold);
};

extern const AbsDiffKernels absdiff_kernels_scalar;
extern const AbsDiffKernels absdiff_kernels_sse2;
extern const AbsDiffKernels absdiff_kernels_avx2;
const AbsDiffKernels& absdiff_kernels();

// Engines: arguments are trusted (checked by the wrappers); contiguous rows
// are walked as one.
void abs_diff(const Oru8u* a, int aStep, const Oru8u* b, int bStep, Oru8u* dst, int dstStep, OruSize roi);
void abs_diff(const Oru32f* a, int aStep, const Oru32f* b, int bStep, Oru32f* dst, int dstStep, OruSize roi);
void abs_diff_const(const Oru8u* a, int aStep, Oru8u value, Oru8u* dst, int dstStep, OruSize roi);
void abs_diff_const(const Oru32f* a, int aStep, Oru32f value, Oru32f* dst, int dstStep, OruSize roi);
void update_motion_history(const Oru8u* silhouette, int silhStep, Oru32f* mhi, int mhiStep, OruSize roi,
                           Oru32f timestamp, Oru32f threshold);

namespace scalar {

static inline void diff_8u(const uint8_t* a, const uint8_t* b, uint8_t* dst, int n) {
    for (int i = 0; i < n; ++i) dst[i] = static_cast<uint8_t>(a[i] > b[i] ? a[i] - b[i] : b[i] - a[i]);
}

static inline void diff_const_8u(const uint8_t* a, uint8_t value, uint8_t* dst, int n) {
    for (int i = 0; i < n; ++i) dst[i] = static_cast<uint8_t>(a[i] > value ? a[i] - value : value - a[i]);
}

// The sign bit of the single-precision difference is cleared, so NaN
// payloads pass through and -0.0 becomes +0.0.
static inline float abs_diff(float a, float b) { return bits_float(float_bits(a - b) & 0x7FFFFFFFu); }

static inline void diff_32f(const float* a, const float* b, float* dst, int n) {
    for (int i = 0; i < n; ++i) dst[i] = abs_diff(a[i], b[i]);
}

static inline void diff_const_32f(const float* a, float value, float* dst, int n) {
    for (int i = 0; i < n; ++i) dst[i] = abs_diff(a[i], value);
}

// Moving pixels take the time stamp; the others are cleared where their key
// is below the threshold's (the bit pattern itself when kMapped is false).
template <bool kMapped>
static inline void motion(const uint8_t* silhouette, float* mhi, int n, float timestamp, float threshold) {
    auto key = [](float f) { return kMapped ? order_key(f) : static_cast<int32_t>(float_bits(f)); };
    const int32_t thr = key(threshold);
    for (int i = 0; i < n; ++i) {
        if (silhouette[i]) mhi[i] = timestamp;
        else if (key(mhi[i]) < thr) mhi[i] = 0.0f;
    }
}

}  // namespace scalar
}  // namespace a6
}  // namespace orucv
