#include "a6/distransform.h"

#include <cstddef>

#include "core/cpu.h"

// The C library's assertion handler, declared here because <assert.h> hides
// it under NDEBUG; the invariant below must hold in every build.
extern "C" void __assert_fail(const char* assertion, const char* file, unsigned int line, const char* function) noexcept
    __attribute__((__noreturn__));

namespace orucv {
namespace a6 {

const DistanceKernels distance_kernels_scalar = {scalar::init_row,  scalar::to_float_row, scalar::near3_row,
                                                 scalar::near5_row, scalar::scan_right,   scalar::scan_left};

const DistanceKernels& distance_kernels() { return ORUCV_CHOOSE(distance_kernels); }

namespace {

using scalar::add_wrap;
using scalar::min2;

// The passes walk one row pointer down the destination and back up again.
inline dist_t* step_rows(dist_t* row, int step, int rows) {
    return reinterpret_cast<dist_t*>(reinterpret_cast<char*>(row) + static_cast<ptrdiff_t>(step) * rows);
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

void distance_finish(const dist_t* idist, float* pDst, int dstStep, int width, int rows) {
    // The source name and line are part of the message users may meet.
    if (!(idist == reinterpret_cast<const dist_t*>(pDst)))
        __assert_fail("idist == (int*)pDst", "src/orcvdistransform", 588, __func__);
    const DistanceKernels& k = distance_kernels();
    dist_t* row = reinterpret_cast<dist_t*>(pDst);
    for (int y = 0; y < rows; ++y, row = step_rows(row, dstStep, 1)) k.to_float_row(row, width);
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
        k.init_row(pSrc + static_cast<ptrdiff_t>(srcStep) * y, row, width);
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
    const DistanceKernels& k = distance_kernels();
    dist_t* row = reinterpret_cast<dist_t*>(pDst);
    for (int y = 0; y < height; ++y)
        k.init_row(pSrc + static_cast<ptrdiff_t>(srcStep) * y, step_rows(row, dstStep, y), width);
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
        k.init_row(pSrc + static_cast<ptrdiff_t>(srcStep) * y, row, width);
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
