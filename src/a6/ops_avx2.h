// The AVX2 operations that family loops are written over: the names and
// conventions of ops_sse2.h (read there) for 32-byte vectors. Lane order is
// memory order here too: the widening operations cross the 128-bit halves
// where the instructions do not.
//
// Included only by AVX2 files (compiled with -mavx2 -mno-fma): everything
// has internal linkage.
#pragma once

#include <immintrin.h>

#include <cstdint>
#include <cstring>

#include "core/bytes.h"
#include "core/floats.h"

namespace orucv {
namespace a6 {
namespace {

struct Avx2 {
    static constexpr int kBytes = 32;
    static constexpr int kFloats = 8;
    using I = __m256i;
    using F = __m256;

    // ---- Loads and stores
    static I load(const void* p) { return _mm256_loadu_si256(static_cast<const __m256i*>(p)); }
    static void store(void* p, I v) { _mm256_storeu_si256(static_cast<__m256i*>(p), v); }
    static F loadf(const float* p) { return _mm256_loadu_ps(p); }
    static void storef(float* p, F v) { _mm256_storeu_ps(p, v); }
    static I load_half(const void* p) {
        return _mm256_zextsi128_si256(_mm_loadu_si128(static_cast<const __m128i*>(p)));
    }
    static void store_half(void* p, I v) { _mm_storeu_si128(static_cast<__m128i*>(p), _mm256_castsi256_si128(v)); }
    static I load_partial(const void* p, int n) {
        if (n == kBytes) return load(p);
        alignas(32) uint8_t tmp[kBytes] = {};
        copy_bytes(tmp, p, static_cast<size_t>(n));
        return _mm256_load_si256(reinterpret_cast<const __m256i*>(tmp));
    }
    static void store_partial(void* p, I v, int n) {
        if (n == kBytes) return store(p, v);
        alignas(32) uint8_t tmp[kBytes];
        _mm256_store_si256(reinterpret_cast<__m256i*>(tmp), v);
        copy_bytes(p, tmp, static_cast<size_t>(n));
    }
    static F loadf_partial(const float* p, int n) { return _mm256_castsi256_ps(load_partial(p, 4 * n)); }
    static void storef_partial(float* p, F v, int n) { store_partial(p, _mm256_castps_si256(v), 4 * n); }

    // ---- Widening, in element order
    static I load_widen_u8(const uint8_t* p) {
        return _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
    }
    static I load_widen_s8(const int8_t* p) {
        return _mm256_cvtepi8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
    }
    static I load_widen4_u8(const uint8_t* p) {
        return _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
    }
    static __m128i low(I x) { return _mm256_castsi256_si128(x); }
    static __m128i high(I x) { return _mm256_extracti128_si256(x, 1); }
    static void widen_u8(I x, I& lo, I& hi) {
        lo = _mm256_cvtepu8_epi16(low(x));
        hi = _mm256_cvtepu8_epi16(high(x));
    }
    static void widen_s8(I x, I& lo, I& hi) {
        lo = _mm256_cvtepi8_epi16(low(x));
        hi = _mm256_cvtepi8_epi16(high(x));
    }
    static void widen_u16(I x, I& lo, I& hi) {
        lo = _mm256_cvtepu16_epi32(low(x));
        hi = _mm256_cvtepu16_epi32(high(x));
    }
    static void widen_s16(I x, I& lo, I& hi) {
        lo = _mm256_cvtepi16_epi32(low(x));
        hi = _mm256_cvtepi16_epi32(high(x));
    }
    static void widen_u32(I x, I& lo, I& hi) {
        lo = _mm256_cvtepu32_epi64(low(x));
        hi = _mm256_cvtepu32_epi64(high(x));
    }
    static F to_float(I i32) { return _mm256_cvtepi32_ps(i32); }
    static I cast(F v) { return _mm256_castps_si256(v); }
    static F castf(I v) { return _mm256_castsi256_ps(v); }

    // ---- Constants
    static I zero() { return _mm256_setzero_si256(); }
    static F zerof() { return _mm256_setzero_ps(); }
    static I set8(int v) { return _mm256_set1_epi8(static_cast<char>(v)); }
    static I set16(int v) { return _mm256_set1_epi16(static_cast<short>(v)); }
    static I set32(int v) { return _mm256_set1_epi32(v); }
    static F setf(float v) { return _mm256_set1_ps(v); }
    static I tail_mask8(int n) {
        const I index = _mm256_setr_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20,
                                         21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31);
        return _mm256_cmpgt_epi8(set8(n), index);
    }

