// Row addressing and the row driver shared by the families. An image of a
// call is the first pixel of its region plus a row step in bytes; the
// driver walks the rows of several such images at once.
#pragma once

#include <climits>
#include <cstddef>
#include <initializer_list>
#include <type_traits>

#include "orucv.h"

namespace orucv {

// One image of a call. `channels` interleaved samples of type T make a pixel.
// Plain data: the functions below have internal linkage, members would not.
template <class T>
struct Plane {
    T* data;
    int step;
    int channels;
};

// A step to recast, with the bytes of one pixel of its image.
struct StepRef {
    int& step;
    int pixel_bytes;
};

// Internal linkage: instruction-set files include this too, and each keeps
// its own copy (an out-of-line copy compiled for AVX2 must never be the one
// the scalar path calls).
namespace {

// Row y of an image whose rows are `step` bytes apart.
template <class T>
inline T* row_at(T* base, int step, int y) {
    using Byte = typename std::conditional<std::is_const<T>::value, const char, char>::type;
    return reinterpret_cast<T*>(reinterpret_cast<Byte*>(base) + static_cast<ptrdiff_t>(step) * y);
}

template <class T>
inline Plane<T> plane(T* data, int step, int channels = 1) {
    return Plane<T>{data, step, channels};
}

template <class T>
inline T* row_of(const Plane<T>& p, int y) {
    return row_at(p.data, p.step, y);
}

// Whether rows of `width` pixels lie back to back.
template <class T>
inline bool rows_tight(const Plane<T>& p, int width) {
    return static_cast<long long>(p.step) == static_cast<long long>(width) * p.channels * static_cast<long long>(sizeof(T));
}

// Calls row(row of each plane..., width) for every row, top to bottom.
template <class Row, class... T>
inline void for_each_row(OruSize roi, Row&& row, Plane<T>... planes) {
    for (int y = 0; y < roi.height; ++y) row(row_of(planes, y)..., roi.width);
}

// Whether the region can be walked as one row of width * height pixels: it
// is one row, or every image's rows lie back to back, and the pixel count
// fits an int.
template <class... T>
inline bool rows_join(OruSize roi, Plane<T>... planes) {
    if (roi.width <= 0 || roi.height <= 0) return false;
    if (static_cast<long long>(roi.width) * roi.height > INT_MAX) return false;
    if (roi.height == 1) return true;
    bool tight = true;
    for (bool t : {rows_tight(planes, roi.width)...}) tight = tight && t;
    return tight;
}

// for_each_row, with contiguous rows recast into one long row, so that the
// kernels run their widest loop without per-row overhead.
template <class Row, class... T>
inline void for_each_row_joined(OruSize roi, Row&& row, Plane<T>... planes) {
    if (rows_join(roi, planes...)) {
        row(planes.data..., roi.width * roi.height);
        return;
    }
    for_each_row(roi, row, planes...);
}

// The recasting of for_each_row_joined for wrappers whose kernel takes steps
// (and walks the rows itself): a one-row region, or one whose images' rows
// all lie back to back, becomes one row of width * height pixels with all
// steps 0. Regions whose pixel count does not fit an int stay as they are.
inline void recast_contiguous_rows(OruSize& roi, std::initializer_list<StepRef> steps) {
    if (roi.width <= 0 || roi.height <= 0) return;
    if (static_cast<long long>(roi.width) * roi.height > INT_MAX) return;
    bool contiguous = true;
    for (const StepRef& s : steps)
        if (static_cast<long long>(s.step) != static_cast<long long>(roi.width) * s.pixel_bytes) contiguous = false;
    if (roi.height != 1 && !contiguous) return;
    roi.width *= roi.height;
    roi.height = 1;
    for (const StepRef& s : steps) s.step = 0;
}

}  // namespace
}  // namespace orucv
