// The rows of the fixed 3x3 filters, written once over the vector
// operations of ops_<isa>.h: integer blocks of kBytes pixels in two vectors
// of 16-bit lanes, float blocks of kFloats. The edge columns and rows narrower than a
// block plus the edges are the scalar twin's. Internal linkage: each
// instruction-set file instantiates its own.
#pragma once

#include <type_traits>

#include "a6/loops.h"
#include "a6/sobel3x3.h"

namespace orucv {
namespace a6 {
namespace {

// Runs block(x) over columns 1 .. width-2 in blocks of kBlock pixels,
// kUnroll blocks per step, the last block overlapping the previous one.
// width >= kBlock + 2.
template <int kBlock, int kUnroll, class Block>
inline void interior_blocks(int width, Block block) {
    const int end = width - 1;
    int x = 1;
    for (; x <= end - kUnroll * kBlock; x += kUnroll * kBlock)
        for (int u = 0; u < kUnroll; ++u) block(x + u * kBlock);
    for (; x <= end - kBlock; x += kBlock) block(x);
    if (x < end) block(end - kBlock);
}

template <class V>
struct Sobel3x3Rows {
    using I = typename V::I;
    using F = typename V::F;
    // Pixels per block, and per loop step (32 integer, 16 float pixels). An
    // integer block is kBytes pixels in two vectors of 16-bit lanes.
    static constexpr int kIntBlock = V::kBytes;
    static constexpr int kFloatBlock = V::kFloats;
    static constexpr int kIntUnroll = 32 / kIntBlock;
    static constexpr int kFloatUnroll = 16 / kFloatBlock;
    using Block = I[2];

    // Signed sources may come with an offset: every kernel sums to zero.
    static void load(const uint8_t* p, Block& out) { V::load_widen16_u8(p, out); }
    static void load(const int8_t* p, Block& out) { V::load_widen16_s8_offset(p, out); }
    static void store(int16_t* p, const Block& v) {
        V::store(p, v[0]);
        V::store(p + kIntBlock / 2, v[1]);
    }

    // W * a for a positive constant weight.
    template <int W>
    static I times(I a) {
        static_assert(W > 0, "positive weights only");
        if constexpr (W == 1) return a;
        else if constexpr (W == 2) return V::add16(a, a);
        else return V::mullo16(a, V::set16(W));
    }

    // W0 a + W1 b + W2 c for weights with W0 == W2 or W0 == -W2 (W0 != 0).
    template <int W0, int W1, int W2>
    static void combine(const Block& a, const Block& b, const Block& c, Block& out) {
        static_assert(W0 != 0 && (W0 == W2 || W0 == -W2), "symmetric or antisymmetric taps");
        for (int h = 0; h < 2; ++h) {
            I s;
            if constexpr (W0 == W2 && W0 > 0) s = times<W0>(V::add16(a[h], c[h]));
            else if constexpr (W2 > 0) s = times<W2>(V::sub16(c[h], a[h]));
            else s = times<W0>(V::sub16(a[h], c[h]));
            if constexpr (W1 > 0) s = V::add16(s, times<W1>(b[h]));
            else if constexpr (W1 < 0) s = V::sub16(s, times<-W1>(b[h]));
            out[h] = s;
        }
    }

    // The horizontal term of row r at the block from column x on.
    template <class K, class S>
    static void across(const S* r, int x, Block& out) {
        Block a, b, c;
        load(r + x - 1, a);
        load(r + x, b);
        load(r + x + 1, c);
        combine<K::h0, K::h1, K::h2>(a, b, c, out);
    }

    template <class K>
    static void shift(Block& v, int count) {
        if constexpr (K::shifted)
            for (int h = 0; h < 2; ++h) v[h] = V::sra16(v[h], count);
    }

    // The results from column x on (reads columns x-1 .. x+kIntBlock).
    // Unused loads (zero weights) are dropped by the compiler.
    template <class K, class S>
    static void int_block(const S* up, const S* mid, const S* down, int x, int count, Block& out) {
        Block a, b, c;
        if constexpr (K::rows_first) {
            across<K>(up, x, a);
            across<K>(mid, x, b);
            across<K>(down, x, c);
            combine<K::v0, K::v1, K::v2>(a, b, c, out);
        } else {
            auto down_the_rows = [&](int col, Block& v) {
                Block u, m, d;
                load(up + col, u);
                load(mid + col, m);
                load(down + col, d);
                combine<K::v0, K::v1, K::v2>(u, m, d, v);
            };
            down_the_rows(x - 1, a);
            down_the_rows(x, b);
            down_the_rows(x + 1, c);
            combine<K::h0, K::h1, K::h2>(a, b, c, out);
        }
        shift<K>(out, count);
    }

