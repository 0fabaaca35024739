// The SSE2 operations that family loops are written over. ops_avx2.h gives
// the same names for 32-byte vectors, so a loop written once as a template
// over `class V` (V = Sse2 or Avx2) serves both; a wider set can follow the
// same pattern.
//
// Conventions shared by every set:
//  - I holds kBytes bytes of integers, F holds kFloats floats; every lane
//    order is the order in memory (widening keeps it, also on AVX2 where
//    the unpack instructions work per 128-bit half).
//  - Loads and stores are unaligned; the partial forms touch exactly n
//    bytes (0 <= n <= kBytes), loads zero the rest of the vector.
//  - minf(a, b) is a < b ? a : b and maxf(a, b) is a > b ? a : b, lane by
//    lane: the second operand when either is NaN or both are zeros of any
//    sign. Scalar twins use the same expressions (scalar_minf, scalar_maxf).
//  - Horizontal sums follow the lane order of core/lanes.h (halves folded).
//  - quiet_nans(v) stores every NaN lane as the one quiet NaN 0x7FC00000.
//
// Included only by instruction-set files: everything has internal linkage.
#pragma once

#include <emmintrin.h>

#include <cstdint>
#include <cstring>

#include "core/bytes.h"
#include "core/floats.h"

namespace orucv {
namespace a6 {
namespace {

struct Sse2 {
    static constexpr int kBytes = 16;
    static constexpr int kFloats = 4;
    using I = __m128i;
    using F = __m128;

