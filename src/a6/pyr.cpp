// The pyramids' engine: the ring of filtered rows in the caller's scratch,
// the image-level passes that drive a kernel table over a level, the
// engines of every type, and the scalar table.
#include "a6/pyr.h"

#include "core/assert.h"
#include "core/cpu.h"
#include "core/rows.h"

namespace orucv {
namespace a6 {
namespace {

using namespace pyr_scalar;

// The scalar twins as row kernels. They store plainly; stream is a hint for
// the SIMD kernels, and `next` a row they fetch ahead.
struct ScalarRows {
    template <int CH>
    static void down_h8(const uint8_t* src, int w, uint16_t* dst, uint8_t bias, const uint8_t*) {
        down_h8_range<CH>(src, w, dst, bias, 0, w / 2);
    }
    static void down_v8(const uint16_t* const* rows, int n, uint8_t* dst, uint8_t bias, bool) {
        down_v8_range(rows, 0, n, dst, bias);
    }
    template <int CH>
    static void down_h32(const float* src, int w, float* dst, const float*) {
        down_h32_range<CH>(src, w, dst, 0, w / 2);
    }
    static void down_v32(const float* const* rows, int form, int n, float* dst, bool) {
        down_v32_range(rows, form, 0, n, dst);
    }
    template <int CH>
    static void up_h8(const uint8_t* src, int w, uint16_t* dst, uint8_t bias, const uint8_t*) {
        up_h8_range<CH>(src, w, dst, bias, 0, w);
    }
    static void up_v8(const uint16_t* a, const uint16_t* c, const uint16_t* b, int n, uint8_t* even, uint8_t* odd,
                      uint8_t bias, bool) {
        up_v8_range(a, c, b, 0, n, even, odd, bias);
    }
    template <int CH>
    static void up_h32(const float* src, int w, float* dst, const float*) {
        up_h32_range<CH>(src, w, dst, 0, w);
    }
    static void up_v32(const float* a, const float* c, const float* b, int band, int n, float* even, float* odd,
                       bool) {
        up_v32_range(a, c, b, band, 0, n, even, odd);
    }
};

}  // namespace

const PyrKernels pyr_kernels_scalar = pyr_table<ScalarRows>();

const PyrKernels& pyr_kernels() { return ORUCV_CHOOSE(pyr_kernels); }

namespace {

// Ring row sizes in bytes, as the buffer-size queries define them (each the
// byte count rounded up to a multiple of 16). PyrDown keeps 6 rows of
// w/2 * ch sums (16-bit for 8-bit types, float for 32f) plus slack; PyrUp 3
// rows with room for 2w * ch four-byte values plus slack, of which the 8-bit
// rows use half: their sums never exceed 8 * 255 and are kept in 16 bits.
inline long long pyr_down_row_bytes(long long w, int ch, bool is_float) {
    const long long b = is_float ? 4 : 2, s = is_float ? 96 : 48;
    return (ch * (w / 2 * b + s) + 15) / 16 * 16;
}
inline long long pyr_up_row_bytes(long long w, int ch) { return (ch * (w * 8 + 96) + 15) / 16 * 16; }
constexpr int kPyrDownRingRows = 6;
constexpr int kPyrUpRingRows = 3;

// Destination rows bypass the caches (non-temporal stores) when source and
// destination together pass this size: images that large would evict each
// other from the last-level cache anyway, and streaming saves reading every
// destination line before it is written.
constexpr long long kPyrStreamBytes = 16ll << 20;
inline bool pyr_stream(long long src_bytes, long long dst_bytes) {
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
inline PyrRing pyr_ring(uint8_t* buffer, long long row_bytes) {
    const uintptr_t p = (reinterpret_cast<uintptr_t>(buffer) + 15) & ~static_cast<uintptr_t>(15);
    return {reinterpret_cast<uint8_t*>(p), static_cast<size_t>(row_bytes)};
}

// PyrDown: each source row is filtered horizontally once into ring slot
// row % 6; output row y combines the filtered rows 2y - 2 .. 2y + 2,
// mirrored at the top and bottom. w and h are even and at least 2.
template <class S, class A, class HRow, class VRow>
void pyr_down_image(const S* src, int srcStep, S* dst, int dstStep, int h, uint8_t* buffer,
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
void pyr_up_image(const S* src, int srcStep, S* dst, int dstStep, int h, uint8_t* buffer,
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

// The whole 8-bit PyrDown: 16-bit sums in the ring, bias 0x80 for 8s.
int pyr_down_8(const uint8_t* src, int srcStep, uint8_t* dst, int dstStep, OruSize roi, uint8_t* buffer, int ch,
               uint8_t bias) {
    const PyrKernels& k = pyr_kernels();
    const int w = roi.width, form = channel_form(ch);
    const int n = w / 2 * ch;
    const bool stream = pyr_stream(static_cast<long long>(w) * roi.height * ch, static_cast<long long>(n) * (roi.height / 2));
    pyr_down_image<uint8_t, uint16_t>(
        src, srcStep, dst, dstStep, roi.height, buffer, pyr_down_row_bytes(w, ch, false),
        [&](const uint8_t* s, uint16_t* d, const uint8_t* next) { k.down_h8[form](s, w, d, bias, next); },
        [&](const uint16_t* const* rows, int, uint8_t* d) { k.down_v8(rows, n, d, bias, stream); });
    return oruStsOk;
}

// PyrUp of 8-bit samples: 16-bit sums in the ring (at most 8 * 255 after
// the horizontal pass), bias 0x80 for 8s.
OruStatus pyr_up_8(const uint8_t* src, int srcStep, uint8_t* dst, int dstStep, OruSize roi, uint8_t* buffer, int Cs,
                   uint8_t bias) {
    ORUCV_ASSERT(Cs == 1 || Cs == 3, "src/orcvpyr", "ownPyrUpG5x5_8");
    const PyrKernels& k = pyr_kernels();
    const int w = roi.width, form = channel_form(Cs), n = 2 * w * Cs;
    const long long src_bytes = static_cast<long long>(w) * roi.height * Cs;
    const bool stream = pyr_stream(src_bytes, 4 * src_bytes);
    pyr_up_image<uint8_t, uint16_t>(
        src, srcStep, dst, dstStep, roi.height, buffer, pyr_up_row_bytes(w, Cs),
        [&](const uint8_t* s, uint16_t* d, const uint8_t* next) { k.up_h8[form](s, w, d, bias, next); },
        [&](const uint16_t* a, const uint16_t* c, const uint16_t* b, int, uint8_t* even, uint8_t* odd) {
            k.up_v8(a, c, b, n, even, odd, bias, stream);
        });
    return oruStsOk;
}

const uint8_t* bytes(const int8_t* p) { return reinterpret_cast<const uint8_t*>(p); }
uint8_t* bytes(int8_t* p) { return reinterpret_cast<uint8_t*>(p); }

}  // namespace

int a6_orcvPyrDownG5x5_8u(const uint8_t* pSrc, int srcStep, uint8_t* pDst, int dstStep, OruSize roi, uint8_t* pBuffer,
                          int ch) {
    return pyr_down_8(pSrc, srcStep, pDst, dstStep, roi, pBuffer, ch, 0);
}

int a6_orcvPyrDownG5x5_8s(const int8_t* pSrc, int srcStep, int8_t* pDst, int dstStep, OruSize roi, uint8_t* pBuffer,
                          int ch) {
    return pyr_down_8(bytes(pSrc), srcStep, bytes(pDst), dstStep, roi, pBuffer, ch, 0x80);
}

OruStatus ownPyrUpG5x5_8u(const uint8_t* pSrc, int srcStep, uint8_t* pDst, int dstStep, OruSize roi, uint8_t* pBuffer,
                          int Cs) {
    return pyr_up_8(pSrc, srcStep, pDst, dstStep, roi, pBuffer, Cs, 0);
}

OruStatus ownPyrUpG5x5_8s(const int8_t* pSrc, int srcStep, int8_t* pDst, int dstStep, OruSize roi, uint8_t* pBuffer,
                          int Cs) {
    return pyr_up_8(bytes(pSrc), srcStep, bytes(pDst), dstStep, roi, pBuffer, Cs, 0x80);
}

OruStatus ownPyrDownG5x5_32f(const float* pSrc, int srcStep, float* pDst, int dstStep, OruSize roi, uint8_t* pBuffer,
                             int Cs) {
    ORUCV_ASSERT(Cs == 1 || Cs == 3, "src/orcvpyr32f", "ownPyrDownG5x5_32f");
    const PyrKernels& k = pyr_kernels();
    const int w = roi.width, form = channel_form(Cs), n = w / 2 * Cs;
    const bool stream = pyr_stream(4ll * w * roi.height * Cs, 4ll * n * (roi.height / 2));
    pyr_down_image<float, float>(
        pSrc, srcStep, pDst, dstStep, roi.height, pBuffer, pyr_down_row_bytes(w, Cs, true),
        [&](const float* s, float* d, const float* next) { k.down_h32[form](s, w, d, next); },
        [&](const float* const* rows, int vform, float* d) { k.down_v32(rows, vform, n, d, stream); });
    return oruStsOk;
}

OruStatus ownPyrUpG5x5_32f(const float* pSrc, int srcStep, float* pDst, int dstStep, OruSize roi, uint8_t* pBuffer,
                           int Cs) {
    ORUCV_ASSERT(Cs == 1 || Cs == 3, "src/orcvpyr32f", "ownPyrUpG5x5_32f");
    const PyrKernels& k = pyr_kernels();
    const int w = roi.width, form = channel_form(Cs), n = 2 * w * Cs;
    const long long src_bytes = 4ll * w * roi.height * Cs;
    const bool stream = pyr_stream(src_bytes, 4 * src_bytes);
    pyr_up_image<float, float>(
        pSrc, srcStep, pDst, dstStep, roi.height, pBuffer, pyr_up_row_bytes(w, Cs),
        [&](const float* s, float* d, const float* next) { k.up_h32[form](s, w, d, next); },
        [&](const float* a, const float* c, const float* b, int band, float* even, float* odd) {
            k.up_v32(a, c, b, band, n, even, odd, stream);
        });
    return oruStsOk;
}

OruStatus pyramid_down(const uint8_t* src, int srcStep, uint8_t* dst, int dstStep, OruSize roi, uint8_t* buffer, int ch) {
    return a6_orcvPyrDownG5x5_8u(src, srcStep, dst, dstStep, roi, buffer, ch);
}
OruStatus pyramid_down(const int8_t* src, int srcStep, int8_t* dst, int dstStep, OruSize roi, uint8_t* buffer, int ch) {
    return a6_orcvPyrDownG5x5_8s(src, srcStep, dst, dstStep, roi, buffer, ch);
}
OruStatus pyramid_down(const float* src, int srcStep, float* dst, int dstStep, OruSize roi, uint8_t* buffer, int ch) {
    return ownPyrDownG5x5_32f(src, srcStep, dst, dstStep, roi, buffer, ch);
}
OruStatus pyramid_up(const uint8_t* src, int srcStep, uint8_t* dst, int dstStep, OruSize roi, uint8_t* buffer, int ch) {
    return ownPyrUpG5x5_8u(src, srcStep, dst, dstStep, roi, buffer, ch);
}
OruStatus pyramid_up(const int8_t* src, int srcStep, int8_t* dst, int dstStep, OruSize roi, uint8_t* buffer, int ch) {
    return ownPyrUpG5x5_8s(src, srcStep, dst, dstStep, roi, buffer, ch);
}
OruStatus pyramid_up(const float* src, int srcStep, float* dst, int dstStep, OruSize roi, uint8_t* buffer, int ch) {
    return ownPyrUpG5x5_32f(src, srcStep, dst, dstStep, roi, buffer, ch);
}

long long pyramid_buffer_bytes(bool down, int width, int channels, bool is_float) {
    return down ? kPyrDownRingRows * pyr_down_row_bytes(width, channels, is_float)
                : kPyrUpRingRows * pyr_up_row_bytes(width, channels);
}

}  // namespace a6
}  // namespace orucv
