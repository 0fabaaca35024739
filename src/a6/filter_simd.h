// The general filters' rows, written once over the vector operations of
// ops_<isa>.h. Across: the pixels whose taps all lie inside the row, a
// vector at a time; the replicated edges and the tail go to the scalar
// twin. Down, box and column rows: whole vectors, then the twin.
//
// The across and down rows are specialised on their kernel's cells: a cell
// of 1 or 2 becomes an addition, a negative cell a subtraction. Integer
// rows wrap in 16 bits, so any form gives the twin's bits; for float rows
// v + v is 2 * v and acc - m * v is acc + (-m) * v exactly, and the terms
// keep the twin's order. Internal linkage: each instruction-set file
// instantiates its own.
#pragma once

#include <type_traits>
#include <utility>

#include "a6/filter.h"

namespace orucv {
namespace a6 {
namespace {

template <class V>
struct FilterRows {
    using I = typename V::I;
    using F = typename V::F;
    static constexpr int kShorts = V::kBytes / 2;
    static constexpr int kFloats = V::kFloats;

    // The arithmetic of the two ring types.
    struct Int16 {
        using T = I;
        static constexpr int kLanes = kShorts;
        static T add(T a, T b) { return V::add16(a, b); }
        static T sub(T a, T b) { return V::sub16(a, b); }
        static T neg(T a) { return V::sub16(V::zero(), a); }
        static T twice(T a) { return V::add16(a, a); }
        static T mul(T a, int m) { return V::mullo16(V::set16(m), a); }
        static T load(const int16_t* p) { return V::load(p); }
        static T load(const uint8_t* p) { return V::load_widen_u8(p); }
        static T load(const int8_t* p) { return V::load_widen_s8(p); }
        static void store(int16_t* p, T v) { V::store(p, v); }
        static T finish(T v) { return v; }
    };
    struct Float {
        using T = F;
        static constexpr int kLanes = kFloats;
        static T add(T a, T b) { return V::addf(a, b); }
        static T sub(T a, T b) { return V::subf(a, b); }
        static T neg(T a) { return V::negf(a); }
        static T twice(T a) { return V::addf(a, a); }
        static T mul(T a, int m) { return V::mulf(V::setf(static_cast<float>(m)), a); }
        static T load(const float* p) { return V::loadf(p); }
        static void store(float* p, T v) { V::storef(p, v); }
        static T finish(T v) { return V::quiet_nans(v); }
    };
    template <class D>
    using ArithOf = typename std::conditional<sizeof(D) == 2, Int16, Float>::type;

    // acc (+ or -) |c| * value(k) for cell k of K, the first nonzero cell
    // starting the sum.
    template <class A, int C, bool kFirst, class Value>
    static void term(typename A::T& acc, Value& value, int k) {
        if constexpr (C != 0) {
            constexpr int m = C < 0 ? -C : C;
            const typename A::T v = value(k);
            typename A::T t = v;
            if constexpr (m == 2) t = A::twice(v);
            else if constexpr (m > 2) t = A::mul(v, m);
            if constexpr (kFirst) acc = C < 0 ? A::neg(t) : t;
            else acc = C < 0 ? A::sub(acc, t) : A::add(acc, t);
        }
    }
    template <class A, int N, int D, bool kNeg, class Value, int... K>
    static typename A::T weighted(Value value, std::integer_sequence<int, K...>) {
        constexpr KernelCells cells = kernel_cells(N, D, kNeg);
        typename A::T acc{};
        (term<A, cells.c[K], K == cells.first>(acc, value, K), ...);
        return acc;
    }
    template <class A, int N, int D, bool kNeg, class Value>
    static typename A::T weighted(Value value) {
        return weighted<A, N, D, kNeg>(value, std::make_integer_sequence<int, N>());
    }

    // Across with the kernel of size 2R + 1 and order D.
    // The first pixel of [x0, x1) whose taps all lie in the row.
    static int inner_start(int x0, int x1, int r) { return r < x0 ? x0 : r < x1 ? r : x1; }

