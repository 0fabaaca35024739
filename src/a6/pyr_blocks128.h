// The 128-bit blocks of the pyramid row kernels (see pyr_simd.h): the
// vertical blocks of PyrLanes<Sse2> and the horizontal blocks written with
// SSE2 shuffles. The SSE2 table is built from these alone; the AVX2 table
// runs them after its wider loops, and alone where it has none.
//
// Three-channel rows keep one pixel per 64-bit (16-bit sums) or 128-bit
// (floats) lane, channels in the low slots and a spare slot on top; results
// are stored with overlapping stores, each spare slot being overwritten by
// the next pixel's store (or by the scalar tail, which always runs after).
//
// Included by SSE2 and AVX2 files: everything has internal linkage.
#pragma once

#include <emmintrin.h>

#include <cstring>

#include "a6/ops_sse2.h"
#include "a6/pyr_simd.h"

namespace orucv {
namespace a6 {
namespace {

struct PyrBlocks128 : PyrLanes<Sse2> {
    static __m128i load_pixel3(const uint8_t* p, uint32_t bias) {
        uint32_t v;
        std::memcpy(&v, p, 4);
        return _mm_cvtsi32_si128(static_cast<int>(v ^ bias));
    }

    // Eight outputs per step: 16-bit lanes of source pairs split into even
    // (low byte) and odd (high byte) samples, loaded at 2x - 2, 2x and 2x + 2.
    template <bool kSigned>
    static int down_h8_c1(const uint8_t* s, int w, uint16_t* d, int x, ptrdiff_t ahead) {
        const __m128i bias = bias8(kSigned), low = _mm_set1_epi16(0xFF);
        for (const int last = (w - 18) / 2; x <= last; x += 8) {
            fetch_ahead(s + 2 * x, ahead);
            const __m128i vm = _mm_xor_si128(Sse2::load(s + 2 * x - 2), bias);
            const __m128i v0 = _mm_xor_si128(Sse2::load(s + 2 * x), bias);
            const __m128i vp = _mm_xor_si128(Sse2::load(s + 2 * x + 2), bias);
            const __m128i h = sum5(_mm_and_si128(vm, low), _mm_srli_epi16(vm, 8), _mm_and_si128(v0, low),
                                   _mm_srli_epi16(v0, 8), _mm_and_si128(vp, low));
            Sse2::store(d + x, h);
        }
        return x;
    }

    // Two output pixels per step, one per 64-bit lane: tap k of the pair is
    // source pixels 2x + k and 2x + 2 + k, read as 4-byte loads (the last ends
    // at byte 6x + 15).
    template <bool kSigned>
    static int down_h8_c3(const uint8_t* s, int w, uint16_t* d, int x, ptrdiff_t ahead) {
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
            const __m128i h = sum5(tap[0], tap[1], tap[2], tap[3], tap[4]);
            Sse2::store_half(d + 3 * x, h);
            Sse2::store_half(d + 3 * x + 3, _mm_srli_si128(h, 8));
            p[0] = p[4], p[1] = p[5], p[2] = p[6];
        }
        return x;
    }

    // Sixteen source pixels per step: even outputs l + 6c + r and odd outputs
    // 4 (c + r), interleaved.
    template <bool kSigned>
    static int up_h8_c1(const uint8_t* s, int w, uint16_t* d, int j, ptrdiff_t ahead) {
        const __m128i bias = bias8(kSigned), zero = _mm_setzero_si128(), six = _mm_set1_epi16(6);
        for (; j <= w - 17; j += 16) {
            fetch_ahead(s + j, ahead);
            const __m128i l = _mm_xor_si128(Sse2::load(s + j - 1), bias);
            const __m128i c = _mm_xor_si128(Sse2::load(s + j), bias);
            const __m128i r = _mm_xor_si128(Sse2::load(s + j + 1), bias);
            for (int half = 0; half < 2; ++half) {
                const __m128i lw = half ? _mm_unpackhi_epi8(l, zero) : _mm_unpacklo_epi8(l, zero);
                const __m128i cw = half ? _mm_unpackhi_epi8(c, zero) : _mm_unpacklo_epi8(c, zero);
                const __m128i rw = half ? _mm_unpackhi_epi8(r, zero) : _mm_unpacklo_epi8(r, zero);
                const __m128i even = _mm_add_epi16(_mm_add_epi16(lw, _mm_mullo_epi16(cw, six)), rw);
                const __m128i odd = _mm_slli_epi16(_mm_add_epi16(cw, rw), 2);
                uint16_t* q = d + 2 * j + 16 * half;
                Sse2::store(q, _mm_unpacklo_epi16(even, odd));
                Sse2::store(q + 8, _mm_unpackhi_epi16(even, odd));
            }
        }
        return j;
    }

