#include "a6/sobel3x3.h"

#include <cfloat>

#include "core/cpu.h"
#include "core/rows.h"

namespace orucv {
namespace a6 {

const Sobel3x3Kernels sobel3x3_kernels_scalar = {
    scalar::row_int<KernelDx, uint8_t>,       scalar::row_int<KernelDy, uint8_t>,
    scalar::row_int<KernelD2x, uint8_t>,      scalar::row_int<KernelD2y, uint8_t>,
    scalar::row_int<KernelDxDy, uint8_t>,     scalar::row_int<KernelScharrDx, uint8_t>,
    scalar::row_int<KernelScharrDy, uint8_t>, scalar::row_int<KernelDx, int8_t>,
    scalar::row_int<KernelDy, int8_t>,        scalar::row_int<KernelD2x, int8_t>,
    scalar::row_int<KernelD2y, int8_t>,       scalar::row_int<KernelDxDy, int8_t>,
    scalar::row_int<KernelScharrDx, int8_t>,  scalar::row_int<KernelScharrDy, int8_t>,
    scalar::row_int_pair<KernelDx, uint8_t>,  scalar::row_int_pair<KernelD2x, uint8_t>,
    scalar::row_int_pair<KernelD2y, uint8_t>, scalar::row_int_pair<KernelScharrDx, uint8_t>,
    scalar::row_int_pair<KernelDx, int8_t>,   scalar::row_int_pair<KernelD2x, int8_t>,
    scalar::row_int_pair<KernelD2y, int8_t>,  scalar::row_int_pair<KernelScharrDx, int8_t>,
    scalar::dx3_32f,                          scalar::dx3x2_32f,
    scalar::dx2_32f,
    scalar::dy_32f,                           scalar::dy4_32f,
};

const Sobel3x3Kernels& sobel3x3_kernels() { return ORUCV_CHOOSE(sobel3x3_kernels); }

namespace {

// True when destination rows `step` bytes apart do not overlap. Kernels that
// write several rows at once interleave their stores, so they run only on
// such rows; on overlapping rows every path writes row after row and the
// later rows win alike.
bool rows_apart(int step, int width, int element_bytes) {
    return step >= static_cast<long long>(width) * element_bytes;
}

// Runs an integer row kernel over the image with replicated first and last
// rows: the row pointers repeat, nothing is copied. Kernels with a pair form
// (no origin) do their interior rows two at a time.
template <class S, class Row, class Pair>
void int_image(Row row, Pair pair, const S* src, int srcStep, int16_t* dst, int dstStep, int width, int height,
               bool flip, int shift) {
    const int count = clamp_shift(shift);
    auto one_row = [&](int y) {
        const S* up = row_at(src, srcStep, y > 0 ? y - 1 : 0);
        const S* mid = row_at(src, srcStep, y);
        const S* down = row_at(src, srcStep, y < height - 1 ? y + 1 : height - 1);
        if (flip) {
            const S* t = up;
            up = down;
            down = t;
        }
        row(up, mid, down, row_at(dst, dstStep, y), width, count);
    };
    int y = 0;
    if (pair) {
        one_row(0);
        for (y = 1; y < height - 2; y += 2)
            pair(row_at(src, srcStep, y - 1), row_at(src, srcStep, y), row_at(src, srcStep, y + 1),
                 row_at(src, srcStep, y + 2), row_at(dst, dstStep, y), row_at(dst, dstStep, y + 1), width, count);
    }
    for (; y < height; ++y) one_row(y);
}

}  // namespace

void a6_orcvFilter3x3_8u16s_C1R(IntFilter filter, const uint8_t* src, int srcStep, int16_t* dst, int dstStep,
                                int width, int height, bool flip, int shift) {
    const Sobel3x3Kernels& k = sobel3x3_kernels();
    const Row8u rows[7] = {k.dx_8u, k.dy_8u, k.d2x_8u, k.d2y_8u, k.dxdy_8u, k.scharr_dx_8u, k.scharr_dy_8u};
    const Pair8u pairs[7] = {k.pair_dx_8u, nullptr, k.pair_d2x_8u, k.pair_d2y_8u, nullptr, k.pair_scharr_dx_8u,
                             nullptr};
    const int i = static_cast<int>(filter);
    const bool pair = !flip && rows_apart(dstStep, width, 2);
    int_image(rows[i], pair ? pairs[i] : nullptr, src, srcStep, dst, dstStep, width, height, flip, shift);
}

void a6_orcvFilter3x3_8s16s_C1R(IntFilter filter, const int8_t* src, int srcStep, int16_t* dst, int dstStep,
                                int width, int height, bool flip, int shift) {
    const Sobel3x3Kernels& k = sobel3x3_kernels();
    const Row8s rows[7] = {k.dx_8s, k.dy_8s, k.d2x_8s, k.d2y_8s, k.dxdy_8s, k.scharr_dx_8s, k.scharr_dy_8s};
    const Pair8s pairs[7] = {k.pair_dx_8s, nullptr, k.pair_d2x_8s, k.pair_d2y_8s, nullptr, k.pair_scharr_dx_8s,
                             nullptr};
    const int i = static_cast<int>(filter);
    const bool pair = !flip && rows_apart(dstStep, width, 2);
    int_image(rows[i], pair ? pairs[i] : nullptr, src, srcStep, dst, dstStep, width, height, flip, shift);
}

// Interior rows weigh the differences of three rows; the first and last rows
// weigh two, with the replicated row's weights collapsed into one.
void a6_orcvDx3x3_32f_C1R(const float* src, int srcStep, float* dst, int dstStep, int width, int height,
                          const Weights32f& w) {
    const Sobel3x3Kernels& k = sobel3x3_kernels();
    k.dx2_32f(src, row_at(src, srcStep, 1), dst, width, w.big, w.small);
    // Interior rows in pairs: each source row's differences serve both.
    int y = 1;
    for (; y < height - 2 && rows_apart(dstStep, width, 4); y += 2)
        k.dx3x2_32f(row_at(src, srcStep, y - 1), row_at(src, srcStep, y), row_at(src, srcStep, y + 1),
                    row_at(src, srcStep, y + 2), row_at(dst, dstStep, y), row_at(dst, dstStep, y + 1), width, w);
    for (; y < height - 1; ++y)
        k.dx3_32f(row_at(src, srcStep, y - 1), row_at(src, srcStep, y), row_at(src, srcStep, y + 1),
                  row_at(dst, dstStep, y), width, w);
    k.dx2_32f(row_at(src, srcStep, height - 2), row_at(src, srcStep, height - 1), row_at(dst, dstStep, height - 1),
              width, w.small, w.big);
}

void a6_orcvDy3x3_32f_C1R(const float* src, int srcStep, float* dst, int dstStep, int width, int height, bool flip,
                          const Weights32f& w) {
    const Sobel3x3Kernels& k = sobel3x3_kernels();
    auto one_row = [&](int y) {
        const float* up = row_at(src, srcStep, y > 0 ? y - 1 : 0);
        const float* down = row_at(src, srcStep, y < height - 1 ? y + 1 : height - 1);
        if (flip) k.dy_32f(down, up, row_at(dst, dstStep, y), width, w);
        else k.dy_32f(up, down, row_at(dst, dstStep, y), width, w);
    };
    // Interior rows four at a time: six smoothed source rows serve them.
    one_row(0);
    int y = 1;
    for (; y <= height - 5 && rows_apart(dstStep, width, 4); y += 4)
        k.dy4_32f(row_at(src, srcStep, y - 1), srcStep, row_at(dst, dstStep, y), dstStep, width, flip, w);
    for (; y < height; ++y) one_row(y);
}

Weights32f sobel_weights_32f() { return Weights32f{1.0f, 2.0f, 1.0f, 3.0f, 1.0f}; }

Weights32f scharr_weights_32f(int shift) {
    float scale = 1.0f;
    // Once infinite, further doublings change nothing.
    for (int i = 0; i < shift && scale <= FLT_MAX; ++i) scale += scale;
    const float k = 1.0f / scale;
    return Weights32f{3.0f * k, 10.0f * k, 3.0f * k, 13.0f * k, 3.0f * k};
}

}  // namespace a6
}  // namespace orucv
