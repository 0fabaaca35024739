// The pyramid row kernels of the instruction-set files, written once:
//  - PyrLanes<V>: the sums of the 5-tap row over the vector operations of
//    ops_<isa>.h (16-bit lanes for 8-bit samples, the float formulas in the
//    scalar twin's order), and the vertical blocks built from them;
//  - PyrRows<B...>: the row kernels of a list of block sets, widest first.
//    Each kernel runs the blocks of every set in turn from where the
//    previous one stopped and leaves the edges and the rest to the scalar
//    twin. A block set is PyrLanes<V> plus the horizontal blocks of its
//    width (pyr_blocks128.h, pyr_avx2.cpp), which differ with the shuffles
//    each set offers.
// Each block function runs its vector loop from a start index while the
// loads stay inside the row and the outputs stay off the edge forms, and
// returns where it stopped.
//
// Internal linkage: each instruction-set file instantiates its own.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "a6/pyr.h"

namespace orucv {
namespace a6 {
namespace {

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

template <class V>
struct PyrLanes {
    using I = typename V::I;
    using F = typename V::F;
    static constexpr unsigned kAlign = V::kBytes;  // of streamed rows

    // ---- Sums

    // 6c + 4(l1 + r1) + l2 + r2 on 16-bit lanes (exact: at most 16 * 4080).
    static I sum5(I l2, I l1, I c, I r1, I r2) {
        const I t = V::add16(V::mullo16(c, V::set16(6)), V::template slli16<2>(V::add16(l1, r1)));
        return V::add16(V::add16(t, l2), r2);
    }
    static I bias8(bool is_signed) { return V::set8(is_signed ? 0x80 : 0); }
    static void stream_fence() { V::stream_fence(); }
    // Asks for the line at p + ahead bytes in the next source row to be
    // brought into the second-level cache: the next row is then on its way
    // while this one is filtered.
    static void fetch_ahead(const void* p, ptrdiff_t ahead) { V::prefetch_l2(static_cast<const char*>(p) + ahead); }

    // The float formulas, in the scalar twin's order in every lane.
    static F mul(float k, F v) { return V::mulf(V::setf(k), v); }
    static F down_inner(F l2, F l1, F c, F r1, F r2) {
        return V::addf(V::addf(V::addf(mul(6.0f, c), mul(4.0f, V::addf(l1, r1))), l2), r2);
    }
    static F down_first(F c, F r1, F r2) { return mul(2.0f, V::addf(V::addf(mul(3.0f, c), mul(4.0f, r1)), r2)); }
    static F down_last(F l2, F l1, F c, F r1) {
        return V::addf(V::addf(mul(7.0f, c), mul(4.0f, V::addf(l1, r1))), l2);
    }
    static F down_pair(F c, F r1) { return mul(8.0f, V::addf(c, r1)); }
    static F up_even(F l, F c, F r) { return V::addf(V::addf(l, mul(6.0f, c)), r); }
    static F up_odd(F c, F r) { return mul(4.0f, V::addf(c, r)); }
    static F up_first(F c, F r) { return mul(2.0f, V::addf(mul(3.0f, c), r)); }
    static F up_penult(F l, F c) { return V::addf(l, mul(7.0f, c)); }
    static F up_last(F c) { return mul(8.0f, c); }
    // The scale, with any NaN stored as the quiet NaN of the scalar twin.
    static F scaled(F sum, float scale) { return V::quiet_nans(V::mulf(sum, V::setf(scale))); }

    // Plain or non-temporal (aligned) stores of destination rows.
    template <bool kStream>
    static void put(uint8_t* p, I v) {
        if (kStream) V::stream(p, v);
        else V::store(p, v);
    }
    template <bool kStream>
    static void put(float* p, F v) {
        if (kStream) V::streamf(p, v);
        else V::storef(p, v);
    }

    // ---- Vertical blocks

    // (sum + 128) >> 8 of the five rows for kBytes / 2 samples.
    static I down_v8_lanes(const uint16_t* const* r, int i) {
        const I sum = sum5(V::load(r[0] + i), V::load(r[1] + i), V::load(r[2] + i), V::load(r[3] + i), V::load(r[4] + i));
        return V::template srli16<8>(V::add16(sum, V::set16(128)));
    }

    template <bool kSigned, bool kStream>
    static int down_v8(const uint16_t* const* rows, int n, uint8_t* d, int i) {
        // A local copy of the row pointers stays in registers across the stores.
        const uint16_t* const r[5] = {rows[0], rows[1], rows[2], rows[3], rows[4]};
        const I bias = bias8(kSigned);
        for (; i <= n - V::kBytes; i += V::kBytes)
            put<kStream>(d + i, V::xor_(V::pack_u16_u8(down_v8_lanes(r, i), down_v8_lanes(r, i + V::kBytes / 2)), bias));
        return i;
    }