    // A whole integer row: the edge columns by the scalar twin, the interior
    // in blocks.
    template <class K, class S>
    ORUCV_FLATTEN static void row(const S* up, const S* mid, const S* down, int16_t* dst, int width, int count) {
        if (width < kIntBlock + 2) {
            scalar::row_int<K>(up, mid, down, dst, width, count);
            return;
        }
        scalar::row_int_edges<K>(up, mid, down, dst, width, count);
        interior_blocks<kIntBlock, kIntUnroll>(width, [&](int x) {
            Block out;
            int_block<K>(up, mid, down, x, count, out);
            store(dst + x, out);
        });
    }

    // Two output rows of a kernel that weighs three rows: the horizontal
    // terms of the two middle source rows serve both.
    template <class K, class S>
    ORUCV_FLATTEN static void pair(const S* r0, const S* r1, const S* r2, const S* r3, int16_t* d0, int16_t* d1,
                                   int width, int count) {
        if (width < kIntBlock + 2) {
            scalar::row_int_pair<K>(r0, r1, r2, r3, d0, d1, width, count);
            return;
        }
        scalar::row_int_edges<K>(r0, r1, r2, d0, width, count);
        scalar::row_int_edges<K>(r1, r2, r3, d1, width, count);
        interior_blocks<kIntBlock, 1>(width, [&](int x) {
            Block h0, h1, h2, h3, o0, o1;
            across<K>(r0, x, h0);
            across<K>(r1, x, h1);
            across<K>(r2, x, h2);
            across<K>(r3, x, h3);
            combine<K::v0, K::v1, K::v2>(h0, h1, h2, o0);
            combine<K::v0, K::v1, K::v2>(h1, h2, h3, o1);
            shift<K>(o0, count);
            shift<K>(o1, count);
            store(d0 + x, o0);
            store(d1 + x, o1);
        });
    }

    // ---- Float rows: NaN results are stored as the one quiet NaN.
    static void store(float* p, F v) { V::storef(p, V::quiet_nans(v)); }

    template <class Block>
    static void float_interior(int width, Block block) {
        interior_blocks<kFloatBlock, kFloatUnroll>(width, block);
    }

    // c * v, skipping the product when the weight is known to be 1 (Sobel):
    // multiplying by 1 is exact, so both give the same bits.
    template <bool Unit>
    static F outer(F c, F v) {
        if constexpr (Unit) return v;
        else return V::mulf(c, v);
    }

    // Horizontal difference and smoothing at columns x .. x + kFloatBlock - 1.
    static F diff(const float* r, int x) { return V::subf(V::loadf(r + x + 1), V::loadf(r + x - 1)); }
    template <bool Unit>
    static F smooth(const float* r, int x, F c0, F c1, F c2) {
        return V::addf(V::addf(outer<Unit>(c0, V::loadf(r + x - 1)), V::mulf(c1, V::loadf(r + x))),
                       outer<Unit>(c2, V::loadf(r + x + 1)));
    }
    // (c0 a + c1 b) + c2 c.
    template <bool Unit>
    static F weigh3(F a, F b, F c, F c0, F c1, F c2) {
        return V::addf(V::addf(outer<Unit>(c0, a), V::mulf(c1, b)), outer<Unit>(c2, c));
    }

    // Calls body(std::true_type) for weights whose outer terms are 1 (Sobel),
    // body(std::false_type) for the others.
    template <class Body>
    static void by_unit(const Weights32f& w, Body body) {
        if (w.c0 == 1.0f && w.c2 == 1.0f) body(std::true_type());
        else body(std::false_type());
    }

    ORUCV_FLATTEN static void dx3_32f(const float* up, const float* mid, const float* down, float* dst, int width,
                                      const Weights32f& w) {
        if (width < kFloatBlock + 2) return scalar::dx3_32f(up, mid, down, dst, width, w);
        scalar::dx3_32f_edges(up, mid, down, dst, width, w);
        const F c0 = V::setf(w.c0), c1 = V::setf(w.c1), c2 = V::setf(w.c2);
        by_unit(w, [&](auto unit) {
            constexpr bool kUnit = decltype(unit)::value;
            float_interior(width, [&](int x) {
                store(dst + x, weigh3<kUnit>(diff(up, x), diff(mid, x), diff(down, x), c0, c1, c2));
            });
        });
    }

