// Gaussian pyramid kernels (5x5, row 1 4 6 4 1): the row kernels of the
// horizontal and vertical passes, their scalar twins, the ring of filtered
// rows kept in the caller's scratch, and the image-level engines that drive
// a kernel table over a whole image.
//
// Everything inline here has internal linkage: the SIMD translation units
// include this header for the scalar row tails and must keep their own
// copies.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "core/rows.h"
#include "orucv.h"

// The C runtime's report of a failed assertion; declared here because
// <assert.h> hides it under NDEBUG, and the channel-count invariant of the
// row engines holds in every build.
extern "C" void __assert_fail(const char* assertion, const char* file, unsigned int line,
                              const char* function) noexcept __attribute__((__noreturn__));

namespace orucv {
namespace a6 {

// Vertical form of a PyrDown output row: inside the image, the first row,
// the last row, or the only row of a two-row source.
enum { kDownInner = 0, kDownFirst = 1, kDownLast = 2, kDownPair = 3 };
// Bits of a PyrUp band (output rows 2i and 2i + 1 of source row i).
enum { kUpFirst = 1, kUpLast = 2 };

// Row kernels; index [1] of the pairs is the three-channel form. The 8-bit
// kernels take a bias that is xored into every sample and result (0 for 8u,
// 0x80 for 8s: signed samples move to the unsigned range, where the sums
// and the rounding shift equal the signed ones plus a fixed offset).
struct PyrKernels {
    // PyrDown horizontal pass: a source row of w pixels (w even, >= 2) into
    // w/2 * ch sums (16-bit for 8-bit samples). `next` is the source row to
    // be filtered after this one (or src itself), which SIMD kernels fetch
    // into the cache while they work.
    void (*down_h8[2])(const uint8_t* src, int w, uint16_t* dst, uint8_t bias, const uint8_t* next);
    void (*down_h32[2])(const float* src, int w, float* dst, const float* next);
    // PyrDown vertical pass: five filtered rows centred on rows[2] (mirrored
    // at the image edges) into n output samples. With stream set, SIMD
    // kernels write the aligned part of the row with non-temporal stores.
    void (*down_v8)(const uint16_t* const* rows, int n, uint8_t* dst, uint8_t bias, bool stream);
    void (*down_v32)(const float* const* rows, int form, int n, float* dst, bool stream);
    // PyrUp horizontal pass: a source row of w pixels (w >= 1) into 2w * ch
    // values, output pixels in order.
    void (*up_h8[2])(const uint8_t* src, int w, uint16_t* dst, uint8_t bias, const uint8_t* next);
    void (*up_h32[2])(const float* src, int w, float* dst, const float* next);
    // PyrUp vertical pass: the filtered rows above, at and below source row
    // i (mirrored at the edges) into output rows 2i and 2i + 1, n samples.
    void (*up_v8)(const uint16_t* above, const uint16_t* centre, const uint16_t* below, int n, uint8_t* even,
                  uint8_t* odd, uint8_t bias, bool stream);
    void (*up_v32)(const float* above, const float* centre, const float* below, int band, int n, float* even,
                   float* odd, bool stream);
};

extern const PyrKernels pyr_kernels_scalar;
extern const PyrKernels pyr_kernels_sse2;
extern const PyrKernels pyr_kernels_avx2;
const PyrKernels& pyr_kernels();

// Ring row sizes in bytes, as the buffer-size queries define them (each the
// byte count rounded up to a multiple of 16). PyrDown keeps 6 rows of
// w/2 * ch sums (16-bit for 8-bit types, float for 32f) plus slack; PyrUp 3
// rows with room for 2w * ch four-byte values plus slack, of which the 8-bit
// rows use half: their sums never exceed 8 * 255 and are kept in 16 bits.
static inline long long pyr_down_row_bytes(long long w, int ch, bool is_float) {
    const long long b = is_float ? 4 : 2, s = is_float ? 96 : 48;
    return (ch * (w / 2 * b + s) + 15) / 16 * 16;
}
static inline long long pyr_up_row_bytes(long long w, int ch) { return (ch * (w * 8 + 96) + 15) / 16 * 16; }
constexpr int kPyrDownRingRows = 6;
constexpr int kPyrUpRingRows = 3;

// Destination rows bypass the caches (non-temporal stores) when source and
// destination together pass this size: images that large would evict each
// other from the last-level cache anyway, and streaming saves reading every
// destination line before it is written.
constexpr long long kPyrStreamBytes = 16ll << 20;
static inline bool pyr_stream(long long src_bytes, long long dst_bytes) {
    return src_bytes + dst_bytes >= kPyrStreamBytes;
}

// The ring starts at the first 16-byte boundary of the scratch: the slack of
// every row (at least 48 bytes per channel) covers the shift, and the rows
// stay aligned for their element type whatever the caller's alignment.
struct PyrRing {
    uint8_t* base;
    size_t stride;
    template <class T>
    T* row(int slot) const {
        return reinterpret_cast<T*>(base + stride * static_cast<size_t>(slot));
    }
};
static inline PyrRing pyr_ring(uint8_t* buffer, long long row_bytes) {
    const uintptr_t p = (reinterpret_cast<uintptr_t>(buffer) + 15) & ~static_cast<uintptr_t>(15);
    return {reinterpret_cast<uint8_t*>(p), static_cast<size_t>(row_bytes)};
}

namespace pyr_scalar {

// Sample index mirrored about the ends of a row of n >= 2 samples without
// repeating the edge: -1 reads 1, -2 reads 2, n reads n - 2, n + 1 reads
// n - 3 (and, for n == 2, -2 reads 2 and so 0).
static inline int mirror(int i, int n) {
    for (;;) {
        if (i < 0) i = -i;
        else if (i >= n) i = 2 * n - 2 - i;
        else return i;
    }
}

// --- PyrDown, 8-bit: exact integer sums, so edges use mirrored samples.

template <int CH>
static inline void down_h8_range(const uint8_t* s, int w, uint16_t* d, uint8_t bias, int x0, int x1) {
    const int ow = w / 2;
    for (int x = x0; x < x1; ++x) {
        const int i = 2 * x;
        int p[5];
        if (x == 0 || x == ow - 1) {
            for (int k = 0; k < 5; ++k) p[k] = mirror(i + k - 2, w);
        } else {
            for (int k = 0; k < 5; ++k) p[k] = i + k - 2;
        }
        for (int c = 0; c < CH; ++c) {
            auto v = [&](int k) { return static_cast<unsigned>(s[p[k] * CH + c] ^ bias); };
            d[x * CH + c] = static_cast<uint16_t>(6 * v(2) + 4 * (v(1) + v(3)) + v(0) + v(4));
        }
    }
}

// (sum + 128) >> 8 of the 256-weight sum; at most 255 * 256 + 128 in 16 bits.
static inline void down_v8_range(const uint16_t* const* r, int i0, int n, uint8_t* d, uint8_t bias) {
    for (int i = i0; i < n; ++i) {
        const unsigned sum = 6u * r[2][i] + 4u * (r[1][i] + r[3][i]) + r[0][i] + r[4][i];
        d[i] = static_cast<uint8_t>(((sum + 128) >> 8) ^ bias);
    }
}

// --- PyrDown, 32f: every sum in the order its formula is written, the edge
// outputs with their own forms. The first output is twice its half-weight
// sum, so it stays finite wherever that doubled sum does.

static inline float down_inner(float a2, float a1, float c, float b1, float b2) {
    return ((6.0f * c + 4.0f * (a1 + b1)) + a2) + b2;
}
static inline float down_first(float c, float b1, float b2) { return 2.0f * ((3.0f * c + 4.0f * b1) + b2); }
static inline float down_last(float a2, float a1, float c, float b1) { return (7.0f * c + 4.0f * (a1 + b1)) + a2; }
static inline float down_pair(float c, float b1) { return 8.0f * (c + b1); }

template <int CH>
static inline void down_h32_range(const float* s, int w, float* d, int x0, int x1) {
    const int ow = w / 2;
    for (int x = x0; x < x1; ++x)
        for (int c = 0; c < CH; ++c) {
            const float* q = s + static_cast<ptrdiff_t>(2 * x) * CH + c;
            float v;
            if (ow == 1) v = down_pair(q[0], q[CH]);
            else if (x == 0) v = down_first(q[0], q[CH], q[2 * CH]);
            else if (x == ow - 1) v = down_last(q[-2 * CH], q[-CH], q[0], q[CH]);
            else v = down_inner(q[-2 * CH], q[-CH], q[0], q[CH], q[2 * CH]);
            d[x * CH + c] = v;
        }
}

constexpr float kDownScale = 0.00390625f;  // 1/256
constexpr float kUpScale = 0.015625f;      // 1/64

// Every NaN result is stored as the quiet NaN 0x7FC00000: which of two NaN
// operands an addition passes on depends on the instruction's operand
// order, which compilers may swap, so payloads could differ between paths.
constexpr uint32_t kQuietNan = 0x7FC00000u;
static inline float scaled(float sum, float scale) {
    const float v = sum * scale;
    if (v == v) return v;
    float nan;
    std::memcpy(&nan, &kQuietNan, sizeof nan);
    return nan;
}

static inline void down_v32_range(const float* const* r, int form, int i0, int n, float* d) {
    switch (form) {
    case kDownFirst:
        for (int i = i0; i < n; ++i) d[i] = scaled(down_first(r[2][i], r[3][i], r[4][i]), kDownScale);
        break;
    case kDownLast:
        for (int i = i0; i < n; ++i) d[i] = scaled(down_last(r[0][i], r[1][i], r[2][i], r[3][i]), kDownScale);
        break;
    case kDownPair:
        for (int i = i0; i < n; ++i) d[i] = scaled(down_pair(r[2][i], r[3][i]), kDownScale);
        break;
    default:
        for (int i = i0; i < n; ++i) d[i] = scaled(down_inner(r[0][i], r[1][i], r[2][i], r[3][i], r[4][i]), kDownScale);
    }
}

// --- PyrUp, 8-bit: source pixel j gives outputs 2j (l + 6c + r) and
// 2j + 1 (4 (c + r)); the zero-inserted grid mirrors into sample -1 reading
// sample 1 (sample 0 when w == 1) and sample w reading sample w - 1.

template <int CH>
static inline void up_h8_range(const uint8_t* s, int w, uint16_t* d, uint8_t bias, int j0, int j1) {
    for (int j = j0; j < j1; ++j) {
        const int l = j > 0 ? j - 1 : (w > 1 ? 1 : 0);
        const int r = j + 1 < w ? j + 1 : w - 1;
        for (int c = 0; c < CH; ++c) {
            const unsigned a = s[l * CH + c] ^ bias, m = s[j * CH + c] ^ bias, b = s[r * CH + c] ^ bias;
            d[2 * j * CH + c] = static_cast<uint16_t>(a + 6 * m + b);
            d[(2 * j + 1) * CH + c] = static_cast<uint16_t>(4 * (m + b));
        }
    }
}

// (sum + 32) >> 6 of the 64-weight sum; never above 255.
static inline void up_v8_range(const uint16_t* a, const uint16_t* c, const uint16_t* b, int i0, int n, uint8_t* e,
                               uint8_t* o, uint8_t bias) {
    for (int i = i0; i < n; ++i) {
        e[i] = static_cast<uint8_t>(((a[i] + 6u * c[i] + b[i] + 32) >> 6) ^ bias);
        o[i] = static_cast<uint8_t>(((4u * (c[i] + b[i]) + 32) >> 6) ^ bias);
    }
}

// --- PyrUp, 32f (the first output again twice its half-weight sum).

static inline float up_even(float l, float c, float r) { return (l + 6.0f * c) + r; }
static inline float up_odd(float c, float r) { return 4.0f * (c + r); }
static inline float up_first(float c, float r) { return 2.0f * (3.0f * c + r); }
static inline float up_penult(float l, float c) { return l + 7.0f * c; }
static inline float up_last(float c) { return 8.0f * c; }

template <int CH>
static inline void up_h32_range(const float* s, int w, float* d, int j0, int j1) {
    for (int j = j0; j < j1; ++j)
        for (int c = 0; c < CH; ++c) {
            const float* q = s + static_cast<ptrdiff_t>(j) * CH + c;
            float* e = d + static_cast<ptrdiff_t>(2 * j) * CH + c;
            if (w == 1) {
                e[0] = e[CH] = up_last(q[0]);
            } else if (j == 0) {
                e[0] = up_first(q[0], q[CH]);
                e[CH] = up_odd(q[0], q[CH]);
            } else if (j == w - 1) {
                e[0] = up_penult(q[-CH], q[0]);
                e[CH] = up_last(q[0]);
            } else {
                e[0] = up_even(q[-CH], q[0], q[CH]);
                e[CH] = up_odd(q[0], q[CH]);
            }
        }
}

static inline void up_v32_range(const float* a, const float* c, const float* b, int band, int i0, int n, float* e,
                                float* o) {
    switch (band) {
    case kUpFirst | kUpLast:
        for (int i = i0; i < n; ++i) e[i] = o[i] = scaled(up_last(c[i]), kUpScale);
        break;
    case kUpFirst:
        for (int i = i0; i < n; ++i) {
            e[i] = scaled(up_first(c[i], b[i]), kUpScale);
            o[i] = scaled(up_odd(c[i], b[i]), kUpScale);
        }
        break;
    case kUpLast:
        for (int i = i0; i < n; ++i) {
            e[i] = scaled(up_penult(a[i], c[i]), kUpScale);
            o[i] = scaled(up_last(c[i]), kUpScale);
        }
        break;
    default:
        for (int i = i0; i < n; ++i) {
            e[i] = scaled(up_even(a[i], c[i], b[i]), kUpScale);
            o[i] = scaled(up_odd(c[i], b[i]), kUpScale);
        }
    }
}

}  // namespace pyr_scalar

// --- Image-level engines, shared by every type.

// PyrDown: each source row is filtered horizontally once into ring slot
// row % 6; output row y combines the filtered rows 2y - 2 .. 2y + 2,
// mirrored at the top and bottom. w and h are even and at least 2.
template <class S, class A, class HRow, class VRow>
static inline void pyr_down_image(const S* src, int srcStep, S* dst, int dstStep, int h, uint8_t* buffer,
                                  long long row_bytes, HRow hrow, VRow vrow) {
    const PyrRing ring = pyr_ring(buffer, row_bytes);
    const int oh = h / 2;
    int filtered = 0;
    for (int y = 0; y < oh; ++y) {
        const int need = 2 * y + 2 < h ? 2 * y + 2 : h - 1;
        for (; filtered <= need; ++filtered)
            hrow(row_at(src, srcStep, filtered), ring.row<A>(filtered % kPyrDownRingRows),
                 row_at(src, srcStep, filtered + 1 < h ? filtered + 1 : filtered));
        const A* rows[5];
        for (int k = 0; k < 5; ++k)
            rows[k] = ring.row<A>(pyr_scalar::mirror(2 * y + k - 2, h) % kPyrDownRingRows);
        const int form = oh == 1 ? kDownPair : y == 0 ? kDownFirst : y == oh - 1 ? kDownLast : kDownInner;
        vrow(rows, form, row_at(dst, dstStep, y));
    }
}

// PyrUp: each source row is filtered horizontally once into ring slot
// row % 3; source row i with its neighbours (row -1 reads row 1, row h reads
// row h - 1) gives output rows 2i and 2i + 1. h is at least 1.
template <class S, class A, class HRow, class VRow>
static inline void pyr_up_image(const S* src, int srcStep, S* dst, int dstStep, int h, uint8_t* buffer,
                                long long row_bytes, HRow hrow, VRow vrow) {
    const PyrRing ring = pyr_ring(buffer, row_bytes);
    int filtered = 0;
    S* even = dst;
    for (int i = 0; i < h; ++i) {
        const int below = i + 1 < h ? i + 1 : h - 1;
        for (; filtered <= below; ++filtered)
            hrow(row_at(src, srcStep, filtered), ring.row<A>(filtered % kPyrUpRingRows),
                 row_at(src, srcStep, filtered + 1 < h ? filtered + 1 : filtered));
        const int above = i > 0 ? i - 1 : below;
        const int band = (i == 0 ? kUpFirst : 0) | (i == h - 1 ? kUpLast : 0);
        S* odd = row_at(even, dstStep, 1);
        vrow(ring.row<A>(above % kPyrUpRingRows), ring.row<A>(i % kPyrUpRingRows),
             ring.row<A>(below % kPyrUpRingRows), band, even, odd);
        even = row_at(odd, dstStep, 1);
    }
}

// The 8-bit PyrDown kernels: the whole image of w x h pixels (both even,
// at least 2) with ch channels (1 or 3) into (w/2) x (h/2), ring in pBuffer.
int a6_orcvPyrDownG5x5_8u(const uint8_t* pSrc, int srcStep, uint8_t* pDst, int dstStep, OruSize roi,
                          uint8_t* pBuffer, int ch);
int a6_orcvPyrDownG5x5_8s(const int8_t* pSrc, int srcStep, int8_t* pDst, int dstStep, OruSize roi,
                          uint8_t* pBuffer, int ch);

}  // namespace a6

// Checks of the filters, in their order; every size and step fault is
// oruStsSize. e is the element size (4 for 32f, whose steps must also be
// multiples of 4; 1 for 8-bit).
static inline OruStatus pyr_check(const void* src, int srcStep, const void* dst, int dstStep, OruSize roi,
                                  const void* buffer, int ch, int e, bool down) {
    if (!src || !dst || !buffer) return oruStsNullPointer;
    const long long w = roi.width, h = roi.height;
    if (w < 0 || h < 0) return oruStsSize;
    const long long dst_pixels = down ? w / 2 : 2 * w;
    if (srcStep < w * ch * e || dstStep < dst_pixels * ch * e) return oruStsSize;
    if (down && (w % 2 != 0 || h % 2 != 0)) return oruStsSize;
    if (e == 4 && (srcStep % 4 != 0 || dstStep % 4 != 0)) return oruStsSize;
    return oruStsOk;
}

// C-level row engines of the filters that run without a dedicated image
// kernel (src/orcvpyr.cpp, src/orcvpyr32f.cpp). Arguments are trusted except
// the channel count, which must be 1 or 3 (an internal invariant: anything
// else aborts).
OruStatus ownPyrUpG5x5_8u(const Oru8u* pSrc, int srcStep, Oru8u* pDst, int dstStep, OruSize roi, Oru8u* pBuffer,
                          int Cs);
OruStatus ownPyrUpG5x5_8s(const Oru8s* pSrc, int srcStep, Oru8s* pDst, int dstStep, OruSize roi, Oru8u* pBuffer,
                          int Cs);
OruStatus ownPyrDownG5x5_32f(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep, OruSize roi,
                             Oru8u* pBuffer, int Cs);
OruStatus ownPyrUpG5x5_32f(const Oru32f* pSrc, int srcStep, Oru32f* pDst, int dstStep, OruSize roi,
                           Oru8u* pBuffer, int Cs);

}  // namespace orucv
