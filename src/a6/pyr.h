// Gaussian pyramids (5x5, row 1 4 6 4 1): the row kernels of the
// horizontal and vertical passes and their table, the engines the wrappers
// call, and the scalar twins of the row kernels.
//
// Everything inline here has internal linkage: the SIMD translation units
// include this header for the scalar row tails and must keep their own
// copies.
#pragma once

#include <cstddef>
#include <cstdint>

#include "core/floats.h"
#include "orucv.h"

namespace orucv {
namespace a6 {

// Vertical form of a PyrDown output row: inside the image, the first row,
// the last row, or the only row of a two-row source.
enum { kDownInner = 0, kDownFirst = 1, kDownLast = 2, kDownPair = 3 };
// Bits of a PyrUp band (output rows 2i and 2i + 1 of source row i).
enum { kUpFirst = 1, kUpLast = 2 };

// The pairs of row kernels are indexed by channel_form(channels).
enum { kOneChannel = 0, kThreeChannels = 1, kChannelForms = 2 };
static constexpr int channel_form(int channels) { return channels == 3 ? kThreeChannels : kOneChannel; }

// Row kernels. The 8-bit kernels take a bias that is xored into every
// sample and result (0 for 8u, 0x80 for 8s: signed samples move to the
// unsigned range, where the sums and the rounding shift equal the signed
// ones plus a fixed offset).
struct PyrKernels {
    // PyrDown horizontal pass: a source row of w pixels (w even, >= 2) into
    // w/2 * ch sums (16-bit for 8-bit samples). `next` is the source row to
    // be filtered after this one (or src itself), which SIMD kernels fetch
    // into the cache while they work.
    void (*down_h8[kChannelForms])(const uint8_t* src, int w, uint16_t* dst, uint8_t bias, const uint8_t* next);
    void (*down_h32[kChannelForms])(const float* src, int w, float* dst, const float* next);
    // PyrDown vertical pass: five filtered rows centred on rows[2] (mirrored
    // at the image edges) into n output samples. With stream set, SIMD
    // kernels write the aligned part of the row with non-temporal stores.
    void (*down_v8)(const uint16_t* const* rows, int n, uint8_t* dst, uint8_t bias, bool stream);
    void (*down_v32)(const float* const* rows, int form, int n, float* dst, bool stream);
    // PyrUp horizontal pass: a source row of w pixels (w >= 1) into 2w * ch
    // values, output pixels in order.
    void (*up_h8[kChannelForms])(const uint8_t* src, int w, uint16_t* dst, uint8_t bias, const uint8_t* next);
    void (*up_h32[kChannelForms])(const float* src, int w, float* dst, const float* next);
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

namespace {  // internal linkage: instruction-set files include this header
// The table of a kernel set K, filled by name from its static members
// down_h8<CH>, down_h32<CH>, down_v8, down_v32 and their up_ twins.
template <class K>
constexpr PyrKernels pyr_table() {
    PyrKernels k{};
    k.down_h8[kOneChannel] = K::template down_h8<1>;
    k.down_h8[kThreeChannels] = K::template down_h8<3>;
    k.down_h32[kOneChannel] = K::template down_h32<1>;
    k.down_h32[kThreeChannels] = K::template down_h32<3>;
    k.down_v8 = K::down_v8;
    k.down_v32 = K::down_v32;
    k.up_h8[kOneChannel] = K::template up_h8<1>;
    k.up_h8[kThreeChannels] = K::template up_h8<3>;
    k.up_h32[kOneChannel] = K::template up_h32<1>;
    k.up_h32[kThreeChannels] = K::template up_h32<3>;
    k.up_v8 = K::up_v8;
    k.up_v32 = K::up_v32;
    return k;
}
}  // namespace

// Engines; arguments are checked by the wrappers (sizes of at least one
// pixel). A whole level of w x h pixels with ch (1 or 3) channels, the ring
// of filtered rows in the scratch buffer. The 8-bit PyrDown kernels take the
// whole image (w and h even); the row engines of the other filters assert
// that ch is 1 or 3.
int a6_orcvPyrDownG5x5_8u(const uint8_t* pSrc, int srcStep, uint8_t* pDst, int dstStep, OruSize roi, uint8_t* pBuffer,
                          int ch);
int a6_orcvPyrDownG5x5_8s(const int8_t* pSrc, int srcStep, int8_t* pDst, int dstStep, OruSize roi, uint8_t* pBuffer,
                          int ch);
OruStatus ownPyrDownG5x5_32f(const float* pSrc, int srcStep, float* pDst, int dstStep, OruSize roi, uint8_t* pBuffer,
                             int Cs);
OruStatus ownPyrUpG5x5_8u(const uint8_t* pSrc, int srcStep, uint8_t* pDst, int dstStep, OruSize roi, uint8_t* pBuffer,
                          int Cs);
OruStatus ownPyrUpG5x5_8s(const int8_t* pSrc, int srcStep, int8_t* pDst, int dstStep, OruSize roi, uint8_t* pBuffer,
                          int Cs);
OruStatus ownPyrUpG5x5_32f(const float* pSrc, int srcStep, float* pDst, int dstStep, OruSize roi, uint8_t* pBuffer,
                           int Cs);
// The engine of each type and direction, by overload.
OruStatus pyramid_down(const uint8_t* src, int srcStep, uint8_t* dst, int dstStep, OruSize roi, uint8_t* buffer, int ch);
OruStatus pyramid_down(const int8_t* src, int srcStep, int8_t* dst, int dstStep, OruSize roi, uint8_t* buffer, int ch);
OruStatus pyramid_down(const float* src, int srcStep, float* dst, int dstStep, OruSize roi, uint8_t* buffer, int ch);
OruStatus pyramid_up(const uint8_t* src, int srcStep, uint8_t* dst, int dstStep, OruSize roi, uint8_t* buffer, int ch);
OruStatus pyramid_up(const int8_t* src, int srcStep, int8_t* dst, int dstStep, OruSize roi, uint8_t* buffer, int ch);
OruStatus pyramid_up(const float* src, int srcStep, float* dst, int dstStep, OruSize roi, uint8_t* buffer, int ch);
// The scratch size of a level of a source `width` pixels wide (width >= 0,
// even for PyrDown), which may exceed an int.
long long pyramid_buffer_bytes(bool down, int width, int channels, bool is_float);

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

// Every NaN result is stored as the one quiet NaN (core/floats.h): which of
// two NaN operands an addition passes on depends on the instruction's
// operand order, which compilers may swap, so payloads could differ between
// paths.
static inline float scaled(float sum, float scale) { return canonical_nan(sum * scale); }

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
}  // namespace a6
}  // namespace orucv
