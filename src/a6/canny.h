// Canny edge detector: the scratch layout, the row kernels and their scalar
// twins.
//
// One pass walks the rows once: it computes the gradient magnitude of the
// next row into a ring of three magnitude rows, then suppresses the
// non-maxima of the current row into the edge map, pushing strong cells on
// the seed stack. Hysteresis then grows edges from the seeds through weak
// cells. The output row is written with the suppression (255 for strong
// cells, 0 for the rest) and hysteresis sets 255 where it accepts a weak
// cell, so no pass over the whole map is needed at the end (unless output
// rows overlap, a step below the width: they are rewritten row by row).
//
// The scratch buffer (the caller's, canny_buffer_size bytes) holds:
//  - the magnitude ring: 3 rows of width + 2 int16 cells, cell 0 and cell
//    width + 1 of each row are zero borders;
//  - the edge map: height + 2 rows of width + 2 byte cells, with a frame of
//    kCannyNone cells around the image;
//  - the seed stack: 4-byte map-cell indices (never addresses, so the size
//    is the same on 32 and 64 bits), filling the rest of the buffer.
// Every cell is pushed at most once (it is marked when pushed), so the
// stack never needs more entries than the image has pixels, which the
// buffer always holds; should it be short anyway (the index range or a
// smaller buffer), the pushes that do not fit are dropped and in-place
// sweeps finish the hysteresis with the same result.
#pragma once

#include <cstddef>
#include <cstdint>

#include "orucv.h"

namespace orucv {
namespace a6 {

// Edge-map cell codes.
enum : uint8_t { kCannyNone = 0, kCannyWeak = 1, kCannyEdge = 255 };

// Direction tests: 1697/4096 and 9889/4096 approximate tan(22.5) and
// tan(67.5) degrees.
constexpr int kCannyTan22 = 1697;
constexpr int kCannyTan67 = 9889;
constexpr int kCannyOne = 4096;

struct CannyStack {
    uint32_t* cells;
    size_t top;
    size_t capacity;
    bool overflowed;  // a push did not fit: hysteresis finishes by sweeps
};

static inline void canny_push(CannyStack* stack, uint32_t cell) {
    if (stack->top < stack->capacity) stack->cells[stack->top++] = cell;
    else stack->overflowed = true;
}

// One row of non-maximum suppression. The magnitude rows point at pixel 0
// and are readable (zero) one cell before and after the row.
struct CannySuppressRow {
    const int16_t* dx;   // derivative rows of this image row
    const int16_t* dy;
    const int16_t* up;   // magnitudes of the rows above, of this row, below
    const int16_t* mid;
    const int16_t* down;
    uint8_t* map;        // edge-map cell of pixel 0
    uint8_t* out;        // output row
    uint32_t first_cell; // map index of pixel 0
    int width;
    int low, high;       // 0..32767
    CannyStack* stack;
};

struct CannyKernels {
    // mag[x] = |dx[x]| + |dy[x]|, saturated to 16 bits.
    void (*magnitude)(const int16_t* dx, const int16_t* dy, int16_t* mag, int n);
    // Classifies the row's cells into kCannyNone/Weak/Edge, pushing edges;
    // the output row gets 255 at edges, 0 elsewhere.
    void (*suppress)(const CannySuppressRow& row);
};

// The table of a set of rows, Rows::magnitude and Rows::suppress, by name.
template <class Rows>
static constexpr CannyKernels canny_table() {
    CannyKernels k{};
    k.magnitude = Rows::magnitude;
    k.suppress = Rows::suppress;
    return k;
}

extern const CannyKernels canny_kernels_scalar;
extern const CannyKernels canny_kernels_sse2;
extern const CannyKernels canny_kernels_avx2;
const CannyKernels& canny_kernels();

// Scratch layout of a buffer of at least canny_buffer_size(width, height)
// bytes; the buffer may have any alignment.
struct CannyScratch {
    int16_t* ring;    // 3 rows of width + 2 cells
    uint8_t* map;     // (height + 2) rows of width + 2 cells
    CannyStack stack;
};
// 12 (width + 2) (height + 2), or -1 when that does not fit an int.
long long canny_buffer_size(int width, int height);
CannyScratch canny_scratch(uint8_t* buffer, long long buffer_bytes, int width, int height);

// The engine: the detector on trusted arguments with the caller's buffer of
// canny_buffer_size bytes (sizes beyond an int, which cannot be queried, take
// 12 bytes per framed cell too); thresholds already truncated and limited to
// 0..32767.
void detect_edges(const int16_t* dx, int dxStep, const int16_t* dy, int dyStep, uint8_t* edges, int edgeStep,
                  OruSize roi, int low, int high, uint8_t* buffer);

// The whole detector on a laid-out scratch. Returns true when the stack ran
// short and sweeps finished the hysteresis (results are the same either
// way).
bool a6_orcvCanny_16s8u_C1R(const int16_t* pSrcDx, int srcDxStep, const int16_t* pSrcDy, int srcDyStep,
                            uint8_t* pDstEdges, int dstEdgeStep, int width, int height, int low, int high,
                            CannyScratch& scratch);

namespace scalar {

// |v| in 16 bits: -32768 gives 32767. Written for conditional moves: the
// signs of derivatives are too random for branches.
static inline int abs16(int v) {
    const int a = v < 0 ? -v : v;
    return a > 32767 ? 32767 : a;
}

static inline int16_t magnitude_of(int dx, int dy) {
    const int m = abs16(dx) + abs16(dy);
    return static_cast<int16_t>(m > 32767 ? 32767 : m);
}

static inline void magnitude(const int16_t* dx, const int16_t* dy, int16_t* mag, int n) {
    for (int i = 0; i < n; ++i) mag[i] = magnitude_of(dx[i], dy[i]);
}

// Code of pixel x: kept when its magnitude exceeds the low threshold and,
// strictly, both neighbours along the quantised gradient direction.
static inline uint8_t suppress_cell(const CannySuppressRow& r, int x) {
    const int m = r.mid[x];
    if (m <= r.low) return kCannyNone;
    const int dx = r.dx[x], dy = r.dy[x];
    const int a = abs16(dx), b = abs16(dy);
    int n1, n2;
    if (kCannyTan22 * a > kCannyOne * b) {
        n1 = r.mid[x - 1], n2 = r.mid[x + 1];
    } else if (kCannyTan67 * a > kCannyOne * b) {
        if ((dx ^ dy) >= 0) n1 = r.up[x - 1], n2 = r.down[x + 1];  // same sign bits
        else n1 = r.up[x + 1], n2 = r.down[x - 1];
    } else {
        n1 = r.up[x], n2 = r.down[x];
    }
    if (m > n1 && m > n2) return m > r.high ? kCannyEdge : kCannyWeak;
    return kCannyNone;
}

// Pixels from..width-1 of a row.
static inline void suppress_from(const CannySuppressRow& r, int from) {
    for (int x = from; x < r.width; ++x) {
        const uint8_t code = suppress_cell(r, x);
        r.map[x] = code;
        r.out[x] = code == kCannyEdge ? 255 : 0;
        if (code == kCannyEdge) canny_push(r.stack, r.first_cell + static_cast<uint32_t>(x));
    }
}

static inline void suppress(const CannySuppressRow& r) { suppress_from(r, 0); }

}  // namespace scalar
}  // namespace a6
}  // namespace orucv
