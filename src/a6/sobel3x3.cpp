#include "a6/sobel3x3.h"

#include <cfloat>

#include "core/cpu.h"
#include "core/rows.h"

namespace orucv {
namespace a6 {

namespace {
struct ScalarRows {
    template <class K, class S>
    static void row(const S* up, const S* mid, const S* down, int16_t* dst, int width, int count) {
        scalar::row_int<K>(up, mid, down, dst, width, count);
    }
    template <class K, class S>
    static void pair(const S* r0, const S* r1, const S* r2, const S* r3, int16_t* d0, int16_t* d1, int width,
                     int count) {
        scalar::row_int_pair<K>(r0, r1, r2, r3, d0, d1, width, count);
    }
    static constexpr RowDx3_32f dx3_32f = scalar::dx3_32f;
    static constexpr RowDx3x2_32f dx3x2_32f = scalar::dx3x2_32f;
    static constexpr RowDx2_32f dx2_32f = scalar::dx2_32f;
    static constexpr RowDy32f dy_32f = scalar::dy_32f;
    static constexpr RowDy4_32f dy4_32f = scalar::dy4_32f;
};
}  // namespace

const Sobel3x3Kernels sobel3x3_kernels_scalar = sobel3x3_table<ScalarRows>();

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

template <class S, class Row, class Pair>
void int_filter(const Row (&rows)[kFilter3x3Count], const Pair (&pairs)[kFilter3x3Count], Filter3x3 filter,
                const S* src, int srcStep, int16_t* dst, int dstStep, OruSize roi, bool flip, int shift) {
    const int i = static_cast<int>(filter);
    const bool pair = !flip && rows_apart(dstStep, roi.width, 2);
    int_image(rows[i], pair ? pairs[i] : nullptr, src, srcStep, dst, dstStep, roi.width, roi.height, flip, shift);
}

// Interior rows weigh the differences of three rows; the first and last rows
// weigh two, with the replicated row's weights collapsed into one.
void dx_32f(const float* src, int srcStep, float* dst, int dstStep, int width, int height, const Weights32f& w) {
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

void dy_32f(const float* src, int srcStep, float* dst, int dstStep, int width, int height, bool flip,
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

// Scharr weights for a shift count >= 0: k = 1 / 2^shift, 2^shift formed by
// repeated doubling of 1.0f (infinite from 128 on, so k becomes 0).
Weights32f scharr_weights_32f(int shift) {
    float scale = 1.0f;
    // Once infinite, further doublings change nothing.
    for (int i = 0; i < shift && scale <= FLT_MAX; ++i) scale += scale;
    const float k = 1.0f / scale;
    return Weights32f{3.0f * k, 10.0f * k, 3.0f * k, 13.0f * k, 3.0f * k};
}

}  // namespace

void filter_3x3(Filter3x3 filter, const uint8_t* src, int srcStep, int16_t* dst, int dstStep, OruSize roi,
                bool flip, int shift) {
    const Sobel3x3Kernels& k = sobel3x3_kernels();
    int_filter(k.row_8u, k.pair_8u, filter, src, srcStep, dst, dstStep, roi, flip, shift);
}

void filter_3x3(Filter3x3 filter, const int8_t* src, int srcStep, int16_t* dst, int dstStep, OruSize roi,
                bool flip, int shift) {
    const Sobel3x3Kernels& k = sobel3x3_kernels();
    int_filter(k.row_8s, k.pair_8s, filter, src, srcStep, dst, dstStep, roi, flip, shift);
}

void filter_3x3(Filter3x3 filter, const float* src, int srcStep, float* dst, int dstStep, OruSize roi, bool flip,
                int shift) {
    const bool scharr = filter == Filter3x3::ScharrDx || filter == Filter3x3::ScharrDy;
    const Weights32f w = scharr ? scharr_weights_32f(shift) : Weights32f{1.0f, 2.0f, 1.0f, 3.0f, 1.0f};
    if (filter == Filter3x3::Dx || filter == Filter3x3::ScharrDx)
        dx_32f(src, srcStep, dst, dstStep, roi.width, roi.height, w);
    else
        dy_32f(src, srcStep, dst, dstStep, roi.width, roi.height, flip, w);
}

}  // namespace a6
}  // namespace orucv
