// AVX2 pyramid row kernels: the 256-bit blocks (the vertical ones of
// PyrLanes<Avx2>, the horizontal ones here, written with the shuffles AVX2
// offers), then the 128-bit blocks, then the scalar twin for edges and tails.
#include <immintrin.h>

#include "a6/ops_avx2.h"
#include "a6/pyr_blocks128.h"

namespace orucv {
namespace a6 {
namespace {

struct PyrBlocks256 : PyrLanes<Avx2> {
    // Two 16-byte loads into the low and high halves.
    static __m256i load_halves(const void* lo, const void* hi) {
        return _mm256_inserti128_si256(_mm256_castsi128_si256(Sse2::load(lo)), Sse2::load(hi), 1);
    }

    // --- PyrDown, 8-bit.

    // Sixteen outputs per step; pairs split into even and odd samples as in
    // the 128-bit blocks.
    template <bool kSigned>
    static int down_h8_c1(const uint8_t* s, int w, uint16_t* d, int x, ptrdiff_t ahead) {
        const __m256i bias = bias8(kSigned), low = Avx2::set16(0xFF);
        for (const int last = (w - 34) / 2; x <= last; x += 16) {
            fetch_ahead(s + 2 * x, ahead);
            const __m256i vm = Avx2::xor_(Avx2::load(s + 2 * x - 2), bias);
            const __m256i v0 = Avx2::xor_(Avx2::load(s + 2 * x), bias);
            const __m256i vp = Avx2::xor_(Avx2::load(s + 2 * x + 2), bias);
            Avx2::store(d + x, sum5(Avx2::and_(vm, low), Avx2::srli16<8>(vm), Avx2::and_(v0, low), Avx2::srli16<8>(v0),
                                    Avx2::and_(vp, low)));
        }
        return x;
    }

    // Four output pixels per step, two per 128-bit lane, channels of a pair in
    // 16-bit slots 0..5. Lane windows start 6 bytes before the lane's first
    // centre pixel (taps -2, -1, 0) and 3 bytes after it (taps +1, +2); byte
    // shuffles pick the samples and zero-extend them.
    template <bool kSigned>
    static int down_h8_c3(const uint8_t* s, int w, uint16_t* d, int x, ptrdiff_t ahead) {
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
            fetch_ahead(p, ahead);
            const __m256i a = Avx2::xor_(load_halves(p - 6, p + 6), bias);
            const __m256i b = Avx2::xor_(load_halves(p + 3, p + 15), bias);
            const __m256i h = sum5(_mm256_shuffle_epi8(a, first), _mm256_shuffle_epi8(a, second),
                                   _mm256_shuffle_epi8(a, third), _mm256_shuffle_epi8(b, first),
                                   _mm256_shuffle_epi8(b, second));
            uint16_t* q = d + 3 * static_cast<ptrdiff_t>(x);
            Avx2::store_half(q, h);
            Sse2::store(q + 6, Avx2::high(h));
        }
        return x;
    }

    // --- PyrUp, 8-bit.

    template <bool kSigned>
    static int up_h8_c1(const uint8_t* s, int w, uint16_t* d, int j, ptrdiff_t ahead) {
        const __m128i bias = PyrLanes<Sse2>::bias8(kSigned);
        const __m256i six = Avx2::set16(6);
        for (; j <= w - 17; j += 16) {
            fetch_ahead(s + j, ahead);
            const __m256i l = _mm256_cvtepu8_epi16(Sse2::xor_(Sse2::load(s + j - 1), bias));
            const __m256i c = _mm256_cvtepu8_epi16(Sse2::xor_(Sse2::load(s + j), bias));
            const __m256i r = _mm256_cvtepu8_epi16(Sse2::xor_(Sse2::load(s + j + 1), bias));
            const __m256i even = Avx2::add16(Avx2::add16(l, Avx2::mullo16(c, six)), r);
            const __m256i odd = Avx2::slli16<2>(Avx2::add16(c, r));
            const __m256i lo = _mm256_unpacklo_epi16(even, odd), hi = _mm256_unpackhi_epi16(even, odd);
            Avx2::store(d + 2 * j, _mm256_permute2x128_si256(lo, hi, 0x20));
            Avx2::store(d + 2 * j + 16, _mm256_permute2x128_si256(lo, hi, 0x31));
        }
        return j;
    }
    // Three channels upwards: the 128-bit blocks only.
    template <bool kSigned>
    static int up_h8_c3(const uint8_t*, int, uint16_t*, int j, ptrdiff_t) {
        return j;
    }