    // ---- Loads and stores
    static I load(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
    static void store(void* p, I v) { _mm_storeu_si128(static_cast<__m128i*>(p), v); }
    static F loadf(const float* p) { return _mm_loadu_ps(p); }
    static void storef(float* p, F v) { _mm_storeu_ps(p, v); }
    // kBytes / 2 bytes into the low half, the high half zero.
    static I load_half(const void* p) { return _mm_loadl_epi64(static_cast<const __m128i*>(p)); }
    static void store_half(void* p, I v) { _mm_storel_epi64(static_cast<__m128i*>(p), v); }
    static I load_partial(const void* p, int n) {
        if (n == kBytes) return load(p);
        alignas(16) uint8_t tmp[kBytes] = {};
        copy_bytes(tmp, p, static_cast<size_t>(n));
        return _mm_load_si128(reinterpret_cast<const __m128i*>(tmp));
    }
    static void store_partial(void* p, I v, int n) {
        if (n == kBytes) return store(p, v);
        alignas(16) uint8_t tmp[kBytes];
        _mm_store_si128(reinterpret_cast<__m128i*>(tmp), v);
        copy_bytes(p, tmp, static_cast<size_t>(n));
    }
    static F loadf_partial(const float* p, int n) { return _mm_castsi128_ps(load_partial(p, 4 * n)); }
    static void storef_partial(float* p, F v, int n) { store_partial(p, _mm_castps_si128(v), 4 * n); }

    // ---- Widening, in element order
    // kBytes / 2 samples from memory into 16-bit lanes.
    static I load_widen_u8(const uint8_t* p) { return _mm_unpacklo_epi8(load_half(p), _mm_setzero_si128()); }
    static I load_widen_s8(const int8_t* p) {
        const I x = load_half(p);
        return _mm_srai_epi16(_mm_unpacklo_epi8(x, x), 8);
    }
    // kFloats bytes from memory into 32-bit lanes.
    static I load_widen4_u8(const uint8_t* p) {
        int32_t v;
        std::memcpy(&v, p, 4);
        const I x = _mm_unpacklo_epi8(_mm_cvtsi32_si128(v), _mm_setzero_si128());
        return _mm_unpacklo_epi16(x, _mm_setzero_si128());
    }
    static void widen_u8(I x, I& lo, I& hi) {
        lo = _mm_unpacklo_epi8(x, _mm_setzero_si128());
        hi = _mm_unpackhi_epi8(x, _mm_setzero_si128());
    }
    static void widen_s8(I x, I& lo, I& hi) {
        lo = _mm_srai_epi16(_mm_unpacklo_epi8(x, x), 8);
        hi = _mm_srai_epi16(_mm_unpackhi_epi8(x, x), 8);
    }
    static void widen_u16(I x, I& lo, I& hi) {
        lo = _mm_unpacklo_epi16(x, _mm_setzero_si128());
        hi = _mm_unpackhi_epi16(x, _mm_setzero_si128());
    }
    static void widen_s16(I x, I& lo, I& hi) {
        lo = _mm_srai_epi32(_mm_unpacklo_epi16(x, x), 16);
        hi = _mm_srai_epi32(_mm_unpackhi_epi16(x, x), 16);
    }
    static void widen_u32(I x, I& lo, I& hi) {
        lo = _mm_unpacklo_epi32(x, _mm_setzero_si128());
        hi = _mm_unpackhi_epi32(x, _mm_setzero_si128());
    }
    static F to_float(I i32) { return _mm_cvtepi32_ps(i32); }
    static I cast(F v) { return _mm_castps_si128(v); }
    static F castf(I v) { return _mm_castsi128_ps(v); }

    // ---- Constants
    static I zero() { return _mm_setzero_si128(); }
    static F zerof() { return _mm_setzero_ps(); }
    static I set8(int v) { return _mm_set1_epi8(static_cast<char>(v)); }
    static I set16(int v) { return _mm_set1_epi16(static_cast<short>(v)); }
    static I set32(int v) { return _mm_set1_epi32(v); }
    static F setf(float v) { return _mm_set1_ps(v); }
    // Bytes [0, n) all ones, the rest zero (0 <= n <= kBytes).
    static I tail_mask8(int n) {
        const I index = _mm_setr_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
        return _mm_cmpgt_epi8(set8(n), index);
    }

    // ---- Bitwise
    static I and_(I a, I b) { return _mm_and_si128(a, b); }
    static I or_(I a, I b) { return _mm_or_si128(a, b); }
    static I xor_(I a, I b) { return _mm_xor_si128(a, b); }
    static I andnot(I a, I b) { return _mm_andnot_si128(a, b); }  // ~a & b
    // mask ? a : b, for masks whose elements are all ones or all zeros.
    static I select(I mask, I a, I b) { return or_(and_(mask, a), andnot(mask, b)); }
    static F selectf(F mask, F a, F b) { return _mm_or_ps(_mm_and_ps(mask, a), _mm_andnot_ps(mask, b)); }

    // ---- Integers
    static I add8(I a, I b) { return _mm_add_epi8(a, b); }
    static I sub8(I a, I b) { return _mm_sub_epi8(a, b); }
    static I adds_u8(I a, I b) { return _mm_adds_epu8(a, b); }
    static I subs_u8(I a, I b) { return _mm_subs_epu8(a, b); }
    static I add16(I a, I b) { return _mm_add_epi16(a, b); }
    static I sub16(I a, I b) { return _mm_sub_epi16(a, b); }
    static I mullo16(I a, I b) { return _mm_mullo_epi16(a, b); }
    static I madd16(I a, I b) { return _mm_madd_epi16(a, b); }  // pairs of 16-bit products into 32 bits
    static I add32(I a, I b) { return _mm_add_epi32(a, b); }
    static I sub32(I a, I b) { return _mm_sub_epi32(a, b); }
    static I add64(I a, I b) { return _mm_add_epi64(a, b); }
    // Sums of |a - b| of each group of eight bytes, in 64-bit lanes.
    static I sad_u8(I a, I b) { return _mm_sad_epu8(a, b); }
    // |a - b| of unsigned bytes without widening.
    static I absdiff_u8(I a, I b) { return _mm_or_si128(_mm_subs_epu8(a, b), _mm_subs_epu8(b, a)); }
    static I min_u8(I a, I b) { return _mm_min_epu8(a, b); }
    static I max_u8(I a, I b) { return _mm_max_epu8(a, b); }
    static I min_s8(I a, I b) { return xor_(_mm_min_epu8(xor_(a, set8(0x80)), xor_(b, set8(0x80))), set8(0x80)); }
    static I max_s8(I a, I b) { return xor_(_mm_max_epu8(xor_(a, set8(0x80)), xor_(b, set8(0x80))), set8(0x80)); }
    static I min16(I a, I b) { return _mm_min_epi16(a, b); }
    static I max16(I a, I b) { return _mm_max_epi16(a, b); }
    static I cmpeq8(I a, I b) { return _mm_cmpeq_epi8(a, b); }
    static I cmpgt_s8(I a, I b) { return _mm_cmpgt_epi8(a, b); }
    static I cmpeq16(I a, I b) { return _mm_cmpeq_epi16(a, b); }
    static I cmpgt16(I a, I b) { return _mm_cmpgt_epi16(a, b); }
    static I cmpeq32(I a, I b) { return _mm_cmpeq_epi32(a, b); }
    static I cmpgt32(I a, I b) { return _mm_cmpgt_epi32(a, b); }
    // Shifts by a constant count.
    template <int N> static I srai16(I v) { return _mm_srai_epi16(v, N); }
    template <int N> static I srai32(I v) { return _mm_srai_epi32(v, N); }
    template <int N> static I srli16(I v) { return _mm_srli_epi16(v, N); }
    template <int N> static I srli32(I v) { return _mm_srli_epi32(v, N); }
    template <int N> static I slli16(I v) { return _mm_slli_epi16(v, N); }
    template <int N> static I slli32(I v) { return _mm_slli_epi32(v, N); }
    // One bit per byte (bit i from byte i).
    static unsigned movemask8(I v) { return static_cast<unsigned>(_mm_movemask_epi8(v)); }

    // ---- Floats
    static F addf(F a, F b) { return _mm_add_ps(a, b); }
    static F subf(F a, F b) { return _mm_sub_ps(a, b); }
    static F mulf(F a, F b) { return _mm_mul_ps(a, b); }
    static F divf(F a, F b) { return _mm_div_ps(a, b); }
    static F minf(F a, F b) { return _mm_min_ps(a, b); }
    static F maxf(F a, F b) { return _mm_max_ps(a, b); }
    static F absf(F v) { return _mm_and_ps(v, castf(set32(0x7FFFFFFF))); }
    static F cmpltf(F a, F b) { return _mm_cmplt_ps(a, b); }
    static F cmpeqf(F a, F b) { return _mm_cmpeq_ps(a, b); }
    static F cmpunordf(F a, F b) { return _mm_cmpunord_ps(a, b); }
    static unsigned movemaskf(F v) { return static_cast<unsigned>(_mm_movemask_ps(v)); }
    static F quiet_nans(F v) { return selectf(cmpunordf(v, v), castf(set32(static_cast<int>(kQuietNanBits))), v); }

    // ---- Horizontal, halves folded (core/lanes.h)
    static float reduce_addf(F v) {
        v = _mm_add_ps(v, _mm_movehl_ps(v, v));                     // l0 + l2, l1 + l3
        v = _mm_add_ss(v, _mm_shuffle_ps(v, v, _MM_SHUFFLE(1, 1, 1, 1)));
        return _mm_cvtss_f32(v);
    }
    static int64_t reduce_add64(I v) {
        v = _mm_add_epi64(v, _mm_unpackhi_epi64(v, v));
        alignas(16) int64_t out[2];
        _mm_store_si128(reinterpret_cast<__m128i*>(out), v);
        return out[0];
    }
    static int32_t reduce_add32(I v) {
        v = _mm_add_epi32(v, _mm_unpackhi_epi64(v, v));
        v = _mm_add_epi32(v, _mm_shuffle_epi32(v, _MM_SHUFFLE(1, 1, 1, 1)));
        return _mm_cvtsi128_si32(v);
    }

    // ---- Corner eigenvalues
    // kFloats 16-bit samples from memory into 32-bit lanes, sign extended.
    static I load_widen4_s16(const int16_t* p) {
        const I x = load_half(p);
        return _mm_srai_epi32(_mm_unpacklo_epi16(x, x), 16);
    }
    static F sqrtf(F v) { return _mm_sqrt_ps(v); }

    // ---- General filters
    // -v, the sign bit flipped (exact, as the scalar unary minus).
    static F negf(F v) { return _mm_xor_ps(v, _mm_set1_ps(-0.0f)); }

    // ---- Accumulators
    // a + b and a * b with the operands kept in this order, so that of two
    // NaN operands a's comes out (quieted); the compiler may commute addf and
    // mulf, not these. Scalar twins: add_pinned, mul_pinned (core/floats.h).
    static F addf_pinned(F a, F b) {
        __asm__("addps %1, %0" : "+x"(a) : "x"(b));
        return a;
    }
    static F mulf_pinned(F a, F b) {
        __asm__("mulps %1, %0" : "+x"(a) : "x"(b));
        return a;
    }
    static F andnotf(F a, F b) { return _mm_andnot_ps(a, b); }  // ~a & b
    // kBytes bytes into four vectors of 32-bit lanes, in order.
    static void widen32_u8(I x, I (&out)[4]) {
        I lo, hi;
        widen_u8(x, lo, hi);
        widen_u16(lo, out[0], out[1]);
        widen_u16(hi, out[2], out[3]);
    }
    static void widen32_s8(I x, I (&out)[4]) {
        const I lo = _mm_unpacklo_epi8(x, x), hi = _mm_unpackhi_epi8(x, x);
        out[0] = _mm_srai_epi32(_mm_unpacklo_epi16(lo, lo), 24);
        out[1] = _mm_srai_epi32(_mm_unpackhi_epi16(lo, lo), 24);
        out[2] = _mm_srai_epi32(_mm_unpacklo_epi16(hi, hi), 24);
        out[3] = _mm_srai_epi32(_mm_unpackhi_epi16(hi, hi), 24);
    }
    // Products of kBytes pairs of unsigned or signed bytes, exact, in four
    // vectors of 32-bit lanes, in order.
    static void mul_widen32_u8(I a, I b, I (&out)[4]) {
        I a0, a1, b0, b1;
        widen_u8(a, a0, a1);
        widen_u8(b, b0, b1);
        widen_u16(mullo16(a0, b0), out[0], out[1]);  // at most 65025: unsigned
        widen_u16(mullo16(a1, b1), out[2], out[3]);
    }
    static void mul_widen32_s8(I a, I b, I (&out)[4]) {
        I a0, a1, b0, b1;
        widen_s8(a, a0, a1);
        widen_s8(b, b0, b1);
        widen_s16(mullo16(a0, b0), out[0], out[1]);
        widen_s16(mullo16(a1, b1), out[2], out[3]);
    }
    // The same with b from memory.
    static void mul_widen32_u8(I a, const uint8_t* b, I (&out)[4]) { mul_widen32_u8(a, load(b), out); }
    static void mul_widen32_s8(I a, const int8_t* b, I (&out)[4]) { mul_widen32_s8(a, load(b), out); }
    // The same from memory.
    static void load_widen32_u8(const uint8_t* p, I (&out)[4]) { widen32_u8(load(p), out); }
    static void load_widen32_s8(const int8_t* p, I (&out)[4]) { widen32_s8(load(p), out); }
    static void load_mul_widen32_u8(const uint8_t* a, const uint8_t* b, I (&out)[4]) {
        mul_widen32_u8(load(a), load(b), out);
    }
    static void load_mul_widen32_s8(const int8_t* a, const int8_t* b, I (&out)[4]) {
        mul_widen32_s8(load(a), load(b), out);
    }
    // kBytes mask bytes from memory as four vectors of 32-bit lane masks,
    // in order: all ones where the byte is 0, else all zeros.
    static void load_eq0_mask32(const uint8_t* p, I (&out)[4]) {
        const I x = cmpeq8(load(p), zero());
        const I lo = _mm_unpacklo_epi8(x, x), hi = _mm_unpackhi_epi8(x, x);
        out[0] = _mm_unpacklo_epi16(lo, lo);
        out[1] = _mm_unpackhi_epi16(lo, lo);
        out[2] = _mm_unpacklo_epi16(hi, hi);
        out[3] = _mm_unpackhi_epi16(hi, hi);
    }

    // ---- Fixed 3x3 derivatives
    // Arithmetic right shift of 16-bit lanes by a count known at run time
    // (counts from 16 on give 0 or -1).
    static I sra16(I v, int count) { return _mm_sra_epi16(v, _mm_cvtsi32_si128(count)); }

    // kBytes bytes from memory into two vectors of 16-bit lanes, in order.
    static void load_widen16_u8(const uint8_t* p, I (&out)[2]) { widen_u8(load(p), out[0], out[1]); }
    // Signed bytes the same way, offset by a constant of the set's choosing
    // (here 128, the bytes moved to the unsigned range, which widen fastest):
    // for sums whose weights add up to zero, where the offset cancels.
    static void load_widen16_s8_offset(const int8_t* p, I (&out)[2]) {
        widen_u8(xor_(load(p), set8(0x80)), out[0], out[1]);
    }

    // ---- Canny
    static I adds_s16(I a, I b) { return _mm_adds_epi16(a, b); }
    static I subs_s16(I a, I b) { return _mm_subs_epi16(a, b); }
    // ka * a + kb * b in every 16-bit lane, formed in 32 bits and saturated
    // back to 16 (ka, kb 16-bit constants).
    static I madd2_sat16(I a, I b, int ka, int kb) {
        const I k = set32(static_cast<int>((static_cast<uint32_t>(kb) << 16) | static_cast<uint16_t>(ka)));
        return _mm_packs_epi32(_mm_madd_epi16(_mm_unpacklo_epi16(a, b), k),
                               _mm_madd_epi16(_mm_unpackhi_epi16(a, b), k));
    }
    // 16-bit lanes narrowed to bytes with unsigned or signed saturation: the
    // kBytes / 2 bytes in the low half, in order, the high half zero.
    static I narrow_u8(I v) { return _mm_packus_epi16(v, zero()); }
    static I narrow_s8(I v) { return _mm_packs_epi16(v, zero()); }
    // ---- Morphology: order keys of floats compared as signed 32-bit integers
    static I min32(I a, I b) { return select(cmpgt32(a, b), b, a); }
    static I max32(I a, I b) { return select(cmpgt32(a, b), a, b); }
    // Morphology: stores past the caches for large outputs; p aligned to kBytes.
    static void stream(void* p, I v) { _mm_stream_si128(static_cast<__m128i*>(p), v); }
    static void stream_fence() { _mm_sfence(); }

    // ---- Gathers (line sampling)
    // The 32-bit elements at base + each lane's byte offset; reads exactly
    // four bytes per lane.
    static I gather32(const void* base, I byte_offsets) {
        alignas(16) int32_t o[4];
        _mm_store_si128(reinterpret_cast<__m128i*>(o), byte_offsets);
        const uint8_t* b = static_cast<const uint8_t*>(base);
        int32_t v[4];
        for (int j = 0; j < 4; ++j) std::memcpy(&v[j], b + o[j], 4);
        return _mm_setr_epi32(v[0], v[1], v[2], v[3]);
    }

    // ---- Distance transform: whole-lane moves (and min32, above)
    // Lanes moved K places up, the lowest K taken from fill:
    // r[j] = j >= K ? v[j - K] : fill[j].
    template <int K> static I shift_up32(I v, I fill) {
        return or_(_mm_slli_si128(v, 4 * K), and_(fill, _mm_setr_epi32(-(K > 0), -(K > 1), -(K > 2), -(K > 3))));
    }
    // Lanes moved K places down, the highest K taken from fill:
    // r[j] = j + K < lanes ? v[j + K] : fill[j].
    template <int K> static I shift_down32(I v, I fill) {
        return or_(_mm_srli_si128(v, 4 * K), and_(fill, _mm_setr_epi32(-(K > 3), -(K > 2), -(K > 1), -(K > 0))));
    }
    static I broadcast_first32(I v) { return _mm_shuffle_epi32(v, 0x00); }
    static I broadcast_last32(I v) { return _mm_shuffle_epi32(v, 0xFF); }

    // ---- Flood fill: float bitwise operations and the other comparison
    static F andf(F a, F b) { return _mm_and_ps(a, b); }
    static F orf(F a, F b) { return _mm_or_ps(a, b); }
    static F xorf(F a, F b) { return _mm_xor_ps(a, b); }
    static F cmpgtf(F a, F b) { return _mm_cmpgt_ps(a, b); }

    // ---- Template matching: 16-byte pieces, 64-bit lanes, lane prefix sums
    // and transposes, 32-bit products, and doubles (D, kDoubles lanes)
    // 16 bytes into the low 16 bytes (the rest zero), and 8 + 8 bytes so.
    static I load16(const void* p) { return load(p); }
    static I load8x2(const void* a, const void* b) {
        return _mm_unpacklo_epi64(_mm_loadl_epi64(static_cast<const __m128i*>(a)),
                                  _mm_loadl_epi64(static_cast<const __m128i*>(b)));
    }
    // kFloats signed bytes from memory into 32-bit lanes.
    static I load_widen4_s8(const int8_t* p) {
        int32_t v;
        std::memcpy(&v, p, 4);
        const I x = _mm_unpacklo_epi8(_mm_cvtsi32_si128(v), _mm_cvtsi32_si128(v));
        return _mm_srai_epi32(_mm_unpacklo_epi16(x, x), 24);
    }
    static void widen_s32(I x, I& lo, I& hi) {
        const I sign = _mm_srai_epi32(x, 31);
        lo = _mm_unpacklo_epi32(x, sign);
        hi = _mm_unpackhi_epi32(x, sign);
    }
    static I set64(int64_t v) { return _mm_set1_epi64x(v); }
    // kBytes / 8 values in lane order.
    static I set64_lanes(const int64_t* v) { return _mm_set_epi64x(v[1], v[0]); }
    static I sub64(I a, I b) { return _mm_sub_epi64(a, b); }
    // The low 32 bits of the products.
    static I mullo32(I a, I b) {
        const I even = _mm_mul_epu32(a, b), odd = _mm_mul_epu32(_mm_srli_epi64(a, 32), _mm_srli_epi64(b, 32));
        return _mm_unpacklo_epi32(_mm_shuffle_epi32(even, _MM_SHUFFLE(0, 0, 2, 0)),
                                  _mm_shuffle_epi32(odd, _MM_SHUFFLE(0, 0, 2, 0)));
    }
    // Inclusive prefix sums across the lanes, in lane order.
    static I prefix_add32(I x) {
        x = add32(x, _mm_slli_si128(x, 4));
        return add32(x, _mm_slli_si128(x, 8));
    }
    static I prefix_add64(I x) { return add64(x, _mm_slli_si128(x, 8)); }
    static I broadcast_last64(I x) { return _mm_unpackhi_epi64(x, x); }
    // kFloats vectors of 32-bit lanes: lane k of v[r] becomes lane r of v[k].
    static void transpose32(I* v) {
        const I t0 = _mm_unpacklo_epi32(v[0], v[1]), t1 = _mm_unpackhi_epi32(v[0], v[1]);
        const I t2 = _mm_unpacklo_epi32(v[2], v[3]), t3 = _mm_unpackhi_epi32(v[2], v[3]);
        v[0] = _mm_unpacklo_epi64(t0, t2), v[1] = _mm_unpackhi_epi64(t0, t2);
        v[2] = _mm_unpacklo_epi64(t1, t3), v[3] = _mm_unpackhi_epi64(t1, t3);
    }
    // The totals of the 32-bit lanes of four vectors, as doubles: total k
    // (of ak) in out[k].
    static void totals32x4(I a0, I a1, I a2, I a3, double* out) {
        const I t01 = add32(_mm_unpacklo_epi32(a0, a1), _mm_unpackhi_epi32(a0, a1));
        const I t23 = add32(_mm_unpacklo_epi32(a2, a3), _mm_unpackhi_epi32(a2, a3));
        const I t = add32(_mm_unpacklo_epi64(t01, t23), _mm_unpackhi_epi64(t01, t23));
        _mm_storeu_pd(out, _mm_cvtepi32_pd(t));
        _mm_storeu_pd(out + 2, _mm_cvtepi32_pd(_mm_unpackhi_epi64(t, t)));
    }

    using D = __m128d;
    static constexpr int kDoubles = 2;
    static D loadd(const double* p) { return _mm_loadu_pd(p); }
    static void stored(double* p, D v) { _mm_storeu_pd(p, v); }
    static D setd(double v) { return _mm_set1_pd(v); }
    static D zerod() { return _mm_setzero_pd(); }
    static D addd(D a, D b) { return _mm_add_pd(a, b); }
    static D subd(D a, D b) { return _mm_sub_pd(a, b); }
    static D muld(D a, D b) { return _mm_mul_pd(a, b); }
    static D absd(D v) { return _mm_andnot_pd(_mm_set1_pd(-0.0), v); }
    static D castd(I v) { return _mm_castsi128_pd(v); }
    // kDoubles floats from memory as doubles; the low kDoubles floats of v
    // as doubles; doubles rounded to floats in the low lanes (the rest zero).
    static D load_widen_f(const float* p) {
        return _mm_cvtps_pd(_mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p))));
    }
    static D widen_lo_f(F v) { return _mm_cvtps_pd(v); }
    static F narrow_d(D v) { return _mm_cvtpd_ps(v); }
    // The low kDoubles floats of v to p[0], p[step], ... (step in floats).
    static void storef_strided(float* p, ptrdiff_t step, F v) {
        _mm_store_ss(p, v);
        _mm_store_ss(p + step, _mm_shuffle_ps(v, v, 1));
    }
    // Halves folded (core/lanes.h).
    static double reduce_addd(D v) { return _mm_cvtsd_f64(_mm_add_sd(v, _mm_unpackhi_pd(v, v))); }