    template <bool kSigned, bool kStream>
    static int up_v8(const uint16_t* a, const uint16_t* c, const uint16_t* b, int n, uint8_t* e, uint8_t* o, int i) {
        const I bias = bias8(kSigned), six = V::set16(6), round = V::set16(32);
        for (; i <= n - V::kBytes; i += V::kBytes) {
            I even[2], odd[2];
            for (int half = 0; half < 2; ++half) {
                const int k = i + V::kBytes / 2 * half;
                const I cv = V::load(c + k), bv = V::load(b + k);
                even[half] = V::template srli16<6>(V::add16(V::add16(V::add16(V::load(a + k), V::mullo16(cv, six)), bv), round));
                odd[half] = V::template srli16<6>(V::add16(V::template slli16<2>(V::add16(cv, bv)), round));
            }
            put<kStream>(e + i, V::xor_(V::pack_u16_u8(even[0], even[1]), bias));
            put<kStream>(o + i, V::xor_(V::pack_u16_u8(odd[0], odd[1]), bias));
        }
        return i;
    }

    template <int kForm>
    static F down_v32_lanes(const float* const* r, int i) {
        F v;
        if (kForm == kDownFirst) v = down_first(V::loadf(r[2] + i), V::loadf(r[3] + i), V::loadf(r[4] + i));
        else if (kForm == kDownLast)
            v = down_last(V::loadf(r[0] + i), V::loadf(r[1] + i), V::loadf(r[2] + i), V::loadf(r[3] + i));
        else if (kForm == kDownPair) v = down_pair(V::loadf(r[2] + i), V::loadf(r[3] + i));
        else
            v = down_inner(V::loadf(r[0] + i), V::loadf(r[1] + i), V::loadf(r[2] + i), V::loadf(r[3] + i),
                           V::loadf(r[4] + i));
        return scaled(v, pyr_scalar::kDownScale);
    }

    template <int kForm, bool kStream>
    static int down_v32(const float* const* rows, int n, float* d, int i) {
        const float* const r[5] = {rows[0], rows[1], rows[2], rows[3], rows[4]};
        for (; i <= n - V::kFloats; i += V::kFloats) put<kStream>(d + i, down_v32_lanes<kForm>(r, i));
        return i;
    }

    template <int kBand, bool kStream>
    static int up_v32(const float* a, const float* c, const float* b, int n, float* e, float* o, int i) {
        for (; i <= n - V::kFloats; i += V::kFloats) {
            const F cv = V::loadf(c + i);
            F ev, ov;
            if (kBand == (kUpFirst | kUpLast)) {
                ev = ov = up_last(cv);
            } else if (kBand == kUpFirst) {
                const F bv = V::loadf(b + i);
                ev = up_first(cv, bv), ov = up_odd(cv, bv);
            } else if (kBand == kUpLast) {
                ev = up_penult(V::loadf(a + i), cv), ov = up_last(cv);
            } else {
                const F bv = V::loadf(b + i);
                ev = up_even(V::loadf(a + i), cv, bv), ov = up_odd(cv, bv);
            }
            put<kStream>(e + i, scaled(ev, pyr_scalar::kUpScale));
            put<kStream>(o + i, scaled(ov, pyr_scalar::kUpScale));
        }
        return i;
    }
};

template <class Widest, class... Narrower>
struct PyrRows {
    // Runs block(set, i) for every block set, widest first, each from where
    // the previous stopped.
    template <class Block>
    static int blocks(int i, Block block) {
        i = block(Widest(), i);
        ((i = block(Narrower(), i)), ...);
        return i;
    }

    // ---- Horizontal passes: the first output by the twin (edge form), the
    // blocks, the rest by the twin. twin(x0, x1) writes outputs x0..x1-1,
    // block(set, x) runs a set's blocks from x.

    template <class Twin, class Block>
    static void horizontal(int outputs, Twin twin, Block block) {
        twin(0, 1);
        twin(blocks(1, block), outputs);
    }

    template <int CH, bool kSigned>
    static void down_h8_run(const uint8_t* s, int w, uint16_t* d, ptrdiff_t ahead) {
        horizontal(
            w / 2, [&](int x0, int x1) { pyr_scalar::down_h8_range<CH>(s, w, d, kSigned ? 0x80 : 0, x0, x1); },
            [&](auto set, int x) {
                using B = decltype(set);
                return CH == 1 ? B::template down_h8_c1<kSigned>(s, w, d, x, ahead)
                               : B::template down_h8_c3<kSigned>(s, w, d, x, ahead);
            });
    }
    template <int CH>
    static void down_h8(const uint8_t* s, int w, uint16_t* d, uint8_t bias, const uint8_t* next) {
        const ptrdiff_t ahead = rows_apart(s, next);
        bias ? down_h8_run<CH, true>(s, w, d, ahead) : down_h8_run<CH, false>(s, w, d, ahead);
    }

    template <int CH>
    static void down_h32(const float* s, int w, float* d, const float* next) {
        const ptrdiff_t ahead = rows_apart(s, next);
        horizontal(
            w / 2, [&](int x0, int x1) { pyr_scalar::down_h32_range<CH>(s, w, d, x0, x1); },
            [&](auto set, int x) {
                using B = decltype(set);
                return CH == 1 ? B::down_h32_c1(s, w, d, x, ahead) : B::down_h32_c3(s, w, d, x, ahead);
            });
    }