    // ---- Bitwise
    static I and_(I a, I b) { return _mm256_and_si256(a, b); }
    static I or_(I a, I b) { return _mm256_or_si256(a, b); }
    static I xor_(I a, I b) { return _mm256_xor_si256(a, b); }
    static I andnot(I a, I b) { return _mm256_andnot_si256(a, b); }
    static I select(I mask, I a, I b) { return _mm256_blendv_epi8(b, a, mask); }
    static F selectf(F mask, F a, F b) { return _mm256_blendv_ps(b, a, mask); }

    // ---- Integers
    static I add8(I a, I b) { return _mm256_add_epi8(a, b); }
    static I sub8(I a, I b) { return _mm256_sub_epi8(a, b); }
    static I adds_u8(I a, I b) { return _mm256_adds_epu8(a, b); }
    static I subs_u8(I a, I b) { return _mm256_subs_epu8(a, b); }
    static I add16(I a, I b) { return _mm256_add_epi16(a, b); }
    static I sub16(I a, I b) { return _mm256_sub_epi16(a, b); }
    static I mullo16(I a, I b) { return _mm256_mullo_epi16(a, b); }
    static I madd16(I a, I b) { return _mm256_madd_epi16(a, b); }
    static I add32(I a, I b) { return _mm256_add_epi32(a, b); }
    static I sub32(I a, I b) { return _mm256_sub_epi32(a, b); }
    static I add64(I a, I b) { return _mm256_add_epi64(a, b); }
    static I sad_u8(I a, I b) { return _mm256_sad_epu8(a, b); }
    static I absdiff_u8(I a, I b) { return _mm256_or_si256(_mm256_subs_epu8(a, b), _mm256_subs_epu8(b, a)); }
    static I min_u8(I a, I b) { return _mm256_min_epu8(a, b); }
    static I max_u8(I a, I b) { return _mm256_max_epu8(a, b); }
    static I min_s8(I a, I b) { return _mm256_min_epi8(a, b); }
    static I max_s8(I a, I b) { return _mm256_max_epi8(a, b); }
    static I min16(I a, I b) { return _mm256_min_epi16(a, b); }
    static I max16(I a, I b) { return _mm256_max_epi16(a, b); }
    static I cmpeq8(I a, I b) { return _mm256_cmpeq_epi8(a, b); }
    static I cmpgt_s8(I a, I b) { return _mm256_cmpgt_epi8(a, b); }
    static I cmpeq16(I a, I b) { return _mm256_cmpeq_epi16(a, b); }
    static I cmpgt16(I a, I b) { return _mm256_cmpgt_epi16(a, b); }
    static I cmpeq32(I a, I b) { return _mm256_cmpeq_epi32(a, b); }
    static I cmpgt32(I a, I b) { return _mm256_cmpgt_epi32(a, b); }
    // Shifts by a constant count.
    template <int N> static I srai16(I v) { return _mm256_srai_epi16(v, N); }
    template <int N> static I srai32(I v) { return _mm256_srai_epi32(v, N); }
    template <int N> static I srli16(I v) { return _mm256_srli_epi16(v, N); }
    template <int N> static I srli32(I v) { return _mm256_srli_epi32(v, N); }
    template <int N> static I slli16(I v) { return _mm256_slli_epi16(v, N); }
    template <int N> static I slli32(I v) { return _mm256_slli_epi32(v, N); }
    static unsigned movemask8(I v) { return static_cast<unsigned>(_mm256_movemask_epi8(v)); }

    // ---- Floats
    static F addf(F a, F b) { return _mm256_add_ps(a, b); }
    static F subf(F a, F b) { return _mm256_sub_ps(a, b); }
    static F mulf(F a, F b) { return _mm256_mul_ps(a, b); }
    static F divf(F a, F b) { return _mm256_div_ps(a, b); }
    static F minf(F a, F b) { return _mm256_min_ps(a, b); }
    static F maxf(F a, F b) { return _mm256_max_ps(a, b); }
    static F absf(F v) { return _mm256_and_ps(v, castf(set32(0x7FFFFFFF))); }
    static F cmpltf(F a, F b) { return _mm256_cmp_ps(a, b, _CMP_LT_OQ); }
    static F cmpeqf(F a, F b) { return _mm256_cmp_ps(a, b, _CMP_EQ_OQ); }
    static F cmpunordf(F a, F b) { return _mm256_cmp_ps(a, b, _CMP_UNORD_Q); }
    static unsigned movemaskf(F v) { return static_cast<unsigned>(_mm256_movemask_ps(v)); }
    static F quiet_nans(F v) { return selectf(cmpunordf(v, v), castf(set32(static_cast<int>(kQuietNanBits))), v); }

