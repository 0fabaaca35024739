// Line sampling: the state of a digital line, its set-up, the kernels that
// walk a line and copy its pixels, and their scalar twins.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "orucv.h"
#include "samplers_list.h"

namespace orucv {
namespace a6 {

// A digital line ready to walk. The error term starts at the major extent
// and stays in [0, 2 * major): a step that would take it below 0 adds
// 2 * major back and takes the minor step as well. Unsigned 32 bits hold
// 2 * major for every extent an int allows, and the steps are pointer-wide,
// so no coordinate or step an int allows overflows an address.
struct LineState {
    const uint8_t* at;  // the first pixel, pt1
    uint32_t error;
    uint32_t two_major;
    uint32_t two_minor;
    ptrdiff_t minor_step;  // bytes, taken when the error would go negative
    ptrdiff_t major_step;  // bytes, taken at every step
};

// Sets up the line from p1 to p2 in an image of bt_pix-byte pixels and
// returns its number of points, max(|dx|, |dy|) + 1, or 0 when the line
// cannot be set up: step below bt_pix * width, or a point outside the
// region. The y axis is major when |dx| <= |dy|.
int init_line(const void* src, int step, OruSize roi, OruPoint p1, OruPoint p2, int bt_pix, LineState* line);

// One kernel per function of samplers_list.h, at the index of its name.
enum class SampleLineFn {
#define ORUCV_SAMPLERS_ENUM(name, shape, T, C) name,
    ORUCV_SAMPLERS_FUNCTIONS(ORUCV_SAMPLERS_ENUM)
#undef ORUCV_SAMPLERS_ENUM
    count
};

// Copies the n points of the line to dst (pixels of the function's type).
using LineKernel = void (*)(const LineState& line, void* dst, int n);

struct SamplerKernels {
    LineKernel line[static_cast<int>(SampleLineFn::count)];
};

extern const SamplerKernels sampler_kernels_scalar;
extern const SamplerKernels sampler_kernels_sse2;
extern const SamplerKernels sampler_kernels_avx2;
const SamplerKernels& sampler_kernels();

// Engine: sets the line up and runs the function's kernel; oruStsBadLine when
// the line cannot be set up. The other arguments are trusted.
OruStatus sample_line(SampleLineFn fn, const void* src, int step, OruSize roi, void* dst, OruPoint p1, OruPoint p2,
                      int bt_pix);

namespace scalar {

// The pixel at `from` to `to`, bit for bit (float NaN payloads included).
template <class T, int C>
static inline void copy_pixel(const uint8_t* from, T* to) {
    for (int c = 0; c < C; ++c) {
        typename std::conditional<sizeof(T) == 4, uint32_t, uint8_t>::type v;
        std::memcpy(&v, from + c * sizeof(T), sizeof v);
        std::memcpy(to + c, &v, sizeof v);
    }
}

// One step along the line: the minor step when the error would go negative,
// then the major step.
static inline void line_step(const LineState& line, const uint8_t*& at, uint32_t& error) {
    if (error < line.two_minor) {
        error += line.two_major - line.two_minor;
        at += line.minor_step;
    } else {
        error -= line.two_minor;
    }
    at += line.major_step;
}

// Copies pixel after pixel; the walk stops on the last point, so it never
// forms an address beyond the segment.
template <class T, int C>
static inline void sample_line(const LineState& line, void* dst, int n) {
    T* out = static_cast<T*>(dst);
    const uint8_t* at = line.at;
    uint32_t error = line.error;
    for (int k = 1;; ++k, out += C) {
        copy_pixel<T, C>(at, out);
        if (k == n) break;
        line_step(line, at, error);
    }
}

}  // namespace scalar
}  // namespace a6
}  // namespace orucv