    // --- 32f.

    // Eight outputs per step. In-lane shuffles split even and odd samples in
    // the lane order x, x+1, x+4, x+5 | x+2, x+3, x+6, x+7 for every tap alike;
    // one 64-bit permute restores the order before the store.
    static int down_h32_c1(const float* s, int w, float* d, int x, ptrdiff_t ahead) {
        for (const int last = (w - 18) / 2; x <= last; x += 8) {
            const float* q = s + 2 * static_cast<ptrdiff_t>(x);
            fetch_ahead(q, ahead);
            const __m256 m0 = Avx2::loadf(q - 2), m1 = Avx2::loadf(q + 6);
            const __m256 c0 = Avx2::loadf(q), c1 = Avx2::loadf(q + 8);
            const __m256 p0 = Avx2::loadf(q + 2), p1 = Avx2::loadf(q + 10);
            const __m256 h = down_inner(_mm256_shuffle_ps(m0, m1, 0x88), _mm256_shuffle_ps(m0, m1, 0xDD),
                                        _mm256_shuffle_ps(c0, c1, 0x88), _mm256_shuffle_ps(c0, c1, 0xDD),
                                        _mm256_shuffle_ps(p0, p1, 0x88));
            Avx2::storef(d + x, _mm256_castpd_ps(_mm256_permute4x64_pd(_mm256_castps_pd(h), _MM_SHUFFLE(3, 1, 2, 0))));
        }
        return x;
    }

    // Two output pixels per step, one per 128-bit lane (channels in slots
    // 0..2): tap k pairs source pixels 2x + k and 2x + 2 + k. Every source
    // pixel is loaded once, broadcast to both lanes, and the taps are blends;
    // three pixels carry over.
    static int down_h32_c3(const float* s, int w, float* d, int x, ptrdiff_t ahead) {
        const int last = w / 2 - 3;  // outputs to x + 1 off the edge form, reads to float 6x + 15
        if (x > last) return x;
        const float* q = s + 6 * static_cast<ptrdiff_t>(x);
        auto pixel = [](const float* p) { return _mm256_broadcast_ps(reinterpret_cast<const __m128*>(p)); };
        __m256 p0 = pixel(q - 6), p1 = pixel(q - 3), p2 = pixel(q);
        for (; x <= last; x += 2, q += 12) {
            fetch_ahead(q, ahead);
            const __m256 p3 = pixel(q + 3), p4 = pixel(q + 6), p5 = pixel(q + 9), p6 = pixel(q + 12);
            const __m256 h = down_inner(_mm256_blend_ps(p0, p2, 0xF0), _mm256_blend_ps(p1, p3, 0xF0),
                                        _mm256_blend_ps(p2, p4, 0xF0), _mm256_blend_ps(p3, p5, 0xF0),
                                        _mm256_blend_ps(p4, p6, 0xF0));
            float* o = d + 3 * static_cast<ptrdiff_t>(x);
            _mm_storeu_ps(o, _mm256_castps256_ps128(h));
            _mm_storeu_ps(o + 3, _mm256_extractf128_ps(h, 1));
            p0 = p4, p1 = p5, p2 = p6;
        }
        return x;
    }

    static int up_h32_c1(const float* s, int w, float* d, int j, ptrdiff_t ahead) {
        for (; j <= w - 9; j += 8) {
            fetch_ahead(s + j, ahead);
            const __m256 l = Avx2::loadf(s + j - 1), c = Avx2::loadf(s + j), r = Avx2::loadf(s + j + 1);
            const __m256 even = up_even(l, c, r), odd = up_odd(c, r);
            const __m256 lo = _mm256_unpacklo_ps(even, odd), hi = _mm256_unpackhi_ps(even, odd);
            Avx2::storef(d + 2 * j, _mm256_permute2f128_ps(lo, hi, 0x20));
            Avx2::storef(d + 2 * j + 8, _mm256_permute2f128_ps(lo, hi, 0x31));
        }
        return j;
    }
    // Three channels upwards: the 128-bit blocks only.
    static int up_h32_c3(const float*, int, float*, int j, ptrdiff_t) { return j; }
};

}  // namespace

const PyrKernels pyr_kernels_avx2 = PyrRows<PyrBlocks256, PyrBlocks128>::table();

}  // namespace a6
}  // namespace orucv