    // ---- Horizontal, halves folded (core/lanes.h)
    static float reduce_addf(F v) {
        __m128 h = _mm_add_ps(_mm256_castps256_ps128(v), _mm256_extractf128_ps(v, 1));  // l_j + l_j+4
        h = _mm_add_ps(h, _mm_movehl_ps(h, h));
        h = _mm_add_ss(h, _mm_shuffle_ps(h, h, _MM_SHUFFLE(1, 1, 1, 1)));
        return _mm_cvtss_f32(h);
    }
    static int64_t reduce_add64(I v) {
        __m128i h = _mm_add_epi64(low(v), high(v));
        h = _mm_add_epi64(h, _mm_unpackhi_epi64(h, h));
        int64_t out;
        _mm_storel_epi64(reinterpret_cast<__m128i*>(&out), h);
        return out;
    }
    static int32_t reduce_add32(I v) {
        __m128i h = _mm_add_epi32(low(v), high(v));
        h = _mm_add_epi32(h, _mm_unpackhi_epi64(h, h));
        h = _mm_add_epi32(h, _mm_shuffle_epi32(h, _MM_SHUFFLE(1, 1, 1, 1)));
        return _mm_cvtsi128_si32(h);
    }

    // ---- Corner eigenvalues
    static I load_widen4_s16(const int16_t* p) {
        return _mm256_cvtepi16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
    }
    static F sqrtf(F v) { return _mm256_sqrt_ps(v); }

    // ---- General filters
    // -v, the sign bit flipped (exact, as the scalar unary minus).
    static F negf(F v) { return _mm256_xor_ps(v, _mm256_set1_ps(-0.0f)); }

    // ---- Accumulators
    static F addf_pinned(F a, F b) {
        F r;
        __asm__("vaddps %2, %1, %0" : "=x"(r) : "x"(a), "x"(b));
        return r;
    }
    static F mulf_pinned(F a, F b) {
        F r;
        __asm__("vmulps %2, %1, %0" : "=x"(r) : "x"(a), "x"(b));
        return r;
    }
    static F andnotf(F a, F b) { return _mm256_andnot_ps(a, b); }
    static void widen32_u8(I x, I (&out)[4]) { widen32<false>(x, out); }
    static void widen32_s8(I x, I (&out)[4]) { widen32<true>(x, out); }
    static void mul_widen32_u8(I a, I b, I (&out)[4]) { mul_widen32<false>(a, b, out); }
    static void mul_widen32_s8(I a, I b, I (&out)[4]) { mul_widen32<true>(a, b, out); }
    static void mul_widen32_u8(I a, const uint8_t* b, I (&out)[4]) { mul_widen32<false>(a, b, out); }
    static void mul_widen32_s8(I a, const int8_t* b, I (&out)[4]) { mul_widen32<true>(a, b, out); }
    static void load_widen32_u8(const uint8_t* p, I (&out)[4]) { load_widen32<false>(p, out); }
    static void load_widen32_s8(const int8_t* p, I (&out)[4]) { load_widen32<true>(p, out); }
    static void load_mul_widen32_u8(const uint8_t* a, const uint8_t* b, I (&out)[4]) {
        load_mul_widen32<false>(a, b, out);
    }
    static void load_mul_widen32_s8(const int8_t* a, const int8_t* b, I (&out)[4]) {
        load_mul_widen32<true>(a, b, out);
    }
    // The eight bytes at the bottom of v into 32-bit lanes.
    template <bool kSigned>
    static I widen8_32(__m128i v) {
        return kSigned ? _mm256_cvtepi8_epi32(v) : _mm256_cvtepu8_epi32(v);
    }
    template <bool kSigned>
    static void widen32(I x, I (&out)[4]) {
        const __m128i lo = low(x), hi = high(x);
        out[0] = widen8_32<kSigned>(lo);
        out[1] = widen8_32<kSigned>(_mm_unpackhi_epi64(lo, lo));
        out[2] = widen8_32<kSigned>(hi);
        out[3] = widen8_32<kSigned>(_mm_unpackhi_epi64(hi, hi));
    }
    // From memory, widening loads take the place of the shuffles.
    template <bool kSigned>
    static void load_widen32(const void* p, I (&out)[4]) {
        for (int k = 0; k < 4; ++k)
            out[k] = widen8_32<kSigned>(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(
                static_cast<const uint8_t*>(p) + 8 * k)));
    }
    // Products in 32-bit lanes: they need no widening.
    static void mullo32(const I (&x)[4], const I (&y)[4], I (&out)[4]) {
        for (int k = 0; k < 4; ++k) out[k] = _mm256_mullo_epi32(x[k], y[k]);
    }
    template <bool kSigned>
    static void mul_widen32(I a, I b, I (&out)[4]) {
        I x[4], y[4];
        widen32<kSigned>(a, x);
        widen32<kSigned>(b, y);
        mullo32(x, y, out);
    }
    template <bool kSigned>
    static void mul_widen32(I a, const void* b, I (&out)[4]) {
        I x[4], y[4];
        widen32<kSigned>(a, x);
        load_widen32<kSigned>(b, y);
        mullo32(x, y, out);
    }
    template <bool kSigned>
    static void load_mul_widen32(const void* a, const void* b, I (&out)[4]) {
        I x[4], y[4];
        load_widen32<kSigned>(a, x);
        load_widen32<kSigned>(b, y);
        mullo32(x, y, out);
    }
    static void load_eq0_mask32(const uint8_t* p, I (&out)[4]) {
        load_widen32_u8(p, out);
        for (int k = 0; k < 4; ++k) out[k] = cmpeq32(out[k], zero());
    }

