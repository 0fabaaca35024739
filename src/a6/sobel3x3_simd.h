// Vector row loops of the fixed 3x3 filters, written once over a set of
// vector operations that each instruction-set file supplies. Everything here
// has internal linkage: every including file gets its own copy, compiled for
// its own instruction set.
//
// Integer operations (struct Ops):
//   V                      16 pixels in 16-bit lanes
//   V load(const uint8_t*) 16 source pixels, widened (signed sources may be
//   V load(const int8_t*)  biased by a constant: every kernel sums to zero)
//   V add(V, V), sub(V, V), mul(V, int)   lane-wise, wrapping
//   Count count(int), V shift(V, Count)   arithmetic right shift
//   void store(int16_t*, V)
// Float operations (struct FOps):
//   F                      8 floats
//   F load(const float*), F set(float), add, sub, mul, void store(float*, F)
#pragma once

#include "a6/sobel3x3.h"

namespace orucv {
namespace a6 {
namespace {

// W * a for a positive constant weight.
template <class Ops, int W>
inline typename Ops::V times(typename Ops::V a) {
    static_assert(W > 0, "positive weights only");
    if constexpr (W == 1) return a;
    else if constexpr (W == 2) return Ops::add(a, a);
    else return Ops::mul(a, W);
}

// W0 a + W1 b + W2 c for weights with W0 == W2 or W0 == -W2 (W0 != 0).
template <class Ops, int W0, int W1, int W2>
inline typename Ops::V combine(typename Ops::V a, typename Ops::V b, typename Ops::V c) {
    static_assert(W0 != 0 && (W0 == W2 || W0 == -W2), "symmetric or antisymmetric taps");
    typename Ops::V s;
    if constexpr (W0 == W2 && W0 > 0) s = times<Ops, W0>(Ops::add(a, c));
    else if constexpr (W2 > 0) s = times<Ops, W2>(Ops::sub(c, a));
    else s = times<Ops, W0>(Ops::sub(a, c));
    if constexpr (W1 > 0) s = Ops::add(s, times<Ops, W1>(b));
    else if constexpr (W1 < 0) s = Ops::sub(s, times<Ops, -W1>(b));
    return s;
}

// 16 results at columns x .. x+15 (reads columns x-1 .. x+16). Unused
// loads (zero weights) are dropped by the compiler.
template <class Ops, class K, class S>
inline typename Ops::V int_block(const S* up, const S* mid, const S* down, int x, typename Ops::Count count) {
    typename Ops::V out;
    if constexpr (K::rows_first) {
        auto h = [&](const S* r) {
            return combine<Ops, K::h0, K::h1, K::h2>(Ops::load(r + x - 1), Ops::load(r + x), Ops::load(r + x + 1));
        };
        out = combine<Ops, K::v0, K::v1, K::v2>(h(up), h(mid), h(down));
    } else {
        auto v = [&](int c) {
            return combine<Ops, K::v0, K::v1, K::v2>(Ops::load(up + c), Ops::load(mid + c), Ops::load(down + c));
        };
        out = combine<Ops, K::h0, K::h1, K::h2>(v(x - 1), v(x), v(x + 1));
    }
    if constexpr (K::shifted) out = Ops::shift(out, count);
    return out;
}

// A whole integer row: the edge columns by the scalar twin, the interior in
// blocks of 16, the last block overlapping the previous one.
template <class Ops, class K, class S>
void int_row(const S* up, const S* mid, const S* down, int16_t* dst, int width, int count) {
    if (width < kIntSimdMinWidth) {
        scalar::row_int<K>(up, mid, down, dst, width, count);
        return;
    }
    scalar::row_int_edges<K>(up, mid, down, dst, width, count);
    const typename Ops::Count c = Ops::count(count);
    const int end = width - 1;
    int x = 1;
    for (; x <= end - 32; x += 32) {
        Ops::store(dst + x, int_block<Ops, K>(up, mid, down, x, c));
        Ops::store(dst + x + 16, int_block<Ops, K>(up, mid, down, x + 16, c));
    }
    if (x <= end - 16) {
        Ops::store(dst + x, int_block<Ops, K>(up, mid, down, x, c));
        x += 16;
    }
    if (x < end) Ops::store(dst + end - 16, int_block<Ops, K>(up, mid, down, end - 16, c));
}

// Two output rows of a kernel that weighs three rows: the horizontal terms
// of the two middle source rows serve both.
template <class Ops, class K, class S>
inline void int_block_pair(const S* r0, const S* r1, const S* r2, const S* r3, int16_t* d0, int16_t* d1, int x,
                           typename Ops::Count count) {
    auto h = [&](const S* r) {
        return combine<Ops, K::h0, K::h1, K::h2>(Ops::load(r + x - 1), Ops::load(r + x), Ops::load(r + x + 1));
    };
    const typename Ops::V h1 = h(r1), h2 = h(r2);
    typename Ops::V o0 = combine<Ops, K::v0, K::v1, K::v2>(h(r0), h1, h2);
    typename Ops::V o1 = combine<Ops, K::v0, K::v1, K::v2>(h1, h2, h(r3));
    if constexpr (K::shifted) {
        o0 = Ops::shift(o0, count);
        o1 = Ops::shift(o1, count);
    }
    Ops::store(d0 + x, o0);
    Ops::store(d1 + x, o1);
}

template <class Ops, class K, class S>
void int_row_pair(const S* r0, const S* r1, const S* r2, const S* r3, int16_t* d0, int16_t* d1, int width,
                  int count) {
    if (width < kIntSimdMinWidth) {
        scalar::row_int_pair<K>(r0, r1, r2, r3, d0, d1, width, count);
        return;
    }
    scalar::row_int_edges<K>(r0, r1, r2, d0, width, count);
    scalar::row_int_edges<K>(r1, r2, r3, d1, width, count);
    const typename Ops::Count c = Ops::count(count);
    const int end = width - 1;
    int x = 1;
    for (; x <= end - 16; x += 16) int_block_pair<Ops, K>(r0, r1, r2, r3, d0, d1, x, c);
    if (x < end) int_block_pair<Ops, K>(r0, r1, r2, r3, d0, d1, end - 16, c);
}

// Runs block(x) over columns 1 .. width-2 in steps of 8 (two per iteration),
// the last block overlapping the previous one. width >= kFloatSimdMinWidth.
template <class Block>
inline void float_interior(int width, Block block) {
    const int end = width - 1;
    int x = 1;
    for (; x <= end - 16; x += 16) {
        block(x);
        block(x + 8);
    }
    if (x <= end - 8) {
        block(x);
        x += 8;
    }
    if (x < end) block(end - 8);
}

// c * v, skipping the product when the weight is known to be 1 (Sobel):
// multiplying by 1 is exact, so both give the same bits.
template <class FOps, bool Unit>
inline typename FOps::F outer(typename FOps::F c, typename FOps::F v) {
    if constexpr (Unit) return v;
    else return FOps::mul(c, v);
}

template <class FOps, bool Unit>
void dx3_interior(const float* up, const float* mid, const float* down, float* dst, int width, const Weights32f& w) {
    const typename FOps::F c0 = FOps::set(w.c0), c1 = FOps::set(w.c1), c2 = FOps::set(w.c2);
    float_interior(width, [&](int x) {
        const auto du = FOps::sub(FOps::load(up + x + 1), FOps::load(up + x - 1));
        const auto dm = FOps::sub(FOps::load(mid + x + 1), FOps::load(mid + x - 1));
        const auto dd = FOps::sub(FOps::load(down + x + 1), FOps::load(down + x - 1));
        FOps::store(dst + x, FOps::add(FOps::add(outer<FOps, Unit>(c0, du), FOps::mul(c1, dm)),
                                       outer<FOps, Unit>(c2, dd)));
    });
}

template <class FOps>
void dx3_32f(const float* up, const float* mid, const float* down, float* dst, int width, const Weights32f& w) {
    if (width < kFloatSimdMinWidth) {
        scalar::dx3_32f(up, mid, down, dst, width, w);
        return;
    }
    scalar::dx3_32f_edges(up, mid, down, dst, width, w);
    if (w.c0 == 1.0f && w.c2 == 1.0f) dx3_interior<FOps, true>(up, mid, down, dst, width, w);
    else dx3_interior<FOps, false>(up, mid, down, dst, width, w);
}

// Two output rows from four source rows: the differences of the two middle
// rows are computed once for both.
template <class FOps, bool Unit>
void dx3x2_interior(const float* r0, const float* r1, const float* r2, const float* r3, float* d0, float* d1,
                    int width, const Weights32f& w) {
    const typename FOps::F c0 = FOps::set(w.c0), c1 = FOps::set(w.c1), c2 = FOps::set(w.c2);
    float_interior(width, [&](int x) {
        const auto e0 = FOps::sub(FOps::load(r0 + x + 1), FOps::load(r0 + x - 1));
        const auto e1 = FOps::sub(FOps::load(r1 + x + 1), FOps::load(r1 + x - 1));
        const auto e2 = FOps::sub(FOps::load(r2 + x + 1), FOps::load(r2 + x - 1));
        const auto e3 = FOps::sub(FOps::load(r3 + x + 1), FOps::load(r3 + x - 1));
        FOps::store(d0 + x, FOps::add(FOps::add(outer<FOps, Unit>(c0, e0), FOps::mul(c1, e1)),
                                      outer<FOps, Unit>(c2, e2)));
        FOps::store(d1 + x, FOps::add(FOps::add(outer<FOps, Unit>(c0, e1), FOps::mul(c1, e2)),
                                      outer<FOps, Unit>(c2, e3)));
    });
}

template <class FOps>
void dx3x2_32f(const float* r0, const float* r1, const float* r2, const float* r3, float* d0, float* d1, int width,
               const Weights32f& w) {
    if (width < kFloatSimdMinWidth) {
        scalar::dx3x2_32f(r0, r1, r2, r3, d0, d1, width, w);
        return;
    }
    scalar::dx3_32f_edges(r0, r1, r2, d0, width, w);
    scalar::dx3_32f_edges(r1, r2, r3, d1, width, w);
    if (w.c0 == 1.0f && w.c2 == 1.0f) dx3x2_interior<FOps, true>(r0, r1, r2, r3, d0, d1, width, w);
    else dx3x2_interior<FOps, false>(r0, r1, r2, r3, d0, d1, width, w);
}

template <class FOps>
void dx2_32f(const float* a, const float* b, float* dst, int width, float ca, float cb) {
    if (width < kFloatSimdMinWidth) {
        scalar::dx2_32f(a, b, dst, width, ca, cb);
        return;
    }
    scalar::dx2_32f_edges(a, b, dst, width, ca, cb);
    const typename FOps::F va = FOps::set(ca), vb = FOps::set(cb);
    float_interior(width, [&](int x) {
        const auto da = FOps::sub(FOps::load(a + x + 1), FOps::load(a + x - 1));
        const auto db = FOps::sub(FOps::load(b + x + 1), FOps::load(b + x - 1));
        FOps::store(dst + x, FOps::add(FOps::mul(va, da), FOps::mul(vb, db)));
    });
}

template <class FOps, bool Unit>
void dy_interior(const float* up, const float* down, float* dst, int width, const Weights32f& w) {
    const typename FOps::F c0 = FOps::set(w.c0), c1 = FOps::set(w.c1), c2 = FOps::set(w.c2);
    auto smooth = [&](const float* r, int x) {
        return FOps::add(FOps::add(outer<FOps, Unit>(c0, FOps::load(r + x - 1)), FOps::mul(c1, FOps::load(r + x))),
                         outer<FOps, Unit>(c2, FOps::load(r + x + 1)));
    };
    float_interior(width, [&](int x) { FOps::store(dst + x, FOps::sub(smooth(down, x), smooth(up, x))); });
}

template <class FOps>
void dy_32f(const float* up, const float* down, float* dst, int width, const Weights32f& w) {
    if (width < kFloatSimdMinWidth) {
        scalar::dy_32f(up, down, dst, width, w);
        return;
    }
    scalar::dy_32f_edges(up, down, dst, width, w);
    if (w.c0 == 1.0f && w.c2 == 1.0f) dy_interior<FOps, true>(up, down, dst, width, w);
    else dy_interior<FOps, false>(up, down, dst, width, w);
}

template <class FOps, bool Unit, bool Flip>
void dy4_interior(const float* first, int srcStep, float* dst, int dstStep, int width, const Weights32f& w) {
    const float* r[6];
    float* d[4];
    for (int i = 0; i < 6; ++i) r[i] = nth_row(first, srcStep, i);
    for (int i = 0; i < 4; ++i) d[i] = nth_row(dst, dstStep, i);
    const typename FOps::F c0 = FOps::set(w.c0), c1 = FOps::set(w.c1), c2 = FOps::set(w.c2);
    auto smooth = [&](const float* row, int x) {
        return FOps::add(FOps::add(outer<FOps, Unit>(c0, FOps::load(row + x - 1)), FOps::mul(c1, FOps::load(row + x))),
                         outer<FOps, Unit>(c2, FOps::load(row + x + 1)));
    };
    auto diff = [](typename FOps::F before, typename FOps::F after) {
        return Flip ? FOps::sub(before, after) : FOps::sub(after, before);
    };
    float_interior(width, [&](int x) {
        const auto m0 = smooth(r[0], x), m1 = smooth(r[1], x), m2 = smooth(r[2], x);
        FOps::store(d[0] + x, diff(m0, m2));
        const auto m3 = smooth(r[3], x);
        FOps::store(d[1] + x, diff(m1, m3));
        const auto m4 = smooth(r[4], x);
        FOps::store(d[2] + x, diff(m2, m4));
        const auto m5 = smooth(r[5], x);
        FOps::store(d[3] + x, diff(m3, m5));
    });
}

template <class FOps>
void dy4_32f(const float* first, int srcStep, float* dst, int dstStep, int width, bool flip, const Weights32f& w) {
    if (width < kFloatSimdMinWidth) {
        scalar::dy4_32f(first, srcStep, dst, dstStep, width, flip, w);
        return;
    }
    for (int i = 0; i < 4; ++i) {
        const float* up = nth_row(first, srcStep, flip ? i + 2 : i);
        const float* down = nth_row(first, srcStep, flip ? i : i + 2);
        scalar::dy_32f_edges(up, down, nth_row(dst, dstStep, i), width, w);
    }
    const bool unit = w.c0 == 1.0f && w.c2 == 1.0f;
    if (unit && !flip) dy4_interior<FOps, true, false>(first, srcStep, dst, dstStep, width, w);
    else if (unit) dy4_interior<FOps, true, true>(first, srcStep, dst, dstStep, width, w);
    else if (!flip) dy4_interior<FOps, false, false>(first, srcStep, dst, dstStep, width, w);
    else dy4_interior<FOps, false, true>(first, srcStep, dst, dstStep, width, w);
}

// The table of one instruction set.
template <class Ops, class FOps>
constexpr Sobel3x3Kernels make_kernels() {
    return Sobel3x3Kernels{
        int_row<Ops, KernelDx, uint8_t>,       int_row<Ops, KernelDy, uint8_t>,
        int_row<Ops, KernelD2x, uint8_t>,      int_row<Ops, KernelD2y, uint8_t>,
        int_row<Ops, KernelDxDy, uint8_t>,     int_row<Ops, KernelScharrDx, uint8_t>,
        int_row<Ops, KernelScharrDy, uint8_t>, int_row<Ops, KernelDx, int8_t>,
        int_row<Ops, KernelDy, int8_t>,        int_row<Ops, KernelD2x, int8_t>,
        int_row<Ops, KernelD2y, int8_t>,       int_row<Ops, KernelDxDy, int8_t>,
        int_row<Ops, KernelScharrDx, int8_t>,  int_row<Ops, KernelScharrDy, int8_t>,
        int_row_pair<Ops, KernelDx, uint8_t>,  int_row_pair<Ops, KernelD2x, uint8_t>,
        int_row_pair<Ops, KernelD2y, uint8_t>, int_row_pair<Ops, KernelScharrDx, uint8_t>,
        int_row_pair<Ops, KernelDx, int8_t>,   int_row_pair<Ops, KernelD2x, int8_t>,
        int_row_pair<Ops, KernelD2y, int8_t>,  int_row_pair<Ops, KernelScharrDx, int8_t>,
        dx3_32f<FOps>,                         dx3x2_32f<FOps>,
        dx2_32f<FOps>,
        dy_32f<FOps>,                          dy4_32f<FOps>,
    };
}

}  // namespace
}  // namespace a6
}  // namespace orucv
