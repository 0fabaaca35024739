// Row addressing and the recasting of contiguous rows into one.
#pragma once

#include <climits>
#include <cstddef>
#include <initializer_list>
#include <type_traits>

#include "orucv.h"

namespace orucv {

// Row y of an image whose rows are `step` bytes apart.
template <class T>
inline T* row_at(T* base, int step, int y) {
    using Byte = typename std::conditional<std::is_const<T>::value, const char, char>::type;
    return reinterpret_cast<T*>(reinterpret_cast<Byte*>(base) + static_cast<ptrdiff_t>(step) * y);
}

// A step to recast, with the bytes of one pixel of its image.
struct StepRef {
    int& step;
    int pixel_bytes;
};

// When the region is one row, or every image's rows lie back to back, the
// region becomes one row of width * height pixels with all steps 0, so the
// kernels run their widest loop without per-row overhead. Regions whose
// pixel count does not fit an int stay as they are.
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

}  // namespace orucv
