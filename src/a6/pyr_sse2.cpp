// SSE2 pyramid row kernels: the blocks of pyr_sse.h between scalar edges
// and tails.
#include "a6/pyr_sse.h"

namespace orucv {
namespace a6 {
namespace {

using namespace pyr_scalar;
using namespace pyr_sse;

template <int CH, bool kSigned>
void down_h8_run(const uint8_t* s, int w, uint16_t* d) {
    const uint8_t bias = kSigned ? 0x80 : 0;
    down_h8_range<CH>(s, w, d, bias, 0, 1);
    const int x = CH == 1 ? down_h8_c1_blocks<kSigned>(s, w, d, 1) : down_h8_c3_blocks<kSigned>(s, w, d, 1);
    down_h8_range<CH>(s, w, d, bias, x, w / 2);
}
template <int CH>
void down_h8(const uint8_t* s, int w, uint16_t* d, uint8_t bias) {
    bias ? down_h8_run<CH, true>(s, w, d) : down_h8_run<CH, false>(s, w, d);
}

void down_v8(const uint16_t* const* r, int n, uint8_t* d, uint8_t bias) {
    const int i = bias ? down_v8_blocks<true>(r, n, d, 0) : down_v8_blocks<false>(r, n, d, 0);
    down_v8_range(r, i, n, d, bias);
}

template <int CH>
void down_h32(const float* s, int w, float* d) {
    down_h32_range<CH>(s, w, d, 0, 1);
    const int x = CH == 1 ? down_h32_c1_blocks(s, w, d, 1) : down_h32_c3_blocks(s, w, d, 1);
    down_h32_range<CH>(s, w, d, x, w / 2);
}

template <int kForm>
void down_v32_run(const float* const* r, int n, float* d) {
    down_v32_range(r, kForm, down_v32_blocks<kForm>(r, n, d, 0), n, d);
}
void down_v32(const float* const* r, int form, int n, float* d) {
    switch (form) {
    case kDownFirst: return down_v32_run<kDownFirst>(r, n, d);
    case kDownLast: return down_v32_run<kDownLast>(r, n, d);
    case kDownPair: return down_v32_run<kDownPair>(r, n, d);
    default: return down_v32_run<kDownInner>(r, n, d);
    }
}

template <int CH, bool kSigned>
void up_h8_run(const uint8_t* s, int w, uint16_t* d) {
    const uint8_t bias = kSigned ? 0x80 : 0;
    up_h8_range<CH>(s, w, d, bias, 0, 1);
    const int j = CH == 1 ? up_h8_c1_blocks<kSigned>(s, w, d, 1) : up_h8_c3_blocks<kSigned>(s, w, d, 1);
    up_h8_range<CH>(s, w, d, bias, j, w);
}
template <int CH>
void up_h8(const uint8_t* s, int w, uint16_t* d, uint8_t bias) {
    bias ? up_h8_run<CH, true>(s, w, d) : up_h8_run<CH, false>(s, w, d);
}

void up_v8(const uint16_t* a, const uint16_t* c, const uint16_t* b, int n, uint8_t* e, uint8_t* o, uint8_t bias) {
    const int i = bias ? up_v8_blocks<true>(a, c, b, n, e, o, 0) : up_v8_blocks<false>(a, c, b, n, e, o, 0);
    up_v8_range(a, c, b, i, n, e, o, bias);
}

template <int CH>
void up_h32(const float* s, int w, float* d) {
    up_h32_range<CH>(s, w, d, 0, 1);
    const int j = CH == 1 ? up_h32_c1_blocks(s, w, d, 1) : up_h32_c3_blocks(s, w, d, 1);
    up_h32_range<CH>(s, w, d, j, w);
}

template <int kBand>
void up_v32_run(const float* a, const float* c, const float* b, int n, float* e, float* o) {
    up_v32_range(a, c, b, kBand, up_v32_blocks<kBand>(a, c, b, n, e, o, 0), n, e, o);
}
void up_v32(const float* a, const float* c, const float* b, int band, int n, float* e, float* o) {
    switch (band) {
    case kUpFirst | kUpLast: return up_v32_run<kUpFirst | kUpLast>(a, c, b, n, e, o);
    case kUpFirst: return up_v32_run<kUpFirst>(a, c, b, n, e, o);
    case kUpLast: return up_v32_run<kUpLast>(a, c, b, n, e, o);
    default: return up_v32_run<0>(a, c, b, n, e, o);
    }
}

}  // namespace

const PyrKernels pyr_kernels_sse2 = {{down_h8<1>, down_h8<3>}, {down_h32<1>, down_h32<3>}, down_v8, down_v32,
                                     {up_h8<1>, up_h8<3>},     {up_h32<1>, up_h32<3>},     up_v8,   up_v32};

}  // namespace a6
}  // namespace orucv