    // Runs block(x) over [begin, end) a vector of L pixels at a time, the
    // last vector overlapping its predecessor rather than leaving a tail
    // (the blocks recompute the same values from inputs they do not write).
    // Returns where the covered span ends: end, or begin when it is
    // narrower than one vector.
    template <int L, class Block>
    static int span(int begin, int end, Block block) {
        if (end - begin < L) return begin;
        int x = begin;
        for (; x + L <= end; x += L) block(x);
        if (x < end) block(end - L);
        return end;
    }

    template <int R, int D, class S, class Dst>
    static void across(const S* src, Dst* dst, int n, int r, const Taps& taps, int x0, int x1) {
        using A = ArithOf<Dst>;
        const auto* coeff = scalar::coeffs_of(taps, Dst());
        const int begin = inner_start(x0, x1, R), end = x1 < n - R ? x1 : n - R > begin ? n - R : begin;
        scalar::across_range(src, dst, n, r, taps.index, coeff, taps.count, x0, begin);
        const int x = span<A::kLanes>(begin, end, [&](int at) {
            A::store(dst + at, weighted<A, 2 * R + 1, D, false>([&](int k) { return A::load(src + (at - R + k)); }));
        });
        scalar::across_range(src, dst, n, r, taps.index, coeff, taps.count, x, x1);
    }

    // Laplace across: order 2 into a, order 0 into b, from the same loads.
    template <int R, class S, class Dst>
    static void laplace_across(const S* src, Dst* a, Dst* b, int n, int r, const Taps& second, const Taps& smooth,
                               int x0, int x1) {
        using A = ArithOf<Dst>;
        const int begin = inner_start(x0, x1, R), end = x1 < n - R ? x1 : n - R > begin ? n - R : begin;
        scalar::across_range(src, a, n, r, second.index, scalar::coeffs_of(second, Dst()), second.count, x0, begin);
        scalar::across_range(src, b, n, r, smooth.index, scalar::coeffs_of(smooth, Dst()), smooth.count, x0, begin);
        const int x = span<A::kLanes>(begin, end, [&](int at) {
            typename A::T v[2 * R + 1];
            for (int k = 0; k <= 2 * R; ++k) v[k] = A::load(src + (at - R + k));
            A::store(a + at, weighted<A, 2 * R + 1, 2, false>([&](int k) { return v[k]; }));
            A::store(b + at, weighted<A, 2 * R + 1, 0, false>([&](int k) { return v[k]; }));
        });
        scalar::across_range(src, a, n, r, second.index, scalar::coeffs_of(second, Dst()), second.count, x, x1);
        scalar::across_range(src, b, n, r, smooth.index, scalar::coeffs_of(smooth, Dst()), smooth.count, x, x1);
    }

    // Down with the kernel of size 2R + 1, order D; rows[t] is the row of
    // the t-th nonzero cell.
    template <int R, int D, bool kNeg, class Dst>
    static void down(const Dst* const* rows, Dst* dst, const Dst* coeff, int x0, int x1) {
        using A = ArithOf<Dst>;
        constexpr KernelCells cells = kernel_cells(2 * R + 1, D, kNeg);
        const Dst* at[2 * R + 1] = {};
        for (int k = 0, t = 0; k <= 2 * R; ++k)
            if (cells.c[k]) at[k] = rows[t++];
        const int x = span<A::kLanes>(x0, x1, [&](int p) {
            A::store(dst + p, A::finish(weighted<A, 2 * R + 1, D, kNeg>([&](int k) { return A::load(at[k] + p); })));
        });
        scalar::down<cells.count>(rows, dst, coeff, x, x1);
    }

