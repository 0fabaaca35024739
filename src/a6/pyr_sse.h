// SSE2 blocks of the pyramid row kernels. Each block function runs its
// vector loop from a start index while the loads stay inside the row and
// the outputs stay off the edge forms, and returns where it stopped; the
// caller finishes with the scalar twin. The SSE2 table is built from these
// alone; the AVX2 table uses them after its wider loops and for the
// three-channel layouts.
//
// Three-channel rows keep one pixel per 64-bit (16-bit sums) or 128-bit
// (floats) lane, channels in the low slots and a spare slot on top; results
// are stored with overlapping stores, each spare slot being overwritten by
// the next pixel's store (or by the scalar tail, which always runs after).
//
// Included by SSE2 and AVX2 translation units: everything has internal
// linkage.
#pragma once

#include <emmintrin.h>

#include <cstring>
#include <type_traits>

#include "a6/pyr.h"

namespace orucv {
namespace a6 {
namespace {
namespace pyr_sse {

// Calls run(std::integral_constant<int, form>()) so that the vertical form
// of a PyrDown row is a compile-time constant inside run.
template <class Run>
inline void with_form(int form, Run run) {
    switch (form) {
    case kDownFirst: return run(std::integral_constant<int, kDownFirst>());
    case kDownLast: return run(std::integral_constant<int, kDownLast>());
    case kDownPair: return run(std::integral_constant<int, kDownPair>());
    default: return run(std::integral_constant<int, kDownInner>());
    }
}

// Calls run(std::integral_constant<int, band>()) so that the band of a
// PyrUp row is a compile-time constant inside run.
template <class Run>
inline void with_band(int band, Run run) {
    switch (band) {
    case kUpFirst | kUpLast: return run(std::integral_constant<int, kUpFirst | kUpLast>());
    case kUpFirst: return run(std::integral_constant<int, kUpFirst>());
    case kUpLast: return run(std::integral_constant<int, kUpLast>());
    default: return run(std::integral_constant<int, 0>());
    }
}

inline __m128i load(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
inline void store(void* p, __m128i v) { _mm_storeu_si128(static_cast<__m128i*>(p), v); }
inline void store_low(void* p, __m128i v) { _mm_storel_epi64(static_cast<__m128i*>(p), v); }
inline __m128i bias8(bool is_signed) { return _mm_set1_epi8(is_signed ? static_cast<char>(0x80) : 0); }

// Plain or non-temporal (aligned) stores of destination rows.
template <bool kStream>
inline void put(uint8_t* p, __m128i v) {
    if (kStream) _mm_stream_si128(reinterpret_cast<__m128i*>(p), v);
    else store(p, v);
}
template <bool kStream>
inline void put(float* p, __m128 v) {
    if (kStream) _mm_stream_ps(p, v);
    else _mm_storeu_ps(p, v);
}

// Asks for the line at p + ahead bytes in the next source row to be brought
// into the second-level cache: the next row is then on its way while this
// one is filtered.
inline void fetch_ahead(const void* p, ptrdiff_t ahead) {
    _mm_prefetch(static_cast<const char*>(p) + ahead, _MM_HINT_T1);
}
// Byte distance from one source row to another.
inline ptrdiff_t rows_apart(const void* from, const void* to) {
    return static_cast<ptrdiff_t>(reinterpret_cast<uintptr_t>(to) - reinterpret_cast<uintptr_t>(from));
}

// Elements before the first `align`-byte boundary at or after p, or -1 when
// no element of the row starts on one.
template <class T>
inline int elements_to_boundary(const T* p, unsigned align) {
    const unsigned gap = static_cast<unsigned>(0u - reinterpret_cast<uintptr_t>(p)) & (align - 1);
    return gap % sizeof(T) ? -1 : static_cast<int>(gap / sizeof(T));
}
// Where a streaming run starts in a row of n elements (rows `other` share
// the alignment of `dst` or the row is not streamed), or -1 for none.
template <class T>
inline int stream_start(const T* dst, const T* other, int n, unsigned align) {
    if ((reinterpret_cast<uintptr_t>(other) - reinterpret_cast<uintptr_t>(dst)) & (align - 1)) return -1;
    const int head = elements_to_boundary(dst, align);
    return head < n ? head : -1;
}

// 6c + 4(l1 + r1) + l2 + r2 on 16-bit lanes (exact: at most 16 * 4080).
inline __m128i sum5_epi16(__m128i l2, __m128i l1, __m128i c, __m128i r1, __m128i r2) {
    const __m128i six = _mm_set1_epi16(6);
    return _mm_add_epi16(_mm_add_epi16(_mm_add_epi16(_mm_mullo_epi16(c, six), _mm_slli_epi16(_mm_add_epi16(l1, r1), 2)),
                                       l2),
                         r2);
}

// --- PyrDown, 8-bit.

// Eight outputs per step: 16-bit lanes of source pairs split into even
// (low byte) and odd (high byte) samples, loaded at 2x - 2, 2x and 2x + 2.
template <bool kSigned>
inline int down_h8_c1_blocks(const uint8_t* s, int w, uint16_t* d, int x, ptrdiff_t ahead) {
    const __m128i bias = bias8(kSigned), low = _mm_set1_epi16(0xFF);
    for (const int last = (w - 18) / 2; x <= last; x += 8) {
        fetch_ahead(s + 2 * x, ahead);
        const __m128i vm = _mm_xor_si128(load(s + 2 * x - 2), bias);
        const __m128i v0 = _mm_xor_si128(load(s + 2 * x), bias);
        const __m128i vp = _mm_xor_si128(load(s + 2 * x + 2), bias);
        const __m128i h = sum5_epi16(_mm_and_si128(vm, low), _mm_srli_epi16(vm, 8), _mm_and_si128(v0, low),
                                     _mm_srli_epi16(v0, 8), _mm_and_si128(vp, low));
        store(d + x, h);
    }
    return x;
}

inline __m128i load_pixel3(const uint8_t* p, uint32_t bias) {
    uint32_t v;
    std::memcpy(&v, p, 4);
    return _mm_cvtsi32_si128(static_cast<int>(v ^ bias));
}

// Two output pixels per step, one per 64-bit lane: tap k of the pair is
// source pixels 2x + k and 2x + 2 + k, read as 4-byte loads (the last ends
// at byte 6x + 15).
template <bool kSigned>
inline int down_h8_c3_blocks(const uint8_t* s, int w, uint16_t* d, int x, ptrdiff_t ahead) {
    const uint32_t bias = kSigned ? 0x80808080u : 0;
    const __m128i zero = _mm_setzero_si128();
    const int last = (3 * w - 16) / 6;
    if (x > last) return x;
    // p[t] holds source pixel 2x - 2 + t; the last three carry over.
    __m128i p[7];
    for (int t = 0; t < 3; ++t) p[t] = load_pixel3(s + 3 * (2 * x - 2 + t), bias);
    for (; x <= last; x += 2) {
        fetch_ahead(s + 6 * x, ahead);
        for (int t = 3; t < 7; ++t) p[t] = load_pixel3(s + 3 * (2 * x - 2 + t), bias);
        __m128i tap[5];
        for (int k = 0; k < 5; ++k) tap[k] = _mm_unpacklo_epi8(_mm_unpacklo_epi32(p[k], p[k + 2]), zero);
        const __m128i h = sum5_epi16(tap[0], tap[1], tap[2], tap[3], tap[4]);
        store_low(d + 3 * x, h);
        store_low(d + 3 * x + 3, _mm_srli_si128(h, 8));
        p[0] = p[4], p[1] = p[5], p[2] = p[6];
    }
    return x;
}

// (sum + 128) >> 8 of the five rows for eight samples.
inline __m128i down_v8_lanes(const uint16_t* const* r, int i) {
    const __m128i sum = sum5_epi16(load(r[0] + i), load(r[1] + i), load(r[2] + i), load(r[3] + i), load(r[4] + i));
    return _mm_srli_epi16(_mm_add_epi16(sum, _mm_set1_epi16(128)), 8);
}

template <bool kSigned, bool kStream = false>
inline int down_v8_blocks(const uint16_t* const* rows, int n, uint8_t* d, int i) {
    // A local copy of the row pointers stays in registers across the stores.
    const uint16_t* const r[5] = {rows[0], rows[1], rows[2], rows[3], rows[4]};
    const __m128i bias = bias8(kSigned);
    for (; i <= n - 16; i += 16)
        put<kStream>(d + i, _mm_xor_si128(_mm_packus_epi16(down_v8_lanes(r, i), down_v8_lanes(r, i + 8)), bias));
    return i;
}

// --- PyrUp, 8-bit.

// Sixteen source pixels per step: even outputs l + 6c + r and odd outputs
// 4 (c + r), interleaved.
template <bool kSigned>
inline int up_h8_c1_blocks(const uint8_t* s, int w, uint16_t* d, int j, ptrdiff_t ahead) {
    const __m128i bias = bias8(kSigned), zero = _mm_setzero_si128(), six = _mm_set1_epi16(6);
    for (; j <= w - 17; j += 16) {
        fetch_ahead(s + j, ahead);
        const __m128i l = _mm_xor_si128(load(s + j - 1), bias);
        const __m128i c = _mm_xor_si128(load(s + j), bias);
        const __m128i r = _mm_xor_si128(load(s + j + 1), bias);
        for (int half = 0; half < 2; ++half) {
            const __m128i lw = half ? _mm_unpackhi_epi8(l, zero) : _mm_unpacklo_epi8(l, zero);
            const __m128i cw = half ? _mm_unpackhi_epi8(c, zero) : _mm_unpacklo_epi8(c, zero);
            const __m128i rw = half ? _mm_unpackhi_epi8(r, zero) : _mm_unpacklo_epi8(r, zero);
            const __m128i even = _mm_add_epi16(_mm_add_epi16(lw, _mm_mullo_epi16(cw, six)), rw);
            const __m128i odd = _mm_slli_epi16(_mm_add_epi16(cw, rw), 2);
            uint16_t* q = d + 2 * j + 16 * half;
            store(q, _mm_unpacklo_epi16(even, odd));
            store(q + 8, _mm_unpackhi_epi16(even, odd));
        }
    }
    return j;
}

// Two source pixels per step, one per 64-bit lane, from one 16-byte load at
// pixel j - 1 (pixels j - 1 .. j + 2 sit at bytes 0 .. 11). Outputs 2j,
// 2j + 1, 2j + 2, 2j + 3 go out as four overlapping 8-byte stores.
template <bool kSigned>
inline int up_h8_c3_blocks(const uint8_t* s, int w, uint16_t* d, int j, ptrdiff_t ahead) {
    const __m128i bias = bias8(kSigned), zero = _mm_setzero_si128(), six = _mm_set1_epi16(6);
    for (; j <= w - 5; j += 2) {
        fetch_ahead(s + 3 * j, ahead);
        const __m128i v = _mm_xor_si128(load(s + 3 * (j - 1)), bias);
        const __m128i lo = _mm_unpacklo_epi8(v, zero), hi = _mm_unpackhi_epi8(v, zero);
        const __m128i at3 = _mm_srli_si128(lo, 6);                                       // bytes 3..7
        const __m128i at6 = _mm_or_si128(_mm_srli_si128(lo, 12), _mm_slli_si128(hi, 4));  // bytes 6..13
        const __m128i l = _mm_unpacklo_epi64(lo, at3);                 // pixels j - 1, j
        const __m128i c = _mm_unpacklo_epi64(at3, at6);                // pixels j, j + 1
        const __m128i r = _mm_unpacklo_epi64(at6, _mm_srli_si128(at6, 6));  // pixels j + 1, j + 2
        const __m128i even = _mm_add_epi16(_mm_add_epi16(l, _mm_mullo_epi16(c, six)), r);
        const __m128i odd = _mm_slli_epi16(_mm_add_epi16(c, r), 2);
        uint16_t* q = d + 6 * j;
        store_low(q, even);
        store_low(q + 3, odd);
        store_low(q + 6, _mm_srli_si128(even, 8));
        store_low(q + 9, _mm_srli_si128(odd, 8));
    }
    return j;
}

template <bool kSigned, bool kStream = false>
inline int up_v8_blocks(const uint16_t* a, const uint16_t* c, const uint16_t* b, int n, uint8_t* e, uint8_t* o,
                        int i) {
    const __m128i bias = bias8(kSigned), six = _mm_set1_epi16(6), round = _mm_set1_epi16(32);
    for (; i <= n - 16; i += 16) {
        __m128i even[2], odd[2];
        for (int half = 0; half < 2; ++half) {
            const int k = i + 8 * half;
            const __m128i cv = load(c + k), bv = load(b + k);
            even[half] = _mm_srli_epi16(
                _mm_add_epi16(_mm_add_epi16(_mm_add_epi16(load(a + k), _mm_mullo_epi16(cv, six)), bv), round), 6);
            odd[half] = _mm_srli_epi16(_mm_add_epi16(_mm_slli_epi16(_mm_add_epi16(cv, bv), 2), round), 6);
        }
        put<kStream>(e + i, _mm_xor_si128(_mm_packus_epi16(even[0], even[1]), bias));
        put<kStream>(o + i, _mm_xor_si128(_mm_packus_epi16(odd[0], odd[1]), bias));
    }
    return i;
}

// --- 32f: the same operation order as the scalar twin in every lane.

inline __m128 down_inner_ps(__m128 l2, __m128 l1, __m128 c, __m128 r1, __m128 r2) {
    const __m128 t = _mm_add_ps(_mm_mul_ps(_mm_set1_ps(6.0f), c), _mm_mul_ps(_mm_set1_ps(4.0f), _mm_add_ps(l1, r1)));
    return _mm_add_ps(_mm_add_ps(t, l2), r2);
}
inline __m128 down_first_ps(__m128 c, __m128 r1, __m128 r2) {
    const __m128 half = _mm_add_ps(_mm_mul_ps(_mm_set1_ps(3.0f), c), _mm_mul_ps(_mm_set1_ps(4.0f), r1));
    return _mm_mul_ps(_mm_set1_ps(2.0f), _mm_add_ps(half, r2));
}
inline __m128 down_last_ps(__m128 l2, __m128 l1, __m128 c, __m128 r1) {
    const __m128 t = _mm_add_ps(_mm_mul_ps(_mm_set1_ps(7.0f), c), _mm_mul_ps(_mm_set1_ps(4.0f), _mm_add_ps(l1, r1)));
    return _mm_add_ps(t, l2);
}
inline __m128 down_pair_ps(__m128 c, __m128 r1) { return _mm_mul_ps(_mm_set1_ps(8.0f), _mm_add_ps(c, r1)); }

inline __m128 up_even_ps(__m128 l, __m128 c, __m128 r) {
    return _mm_add_ps(_mm_add_ps(l, _mm_mul_ps(_mm_set1_ps(6.0f), c)), r);
}
inline __m128 up_odd_ps(__m128 c, __m128 r) { return _mm_mul_ps(_mm_set1_ps(4.0f), _mm_add_ps(c, r)); }
inline __m128 up_first_ps(__m128 c, __m128 r) {
    return _mm_mul_ps(_mm_set1_ps(2.0f), _mm_add_ps(_mm_mul_ps(_mm_set1_ps(3.0f), c), r));
}
inline __m128 up_penult_ps(__m128 l, __m128 c) { return _mm_add_ps(l, _mm_mul_ps(_mm_set1_ps(7.0f), c)); }
inline __m128 up_last_ps(__m128 c) { return _mm_mul_ps(_mm_set1_ps(8.0f), c); }

// The scale, with any NaN replaced by the quiet NaN of the scalar twin.
inline __m128 scaled_ps(__m128 sum, float scale) {
    const __m128 v = _mm_mul_ps(sum, _mm_set1_ps(scale));
    const __m128 nan = _mm_cmpunord_ps(v, v);
    return _mm_or_ps(_mm_andnot_ps(nan, v),
                     _mm_and_ps(nan, _mm_castsi128_ps(_mm_set1_epi32(static_cast<int>(pyr_scalar::kQuietNan)))));
}

// Four outputs per step from three rolling loads: even and odd samples of
// 2x - 2 .. 2x + 9 split by shuffles.
inline int down_h32_c1_blocks(const float* s, int w, float* d, int x, ptrdiff_t ahead) {
    const int last = (w - 10) / 2;
    if (x > last) return x;
    __m128 l0 = _mm_loadu_ps(s + 2 * x - 2);
    for (; x <= last; x += 4) {
        fetch_ahead(s + 2 * x, ahead);
        const __m128 l1 = _mm_loadu_ps(s + 2 * x + 2), l2 = _mm_loadu_ps(s + 2 * x + 6);
        const __m128 em = _mm_shuffle_ps(l0, l1, 0x88);  // samples 2x - 2, 2x, 2x + 2, 2x + 4
        const __m128 om = _mm_shuffle_ps(l0, l1, 0xDD);  // 2x - 1 .. 2x + 5
        const __m128 ep = _mm_shuffle_ps(l1, l2, 0x88);  // 2x + 2 .. 2x + 8
        const __m128 op = _mm_shuffle_ps(l1, l2, 0xDD);  // 2x + 3 .. 2x + 9
        const __m128 e0 = _mm_shuffle_ps(em, ep, _MM_SHUFFLE(2, 1, 2, 1));  // 2x .. 2x + 6
        const __m128 o0 = _mm_shuffle_ps(om, op, _MM_SHUFFLE(2, 1, 2, 1));  // 2x + 1 .. 2x + 7
        _mm_storeu_ps(d + x, down_inner_ps(em, om, e0, o0, ep));
        l0 = l2;
    }
    return x;
}

// One output pixel per step: taps are 4-float loads at source pixels
// 2x - 2 .. 2x + 2 (the spare slot of the last reads float 6x + 9); three
// of them carry over to the next pixel.
inline int down_h32_c3_blocks(const float* s, int w, float* d, int x, ptrdiff_t ahead) {
    const int last = w / 2 - 2;
    if (x > last) return x;
    const float* q = s + 6 * static_cast<ptrdiff_t>(x);
    __m128 l2 = _mm_loadu_ps(q - 6), l1 = _mm_loadu_ps(q - 3), c = _mm_loadu_ps(q);
    for (; x <= last; ++x, q += 6) {
        fetch_ahead(q, ahead);
        const __m128 r1 = _mm_loadu_ps(q + 3), r2 = _mm_loadu_ps(q + 6);
        _mm_storeu_ps(d + 3 * x, down_inner_ps(l2, l1, c, r1, r2));
        l2 = c, l1 = r1, c = r2;
    }
    return x;
}

template <int kForm>
inline __m128 down_v32_lanes(const float* const* r, int i) {
    __m128 v;
    if (kForm == kDownFirst) v = down_first_ps(_mm_loadu_ps(r[2] + i), _mm_loadu_ps(r[3] + i), _mm_loadu_ps(r[4] + i));
    else if (kForm == kDownLast)
        v = down_last_ps(_mm_loadu_ps(r[0] + i), _mm_loadu_ps(r[1] + i), _mm_loadu_ps(r[2] + i), _mm_loadu_ps(r[3] + i));
    else if (kForm == kDownPair) v = down_pair_ps(_mm_loadu_ps(r[2] + i), _mm_loadu_ps(r[3] + i));
    else
        v = down_inner_ps(_mm_loadu_ps(r[0] + i), _mm_loadu_ps(r[1] + i), _mm_loadu_ps(r[2] + i),
                          _mm_loadu_ps(r[3] + i), _mm_loadu_ps(r[4] + i));
    return scaled_ps(v, pyr_scalar::kDownScale);
}

template <int kForm, bool kStream = false>
inline int down_v32_blocks(const float* const* rows, int n, float* d, int i) {
    const float* const r[5] = {rows[0], rows[1], rows[2], rows[3], rows[4]};
    for (; i <= n - 4; i += 4) put<kStream>(d + i, down_v32_lanes<kForm>(r, i));
    return i;
}

// Four source pixels per step, even and odd outputs interleaved.
inline int up_h32_c1_blocks(const float* s, int w, float* d, int j, ptrdiff_t ahead) {
    for (; j <= w - 5; j += 4) {
        fetch_ahead(s + j, ahead);
        const __m128 l = _mm_loadu_ps(s + j - 1), c = _mm_loadu_ps(s + j), r = _mm_loadu_ps(s + j + 1);
        const __m128 even = up_even_ps(l, c, r), odd = up_odd_ps(c, r);
        _mm_storeu_ps(d + 2 * j, _mm_unpacklo_ps(even, odd));
        _mm_storeu_ps(d + 2 * j + 4, _mm_unpackhi_ps(even, odd));
    }
    return j;
}

// One source pixel per step (the spare slot of the right tap reads float
// 3j + 6); the odd output's store overlaps the next pixel's even output.
inline int up_h32_c3_blocks(const float* s, int w, float* d, int j, ptrdiff_t ahead) {
    const int last = w - 3;
    if (j > last) return j;
    const float* q = s + 3 * static_cast<ptrdiff_t>(j);
    __m128 l = _mm_loadu_ps(q - 3), c = _mm_loadu_ps(q);
    for (; j <= last; ++j, q += 3) {
        fetch_ahead(q, ahead);
        const __m128 r = _mm_loadu_ps(q + 3);
        float* o = d + 6 * static_cast<ptrdiff_t>(j);
        _mm_storeu_ps(o, up_even_ps(l, c, r));
        _mm_storeu_ps(o + 3, up_odd_ps(c, r));
        l = c, c = r;
    }
    return j;
}

template <int kBand, bool kStream = false>
inline int up_v32_blocks(const float* a, const float* c, const float* b, int n, float* e, float* o, int i) {
    for (; i <= n - 4; i += 4) {
        const __m128 cv = _mm_loadu_ps(c + i);
        __m128 ev, ov;
        if (kBand == (kUpFirst | kUpLast)) {
            ev = ov = up_last_ps(cv);
        } else if (kBand == kUpFirst) {
            const __m128 bv = _mm_loadu_ps(b + i);
            ev = up_first_ps(cv, bv), ov = up_odd_ps(cv, bv);
        } else if (kBand == kUpLast) {
            ev = up_penult_ps(_mm_loadu_ps(a + i), cv), ov = up_last_ps(cv);
        } else {
            const __m128 bv = _mm_loadu_ps(b + i);
            ev = up_even_ps(_mm_loadu_ps(a + i), cv, bv), ov = up_odd_ps(cv, bv);
        }
        put<kStream>(e + i, scaled_ps(ev, pyr_scalar::kUpScale));
        put<kStream>(o + i, scaled_ps(ov, pyr_scalar::kUpScale));
    }
    return i;
}

}  // namespace pyr_sse
}  // namespace
}  // namespace a6
}  // namespace orucv
