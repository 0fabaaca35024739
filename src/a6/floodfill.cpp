// The flood fills' engines and the scalar table of span fills.
#include "a6/floodfill.h"

#include "a6/floodfill_spans.h"
#include "core/cpu.h"
#include "core/rows.h"

namespace orucv {
namespace a6 {

const FloodFillKernels floodfill_kernels_scalar = span_fills<ScalarOps>();

const FloodFillKernels& floodfill_kernels() { return ORUCV_CHOOSE(floodfill_kernels); }

namespace {

// Whether the seed pixel already holds the fill value, so that there is
// nothing to fill: floats compare by value, and a NaN fill value counts as
// held by every seed (a NaN seed is unordered with it too).
inline bool holds_fill(uint8_t seed, uint8_t fill) { return seed == fill; }
inline bool holds_fill(float seed, float fill) { return seed == fill || fill != fill; }

// The public record of the filled component.
OruConnectedComp record(const FillResult& r, double value) {
    return OruConnectedComp{static_cast<double>(r.area), value,
                            OruRect{r.min_x, r.min_y, r.max_x - r.min_x + 1, r.max_y - r.min_y + 1}};
}

}  // namespace

uint32_t flood_fill_bytes(OruSize roi) { return stack_bytes(roi.width, roi.height); }
uint32_t gradient_fill_bytes(OruSize roi) { return grad_bytes(roi.width, roi.height); }

template <class T, class V>
OruStatus flood_fill(Connectivity c, T* image, int step, OruSize roi, OruPoint seed, V new_value,
                     OruConnectedComp* region, uint8_t* buffer) {
    const T fill = static_cast<T>(new_value);
    if (holds_fill(row_at(image, step, seed.y)[seed.x], fill)) return oruStsOk;
    // Only a region whose size wrapped around 32 bits can leave the buffer
    // short of the one bit per pixel that the fill may need once its
    // segment stack is full.
    const uint32_t bytes = stack_bytes(roi.width, roi.height);
    if (bytes < bitmap_bytes(roi.width, roi.height)) return oruStsError;
    FillJob<T> job{image, step, roi.width, roi.height, seed.x, seed.y, fill, buffer, bytes, {}};
    const FloodFillKernels& k = floodfill_kernels();
    if constexpr (sizeof(T) == 4) k.fill_32f[c](job);
    else k.fill_8u[c](job);
    *region = record(job.result, static_cast<double>(new_value));
    return oruStsOk;
}

template <class T, class V>
OruStatus gradient_fill(Connectivity c, T* image, int step, OruSize roi, OruPoint seed, V new_value, V min_delta,
                        V max_delta, OruConnectedComp* region, uint8_t* buffer) {
    // The mask must fit the buffer; only a region whose size wrapped around
    // 32 bits can leave it short.
    const uint32_t bytes = grad_bytes(roi.width, roi.height);
    if (bytes < mask_bytes(roi.width, roi.height)) return oruStsError;
    GradJob<T, V> job{image,     step,      roi.width, roi.height, seed.x, seed.y, static_cast<T>(new_value),
                      min_delta, max_delta, buffer,    bytes,      {}};
    const FloodFillKernels& k = floodfill_kernels();
    if constexpr (sizeof(T) == 4) k.grad_32f[c](job);
    else k.grad_8u[c](job);
    *region = record(job.result, static_cast<double>(new_value));
    return oruStsOk;
}

template OruStatus flood_fill(Connectivity, uint8_t*, int, OruSize, OruPoint, int, OruConnectedComp*, uint8_t*);
template OruStatus flood_fill(Connectivity, float*, int, OruSize, OruPoint, float, OruConnectedComp*, uint8_t*);
template OruStatus gradient_fill(Connectivity, uint8_t*, int, OruSize, OruPoint, int, int, int, OruConnectedComp*,
                                 uint8_t*);
template OruStatus gradient_fill(Connectivity, float*, int, OruSize, OruPoint, float, float, float,
                                 OruConnectedComp*, uint8_t*);

}  // namespace a6
}  // namespace orucv
