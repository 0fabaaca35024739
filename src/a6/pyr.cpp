// Scalar pyramid row kernels (the twins every SIMD path must match), the
// kernel choice, and the image-level 8-bit PyrDown kernels.
#include "a6/pyr.h"

#include "core/cpu.h"

namespace orucv {
namespace a6 {
namespace {

using namespace pyr_scalar;

template <int CH>
void down_h8(const uint8_t* src, int w, uint16_t* dst, uint8_t bias, const uint8_t*) {
    down_h8_range<CH>(src, w, dst, bias, 0, w / 2);
}
// The scalar twins store plainly; stream is a hint for the SIMD kernels.
void down_v8(const uint16_t* const* rows, int n, uint8_t* dst, uint8_t bias, bool) {
    down_v8_range(rows, 0, n, dst, bias);
}
template <int CH>
void down_h32(const float* src, int w, float* dst, const float*) {
    down_h32_range<CH>(src, w, dst, 0, w / 2);
}
void down_v32(const float* const* rows, int form, int n, float* dst, bool) {
    down_v32_range(rows, form, 0, n, dst);
}
template <int CH>
void up_h8(const uint8_t* src, int w, uint16_t* dst, uint8_t bias, const uint8_t*) {
    up_h8_range<CH>(src, w, dst, bias, 0, w);
}
void up_v8(const uint16_t* a, const uint16_t* c, const uint16_t* b, int n, uint8_t* even, uint8_t* odd,
           uint8_t bias, bool) {
    up_v8_range(a, c, b, 0, n, even, odd, bias);
}
template <int CH>
void up_h32(const float* src, int w, float* dst, const float*) {
    up_h32_range<CH>(src, w, dst, 0, w);
}
void up_v32(const float* a, const float* c, const float* b, int band, int n, float* even, float* odd, bool) {
    up_v32_range(a, c, b, band, 0, n, even, odd);
}

// The whole 8-bit PyrDown: 16-bit sums in the ring, bias 0x80 for 8s.
int pyr_down_8(const uint8_t* src, int srcStep, uint8_t* dst, int dstStep, OruSize roi, uint8_t* buffer, int ch,
               uint8_t bias) {
    const PyrKernels& k = pyr_kernels();
    const int w = roi.width, three = ch == 3;
    const int n = w / 2 * ch;
    const bool stream = pyr_stream(static_cast<long long>(w) * roi.height * ch, static_cast<long long>(n) * (roi.height / 2));
    pyr_down_image<uint8_t, uint16_t>(
        src, srcStep, dst, dstStep, roi.height, buffer, pyr_down_row_bytes(w, ch, false),
        [&](const uint8_t* s, uint16_t* d, const uint8_t* next) { k.down_h8[three](s, w, d, bias, next); },
        [&](const uint16_t* const* rows, int, uint8_t* d) { k.down_v8(rows, n, d, bias, stream); });
    return oruStsOk;
}

}  // namespace

const PyrKernels pyr_kernels_scalar = {{down_h8<1>, down_h8<3>}, {down_h32<1>, down_h32<3>}, down_v8, down_v32,
                                       {up_h8<1>, up_h8<3>},     {up_h32<1>, up_h32<3>},     up_v8,   up_v32};

const PyrKernels& pyr_kernels() { return ORUCV_CHOOSE(pyr_kernels); }

int a6_orcvPyrDownG5x5_8u(const uint8_t* pSrc, int srcStep, uint8_t* pDst, int dstStep, OruSize roi,
                          uint8_t* pBuffer, int ch) {
    return pyr_down_8(pSrc, srcStep, pDst, dstStep, roi, pBuffer, ch, 0);
}

int a6_orcvPyrDownG5x5_8s(const int8_t* pSrc, int srcStep, int8_t* pDst, int dstStep, OruSize roi,
                          uint8_t* pBuffer, int ch) {
    return pyr_down_8(reinterpret_cast<const uint8_t*>(pSrc), srcStep, reinterpret_cast<uint8_t*>(pDst), dstStep,
                      roi, pBuffer, ch, 0x80);
}

}  // namespace a6
}  // namespace orucv