    // ---- Fixed 3x3 derivatives
    static I sra16(I v, int count) { return _mm256_sra_epi16(v, _mm_cvtsi32_si128(count)); }

    static void load_widen16_u8(const uint8_t* p, I (&out)[2]) {
        out[0] = load_widen_u8(p);
        out[1] = load_widen_u8(p + kBytes / 2);
    }
    // Offset 0: sign extension from memory is as fast as it gets.
    static void load_widen16_s8_offset(const int8_t* p, I (&out)[2]) {
        out[0] = load_widen_s8(p);
        out[1] = load_widen_s8(p + kBytes / 2);
    }

    // ---- Canny
    static I adds_s16(I a, I b) { return _mm256_adds_epi16(a, b); }
    static I subs_s16(I a, I b) { return _mm256_subs_epi16(a, b); }
    // Unpack, madd and pack all work within 128-bit halves, so the lanes
    // come back in their order.
    static I madd2_sat16(I a, I b, int ka, int kb) {
        const I k = set32(static_cast<int>((static_cast<uint32_t>(kb) << 16) | static_cast<uint16_t>(ka)));
        return _mm256_packs_epi32(_mm256_madd_epi16(_mm256_unpacklo_epi16(a, b), k),
                                  _mm256_madd_epi16(_mm256_unpackhi_epi16(a, b), k));
    }
    static I narrow_u8(I v) { return _mm256_zextsi128_si256(_mm_packus_epi16(low(v), high(v))); }
    static I narrow_s8(I v) { return _mm256_zextsi128_si256(_mm_packs_epi16(low(v), high(v))); }
    // ---- Morphology: order keys of floats compared as signed 32-bit integers
    static I min32(I a, I b) { return _mm256_min_epi32(a, b); }
    static I max32(I a, I b) { return _mm256_max_epi32(a, b); }
    // Morphology: stores past the caches for large outputs; p aligned to kBytes.
    static void stream(void* p, I v) { _mm256_stream_si256(static_cast<__m256i*>(p), v); }
    static void stream_fence() { _mm_sfence(); }

    // ---- Gathers (line sampling)
    // The 32-bit elements at base + each lane's byte offset; reads exactly
    // four bytes per lane.
    static I gather32(const void* base, I byte_offsets) {
        return _mm256_i32gather_epi32(static_cast<const int*>(base), byte_offsets, 1);
    }

