// Morphology: the state, the row kernels with their scalar twins, and the
// strip engine's entry points.
//
// Every kernel folds rows element by element: dst[k] = rows[0][k] op
// rows[1][k] op ... in the order of the rows, op a minimum or a maximum of
// one element kind: bytes, floats compared directly (carried as their bit
// patterns), or the order keys of floats. The engine (morph.cpp) builds
// everything from such folds: a rectangle's rows reduced across (directly
// for small widths, by doubling windows for wide ones), the reduced rows
// folded down (directly, or as running minima for tall rectangles), the
// cross's arms, and a mask's members grouped by equal rows.
#pragma once

#include <cstdint>
#include <cstring>

#include "core/floats.h"
#include "orucv.h"

// The state: one block from _orcvAlloc, these fields first, then the ring
// of widened rows, the spare rows and, for masks, the mask and its row
// links, all found by offsets from the block's start.
struct OruMorphState {
    int32_t maskWidth, maskHeight, anchorX, anchorY;
    int32_t shape;        // 0 rectangle, 1 cross, 100 mask (an ellipse is stored as its mask)
    int32_t roiWidth;     // the widest strip accepted
    int32_t dataType;     // 1 (8u) or 9 (32f)
    int32_t numChannels;  // 1, 3 or 4
    int32_t rowBytes;     // bytes from one ring row to the next
    uint32_t ringOffset;  // maskHeight ring rows, then the spare rows
    uint32_t maskOffset;  // shape 100: one byte per element (1 member, 0 not), then the row links
    int32_t members;      // shape 100: the number of members
    int32_t width;        // the width of the image in progress
    int32_t nanSeen;      // 32f rectangles and crosses: a NaN has come in this image
    int64_t streamRows;   // rows the ring has taken for this image, border copies included; 0: no image in progress
};
static_assert(sizeof(OruMorphState) == 64, "the state's fields take 64 bytes");

