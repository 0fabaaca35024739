// Channel copies between interleaved and planar layouts: one row kernel per
// copy of frame_list.h, each an instance of one template per direction over
// pixel type and channel count, and the engines that drive them over an
// image. The loops are plain so that each translation unit's instruction
// set vectorises them; every variant moves the same values, so all paths
// agree byte for byte.
#pragma once

#include <cstdint>

#include "frame_list.h"
#include "orucv.h"

namespace orucv {
namespace a6 {

// Row kernels by shape, for rows of n pixels.
template <class T>
using CopyChannelRow = void (*)(const T* src, T* dst, int n, int coi);
template <class T>
using CopySplitRow = void (*)(const T* src, T* const* planes, int n);
template <class T>
using CopyMergeRow = void (*)(const T* const* planes, T* dst, int n);

// One row kernel per copy, named after it.
struct CopyKernels {
#define ORUCV_COPY_MEMBER(name, shape, T, C) Copy##shape##Row<T> name;
    ORUCV_COPY_FUNCTIONS(ORUCV_COPY_MEMBER)
#undef ORUCV_COPY_MEMBER
};

extern const CopyKernels copy_kernels_scalar;
extern const CopyKernels copy_kernels_sse2;
extern const CopyKernels copy_kernels_avx2;
const CopyKernels& copy_kernels();

// The engines, for pixels of C channels: every row of the region, rows that
// lie back to back as one. Arguments are trusted.
template <class T, int C>
void copy_channel(CopyChannelRow<T> row, const T* src, int srcStep, T* dst, int dstStep, OruSize roi, int coi);
template <class T, int C>
void copy_split(CopySplitRow<T> row, const T* src, int srcStep, T* const (&planes)[C], int planeStep, OruSize roi);
template <class T, int C>
void copy_merge(CopyMergeRow<T> row, const T* const (&planes)[C], int planeStep, T* dst, int dstStep, OruSize roi);

namespace {  // internal linkage: each instruction set keeps its own instances

template <class T, int C>
struct CopyRows {
    static void Channel(const T* __restrict src, T* __restrict dst, int n, int coi) {
        src += coi;
        for (int i = 0; i < n; ++i) dst[i] = src[C * i];
    }

    static void Split(const T* __restrict src, T* const* planes, int n) {
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

    static void Merge(const T* const* planes, T* __restrict dst, int n) {
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
};

// The table of this translation unit's instruction set, set by name.
constexpr CopyKernels copy_table() {
    CopyKernels k{};
#define ORUCV_COPY_ENTRY(name, shape, T, C) k.name = CopyRows<T, C>::shape;
    ORUCV_COPY_FUNCTIONS(ORUCV_COPY_ENTRY)
#undef ORUCV_COPY_ENTRY
    return k;
}

}  // namespace
}  // namespace a6
}  // namespace orucv