    // ---- Distance transform: whole-lane moves (and min32, above)
    // The lane each lane of a move takes (clamped; blended over by fill).
    static constexpr int up_from(int j, int k) { return j >= k ? j - k : 0; }
    static constexpr int down_from(int j, int k) { return j + k < 8 ? j + k : 7; }
    // r[j] = j >= K ? v[j - K] : fill[j] (0 < K < 8); a half at once for 4.
    template <int K> static I shift_up32(I v, I fill) {
        if (K == 4) return _mm256_permute2x128_si256(v, fill, 0x02);  // low half fill's, high half v's low
        const I from = _mm256_setr_epi32(up_from(0, K), up_from(1, K), up_from(2, K), up_from(3, K), up_from(4, K),
                                         up_from(5, K), up_from(6, K), up_from(7, K));
        return _mm256_blend_epi32(_mm256_permutevar8x32_epi32(v, from), fill, (1 << K) - 1);
    }
    // r[j] = j + K < 8 ? v[j + K] : fill[j] (0 < K < 8).
    template <int K> static I shift_down32(I v, I fill) {
        if (K == 4) return _mm256_permute2x128_si256(v, fill, 0x31);  // low half v's high, high half fill's
        const I from = _mm256_setr_epi32(down_from(0, K), down_from(1, K), down_from(2, K), down_from(3, K),
                                         down_from(4, K), down_from(5, K), down_from(6, K), down_from(7, K));
        return _mm256_blend_epi32(_mm256_permutevar8x32_epi32(v, from), fill, (0xFF << (8 - K)) & 0xFF);
    }
    static I broadcast_first32(I v) { return _mm256_broadcastd_epi32(_mm256_castsi256_si128(v)); }
    static I broadcast_last32(I v) { return _mm256_permutevar8x32_epi32(v, _mm256_set1_epi32(7)); }

    // ---- Flood fill: float bitwise operations and the other comparison
    static F andf(F a, F b) { return _mm256_and_ps(a, b); }
    static F orf(F a, F b) { return _mm256_or_ps(a, b); }
    static F xorf(F a, F b) { return _mm256_xor_ps(a, b); }
    static F cmpgtf(F a, F b) { return _mm256_cmp_ps(a, b, _CMP_GT_OQ); }

    // ---- Template matching: 16-byte pieces, 64-bit lanes, lane prefix sums
    // and transposes, 32-bit products, and doubles (D, kDoubles lanes)
    static I load16(const void* p) { return load_half(p); }
    static I load8x2(const void* a, const void* b) {
        return _mm256_zextsi128_si256(_mm_unpacklo_epi64(_mm_loadl_epi64(static_cast<const __m128i*>(a)),
                                                         _mm_loadl_epi64(static_cast<const __m128i*>(b))));
    }
    static I load_widen4_s8(const int8_t* p) {
        return _mm256_cvtepi8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
    }
    static void widen_s32(I x, I& lo, I& hi) {
        lo = _mm256_cvtepi32_epi64(low(x));
        hi = _mm256_cvtepi32_epi64(high(x));
    }
    static I set64(int64_t v) { return _mm256_set1_epi64x(v); }
    static I set64_lanes(const int64_t* v) { return _mm256_setr_epi64x(v[0], v[1], v[2], v[3]); }
    static I sub64(I a, I b) { return _mm256_sub_epi64(a, b); }
    static I mullo32(I a, I b) { return _mm256_mullo_epi32(a, b); }
    static I prefix_add32(I x) {
        x = add32(x, _mm256_slli_si256(x, 4));
        x = add32(x, _mm256_slli_si256(x, 8));
        const I low_total = _mm256_permutevar8x32_epi32(x, _mm256_set1_epi32(3));
        return add32(x, _mm256_blend_epi32(_mm256_setzero_si256(), low_total, 0xF0));
    }
    static I prefix_add64(I x) {
        const I zero = _mm256_setzero_si256();
        x = add64(x, _mm256_blend_epi32(_mm256_permute4x64_epi64(x, _MM_SHUFFLE(2, 1, 0, 0)), zero, 0x03));
        return add64(x, _mm256_blend_epi32(_mm256_permute4x64_epi64(x, _MM_SHUFFLE(1, 0, 0, 0)), zero, 0x0F));
    }
    static I broadcast_last64(I x) { return _mm256_permute4x64_epi64(x, _MM_SHUFFLE(3, 3, 3, 3)); }
    static void transpose32(I* v) {
        I t[8], u[8];
        for (int r = 0; r < 8; r += 2) {
            t[r] = _mm256_unpacklo_epi32(v[r], v[r + 1]);
            t[r + 1] = _mm256_unpackhi_epi32(v[r], v[r + 1]);
        }
        for (int r = 0; r < 8; r += 4) {
            u[r] = _mm256_unpacklo_epi64(t[r], t[r + 2]);
            u[r + 1] = _mm256_unpackhi_epi64(t[r], t[r + 2]);
            u[r + 2] = _mm256_unpacklo_epi64(t[r + 1], t[r + 3]);
            u[r + 3] = _mm256_unpackhi_epi64(t[r + 1], t[r + 3]);
        }
        for (int k = 0; k < 4; ++k) {
            v[k] = _mm256_permute2x128_si256(u[k], u[k + 4], 0x20);
            v[k + 4] = _mm256_permute2x128_si256(u[k], u[k + 4], 0x31);
        }
    }
    // Pairwise sums within each 128-bit half, then the two halves.
    static void totals32x4(I a0, I a1, I a2, I a3, double* out) {
        const I h = _mm256_hadd_epi32(_mm256_hadd_epi32(a0, a1), _mm256_hadd_epi32(a2, a3));
        _mm256_storeu_pd(out, _mm256_cvtepi32_pd(_mm_add_epi32(low(h), high(h))));
    }