    // ---- Pyramids: saturating narrowing, non-temporal float stores, prefetches
    // Unsigned saturation of the 16-bit lanes of a, then b, to bytes in
    // element order.
    static I pack_u16_u8(I a, I b) { return _mm_packus_epi16(a, b); }
    // Aligned float stores that bypass the caches (and stream, above).
    static void streamf(float* p, F v) { _mm_stream_ps(p, v); }
    // Brings the line at p into the second-level cache.
    static void prefetch_l2(const void* p) { _mm_prefetch(static_cast<const char*>(p), _MM_HINT_T1); }

    // ---- Statistics: channel 0 of three, magnitudes, horizontal extremes,
    //      doubles
    // Channel 0 of kBytes three-channel pixels: reads exactly 3 * kBytes bytes.
    static I load_deinterleave3_u8(const uint8_t* p) {
        const auto hi64 = [](I v) { return _mm_unpackhi_epi64(v, v); };
        const I t00 = load(p), t01 = load(p + 16), t02 = load(p + 32);
        const I t10 = _mm_unpacklo_epi8(t00, hi64(t01));
        const I t11 = _mm_unpacklo_epi8(hi64(t00), t02);
        const I t12 = _mm_unpacklo_epi8(t01, hi64(t02));
        const I t20 = _mm_unpacklo_epi8(t10, hi64(t11));
        const I t21 = _mm_unpacklo_epi8(hi64(t10), t12);
        const I t22 = _mm_unpacklo_epi8(t11, hi64(t12));
        const I t30 = _mm_unpacklo_epi8(t20, hi64(t21));
        const I t31 = _mm_unpacklo_epi8(hi64(t20), t22);
        return _mm_unpacklo_epi8(t30, hi64(t31));
    }
    // Channel 0 of kFloats three-channel pixels: reads exactly 3 * kFloats floats.
    static F load_deinterleave3_f(const float* p) {
        const F x0 = loadf(p), x1 = loadf(p + 4), x2 = loadf(p + 8);
        const F u = _mm_shuffle_ps(x1, x2, _MM_SHUFFLE(0, 1, 0, 2));  // x1[2], x2[1] at 0 and 2
        return _mm_shuffle_ps(x0, u, _MM_SHUFFLE(2, 0, 3, 0));
    }
    // Magnitudes of signed bytes as unsigned bytes (|-128| = 128).
    static I abs_s8(I v) { return _mm_min_epu8(v, _mm_sub_epi8(_mm_setzero_si128(), v)); }
    // |a - b| of signed bytes as unsigned bytes (0..255).
    static I absdiff_s8(I a, I b) { return absdiff_u8(xor_(a, set8(0x80)), xor_(b, set8(0x80))); }
    // Sums of squares of unsigned bytes in 32-bit lanes, each the sum of four
    // squares (which four is up to the set: for order-free integer sums).
    static I sumsq4_u8(I x) {
        const I lo = _mm_unpacklo_epi8(x, _mm_setzero_si128()), hi = _mm_unpackhi_epi8(x, _mm_setzero_si128());
        return _mm_add_epi32(_mm_madd_epi16(lo, lo), _mm_madd_epi16(hi, hi));
    }
    static int reduce_min_u8(I v) {
        v = _mm_min_epu8(v, _mm_srli_si128(v, 8));
        v = _mm_min_epu8(v, _mm_srli_si128(v, 4));
        v = _mm_min_epu8(v, _mm_srli_si128(v, 2));
        v = _mm_min_epu8(v, _mm_srli_si128(v, 1));
        return _mm_cvtsi128_si32(v) & 0xFF;
    }
    static int reduce_max_u8(I v) {
        v = _mm_max_epu8(v, _mm_srli_si128(v, 8));
        v = _mm_max_epu8(v, _mm_srli_si128(v, 4));
        v = _mm_max_epu8(v, _mm_srli_si128(v, 2));
        v = _mm_max_epu8(v, _mm_srli_si128(v, 1));
        return _mm_cvtsi128_si32(v) & 0xFF;
    }
    static int32_t reduce_min_s32(I v) {
        v = min32(v, _mm_srli_si128(v, 8));
        v = min32(v, _mm_srli_si128(v, 4));
        return _mm_cvtsi128_si32(v);
    }
    static int32_t reduce_max_s32(I v) {
        v = max32(v, _mm_srli_si128(v, 8));
        v = max32(v, _mm_srli_si128(v, 4));
        return _mm_cvtsi128_si32(v);
    }
    // The two halves of the vector exchanged.
    static F swap_halvesf(F v) { return _mm_shuffle_ps(v, v, _MM_SHUFFLE(1, 0, 3, 2)); }
    // More doubles: extremes, comparisons, the high half of v widened.
    static D maxd(D a, D b) { return _mm_max_pd(a, b); }
    static D mind(D a, D b) { return _mm_min_pd(a, b); }
    static D cmpltd(D a, D b) { return _mm_cmplt_pd(a, b); }
    static unsigned movemaskd(D v) { return static_cast<unsigned>(_mm_movemask_pd(v)); }
    // The floats of the low and of the high half of v, as doubles.
    static D widen_hi_f(F v) { return _mm_cvtps_pd(_mm_movehl_ps(v, v)); }
};

}  // namespace
}  // namespace a6
}  // namespace orucv
