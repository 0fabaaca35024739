#include "a6/canny.h"

#include <climits>

#include "core/bytes.h"
#include "core/cpu.h"
#include "core/rows.h"

namespace orucv {
namespace a6 {

namespace {
struct ScalarRows {
    static constexpr auto magnitude = scalar::magnitude;
    static constexpr auto suppress = scalar::suppress;
};
}  // namespace

const CannyKernels canny_kernels_scalar = canny_table<ScalarRows>();

const CannyKernels& canny_kernels() { return ORUCV_CHOOSE(canny_kernels); }

long long canny_buffer_size(int width, int height) {
    const long long cells = (width + 2LL) * (height + 2LL);
    return cells > INT_MAX / 12 ? -1 : 12 * cells;
}

namespace {

uintptr_t align4(uintptr_t p) { return (p + 3) & ~uintptr_t(3); }

}  // namespace

CannyScratch canny_scratch(uint8_t* buffer, long long buffer_bytes, int width, int height) {
    const uint64_t pitch = static_cast<uint64_t>(width) + 2;
    const uint64_t map_cells = pitch * (static_cast<uint64_t>(height) + 2);
    const uintptr_t begin = reinterpret_cast<uintptr_t>(buffer);
    uintptr_t p = align4(begin);
    CannyScratch s;
    s.ring = reinterpret_cast<int16_t*>(p);
    p = align4(p + 3 * pitch * sizeof(int16_t));
    s.map = reinterpret_cast<uint8_t*>(p);
    p = align4(p + static_cast<uintptr_t>(map_cells));
    s.stack.cells = reinterpret_cast<uint32_t*>(p);
    s.stack.top = 0;
    // No cell is pushed twice, so more entries than cells are never needed.
    // Cell indices are 4 bytes; a map with more cells than they reach goes
    // without a stack and is finished by sweeps alone.
    const uint64_t used = p - begin;
    const uint64_t room = static_cast<uint64_t>(buffer_bytes) > used ? static_cast<uint64_t>(buffer_bytes) - used : 0;
    const uint64_t entries = room / sizeof(uint32_t);
    s.stack.capacity = map_cells > UINT32_MAX ? 0 : static_cast<size_t>(entries < map_cells ? entries : map_cells);
    s.stack.overflowed = false;
    return s;
}

namespace {

// Where the map and the output meet: map cell (x + 1, y + 1) is output
// pixel (x, y).
struct EdgeOutput {
    uint8_t* dst;
    int step;
    uint32_t pitch;
    void accept(uint32_t cell) const {
        const uint32_t y = cell / pitch, x = cell - y * pitch;
        row_at(dst, step, static_cast<int>(y) - 1)[x - 1] = 255;
    }
};

// Accepts the weak neighbours of every cell on the stack, pushing them in
// turn. A cell is marked when pushed, so it enters the stack at most once.
void grow_edges(uint8_t* map, ptrdiff_t pitch, CannyStack& stack, const EdgeOutput& out) {
    const ptrdiff_t around[8] = {-pitch, -pitch - 1, -pitch + 1, 1, pitch + 1, pitch, pitch - 1, -1};
    while (stack.top) {
        uint8_t* cell = map + stack.cells[--stack.top];
        for (ptrdiff_t d : around) {
            uint8_t* n = cell + d;
            if (*n == kCannyWeak) {
                *n = kCannyEdge;
                const uint32_t index = static_cast<uint32_t>(n - map);
                out.accept(index);
                canny_push(&stack, index);
            }
        }
    }
}

bool touches_edge(const uint8_t* c, ptrdiff_t pitch) {
    return c[-pitch - 1] == kCannyEdge || c[-pitch] == kCannyEdge || c[-pitch + 1] == kCannyEdge ||
           c[-1] == kCannyEdge || c[1] == kCannyEdge || c[pitch - 1] == kCannyEdge || c[pitch] == kCannyEdge ||
           c[pitch + 1] == kCannyEdge;
}

// Hysteresis without memory: sweeps the map forward and backward, accepting
// weak cells next to accepted ones, until a round changes nothing. Every
// weak cell connected to an edge is then an edge, as with the stack.
void sweep_edges(uint8_t* map, ptrdiff_t pitch, int width, int height, uint8_t* dst, int dstStep) {
    bool changed = true;
    auto visit = [&](int x, int y) {
        uint8_t* c = map + y * pitch + x;
        if (*c == kCannyWeak && touches_edge(c, pitch)) {
            *c = kCannyEdge;
            row_at(dst, dstStep, y - 1)[x - 1] = 255;
            changed = true;
        }
    };
    while (changed) {
        changed = false;
        for (int y = 1; y <= height; ++y)
            for (int x = 1; x <= width; ++x) visit(x, y);
        for (int y = height; y >= 1; --y)
            for (int x = width; x >= 1; --x) visit(x, y);
    }
}

// Output rows that overlap (a step below the width) were written in another
// order than row after row; rewriting them from the map in that order, first
// the columns of whole groups of 8 in every row, then the remaining columns,
// leaves every byte with the last value of those writes.
void rewrite_overlapping_rows(const uint8_t* map, ptrdiff_t pitch, int width, int height, uint8_t* dst,
                              int dstStep) {
    const int whole = width & ~7;
    for (int part = 0; part < 2; ++part)
        for (int y = 0; y < height; ++y) {
            const uint8_t* cells = map + (y + 1) * pitch + 1;
            uint8_t* out = row_at(dst, dstStep, y);
            for (int x = part ? whole : 0; x < (part ? width : whole); ++x)
                out[x] = cells[x] == kCannyEdge ? 255 : 0;
        }
}

}  // namespace

bool a6_orcvCanny_16s8u_C1R(const int16_t* pSrcDx, int srcDxStep, const int16_t* pSrcDy, int srcDyStep,
                            uint8_t* pDstEdges, int dstEdgeStep, int width, int height, int low, int high,
                            CannyScratch& scratch) {
    const CannyKernels& k = canny_kernels();
    const ptrdiff_t pitch = static_cast<ptrdiff_t>(width) + 2;
    uint8_t* map = scratch.map;
    CannyStack& stack = scratch.stack;

    // Magnitude ring: row y lives in slot (y + 3) % 3 for y = -1 .. height,
    // each slot framed by zero cells; rows -1 and height are all zero.
    int16_t* slots[3] = {scratch.ring, scratch.ring + pitch, scratch.ring + 2 * pitch};
    for (int16_t* s : slots) s[0] = s[width + 1] = 0;
    auto mag_row = [&](int y) { return slots[(y + 3) % 3] + 1; };
    fill_bytes(mag_row(-1), 0, sizeof(int16_t) * width);

    // The frame rows of the map; the frame columns are set row by row.
    static_assert(kCannyNone == 0, "the frame is zeroed");
    fill_bytes(map, 0, pitch);
    fill_bytes(map + (height + 1) * pitch, 0, pitch);

    // The magnitude pass walks the x-derivative rows with the y-derivative
    // step and the y-derivative rows with the x-derivative step; the
    // direction tests use each image's own step. Equal steps, as callers
    // pass them, make no difference.
    k.magnitude(pSrcDx, pSrcDy, mag_row(0), width);
    for (int y = 0; y < height; ++y) {
        int16_t* next = mag_row(y + 1);
        if (y + 1 < height)
            k.magnitude(row_at(pSrcDx, srcDyStep, y + 1), row_at(pSrcDy, srcDxStep, y + 1), next, width);
        else
            fill_bytes(next, 0, sizeof(int16_t) * width);
        uint8_t* cells = map + (y + 1) * pitch;
        cells[0] = cells[width + 1] = kCannyNone;
        const CannySuppressRow row{row_at(pSrcDx, srcDxStep, y),
                                   row_at(pSrcDy, srcDyStep, y),
                                   mag_row(y - 1),
                                   mag_row(y),
                                   next,
                                   cells + 1,
                                   row_at(pDstEdges, dstEdgeStep, y),
                                   static_cast<uint32_t>((y + 1) * pitch + 1),
                                   width,
                                   low,
                                   high,
                                   &stack};
        k.suppress(row);
    }

    grow_edges(map, pitch, stack, EdgeOutput{pDstEdges, dstEdgeStep, static_cast<uint32_t>(pitch)});
    const bool swept = stack.overflowed;
    if (swept) sweep_edges(map, pitch, width, height, pDstEdges, dstEdgeStep);
    if (dstEdgeStep < width) rewrite_overlapping_rows(map, pitch, width, height, pDstEdges, dstEdgeStep);
    return swept;
}

void detect_edges(const int16_t* dx, int dxStep, const int16_t* dy, int dyStep, uint8_t* edges, int edgeStep,
                  OruSize roi, int low, int high, uint8_t* buffer) {
    const long long cells = (roi.width + 2LL) * (roi.height + 2LL);
    const long long buffer_bytes = cells > LLONG_MAX / 12 ? LLONG_MAX : 12 * cells;
    CannyScratch scratch = canny_scratch(buffer, buffer_bytes, roi.width, roi.height);
    a6_orcvCanny_16s8u_C1R(dx, dxStep, dy, dyStep, edges, edgeStep, roi.width, roi.height, low, high, scratch);
}

}  // namespace a6
}  // namespace orucv