    template <int CH, bool kSigned>
    static void up_h8_run(const uint8_t* s, int w, uint16_t* d, ptrdiff_t ahead) {
        horizontal(
            w, [&](int j0, int j1) { pyr_scalar::up_h8_range<CH>(s, w, d, kSigned ? 0x80 : 0, j0, j1); },
            [&](auto set, int j) {
                using B = decltype(set);
                return CH == 1 ? B::template up_h8_c1<kSigned>(s, w, d, j, ahead)
                               : B::template up_h8_c3<kSigned>(s, w, d, j, ahead);
            });
    }
    template <int CH>
    static void up_h8(const uint8_t* s, int w, uint16_t* d, uint8_t bias, const uint8_t* next) {
        const ptrdiff_t ahead = rows_apart(s, next);
        bias ? up_h8_run<CH, true>(s, w, d, ahead) : up_h8_run<CH, false>(s, w, d, ahead);
    }

    template <int CH>
    static void up_h32(const float* s, int w, float* d, const float* next) {
        const ptrdiff_t ahead = rows_apart(s, next);
        horizontal(
            w, [&](int j0, int j1) { pyr_scalar::up_h32_range<CH>(s, w, d, j0, j1); },
            [&](auto set, int j) {
                using B = decltype(set);
                return CH == 1 ? B::up_h32_c1(s, w, d, j, ahead) : B::up_h32_c3(s, w, d, j, ahead);
            });
    }

    // ---- Vertical passes: when streaming, the twin writes up to the first
    // boundary of the widest vectors and their blocks stream from there;
    // the rest of the row is stored plainly. twin(i0, i1) writes outputs
    // i0..i1-1, block(set, i, kStream) runs a set's blocks from i.

    template <class T, class Twin, class Block>
    static void vertical(T* d, const T* other, int n, bool stream, Twin twin, Block block) {
        int i = 0;
        const int head = stream ? stream_start(d, other, n, Widest::kAlign) : -1;
        if (head >= 0) {
            twin(0, head);
            i = block(Widest(), head, std::true_type());
            Widest::stream_fence();
        }
        i = blocks(i, [&](auto set, int i) { return block(set, i, std::false_type()); });
        twin(i, n);
    }

    template <bool kSigned>
    static void down_v8_run(const uint16_t* const* r, int n, uint8_t* d, bool stream) {
        vertical(
            d, d, n, stream, [&](int i0, int i1) { pyr_scalar::down_v8_range(r, i0, i1, d, kSigned ? 0x80 : 0); },
            [&](auto set, int i, auto stream_tag) {
                return decltype(set)::template down_v8<kSigned, decltype(stream_tag)::value>(r, n, d, i);
            });
    }
    static void down_v8(const uint16_t* const* r, int n, uint8_t* d, uint8_t bias, bool stream) {
        bias ? down_v8_run<true>(r, n, d, stream) : down_v8_run<false>(r, n, d, stream);
    }

    static void down_v32(const float* const* r, int form, int n, float* d, bool stream) {
        with_form(form, [&](auto form_tag) {
            constexpr int kForm = decltype(form_tag)::value;
            vertical(
                d, d, n, stream, [&](int i0, int i1) { pyr_scalar::down_v32_range(r, kForm, i0, i1, d); },
                [&](auto set, int i, auto stream_tag) {
                    return decltype(set)::template down_v32<kForm, decltype(stream_tag)::value>(r, n, d, i);
                });
        });
    }

    template <bool kSigned>
    static void up_v8_run(const uint16_t* a, const uint16_t* c, const uint16_t* b, int n, uint8_t* e, uint8_t* o,
                          bool stream) {
        vertical(
            e, o, n, stream,
            [&](int i0, int i1) { pyr_scalar::up_v8_range(a, c, b, i0, i1, e, o, kSigned ? 0x80 : 0); },
            [&](auto set, int i, auto stream_tag) {
                return decltype(set)::template up_v8<kSigned, decltype(stream_tag)::value>(a, c, b, n, e, o, i);
            });
    }
    static void up_v8(const uint16_t* a, const uint16_t* c, const uint16_t* b, int n, uint8_t* e, uint8_t* o,
                      uint8_t bias, bool stream) {
        bias ? up_v8_run<true>(a, c, b, n, e, o, stream) : up_v8_run<false>(a, c, b, n, e, o, stream);
    }

    static void up_v32(const float* a, const float* c, const float* b, int band, int n, float* e, float* o,
                       bool stream) {
        with_band(band, [&](auto band_tag) {
            constexpr int kBand = decltype(band_tag)::value;
            vertical(
                e, o, n, stream, [&](int i0, int i1) { pyr_scalar::up_v32_range(a, c, b, kBand, i0, i1, e, o); },
                [&](auto set, int i, auto stream_tag) {
                    return decltype(set)::template up_v32<kBand, decltype(stream_tag)::value>(a, c, b, n, e, o, i);
                });
        });
    }

    static constexpr PyrKernels table() { return pyr_table<PyrRows>(); }
};

}  // namespace
}  // namespace a6
}  // namespace orucv