    // Two output rows from four source rows: the differences of the two
    // middle rows are computed once for both.
    ORUCV_FLATTEN static void dx3x2_32f(const float* r0, const float* r1, const float* r2, const float* r3,
                                        float* d0, float* d1, int width, const Weights32f& w) {
        if (width < kFloatBlock + 2) return scalar::dx3x2_32f(r0, r1, r2, r3, d0, d1, width, w);
        scalar::dx3_32f_edges(r0, r1, r2, d0, width, w);
        scalar::dx3_32f_edges(r1, r2, r3, d1, width, w);
        const F c0 = V::setf(w.c0), c1 = V::setf(w.c1), c2 = V::setf(w.c2);
        by_unit(w, [&](auto unit) {
            constexpr bool kUnit = decltype(unit)::value;
            float_interior(width, [&](int x) {
                const F e0 = diff(r0, x), e1 = diff(r1, x), e2 = diff(r2, x), e3 = diff(r3, x);
                store(d0 + x, weigh3<kUnit>(e0, e1, e2, c0, c1, c2));
                store(d1 + x, weigh3<kUnit>(e1, e2, e3, c0, c1, c2));
            });
        });
    }

    ORUCV_FLATTEN static void dx2_32f(const float* a, const float* b, float* dst, int width, float ca, float cb) {
        if (width < kFloatBlock + 2) return scalar::dx2_32f(a, b, dst, width, ca, cb);
        scalar::dx2_32f_edges(a, b, dst, width, ca, cb);
        const F va = V::setf(ca), vb = V::setf(cb);
        float_interior(width,
                       [&](int x) { store(dst + x, V::addf(V::mulf(va, diff(a, x)), V::mulf(vb, diff(b, x)))); });
    }

    ORUCV_FLATTEN static void dy_32f(const float* up, const float* down, float* dst, int width, const Weights32f& w) {
        if (width < kFloatBlock + 2) return scalar::dy_32f(up, down, dst, width, w);
        scalar::dy_32f_edges(up, down, dst, width, w);
        const F c0 = V::setf(w.c0), c1 = V::setf(w.c1), c2 = V::setf(w.c2);
        by_unit(w, [&](auto unit) {
            constexpr bool kUnit = decltype(unit)::value;
            float_interior(width, [&](int x) {
                store(dst + x,
                      V::subf(smooth<kUnit>(down, x, c0, c1, c2), smooth<kUnit>(up, x, c0, c1, c2)));
            });
        });
    }

    // Four output rows from six source rows, each smoothed once.
    template <bool Unit, bool Flip>
    static void dy4_interior(const float* first, int srcStep, float* dst, int dstStep, int width,
                             const Weights32f& w) {
        const float* r[6];
        float* d[4];
        for (int i = 0; i < 6; ++i) r[i] = row_at(first, srcStep, i);
        for (int i = 0; i < 4; ++i) d[i] = row_at(dst, dstStep, i);
        const F c0 = V::setf(w.c0), c1 = V::setf(w.c1), c2 = V::setf(w.c2);
        auto m = [&](int i, int x) { return smooth<Unit>(r[i], x, c0, c1, c2); };
        auto delta = [](F before, F after) { return Flip ? V::subf(before, after) : V::subf(after, before); };
        float_interior(width, [&](int x) {
            const F m0 = m(0, x), m1 = m(1, x), m2 = m(2, x);
            store(d[0] + x, delta(m0, m2));
            const F m3 = m(3, x);
            store(d[1] + x, delta(m1, m3));
            const F m4 = m(4, x);
            store(d[2] + x, delta(m2, m4));
            const F m5 = m(5, x);
            store(d[3] + x, delta(m3, m5));
        });
    }

    ORUCV_FLATTEN static void dy4_32f(const float* first, int srcStep, float* dst, int dstStep, int width,
                                      bool flip, const Weights32f& w) {
        if (width < kFloatBlock + 2) return scalar::dy4_32f(first, srcStep, dst, dstStep, width, flip, w);
        for (int i = 0; i < 4; ++i) {
            const float* up = row_at(first, srcStep, flip ? i + 2 : i);
            const float* down = row_at(first, srcStep, flip ? i : i + 2);
            scalar::dy_32f_edges(up, down, row_at(dst, dstStep, i), width, w);
        }
        by_unit(w, [&](auto unit) {
            constexpr bool kUnit = decltype(unit)::value;
            if (flip) dy4_interior<kUnit, true>(first, srcStep, dst, dstStep, width, w);
            else dy4_interior<kUnit, false>(first, srcStep, dst, dstStep, width, w);
        });
    }
};

}  // namespace
}  // namespace a6
}  // namespace orucv