    using D = __m256d;
    static constexpr int kDoubles = 4;
    static D loadd(const double* p) { return _mm256_loadu_pd(p); }
    static void stored(double* p, D v) { _mm256_storeu_pd(p, v); }
    static D setd(double v) { return _mm256_set1_pd(v); }
    static D zerod() { return _mm256_setzero_pd(); }
    static D addd(D a, D b) { return _mm256_add_pd(a, b); }
    static D subd(D a, D b) { return _mm256_sub_pd(a, b); }
    static D muld(D a, D b) { return _mm256_mul_pd(a, b); }
    static D absd(D v) { return _mm256_andnot_pd(_mm256_set1_pd(-0.0), v); }
    static D castd(I v) { return _mm256_castsi256_pd(v); }
    static D load_widen_f(const float* p) { return _mm256_cvtps_pd(_mm_loadu_ps(p)); }
    static D widen_lo_f(F v) { return _mm256_cvtps_pd(_mm256_castps256_ps128(v)); }
    static F narrow_d(D v) { return _mm256_zextps128_ps256(_mm256_cvtpd_ps(v)); }
    static void storef_strided(float* p, ptrdiff_t step, F v) {
        const __m128 f = _mm256_castps256_ps128(v);
        _mm_store_ss(p, f);
        _mm_store_ss(p + step, _mm_shuffle_ps(f, f, 1));
        _mm_store_ss(p + 2 * step, _mm_shuffle_ps(f, f, 2));
        _mm_store_ss(p + 3 * step, _mm_shuffle_ps(f, f, 3));
    }
    static double reduce_addd(D v) {
        const __m128d w = _mm_add_pd(_mm256_castpd256_pd128(v), _mm256_extractf128_pd(v, 1));
        return _mm_cvtsd_f64(_mm_add_sd(w, _mm_unpackhi_pd(w, w)));
    }

    // ---- Pyramids: saturating narrowing, non-temporal float stores, prefetches
    static I pack_u16_u8(I a, I b) { return _mm256_permute4x64_epi64(_mm256_packus_epi16(a, b), _MM_SHUFFLE(3, 1, 2, 0)); }
    static void streamf(float* p, F v) { _mm256_stream_ps(p, v); }
    static void prefetch_l2(const void* p) { _mm_prefetch(static_cast<const char*>(p), _MM_HINT_T1); }

