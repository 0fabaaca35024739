#include "a6/copy.h"

#include <cstddef>
#include <utility>

#include "core/cpu.h"
#include "core/rows.h"

namespace orucv {
namespace a6 {

const CopyKernels copy_kernels_scalar = copy_table();

const CopyKernels& copy_kernels() { return ORUCV_CHOOSE(copy_kernels); }

namespace {

// The row of plane c, as the driver hands it over.
template <class T, size_t c>
using PlaneRow = T*;

template <class T, int C, size_t... c>
void split(CopySplitRow<T> row, Plane<const T> src, T* const (&planes)[C], int planeStep, OruSize roi,
           std::index_sequence<c...>) {
    auto rows = [&](const T* s, PlaneRow<T, c>... d, int n) {
        T* const out[C] = {d...};
        row(s, out, n);
    };
    for_each_row_joined(roi, rows, src, plane(planes[c], planeStep)...);
}

template <class T, int C, size_t... c>
void merge(CopyMergeRow<T> row, const T* const (&planes)[C], int planeStep, Plane<T> dst, OruSize roi,
           std::index_sequence<c...>) {
    auto rows = [&](PlaneRow<const T, c>... s, T* d, int n) {
        const T* const in[C] = {s...};
        row(in, d, n);
    };
    for_each_row_joined(roi, rows, plane(planes[c], planeStep)..., dst);
}

}  // namespace

template <class T, int C>
void copy_channel(CopyChannelRow<T> row, const T* src, int srcStep, T* dst, int dstStep, OruSize roi, int coi) {
    for_each_row_joined(
        roi, [&](const T* s, T* d, int n) { row(s, d, n, coi); }, plane(src, srcStep, C), plane(dst, dstStep));
}

template <class T, int C>
void copy_split(CopySplitRow<T> row, const T* src, int srcStep, T* const (&planes)[C], int planeStep, OruSize roi) {
    split(row, plane(src, srcStep, C), planes, planeStep, roi, std::make_index_sequence<C>());
}

template <class T, int C>
void copy_merge(CopyMergeRow<T> row, const T* const (&planes)[C], int planeStep, T* dst, int dstStep, OruSize roi) {
    merge(row, planes, planeStep, plane(dst, dstStep, C), roi, std::make_index_sequence<C>());
}

// The engines of the listed copies.
#define ORUCV_COPY_ENGINE_Channel(T, C) \
    template void copy_channel<T, C>(CopyChannelRow<T>, const T*, int, T*, int, OruSize, int);
#define ORUCV_COPY_ENGINE_Split(T, C) \
    template void copy_split<T, C>(CopySplitRow<T>, const T*, int, T* const (&)[C], int, OruSize);
#define ORUCV_COPY_ENGINE_Merge(T, C) \
    template void copy_merge<T, C>(CopyMergeRow<T>, const T* const (&)[C], int, T*, int, OruSize);
#define ORUCV_COPY_ENGINE(name, shape, T, C) ORUCV_COPY_ENGINE_##shape(T, C)
ORUCV_COPY_FUNCTIONS(ORUCV_COPY_ENGINE)

}  // namespace a6
}  // namespace orucv