    // Any taps (rows merged at the image's top or bottom).
    template <int M, class Dst>
    static void down_any(const Dst* const* rows, Dst* dst, const Dst* coeff, int x0, int x1) {
        using A = ArithOf<Dst>;
        typename A::T c[M];
        for (int t = 0; t < M; ++t) c[t] = load_weight(coeff[t]);
        const Dst* at[M];
        for (int t = 0; t < M; ++t) at[t] = rows[t];
        const int x = span<A::kLanes>(x0, x1, [&](int p) {
            typename A::T acc = times(c[0], A::load(at[0] + p));
            for (int t = 1; t < M; ++t) acc = A::add(acc, times(c[t], A::load(at[t] + p)));
            A::store(dst + p, A::finish(acc));
        });
        scalar::down<M>(rows, dst, coeff, x, x1);
    }
    static I load_weight(int16_t c) { return V::set16(c); }
    static F load_weight(float c) { return V::setf(c); }
    static I times(I c, I v) { return V::mullo16(c, v); }
    static F times(F c, F v) { return V::mulf(c, v); }

    // Laplace down: order 0 over the order-2 rows a, plus order 2 over the
    // order-0 rows b.
    template <int R, class Dst>
    static void laplace(const Dst* const* a, const Dst* ca, const Dst* const* b, const Dst* cb, Dst* dst, int x0, int x1) {
        using A = ArithOf<Dst>;
        constexpr int N = 2 * R + 1;
        constexpr KernelCells second = kernel_cells(N, 2, false);
        const Dst* at[N];
        const Dst* bt[N] = {};
        for (int k = 0, t = 0; k < N; ++k) {
            at[k] = a[k];
            if (second.c[k]) bt[k] = b[t++];
        }
        const int x = span<A::kLanes>(x0, x1, [&](int p) {
            const auto dxx = weighted<A, N, 0, false>([&](int k) { return A::load(at[k] + p); });
            const auto dyy = weighted<A, N, 2, false>([&](int k) { return A::load(bt[k] + p); });
            A::store(dst + p, A::finish(A::add(dxx, dyy)));
        });
        scalar::laplace<laplace_taps_smooth(R), laplace_taps_second(R)>(a, ca, b, cb, dst, x, x1);
    }

    // Laplace rows whose taps merged: any counts, an empty part left out.
    template <class Dst>
    static void laplace_any(const Dst* const* a, const Dst* ca, int ma, const Dst* const* b, const Dst* cb, int mb,
                            Dst* dst, int x0, int x1) {
        using A = ArithOf<Dst>;
        typename A::T wa[kMaxKernel], wb[kMaxKernel];
        const Dst* pa[kMaxKernel];
        const Dst* pb[kMaxKernel];
        for (int t = 0; t < ma; ++t) wa[t] = load_weight(ca[t]), pa[t] = a[t];
        for (int t = 0; t < mb; ++t) wb[t] = load_weight(cb[t]), pb[t] = b[t];
        auto part = [&](const typename A::T* w, const Dst* const* rows, int m, int p) {
            typename A::T acc = times(w[0], A::load(rows[0] + p));
            for (int t = 1; t < m; ++t) acc = A::add(acc, times(w[t], A::load(rows[t] + p)));
            return acc;
        };
        const int x = span<A::kLanes>(x0, x1, [&](int p) {
            const typename A::T v = ma && mb ? A::add(part(wa, pa, ma, p), part(wb, pb, mb, p))
                                    : ma     ? part(wa, pa, ma, p)
                                             : part(wb, pb, mb, p);
            A::store(dst + p, A::finish(v));
        });
        scalar::laplace_any(a, ca, ma, b, cb, mb, dst, x, x1);
    }

    template <int R, class S, class Dst>
    static void box(const S* src, Dst* dst, int n) {
        using A = ArithOf<Dst>;
        const int begin = R < n ? R : n, end = n - R > begin ? n - R : begin;
        scalar::box_range<R>(src, dst, n, 0, begin);
        const int x = span<A::kLanes>(begin, end, [&](int p) {
            typename A::T acc = A::load(src + p - R);
            for (int j = -R + 1; j <= R; ++j) acc = A::add(acc, A::load(src + p + j));
            A::store(dst + p, acc);
        });
        scalar::box_range<R>(src, dst, n, x, n);
    }

