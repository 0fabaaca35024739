// SSE2 pyramid row kernels: the blocks of pyr_sse.h between scalar edges
// and tails.
#include "a6/pyr_sse.h"

namespace orucv {
namespace a6 {
namespace {

using namespace pyr_scalar;
using namespace pyr_sse;

template <int CH, bool kSigned>
void down_h8_run(const uint8_t* s, int w, uint16_t* d, ptrdiff_t ahead) {
    const uint8_t bias = kSigned ? 0x80 : 0;
    down_h8_range<CH>(s, w, d, bias, 0, 1);
    const int x = CH == 1 ? down_h8_c1_blocks<kSigned>(s, w, d, 1, ahead) : down_h8_c3_blocks<kSigned>(s, w, d, 1, ahead);
    down_h8_range<CH>(s, w, d, bias, x, w / 2);
}
template <int CH>
void down_h8(const uint8_t* s, int w, uint16_t* d, uint8_t bias, const uint8_t* next) {
    const ptrdiff_t ahead = rows_apart(s, next);
    bias ? down_h8_run<CH, true>(s, w, d, ahead) : down_h8_run<CH, false>(s, w, d, ahead);
}

// Vertical kernels: when streaming, the scalar twin writes up to the first
// 16-byte boundary and the blocks stream from there.
template <bool kSigned>
void down_v8_run(const uint16_t* const* r, int n, uint8_t* d, bool stream) {
    const uint8_t bias = kSigned ? 0x80 : 0;
    int i = 0;
    const int head = stream ? stream_start(d, d, n, 16) : -1;
    if (head >= 0) {
        down_v8_range(r, 0, head, d, bias);
        i = down_v8_blocks<kSigned, true>(r, n, d, head);
        _mm_sfence();
    }
    down_v8_range(r, down_v8_blocks<kSigned>(r, n, d, i), n, d, bias);
}
void down_v8(const uint16_t* const* r, int n, uint8_t* d, uint8_t bias, bool stream) {
    bias ? down_v8_run<true>(r, n, d, stream) : down_v8_run<false>(r, n, d, stream);
}

template <int CH>
void down_h32(const float* s, int w, float* d, const float* next) {
    const ptrdiff_t ahead = rows_apart(s, next);
    down_h32_range<CH>(s, w, d, 0, 1);
    const int x = CH == 1 ? down_h32_c1_blocks(s, w, d, 1, ahead) : down_h32_c3_blocks(s, w, d, 1, ahead);
    down_h32_range<CH>(s, w, d, x, w / 2);
}

template <int kForm>
void down_v32_run(const float* const* r, int n, float* d, bool stream) {
    int i = 0;
    const int head = stream ? stream_start(d, d, n, 16) : -1;
    if (head >= 0) {
        down_v32_range(r, kForm, 0, head, d);
        i = down_v32_blocks<kForm, true>(r, n, d, head);
        _mm_sfence();
    }
    down_v32_range(r, kForm, down_v32_blocks<kForm>(r, n, d, i), n, d);
}
void down_v32(const float* const* r, int form, int n, float* d, bool stream) {
    with_form(form, [&](auto kForm) { down_v32_run<decltype(kForm)::value>(r, n, d, stream); });
}

template <int CH, bool kSigned>
void up_h8_run(const uint8_t* s, int w, uint16_t* d, ptrdiff_t ahead) {
    const uint8_t bias = kSigned ? 0x80 : 0;
    up_h8_range<CH>(s, w, d, bias, 0, 1);
    const int j = CH == 1 ? up_h8_c1_blocks<kSigned>(s, w, d, 1, ahead) : up_h8_c3_blocks<kSigned>(s, w, d, 1, ahead);
    up_h8_range<CH>(s, w, d, bias, j, w);
}
template <int CH>
void up_h8(const uint8_t* s, int w, uint16_t* d, uint8_t bias, const uint8_t* next) {
    const ptrdiff_t ahead = rows_apart(s, next);
    bias ? up_h8_run<CH, true>(s, w, d, ahead) : up_h8_run<CH, false>(s, w, d, ahead);
}

template <bool kSigned>
void up_v8_run(const uint16_t* a, const uint16_t* c, const uint16_t* b, int n, uint8_t* e, uint8_t* o, bool stream) {
    const uint8_t bias = kSigned ? 0x80 : 0;
    int i = 0;
    const int head = stream ? stream_start(e, o, n, 16) : -1;
    if (head >= 0) {
        up_v8_range(a, c, b, 0, head, e, o, bias);
        i = up_v8_blocks<kSigned, true>(a, c, b, n, e, o, head);
        _mm_sfence();
    }
    up_v8_range(a, c, b, up_v8_blocks<kSigned>(a, c, b, n, e, o, i), n, e, o, bias);
}
void up_v8(const uint16_t* a, const uint16_t* c, const uint16_t* b, int n, uint8_t* e, uint8_t* o, uint8_t bias,
           bool stream) {
    bias ? up_v8_run<true>(a, c, b, n, e, o, stream) : up_v8_run<false>(a, c, b, n, e, o, stream);
}

template <int CH>
void up_h32(const float* s, int w, float* d, const float* next) {
    const ptrdiff_t ahead = rows_apart(s, next);
    up_h32_range<CH>(s, w, d, 0, 1);
    const int j = CH == 1 ? up_h32_c1_blocks(s, w, d, 1, ahead) : up_h32_c3_blocks(s, w, d, 1, ahead);
    up_h32_range<CH>(s, w, d, j, w);
}

template <int kBand>
void up_v32_run(const float* a, const float* c, const float* b, int n, float* e, float* o, bool stream) {
    int i = 0;
    const int head = stream ? stream_start(e, o, n, 16) : -1;
    if (head >= 0) {
        up_v32_range(a, c, b, kBand, 0, head, e, o);
        i = up_v32_blocks<kBand, true>(a, c, b, n, e, o, head);
        _mm_sfence();
    }
    up_v32_range(a, c, b, kBand, up_v32_blocks<kBand>(a, c, b, n, e, o, i), n, e, o);
}
void up_v32(const float* a, const float* c, const float* b, int band, int n, float* e, float* o, bool stream) {
    with_band(band, [&](auto kBand) { up_v32_run<decltype(kBand)::value>(a, c, b, n, e, o, stream); });
}

}  // namespace

const PyrKernels pyr_kernels_sse2 = {{down_h8<1>, down_h8<3>}, {down_h32<1>, down_h32<3>}, down_v8, down_v32,
                                     {up_h8<1>, up_h8<3>},     {up_h32<1>, up_h32<3>},     up_v8,   up_v32};

}  // namespace a6
}  // namespace orucv
