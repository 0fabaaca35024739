// Channel copies between interleaved and planar layouts: one template per
// direction over pixel type and channel count. The loops are plain so that
// each translation unit's instruction set vectorises them; every variant
// moves the same values, so all paths agree byte for byte.
#pragma once

#include <cstdint>

namespace orucv {
namespace a6 {

struct CopyKernels {
    void (*channel_8u_c3)(const uint8_t* src, uint8_t* dst, int n, int coi);
    void (*channel_8u_c4)(const uint8_t* src, uint8_t* dst, int n, int coi);
    void (*channel_32f_c3)(const float* src, float* dst, int n, int coi);
    void (*channel_32f_c4)(const float* src, float* dst, int n, int coi);
    void (*split_8u_c3)(const uint8_t* src, uint8_t* const* planes, int n);
    void (*split_8u_c4)(const uint8_t* src, uint8_t* const* planes, int n);
    void (*split_32f_c3)(const float* src, float* const* planes, int n);
    void (*split_32f_c4)(const float* src, float* const* planes, int n);
    void (*merge_8u_c3)(const uint8_t* const* planes, uint8_t* dst, int n);
    void (*merge_8u_c4)(const uint8_t* const* planes, uint8_t* dst, int n);
    void (*merge_32f_c3)(const float* const* planes, float* dst, int n);
    void (*merge_32f_c4)(const float* const* planes, float* dst, int n);
};

extern const CopyKernels copy_kernels_scalar;
extern const CopyKernels copy_kernels_sse2;
extern const CopyKernels copy_kernels_avx2;
const CopyKernels& copy_kernels();

namespace {  // internal linkage: each instruction set keeps its own instances

template <class T, int C>
void copy_channel(const T* __restrict src, T* __restrict dst, int n, int coi) {
    src += coi;
    for (int i = 0; i < n; ++i) dst[i] = src[C * i];
}

template <class T, int C>
void copy_split(const T* __restrict src, T* const* planes, int n) {
    T* __restrict d0 = planes[0];
    T* __restrict d1 = planes[1];
    T* __restrict d2 = planes[2];
    T* __restrict d3 = planes[C - 1];
    for (int i = 0; i < n; ++i) {
        d0[i] = src[C * i];
        d1[i] = src[C * i + 1];
        d2[i] = src[C * i + 2];
        if (C == 4) d3[i] = src[C * i + 3];
    }
}

template <class T, int C>
void copy_merge(const T* const* planes, T* __restrict dst, int n) {
    const T* __restrict s0 = planes[0];
    const T* __restrict s1 = planes[1];
    const T* __restrict s2 = planes[2];
    const T* __restrict s3 = planes[C - 1];
    for (int i = 0; i < n; ++i) {
        dst[C * i] = s0[i];
        dst[C * i + 1] = s1[i];
        dst[C * i + 2] = s2[i];
        if (C == 4) dst[C * i + 3] = s3[i];
    }
}

constexpr CopyKernels make_copy_kernels() {
    return {copy_channel<uint8_t, 3>, copy_channel<uint8_t, 4>, copy_channel<float, 3>, copy_channel<float, 4>,
            copy_split<uint8_t, 3>,   copy_split<uint8_t, 4>,   copy_split<float, 3>,   copy_split<float, 4>,
            copy_merge<uint8_t, 3>,   copy_merge<uint8_t, 4>,   copy_merge<float, 3>,   copy_merge<float, 4>};
}

}  // namespace
}  // namespace a6
}  // namespace orucv