    template <class Dst, bool kOut, bool kDst>
    static int column_blocks(Dst* col, const Dst* in, const Dst* out, Dst* dst, int n) {
        using A = ArithOf<Dst>;
        int x = 0;
        for (; x + A::kLanes <= n; x += A::kLanes) {
            typename A::T c = A::add(A::load(col + x), A::load(in + x));
            if (kOut) c = A::sub(c, A::load(out + x));
            A::store(col + x, c);
            if (kDst) A::store(dst + x, A::finish(c));
        }
        return x;
    }
    template <class Dst>
    static void column(Dst* col, const Dst* in, const Dst* out, Dst* dst, int n) {
        const int x = out ? (dst ? column_blocks<Dst, true, true>(col, in, out, dst, n)
                                 : column_blocks<Dst, true, false>(col, in, out, dst, n))
                          : (dst ? column_blocks<Dst, false, true>(col, in, out, dst, n)
                                 : column_blocks<Dst, false, false>(col, in, out, dst, n));
        scalar::column(col, in, out, dst, n, x);
    }

    template <class Dst>
    static void column_init(Dst* col, const Dst* in, int factor, int n) {
        using A = ArithOf<Dst>;
        int x = 0;
        for (; x + A::kLanes <= n; x += A::kLanes) A::store(col + x, A::mul(A::load(in + x), factor));
        scalar::column_init(col, in, factor, n, x);
    }

    template <int R, int D>
    static constexpr void fill_order(FilterKernels& k) {
        k.across_8u[R][D] = across<R, D, uint8_t, int16_t>;
        k.across_8s[R][D] = across<R, D, int8_t, int16_t>;
        k.across_32f[R][D] = across<R, D, float, float>;
        k.down_16s[R][D][0] = down<R, D, false, int16_t>;
        k.down_32f[R][D][0] = down<R, D, false, float>;
        k.down_16s[R][D][1] = down<R, D, D % 2 == 1, int16_t>;
        k.down_32f[R][D][1] = down<R, D, D % 2 == 1, float>;
    }
    template <int R, int... D>
    static constexpr void fill_radius(FilterKernels& k, std::integer_sequence<int, D...>) {
        (fill_order<R, D>(k), ...);
        k.laplace_across_8u[R] = laplace_across<R, uint8_t, int16_t>;
        k.laplace_across_8s[R] = laplace_across<R, int8_t, int16_t>;
        k.laplace_across_32f[R] = laplace_across<R, float, float>;
        k.laplace_16s[R] = laplace<R, int16_t>;
        k.laplace_32f[R] = laplace<R, float>;
        k.box_8u[R] = box<R, uint8_t, int16_t>;
        k.box_8s[R] = box<R, int8_t, int16_t>;
        k.box_32f[R] = box<R, float, float>;
    }
    template <int... M>
    static constexpr void fill_any(FilterKernels& k, std::integer_sequence<int, M...>) {
        ((k.down_any_16s[M + 1] = down_any<M + 1, int16_t>), ...);
        ((k.down_any_32f[M + 1] = down_any<M + 1, float>), ...);
    }

    static constexpr FilterKernels table() {
        FilterKernels k{};
        fill_radius<1>(k, std::make_integer_sequence<int, 3>());
        fill_radius<2>(k, std::make_integer_sequence<int, 5>());
        fill_radius<3>(k, std::make_integer_sequence<int, 7>());
        fill_any(k, std::make_integer_sequence<int, kMaxKernel>());
        k.laplace_any_16s = laplace_any<int16_t>;
        k.laplace_any_32f = laplace_any<float>;
        k.column_16s = column<int16_t>;
        k.column_32f = column<float>;
        k.column_init_16s = column_init<int16_t>;
        k.column_init_32f = column_init<float>;
        return k;
    }
};

}  // namespace
}  // namespace a6
}  // namespace orucv
