// The distance transform's engine: mask weights, fixed-point weights, the
// forward and backward passes over the destination rows, and the scalar
// table.
#include "a6/distransform.h"

#include <cstring>

#include "core/assert.h"
#include "core/cpu.h"
#include "core/rows.h"

namespace orucv {
namespace a6 {

namespace {
constexpr DistanceKernels scalar_table() {
    DistanceKernels k{};
    k.init_row = scalar::init_row;
    k.to_float_row = scalar::to_float_row;
    k.near3_row = scalar::near3_row;
    k.near5_row = scalar::near5_row;
    k.scan_right = scalar::scan_right;
    k.scan_left = scalar::scan_left;
    return k;
}
}  // namespace

const DistanceKernels distance_kernels_scalar = scalar_table();

const DistanceKernels& distance_kernels() { return ORUCV_CHOOSE(distance_kernels); }

namespace {

using scalar::add_wrap;
using scalar::min2;

// The passes walk one row pointer down the destination and back up again.
inline dist_t* step_rows(dist_t* row, int step, int rows) { return row_at(row, step, rows); }

// A weight in units of 2^-18, rounded to nearest with ties to even: adding
// 1.5 * 2^52 pushes the fraction out of the double, whose low 32 bits then
// hold the rounded value (in two's complement for negative weights).
int32_t fixed_point(float weight) {
    const double shifted = static_cast<double>(weight) * 262144.0 + 6755399441055744.0;
    uint64_t bits;
    std::memcpy(&bits, &shifted, sizeof bits);
    return static_cast<int32_t>(static_cast<uint32_t>(bits));
}

// Width 1: the column is a row of its own with the step as the distance
// between pixels, so the column path needs no kernel calls.
dist_t* column_3x3(const uint8_t* src, int srcStep, dist_t* row, int dstStep, int height, int32_t a) {
    int32_t prev = src[0] ? kFarDistance : 0;
    row[0] = prev;
    for (int y = 1; y < height; ++y) {
        src += srcStep;
        row = step_rows(row, dstStep, 1);
        prev = min2(src[0] ? kFarDistance : 0, add_wrap(prev, a));
        row[0] = prev;
    }
    for (int y = height - 2; y >= 0; --y) {
        dist_t* below = row;
        row = step_rows(row, dstStep, -1);
        prev = min2(row[0], add_wrap(prev, a));
        row[0] = prev;
        reinterpret_cast<distf_t*>(below)[0] = static_cast<float>(below[0]) * kDistanceUnit;
    }
    return row;
}

// Smallest of n >= 1 candidates.
inline int32_t min_of(const int32_t* v, int n) {
    int32_t m = v[0];
    for (int i = 1; i < n; ++i) m = min2(m, v[i]);
    return m;
}

// One pass of the candidate-list path. dir = +1 is the forward pass (rows
// down, columns right, neighbours above and to the left), -1 the backward
// pass. `row` is the first row of the pass; returns its last row.
dist_t* general_pass(dist_t* row, int dstStep, int width, int height, int dir, int32_t a, int32_t b, int32_t c) {
    const int32_t a2 = add_wrap(a, a), b2 = add_wrap(b, b);
    const int back = -dir;  // towards the pixels already final in this pass
    int32_t cand[13];
    for (int y = 0; y < height; ++y) {
        if (y > 0) row = step_rows(row, dstStep, dir);
        dist_t* near1 = y >= 1 ? step_rows(row, dstStep, back) : nullptr;
        const dist_t* near2 = y >= 2 ? step_rows(near1, dstStep, back) : nullptr;
        for (int i = 0; i < width; ++i) {
            const int x = dir > 0 ? i : width - 1 - i;
            int n = 0;
            cand[n++] = row[x];
            // Offsets towards the pass's start: dx = back, 2 * back in the row.
            auto inside = [&](int dx) { return x + dx >= 0 && x + dx < width; };
            if (inside(back)) cand[n++] = add_wrap(row[x + back], a);
            if (inside(2 * back)) cand[n++] = add_wrap(row[x + 2 * back], a2);
            if (near1) {
                cand[n++] = add_wrap(near1[x], a);
                if (inside(-1)) cand[n++] = add_wrap(near1[x - 1], b);
                if (inside(1)) cand[n++] = add_wrap(near1[x + 1], b);
                if (inside(-2)) cand[n++] = add_wrap(near1[x - 2], c);
                if (inside(2)) cand[n++] = add_wrap(near1[x + 2], c);
            }
            if (near2) {
                cand[n++] = add_wrap(near2[x], a2);
                if (inside(-1)) cand[n++] = add_wrap(near2[x - 1], c);
                if (inside(1)) cand[n++] = add_wrap(near2[x + 1], c);
                if (inside(2 * back)) cand[n++] = add_wrap(near2[x + 2 * back], b2);
            }
            row[x] = min_of(cand, n);
        }
    }
    return row;
}

}  // namespace

void distance_mask(int maskType, float* metrics) {
    switch (maskType) {
    case 30:  // 3x3 chessboard
        metrics[0] = 1.0f;
        metrics[1] = 1.0f;
        break;
    case 31:  // 3x3 city block
        metrics[0] = 1.0f;
        metrics[1] = 2.0f;
        break;
    case 32:  // 3x3 Euclidean: 0x3F747AE1, 0x3FAF4539
        metrics[0] = 0.955f;
        metrics[1] = 1.3693f;
        break;
    default:  // 52, 5x5 Euclidean: 0x3F800000, 0x3FB33333, 0x400C9A02
        metrics[0] = 1.0f;
        metrics[1] = 1.4f;
        metrics[2] = 2.1969f;
    }
}

void distance_transform(int side, const uint8_t* src, int srcStep, float* dst, int dstStep, OruSize roi,
                        const float* metrics) {
    if (side == 3)
        a6_orcvDistanceTransform_3x3_8u32f_C1R(src, srcStep, dst, dstStep, roi.width, roi.height,
                                               fixed_point(metrics[0]), fixed_point(metrics[1]));
    else
        a6_orcvDistanceTransform_5x5_8u32f_C1R(src, srcStep, dst, dstStep, roi.width, roi.height,
                                               fixed_point(metrics[0]), fixed_point(metrics[1]),
                                               fixed_point(metrics[2]));
}

void distance_finish(const dist_t* idist, float* pDst, int dstStep, int width, int rows) {
    // The message names the source and line of the original routine.
    ORUCV_ASSERT_AT(idist == (int*)pDst, "src/orcvdistransform", 588, __func__);
    for_each_row({width, rows}, distance_kernels().to_float_row, plane(reinterpret_cast<dist_t*>(pDst), dstStep));
}

void a6_orcvDistanceTransform_3x3_8u32f_C1R(const uint8_t* pSrc, int srcStep, float* pDst, int dstStep, int width,
                                            int height, int32_t a, int32_t b) {
    dist_t* row = reinterpret_cast<dist_t*>(pDst);
    if (width == 1) {
        row = column_3x3(pSrc, srcStep, row, dstStep, height, a);
        distance_finish(row, pDst, dstStep, width, 1);
        return;
    }
    const DistanceKernels& k = distance_kernels();
    // Forward: each row is initialised, takes the row above, then runs right.
    k.init_row(pSrc, row, width);
    k.scan_right(row, width, a);
    for (int y = 1; y < height; ++y) {
        const dist_t* above = row;
        row = step_rows(row, dstStep, 1);
        k.init_row(row_at(pSrc, srcStep, y), row, width);
        k.near3_row(row, above, width, a, b);
        k.scan_right(row, width, a);
    }
    // Backward: the mirror image. A row is final once the row above it has
    // taken its candidates, and is converted then, while still in cache.
    k.scan_left(row, width, a);
    for (int y = height - 2; y >= 0; --y) {
        dist_t* below = row;
        row = step_rows(row, dstStep, -1);
        k.near3_row(row, below, width, a, b);
        k.scan_left(row, width, a);
        k.to_float_row(below, width);
    }
    distance_finish(row, pDst, dstStep, width, 1);
}

void distance_5x5_general(const uint8_t* pSrc, int srcStep, float* pDst, int dstStep, int width, int height,
                          int32_t a, int32_t b, int32_t c) {
    dist_t* row = reinterpret_cast<dist_t*>(pDst);
    for_each_row({width, height}, distance_kernels().init_row, plane(pSrc, srcStep), plane(row, dstStep));
    row = general_pass(row, dstStep, width, height, 1, a, b, c);
    row = general_pass(row, dstStep, width, height, -1, a, b, c);
    distance_finish(row, pDst, dstStep, width, height);
}

void a6_orcvDistanceTransform_5x5_8u32f_C1R(const uint8_t* pSrc, int srcStep, float* pDst, int dstStep, int width,
                                            int height, int32_t a, int32_t b, int32_t c) {
    if (width < 4 || height < 4) {
        distance_5x5_general(pSrc, srcStep, pDst, dstStep, width, height, a, b, c);
        return;
    }
    const DistanceKernels& k = distance_kernels();
    dist_t* row = reinterpret_cast<dist_t*>(pDst);
    // Forward: rows 0 and 1 lack the rows two above; the rest have both.
    k.init_row(pSrc, row, width);
    k.scan_right(row, width, a);
    const dist_t* above2 = nullptr;
    for (int y = 1; y < height; ++y) {
        const dist_t* above1 = row;
        row = step_rows(row, dstStep, 1);
        k.init_row(row_at(pSrc, srcStep, y), row, width);
        k.near5_row(row, above1, above2, width, a, b, c);
        k.scan_right(row, width, a);
        above2 = above1;
    }
    // Backward: a row is final once the row two above it has taken its
    // candidates; the top two rows are converted at the end.
    k.scan_left(row, width, a);
    const dist_t* below2 = nullptr;
    for (int y = height - 2; y >= 0; --y) {
        dist_t* below1 = row;
        row = step_rows(row, dstStep, -1);
        k.near5_row(row, below1, below2, width, a, b, c);
        k.scan_left(row, width, a);
        if (below2) k.to_float_row(const_cast<dist_t*>(below2), width);
        below2 = below1;
    }
    distance_finish(row, pDst, dstStep, width, 2);
}

}  // namespace a6
}  // namespace orucv
