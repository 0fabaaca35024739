// AVX2 pyramid row kernels: 256-bit loops first, then the SSE2 blocks of
// pyr_sse.h, then the scalar twin for edges and tails.
#include <immintrin.h>

#include "a6/pyr_sse.h"

namespace orucv {
namespace a6 {
namespace {

using namespace pyr_scalar;

inline __m256i load(const void* p) { return _mm256_loadu_si256(static_cast<const __m256i*>(p)); }
inline void store(void* p, __m256i v) { _mm256_storeu_si256(static_cast<__m256i*>(p), v); }
// Two 16-byte loads into the low and high lanes.
inline __m256i load2(const void* lo, const void* hi) {
    return _mm256_inserti128_si256(_mm256_castsi128_si256(pyr_sse::load(lo)), pyr_sse::load(hi), 1);
}
inline __m256i bias8(bool is_signed) { return _mm256_set1_epi8(is_signed ? static_cast<char>(0x80) : 0); }

template <bool kStream>
inline void put(uint8_t* p, __m256i v) {
    if (kStream) _mm256_stream_si256(reinterpret_cast<__m256i*>(p), v);
    else store(p, v);
}
template <bool kStream>
inline void put(float* p, __m256 v) {
    if (kStream) _mm256_stream_ps(p, v);
    else _mm256_storeu_ps(p, v);
}

inline __m256i sum5_epi16(__m256i l2, __m256i l1, __m256i c, __m256i r1, __m256i r2) {
    const __m256i six = _mm256_set1_epi16(6);
    const __m256i t = _mm256_add_epi16(_mm256_mullo_epi16(c, six), _mm256_slli_epi16(_mm256_add_epi16(l1, r1), 2));
    return _mm256_add_epi16(_mm256_add_epi16(t, l2), r2);
}

// --- PyrDown, 8-bit.

// Sixteen outputs per step; pairs split into even and odd samples as in SSE2.
template <bool kSigned>
int down_h8_c1_blocks(const uint8_t* s, int w, uint16_t* d, int x, ptrdiff_t ahead) {
    const __m256i bias = bias8(kSigned), low = _mm256_set1_epi16(0xFF);
    for (const int last = (w - 34) / 2; x <= last; x += 16) {
        pyr_sse::fetch_ahead(s + 2 * x, ahead);
        const __m256i vm = _mm256_xor_si256(load(s + 2 * x - 2), bias);
        const __m256i v0 = _mm256_xor_si256(load(s + 2 * x), bias);
        const __m256i vp = _mm256_xor_si256(load(s + 2 * x + 2), bias);
        store(d + x, sum5_epi16(_mm256_and_si256(vm, low), _mm256_srli_epi16(vm, 8), _mm256_and_si256(v0, low),
                                _mm256_srli_epi16(v0, 8), _mm256_and_si256(vp, low)));
    }
    return x;
}

// Four output pixels per step, two per 128-bit lane, channels of a pair in
// 16-bit slots 0..5. Lane windows start 6 bytes before the lane's first
// centre pixel (taps -2, -1, 0) and 3 bytes after it (taps +1, +2); byte
// shuffles pick the samples and zero-extend them.
template <bool kSigned>
int down_h8_c3_blocks(const uint8_t* s, int w, uint16_t* d, int x, ptrdiff_t ahead) {
    const __m256i bias = bias8(kSigned);
    const char z = static_cast<char>(0x80);
    const __m256i first = _mm256_setr_epi8(0, z, 1, z, 2, z, 6, z, 7, z, 8, z, z, z, z, z,   //
                                           0, z, 1, z, 2, z, 6, z, 7, z, 8, z, z, z, z, z);
    const __m256i second = _mm256_setr_epi8(3, z, 4, z, 5, z, 9, z, 10, z, 11, z, z, z, z, z,  //
                                            3, z, 4, z, 5, z, 9, z, 10, z, 11, z, z, z, z, z);
    const __m256i third = _mm256_setr_epi8(6, z, 7, z, 8, z, 12, z, 13, z, 14, z, z, z, z, z,  //
                                           6, z, 7, z, 8, z, 12, z, 13, z, 14, z, z, z, z, z);
    // Outputs up to x + 3 stay off the right edge form; the last window ends
    // at byte 6x + 30.
    const int off_edge = w / 2 - 5, in_row = (3 * w - 31) / 6;
    for (const int last = off_edge < in_row ? off_edge : in_row; x <= last; x += 4) {
        const uint8_t* p = s + 6 * static_cast<ptrdiff_t>(x);
        pyr_sse::fetch_ahead(p, ahead);
        const __m256i a = _mm256_xor_si256(load2(p - 6, p + 6), bias);
        const __m256i b = _mm256_xor_si256(load2(p + 3, p + 15), bias);
        const __m256i h = sum5_epi16(_mm256_shuffle_epi8(a, first), _mm256_shuffle_epi8(a, second),
                                     _mm256_shuffle_epi8(a, third), _mm256_shuffle_epi8(b, first),
                                     _mm256_shuffle_epi8(b, second));
        uint16_t* q = d + 3 * static_cast<ptrdiff_t>(x);
        pyr_sse::store(q, _mm256_castsi256_si128(h));
        pyr_sse::store(q + 6, _mm256_extracti128_si256(h, 1));
    }
    return x;
}

inline __m256i down_v8_lanes(const uint16_t* const* r, int i) {
    const __m256i sum = sum5_epi16(load(r[0] + i), load(r[1] + i), load(r[2] + i), load(r[3] + i), load(r[4] + i));
    return _mm256_srli_epi16(_mm256_add_epi16(sum, _mm256_set1_epi16(128)), 8);
}

// Packs two registers of 16-bit results into 32 bytes in order.
inline __m256i pack_ordered(__m256i a, __m256i b) {
    return _mm256_permute4x64_epi64(_mm256_packus_epi16(a, b), _MM_SHUFFLE(3, 1, 2, 0));
}

template <bool kSigned, bool kStream>
int down_v8_blocks(const uint16_t* const* rows, int n, uint8_t* d, int i) {
    // A local copy of the row pointers stays in registers across the stores.
    const uint16_t* const r[5] = {rows[0], rows[1], rows[2], rows[3], rows[4]};
    const __m256i bias = bias8(kSigned);
    for (; i <= n - 32; i += 32)
        put<kStream>(d + i, _mm256_xor_si256(pack_ordered(down_v8_lanes(r, i), down_v8_lanes(r, i + 16)), bias));
    return i;
}

// --- PyrUp, 8-bit.

template <bool kSigned>
int up_h8_c1_blocks(const uint8_t* s, int w, uint16_t* d, int j, ptrdiff_t ahead) {
    const __m128i bias = pyr_sse::bias8(kSigned);
    const __m256i six = _mm256_set1_epi16(6);
    for (; j <= w - 17; j += 16) {
        pyr_sse::fetch_ahead(s + j, ahead);
        const __m256i l = _mm256_cvtepu8_epi16(_mm_xor_si128(pyr_sse::load(s + j - 1), bias));
        const __m256i c = _mm256_cvtepu8_epi16(_mm_xor_si128(pyr_sse::load(s + j), bias));
        const __m256i r = _mm256_cvtepu8_epi16(_mm_xor_si128(pyr_sse::load(s + j + 1), bias));
        const __m256i even = _mm256_add_epi16(_mm256_add_epi16(l, _mm256_mullo_epi16(c, six)), r);
        const __m256i odd = _mm256_slli_epi16(_mm256_add_epi16(c, r), 2);
        const __m256i lo = _mm256_unpacklo_epi16(even, odd), hi = _mm256_unpackhi_epi16(even, odd);
        store(d + 2 * j, _mm256_permute2x128_si256(lo, hi, 0x20));
        store(d + 2 * j + 16, _mm256_permute2x128_si256(lo, hi, 0x31));
    }
    return j;
}

template <bool kSigned, bool kStream>
int up_v8_blocks(const uint16_t* a, const uint16_t* c, const uint16_t* b, int n, uint8_t* e, uint8_t* o, int i) {
    const __m256i bias = bias8(kSigned), six = _mm256_set1_epi16(6), round = _mm256_set1_epi16(32);
    for (; i <= n - 32; i += 32) {
        __m256i even[2], odd[2];
        for (int half = 0; half < 2; ++half) {
            const int k = i + 16 * half;
            const __m256i cv = load(c + k), bv = load(b + k);
            even[half] = _mm256_srli_epi16(
                _mm256_add_epi16(_mm256_add_epi16(_mm256_add_epi16(load(a + k), _mm256_mullo_epi16(cv, six)), bv),
                                 round),
                6);
            odd[half] = _mm256_srli_epi16(_mm256_add_epi16(_mm256_slli_epi16(_mm256_add_epi16(cv, bv), 2), round), 6);
        }
        put<kStream>(e + i, _mm256_xor_si256(pack_ordered(even[0], even[1]), bias));
        put<kStream>(o + i, _mm256_xor_si256(pack_ordered(odd[0], odd[1]), bias));
    }
    return i;
}

// --- 32f.

inline __m256 mul(float k, __m256 v) { return _mm256_mul_ps(_mm256_set1_ps(k), v); }
inline __m256 add(__m256 a, __m256 b) { return _mm256_add_ps(a, b); }

// The scale, with any NaN replaced by the quiet NaN of the scalar twin.
inline __m256 scaled_ps(__m256 sum, float scale) {
    const __m256 v = _mm256_mul_ps(sum, _mm256_set1_ps(scale));
    const __m256 nan = _mm256_castsi256_ps(_mm256_set1_epi32(static_cast<int>(kQuietNan)));
    return _mm256_blendv_ps(v, nan, _mm256_cmp_ps(v, v, _CMP_UNORD_Q));
}

inline __m256 down_inner_ps(__m256 l2, __m256 l1, __m256 c, __m256 r1, __m256 r2) {
    return add(add(add(mul(6.0f, c), mul(4.0f, add(l1, r1))), l2), r2);
}
inline __m256 down_first_ps(__m256 c, __m256 r1, __m256 r2) {
    return mul(2.0f, add(add(mul(3.0f, c), mul(4.0f, r1)), r2));
}
inline __m256 down_last_ps(__m256 l2, __m256 l1, __m256 c, __m256 r1) {
    return add(add(mul(7.0f, c), mul(4.0f, add(l1, r1))), l2);
}
inline __m256 down_pair_ps(__m256 c, __m256 r1) { return mul(8.0f, add(c, r1)); }
inline __m256 up_even_ps(__m256 l, __m256 c, __m256 r) { return add(add(l, mul(6.0f, c)), r); }
inline __m256 up_odd_ps(__m256 c, __m256 r) { return mul(4.0f, add(c, r)); }
inline __m256 up_first_ps(__m256 c, __m256 r) { return mul(2.0f, add(mul(3.0f, c), r)); }
inline __m256 up_penult_ps(__m256 l, __m256 c) { return add(l, mul(7.0f, c)); }
inline __m256 up_last_ps(__m256 c) { return mul(8.0f, c); }

// Eight outputs per step. In-lane shuffles split even and odd samples in
// the lane order x, x+1, x+4, x+5 | x+2, x+3, x+6, x+7 for every tap alike;
// one 64-bit permute restores the order before the store.
int down_h32_c1_blocks(const float* s, int w, float* d, int x, ptrdiff_t ahead) {
    for (const int last = (w - 18) / 2; x <= last; x += 8) {
        const float* q = s + 2 * static_cast<ptrdiff_t>(x);
        pyr_sse::fetch_ahead(q, ahead);
        const __m256 m0 = _mm256_loadu_ps(q - 2), m1 = _mm256_loadu_ps(q + 6);
        const __m256 c0 = _mm256_loadu_ps(q), c1 = _mm256_loadu_ps(q + 8);
        const __m256 p0 = _mm256_loadu_ps(q + 2), p1 = _mm256_loadu_ps(q + 10);
        const __m256 h = down_inner_ps(_mm256_shuffle_ps(m0, m1, 0x88), _mm256_shuffle_ps(m0, m1, 0xDD),
                                       _mm256_shuffle_ps(c0, c1, 0x88), _mm256_shuffle_ps(c0, c1, 0xDD),
                                       _mm256_shuffle_ps(p0, p1, 0x88));
        _mm256_storeu_ps(d + x, _mm256_castpd_ps(_mm256_permute4x64_pd(_mm256_castps_pd(h), _MM_SHUFFLE(3, 1, 2, 0))));
    }
    return x;
}

// Two output pixels per step, one per 128-bit lane (channels in slots
// 0..2): tap k pairs source pixels 2x + k and 2x + 2 + k. Every source
// pixel is loaded once, broadcast to both lanes, and the taps are blends;
// three pixels carry over.
int down_h32_c3_blocks(const float* s, int w, float* d, int x, ptrdiff_t ahead) {
    const int last = w / 2 - 3;  // outputs to x + 1 off the edge form, reads to float 6x + 15
    if (x > last) return x;
    const float* q = s + 6 * static_cast<ptrdiff_t>(x);
    auto pixel = [](const float* p) { return _mm256_broadcast_ps(reinterpret_cast<const __m128*>(p)); };
    __m256 p0 = pixel(q - 6), p1 = pixel(q - 3), p2 = pixel(q);
    for (; x <= last; x += 2, q += 12) {
        pyr_sse::fetch_ahead(q, ahead);
        const __m256 p3 = pixel(q + 3), p4 = pixel(q + 6), p5 = pixel(q + 9), p6 = pixel(q + 12);
        const __m256 h = down_inner_ps(_mm256_blend_ps(p0, p2, 0xF0), _mm256_blend_ps(p1, p3, 0xF0),
                                       _mm256_blend_ps(p2, p4, 0xF0), _mm256_blend_ps(p3, p5, 0xF0),
                                       _mm256_blend_ps(p4, p6, 0xF0));
        float* o = d + 3 * static_cast<ptrdiff_t>(x);
        _mm_storeu_ps(o, _mm256_castps256_ps128(h));
        _mm_storeu_ps(o + 3, _mm256_extractf128_ps(h, 1));
        p0 = p4, p1 = p5, p2 = p6;
    }
    return x;
}

template <int kForm, bool kStream>
int down_v32_blocks(const float* const* rows, int n, float* d, int i) {
    const float* const r[5] = {rows[0], rows[1], rows[2], rows[3], rows[4]};
    for (; i <= n - 8; i += 8) {
        __m256 v;
        if (kForm == kDownFirst)
            v = down_first_ps(_mm256_loadu_ps(r[2] + i), _mm256_loadu_ps(r[3] + i), _mm256_loadu_ps(r[4] + i));
        else if (kForm == kDownLast)
            v = down_last_ps(_mm256_loadu_ps(r[0] + i), _mm256_loadu_ps(r[1] + i), _mm256_loadu_ps(r[2] + i),
                             _mm256_loadu_ps(r[3] + i));
        else if (kForm == kDownPair)
            v = down_pair_ps(_mm256_loadu_ps(r[2] + i), _mm256_loadu_ps(r[3] + i));
        else
            v = down_inner_ps(_mm256_loadu_ps(r[0] + i), _mm256_loadu_ps(r[1] + i), _mm256_loadu_ps(r[2] + i),
                              _mm256_loadu_ps(r[3] + i), _mm256_loadu_ps(r[4] + i));
        put<kStream>(d + i, scaled_ps(v, kDownScale));
    }
    return i;
}

int up_h32_c1_blocks(const float* s, int w, float* d, int j, ptrdiff_t ahead) {
    for (; j <= w - 9; j += 8) {
        pyr_sse::fetch_ahead(s + j, ahead);
        const __m256 l = _mm256_loadu_ps(s + j - 1), c = _mm256_loadu_ps(s + j), r = _mm256_loadu_ps(s + j + 1);
        const __m256 even = up_even_ps(l, c, r), odd = up_odd_ps(c, r);
        const __m256 lo = _mm256_unpacklo_ps(even, odd), hi = _mm256_unpackhi_ps(even, odd);
        _mm256_storeu_ps(d + 2 * j, _mm256_permute2f128_ps(lo, hi, 0x20));
        _mm256_storeu_ps(d + 2 * j + 8, _mm256_permute2f128_ps(lo, hi, 0x31));
    }
    return j;
}

template <int kBand, bool kStream>
int up_v32_blocks(const float* a, const float* c, const float* b, int n, float* e, float* o, int i) {
    for (; i <= n - 8; i += 8) {
        const __m256 cv = _mm256_loadu_ps(c + i);
        __m256 ev, ov;
        if (kBand == (kUpFirst | kUpLast)) {
            ev = ov = up_last_ps(cv);
        } else if (kBand == kUpFirst) {
            const __m256 bv = _mm256_loadu_ps(b + i);
            ev = up_first_ps(cv, bv), ov = up_odd_ps(cv, bv);
        } else if (kBand == kUpLast) {
            ev = up_penult_ps(_mm256_loadu_ps(a + i), cv), ov = up_last_ps(cv);
        } else {
            const __m256 bv = _mm256_loadu_ps(b + i);
            ev = up_even_ps(_mm256_loadu_ps(a + i), cv, bv), ov = up_odd_ps(cv, bv);
        }
        put<kStream>(e + i, scaled_ps(ev, kUpScale));
        put<kStream>(o + i, scaled_ps(ov, kUpScale));
    }
    return i;
}

// --- Table entries: wide loop, SSE2 blocks, scalar edges and tails.

template <int CH, bool kSigned>
void down_h8_run(const uint8_t* s, int w, uint16_t* d, ptrdiff_t ahead) {
    const uint8_t bias = kSigned ? 0x80 : 0;
    down_h8_range<CH>(s, w, d, bias, 0, 1);
    int x;
    if (CH == 1)
        x = pyr_sse::down_h8_c1_blocks<kSigned>(s, w, d, down_h8_c1_blocks<kSigned>(s, w, d, 1, ahead), ahead);
    else x = pyr_sse::down_h8_c3_blocks<kSigned>(s, w, d, down_h8_c3_blocks<kSigned>(s, w, d, 1, ahead), ahead);
    down_h8_range<CH>(s, w, d, bias, x, w / 2);
}
template <int CH>
void down_h8(const uint8_t* s, int w, uint16_t* d, uint8_t bias, const uint8_t* next) {
    const ptrdiff_t ahead = pyr_sse::rows_apart(s, next);
    bias ? down_h8_run<CH, true>(s, w, d, ahead) : down_h8_run<CH, false>(s, w, d, ahead);
}

// Vertical kernels: when streaming, the scalar twin writes up to the first
// 32-byte boundary and the wide blocks stream from there; the rest of the
// row is stored plainly.
template <bool kSigned>
void down_v8_run(const uint16_t* const* r, int n, uint8_t* d, bool stream) {
    int i = 0;
    const int head = stream ? pyr_sse::stream_start(d, d, n, 32) : -1;
    if (head >= 0) {
        down_v8_range(r, 0, head, d, kSigned ? 0x80 : 0);
        i = down_v8_blocks<kSigned, true>(r, n, d, head);
        _mm_sfence();
    }
    i = pyr_sse::down_v8_blocks<kSigned>(r, n, d, down_v8_blocks<kSigned, false>(r, n, d, i));
    down_v8_range(r, i, n, d, kSigned ? 0x80 : 0);
}
void down_v8(const uint16_t* const* r, int n, uint8_t* d, uint8_t bias, bool stream) {
    bias ? down_v8_run<true>(r, n, d, stream) : down_v8_run<false>(r, n, d, stream);
}

template <int CH>
void down_h32(const float* s, int w, float* d, const float* next) {
    const ptrdiff_t ahead = pyr_sse::rows_apart(s, next);
    down_h32_range<CH>(s, w, d, 0, 1);
    const int x = CH == 1 ? pyr_sse::down_h32_c1_blocks(s, w, d, down_h32_c1_blocks(s, w, d, 1, ahead), ahead)
                          : pyr_sse::down_h32_c3_blocks(s, w, d, down_h32_c3_blocks(s, w, d, 1, ahead), ahead);
    down_h32_range<CH>(s, w, d, x, w / 2);
}

template <int kForm>
void down_v32_run(const float* const* r, int n, float* d, bool stream) {
    int i = 0;
    const int head = stream ? pyr_sse::stream_start(d, d, n, 32) : -1;
    if (head >= 0) {
        down_v32_range(r, kForm, 0, head, d);
        i = down_v32_blocks<kForm, true>(r, n, d, head);
        _mm_sfence();
    }
    i = pyr_sse::down_v32_blocks<kForm>(r, n, d, down_v32_blocks<kForm, false>(r, n, d, i));
    down_v32_range(r, kForm, i, n, d);
}
void down_v32(const float* const* r, int form, int n, float* d, bool stream) {
    pyr_sse::with_form(form, [&](auto kForm) { down_v32_run<decltype(kForm)::value>(r, n, d, stream); });
}

template <int CH, bool kSigned>
void up_h8_run(const uint8_t* s, int w, uint16_t* d, ptrdiff_t ahead) {
    const uint8_t bias = kSigned ? 0x80 : 0;
    up_h8_range<CH>(s, w, d, bias, 0, 1);
    const int j = CH == 1 ? pyr_sse::up_h8_c1_blocks<kSigned>(s, w, d, up_h8_c1_blocks<kSigned>(s, w, d, 1, ahead), ahead)
                          : pyr_sse::up_h8_c3_blocks<kSigned>(s, w, d, 1, ahead);
    up_h8_range<CH>(s, w, d, bias, j, w);
}
template <int CH>
void up_h8(const uint8_t* s, int w, uint16_t* d, uint8_t bias, const uint8_t* next) {
    const ptrdiff_t ahead = pyr_sse::rows_apart(s, next);
    bias ? up_h8_run<CH, true>(s, w, d, ahead) : up_h8_run<CH, false>(s, w, d, ahead);
}

template <bool kSigned>
void up_v8_run(const uint16_t* a, const uint16_t* c, const uint16_t* b, int n, uint8_t* e, uint8_t* o, bool stream) {
    int i = 0;
    const int head = stream ? pyr_sse::stream_start(e, o, n, 32) : -1;
    if (head >= 0) {
        up_v8_range(a, c, b, 0, head, e, o, kSigned ? 0x80 : 0);
        i = up_v8_blocks<kSigned, true>(a, c, b, n, e, o, head);
        _mm_sfence();
    }
    i = pyr_sse::up_v8_blocks<kSigned>(a, c, b, n, e, o, up_v8_blocks<kSigned, false>(a, c, b, n, e, o, i));
    up_v8_range(a, c, b, i, n, e, o, kSigned ? 0x80 : 0);
}
void up_v8(const uint16_t* a, const uint16_t* c, const uint16_t* b, int n, uint8_t* e, uint8_t* o, uint8_t bias,
           bool stream) {
    bias ? up_v8_run<true>(a, c, b, n, e, o, stream) : up_v8_run<false>(a, c, b, n, e, o, stream);
}

template <int CH>
void up_h32(const float* s, int w, float* d, const float* next) {
    const ptrdiff_t ahead = pyr_sse::rows_apart(s, next);
    up_h32_range<CH>(s, w, d, 0, 1);
    const int j = CH == 1 ? pyr_sse::up_h32_c1_blocks(s, w, d, up_h32_c1_blocks(s, w, d, 1, ahead), ahead)
                          : pyr_sse::up_h32_c3_blocks(s, w, d, 1, ahead);
    up_h32_range<CH>(s, w, d, j, w);
}

template <int kBand>
void up_v32_run(const float* a, const float* c, const float* b, int n, float* e, float* o, bool stream) {
    int i = 0;
    const int head = stream ? pyr_sse::stream_start(e, o, n, 32) : -1;
    if (head >= 0) {
        up_v32_range(a, c, b, kBand, 0, head, e, o);
        i = up_v32_blocks<kBand, true>(a, c, b, n, e, o, head);
        _mm_sfence();
    }
    i = pyr_sse::up_v32_blocks<kBand>(a, c, b, n, e, o, up_v32_blocks<kBand, false>(a, c, b, n, e, o, i));
    up_v32_range(a, c, b, kBand, i, n, e, o);
}
void up_v32(const float* a, const float* c, const float* b, int band, int n, float* e, float* o, bool stream) {
    pyr_sse::with_band(band, [&](auto kBand) { up_v32_run<decltype(kBand)::value>(a, c, b, n, e, o, stream); });
}

}  // namespace

const PyrKernels pyr_kernels_avx2 = {{down_h8<1>, down_h8<3>}, {down_h32<1>, down_h32<3>}, down_v8, down_v32,
                                     {up_h8<1>, up_h8<3>},     {up_h32<1>, up_h32<3>},     up_v8,   up_v32};

}  // namespace a6
}  // namespace orucv