    // ---- Statistics: channel 0 of three, magnitudes, horizontal extremes,
    //      doubles (see ops_sse2.h)
    // Each 128-bit half gathers channel 0 of 16 pixels (48 bytes) from
    // three loads; the shuffles pick bytes 0, 3, ... 15, then 2, 5, ... 14,
    // then 1, 4, ... 13 of the three.
    static I load_deinterleave3_u8(const uint8_t* p) {
        const auto pair = [](const uint8_t* lo, const uint8_t* hi) {
            return _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(lo))),
                                           _mm_loadu_si128(reinterpret_cast<const __m128i*>(hi)), 1);
        };
        const I a = pair(p, p + 48), b = pair(p + 16, p + 64), c = pair(p + 32, p + 80);
        const I sa = _mm256_setr_epi8(0, 3, 6, 9, 12, 15, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1,  //
                                      0, 3, 6, 9, 12, 15, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1);
        const I sb = _mm256_setr_epi8(-1, -1, -1, -1, -1, -1, 2, 5, 8, 11, 14, -1, -1, -1, -1, -1,  //
                                      -1, -1, -1, -1, -1, -1, 2, 5, 8, 11, 14, -1, -1, -1, -1, -1);
        const I sc = _mm256_setr_epi8(-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, 1, 4, 7, 10, 13,  //
                                      -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, 1, 4, 7, 10, 13);
        return _mm256_or_si256(_mm256_or_si256(_mm256_shuffle_epi8(a, sa), _mm256_shuffle_epi8(b, sb)),
                               _mm256_shuffle_epi8(c, sc));
    }
    static F load_deinterleave3_f(const float* p) {
        const F x0 = loadf(p), x1 = loadf(p + 8), x2 = loadf(p + 16);
        // a0 a3 a6 a1 a4 a7 a2 a5, then into order.
        const F b = _mm256_blend_ps(_mm256_blend_ps(x0, x1, 0x92), x2, 0x24);
        return _mm256_permutevar8x32_ps(b, _mm256_setr_epi32(0, 3, 6, 1, 4, 7, 2, 5));
    }
    static I abs_s8(I v) { return _mm256_abs_epi8(v); }
    static I absdiff_s8(I a, I b) { return _mm256_sub_epi8(_mm256_max_epi8(a, b), _mm256_min_epi8(a, b)); }
    static I sumsq4_u8(I x) {
        const I lo = _mm256_unpacklo_epi8(x, _mm256_setzero_si256()), hi = _mm256_unpackhi_epi8(x, _mm256_setzero_si256());
        return _mm256_add_epi32(_mm256_madd_epi16(lo, lo), _mm256_madd_epi16(hi, hi));
    }
    static int reduce_min_u8(I v) {
        __m128i h = _mm_min_epu8(low(v), high(v));
        h = _mm_min_epu8(h, _mm_srli_si128(h, 8));
        h = _mm_min_epu8(h, _mm_srli_si128(h, 4));
        h = _mm_min_epu8(h, _mm_srli_si128(h, 2));
        h = _mm_min_epu8(h, _mm_srli_si128(h, 1));
        return _mm_cvtsi128_si32(h) & 0xFF;
    }
    static int reduce_max_u8(I v) {
        __m128i h = _mm_max_epu8(low(v), high(v));
        h = _mm_max_epu8(h, _mm_srli_si128(h, 8));
        h = _mm_max_epu8(h, _mm_srli_si128(h, 4));
        h = _mm_max_epu8(h, _mm_srli_si128(h, 2));
        h = _mm_max_epu8(h, _mm_srli_si128(h, 1));
        return _mm_cvtsi128_si32(h) & 0xFF;
    }
    static int32_t reduce_min_s32(I v) {
        __m128i h = _mm_min_epi32(low(v), high(v));
        h = _mm_min_epi32(h, _mm_srli_si128(h, 8));
        h = _mm_min_epi32(h, _mm_srli_si128(h, 4));
        return _mm_cvtsi128_si32(h);
    }
    static int32_t reduce_max_s32(I v) {
        __m128i h = _mm_max_epi32(low(v), high(v));
        h = _mm_max_epi32(h, _mm_srli_si128(h, 8));
        h = _mm_max_epi32(h, _mm_srli_si128(h, 4));
        return _mm_cvtsi128_si32(h);
    }
    static F swap_halvesf(F v) { return _mm256_permute2f128_ps(v, v, 1); }
    static D maxd(D a, D b) { return _mm256_max_pd(a, b); }
    static D mind(D a, D b) { return _mm256_min_pd(a, b); }
    static D cmpltd(D a, D b) { return _mm256_cmp_pd(a, b, _CMP_LT_OQ); }
    static unsigned movemaskd(D v) { return static_cast<unsigned>(_mm256_movemask_pd(v)); }
    static D widen_hi_f(F v) { return _mm256_cvtps_pd(_mm256_extractf128_ps(v, 1)); }
};

}  // namespace
}  // namespace a6
}  // namespace orucv