namespace orucv {
namespace a6 {

// Row kernels of one element kind and operation. E is the element in the
// ring, Out the caller's pixel element (of the same size).
template <class E, class Out>
struct MorphRows {
    // dst[k] = fold of rows[0][k], ..., rows[count - 1][k] for k < n. dst may
    // be rows[0], and the rows may lie at or after dst in the same buffer
    // (in-place passes read ahead of what they write).
    void (*reduce)(const E* const* rows, int count, E* dst, int n);
    // The same fold, stored as the caller's pixels.
    void (*reduce_out)(const E* const* rows, int count, Out* dst, int n);
    // reduce_out storing past the caches, for outputs too large for them.
    void (*reduce_out_stream)(const E* const* rows, int count, Out* dst, int n);
    // n of the caller's elements into ring elements.
    void (*load)(const Out* src, E* dst, int n);
};

struct MorphKernels {
    MorphRows<uint8_t, uint8_t> min_8u, max_8u;
    MorphRows<uint32_t, float> min_32f, max_32f;  // floats compared directly, carried as bits
    // The same for rows without NaNs: the bare packed minimum and maximum,
    // which give the same results there at a third of the work.
    MorphRows<uint32_t, float> min_32f_plain, max_32f_plain;
    MorphRows<int32_t, float> min_key, max_key;  // order keys of floats
    bool (*has_nan)(const float* src, int n);
    // Orders the stores of reduce_out_stream before those that follow.
    void (*stream_fence)();
};

extern const MorphKernels morph_kernels_scalar;
extern const MorphKernels morph_kernels_sse2;
extern const MorphKernels morph_kernels_avx2;
const MorphKernels& morph_kernels();

// Byte offsets and size of a state; total above UINT_MAX means too large.
struct MorphLayout {
    uint64_t row_bytes, ring_offset, mask_offset, total;
};
MorphLayout morph_layout(int roi_width, int data_type, int channels, OruSize mask, int stored_shape);

// Builds a checked state in *state (null on failure). shape is 0, 1, 2 or 100.
OruStatus morph_init(int roi_width, int data_type, int channels, OruSize mask, OruPoint anchor, int shape,
                     const Oru8u* mask_bytes, OruMorphState** state);

// The ellipse's members (1) in a zeroed width x height table, rows back to back.
void build_ellipse(uint8_t* members, int width, int height);

// One strip through a checked state; returns the destination rows written.
int morph_strip(OruMorphState* state, bool dilate, const Oru8u* src, int src_step, Oru8u* dst, int dst_step,
                int width, int height, int flag);
int morph_strip(OruMorphState* state, bool dilate, const Oru32f* src, int src_step, Oru32f* dst, int dst_step,
                int width, int height, int flag);

namespace scalar {
namespace {  // internal linkage: the instruction-set files include this too

// Elements of the caller's rows may lie at any address (steps are not
// checked for alignment), so every element moves through memcpy.
template <class E>
static inline E ld(const void* p) {
    E v;
    std::memcpy(&v, p, sizeof v);
    return v;
}
template <class E>
static inline void st(void* p, E v) {
    std::memcpy(p, &v, sizeof v);
}

// The operations, `a` the earlier member, `b` the later one. Each has the
// kernels' element E, the caller's element Out, out() from E to the
// caller's bits and in() back, and the result of an element without members.
struct MinU8 {
    using E = uint8_t;
    using Out = uint8_t;
    static E op(E a, E b) { return b < a ? b : a; }
    static E out(E v) { return v; }
    static E in(E v) { return v; }
    static constexpr E kEmpty = 255;
};
struct MaxU8 {
    using E = uint8_t;
    using Out = uint8_t;
    static E op(E a, E b) { return b > a ? b : a; }
    static E out(E v) { return v; }
    static E in(E v) { return v; }
    static constexpr E kEmpty = 0;
};

// Floats compared directly: a < b ? a : b, so of two equal members (-0.0
// and +0.0) the later one; any NaN makes all ones (a NaN), stored as the
// quiet NaN. The packed minimum and an unordered compare give the same.
constexpr uint32_t kAllOnes = 0xFFFFFFFFu;
static inline bool is_nan_bits(uint32_t b) { return (b & 0x7FFFFFFFu) > 0x7F800000u; }
struct MinF32 {
    using E = uint32_t;
    using Out = float;
    static E op(E a, E b) {
        if (is_nan_bits(a) || is_nan_bits(b)) return kAllOnes;
        return bits_float(a) < bits_float(b) ? a : b;
    }
    static E out(E v) { return is_nan_bits(v) ? kQuietNanBits : v; }
    static E in(E v) { return v; }
    static constexpr E kEmpty = 0x7F800000u;
};
struct MaxF32 {
    using E = uint32_t;
    using Out = float;
    static E op(E a, E b) {
        if (is_nan_bits(a) || is_nan_bits(b)) return kAllOnes;
        return bits_float(a) > bits_float(b) ? a : b;
    }
    static E out(E v) { return is_nan_bits(v) ? kQuietNanBits : v; }
    static E in(E v) { return v; }
    static constexpr E kEmpty = 0xFF800000u;
};

// The same on rows without NaNs.
struct MinF32Plain {
    using E = uint32_t;
    using Out = float;
    static E op(E a, E b) { return bits_float(a) < bits_float(b) ? a : b; }
    static E out(E v) { return v; }
    static E in(E v) { return v; }
};
struct MaxF32Plain {
    using E = uint32_t;
    using Out = float;
    static E op(E a, E b) { return bits_float(a) > bits_float(b) ? a : b; }
    static E out(E v) { return v; }
    static E in(E v) { return v; }
};

static inline bool has_nan_from(const float* src, int from, int n) {
    for (int k = from; k < n; ++k)
        if (is_nan_bits(ld<uint32_t>(src + k))) return true;
    return false;
}
static inline bool has_nan(const float* src, int n) { return has_nan_from(src, 0, n); }

// Order keys: the low 31 bits complemented where the sign is set, so that
// signed comparison follows the float order (-0.0 below +0.0); the mapping
// is its own inverse.
static inline int32_t key_of_bits(int32_t b) { return b ^ ((b >> 31) & 0x7FFFFFFF); }
struct MinKey {
    using E = int32_t;
    using Out = float;
    static E op(E a, E b) { return b < a ? b : a; }
    static E out(E v) { return key_of_bits(v); }
    static E in(E v) { return key_of_bits(v); }
    static constexpr uint32_t kEmpty = 0x7F800000u;  // +infinity
};
struct MaxKey {
    using E = int32_t;
    using Out = float;
    static E op(E a, E b) { return b > a ? b : a; }
    static E out(E v) { return key_of_bits(v); }
    static E in(E v) { return key_of_bits(v); }
    static constexpr uint32_t kEmpty = 0xFF800000u;  // -infinity
};

// The kernels from element `from` on: the twins, and the vector kernels'
// tails.
template <class Op, bool kOut>
static inline void fold_from(const typename Op::E* const* rows, int count, void* dst, int from, int n) {
    using E = typename Op::E;
    for (int k = from; k < n; ++k) {
        E v = ld<E>(rows[0] + k);
        for (int m = 1; m < count; ++m) v = Op::op(v, ld<E>(rows[m] + k));
        st<E>(static_cast<E*>(dst) + k, kOut ? Op::out(v) : v);
    }
}
template <class Op>
static inline void load_from(const typename Op::Out* src, typename Op::E* dst, int from, int n) {
    using E = typename Op::E;
    for (int k = from; k < n; ++k) st<E>(dst + k, Op::in(ld<E>(src + k)));
}

template <class Op>
static inline void reduce(const typename Op::E* const* rows, int count, typename Op::E* dst, int n) {
    fold_from<Op, false>(rows, count, dst, 0, n);
}
template <class Op>
static inline void reduce_out(const typename Op::E* const* rows, int count, typename Op::Out* dst, int n) {
    fold_from<Op, true>(rows, count, dst, 0, n);
}
static inline void stream_fence() {}
template <class Op>
static inline void load(const typename Op::Out* src, typename Op::E* dst, int n) {
    load_from<Op>(src, dst, 0, n);
}

}  // namespace
}  // namespace scalar
}  // namespace a6
}  // namespace orucv