    // Two source pixels per step, one per 64-bit lane, from one 16-byte load at
    // pixel j - 1 (pixels j - 1 .. j + 2 sit at bytes 0 .. 11). Outputs 2j,
    // 2j + 1, 2j + 2, 2j + 3 go out as four overlapping 8-byte stores.
    template <bool kSigned>
    static int up_h8_c3(const uint8_t* s, int w, uint16_t* d, int j, ptrdiff_t ahead) {
        const __m128i bias = bias8(kSigned), zero = _mm_setzero_si128(), six = _mm_set1_epi16(6);
        for (; j <= w - 5; j += 2) {
            fetch_ahead(s + 3 * j, ahead);
            const __m128i v = _mm_xor_si128(Sse2::load(s + 3 * (j - 1)), bias);
            const __m128i lo = _mm_unpacklo_epi8(v, zero), hi = _mm_unpackhi_epi8(v, zero);
            const __m128i at3 = _mm_srli_si128(lo, 6);                                       // bytes 3..7
            const __m128i at6 = _mm_or_si128(_mm_srli_si128(lo, 12), _mm_slli_si128(hi, 4));  // bytes 6..13
            const __m128i l = _mm_unpacklo_epi64(lo, at3);                 // pixels j - 1, j
            const __m128i c = _mm_unpacklo_epi64(at3, at6);                // pixels j, j + 1
            const __m128i r = _mm_unpacklo_epi64(at6, _mm_srli_si128(at6, 6));  // pixels j + 1, j + 2
            const __m128i even = _mm_add_epi16(_mm_add_epi16(l, _mm_mullo_epi16(c, six)), r);
            const __m128i odd = _mm_slli_epi16(_mm_add_epi16(c, r), 2);
            uint16_t* q = d + 6 * j;
            Sse2::store_half(q, even);
            Sse2::store_half(q + 3, odd);
            Sse2::store_half(q + 6, _mm_srli_si128(even, 8));
            Sse2::store_half(q + 9, _mm_srli_si128(odd, 8));
        }
        return j;
    }

    // Four outputs per step from three rolling loads: even and odd samples of
    // 2x - 2 .. 2x + 9 split by shuffles.
    static int down_h32_c1(const float* s, int w, float* d, int x, ptrdiff_t ahead) {
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
            _mm_storeu_ps(d + x, down_inner(em, om, e0, o0, ep));
            l0 = l2;
        }
        return x;
    }

    // One output pixel per step: taps are 4-float loads at source pixels
    // 2x - 2 .. 2x + 2 (the spare slot of the last reads float 6x + 9); three
    // of them carry over to the next pixel.
    static int down_h32_c3(const float* s, int w, float* d, int x, ptrdiff_t ahead) {
        const int last = w / 2 - 2;
        if (x > last) return x;
        const float* q = s + 6 * static_cast<ptrdiff_t>(x);
        __m128 l2 = _mm_loadu_ps(q - 6), l1 = _mm_loadu_ps(q - 3), c = _mm_loadu_ps(q);
        for (; x <= last; ++x, q += 6) {
            fetch_ahead(q, ahead);
            const __m128 r1 = _mm_loadu_ps(q + 3), r2 = _mm_loadu_ps(q + 6);
            _mm_storeu_ps(d + 3 * x, down_inner(l2, l1, c, r1, r2));
            l2 = c, l1 = r1, c = r2;
        }
        return x;
    }

    // Four source pixels per step, even and odd outputs interleaved.
    static int up_h32_c1(const float* s, int w, float* d, int j, ptrdiff_t ahead) {
        for (; j <= w - 5; j += 4) {
            fetch_ahead(s + j, ahead);
            const __m128 l = _mm_loadu_ps(s + j - 1), c = _mm_loadu_ps(s + j), r = _mm_loadu_ps(s + j + 1);
            const __m128 even = up_even(l, c, r), odd = up_odd(c, r);
            _mm_storeu_ps(d + 2 * j, _mm_unpacklo_ps(even, odd));
            _mm_storeu_ps(d + 2 * j + 4, _mm_unpackhi_ps(even, odd));
        }
        return j;
    }

    // One source pixel per step (the spare slot of the right tap reads float
    // 3j + 6); the odd output's store overlaps the next pixel's even output.
    static int up_h32_c3(const float* s, int w, float* d, int j, ptrdiff_t ahead) {
        const int last = w - 3;
        if (j > last) return j;
        const float* q = s + 3 * static_cast<ptrdiff_t>(j);
        __m128 l = _mm_loadu_ps(q - 3), c = _mm_loadu_ps(q);
        for (; j <= last; ++j, q += 3) {
            fetch_ahead(q, ahead);
            const __m128 r = _mm_loadu_ps(q + 3);
            float* o = d + 6 * static_cast<ptrdiff_t>(j);
            _mm_storeu_ps(o, up_even(l, c, r));
            _mm_storeu_ps(o + 3, up_odd(c, r));
            l = c, c = r;
        }
        return j;
    }
};

}  // namespace
}  // namespace a6
}  // namespace orucv
