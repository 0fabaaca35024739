// The general filters' rows, written once over the vector operations of
// ops_<isa>.h. Across: the pixels whose taps all lie inside the row, a
// vector at a time; the replicated edges and the tail go to the scalar
// twin. Down, box and column rows: whole vectors, then the twin. The
// integer rows wrap in 16 bits and the float rows keep the twin's order,
// so every path gives the twin's bits. Internal linkage: each
// instruction-set file instantiates its own.
#pragma once

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

    // Samples in 16-bit lanes.
    static I load16(const uint8_t* p) { return V::load_widen_u8(p); }
    static I load16(const int8_t* p) { return V::load_widen_s8(p); }
    static I load16(const int16_t* p) { return V::load(p); }

    template <int M, class S>
    static void across16(const S* src, int16_t* dst, int n, int r, const int32_t* index, const int16_t* coeff) {
        I c[M];
        int off[M];
        for (int t = 0; t < M; ++t) {
            c[t] = V::set16(coeff[t]);
            off[t] = index[t] - r;
        }
        const int x0 = r < n ? r : n;
        scalar::across_range(src, dst, n, r, index, coeff, M, 0, x0);
        int x = x0;
        for (; x + kShorts + r <= n; x += kShorts) {
            I acc = V::mullo16(load16(src + (x + off[0])), c[0]);
            for (int t = 1; t < M; ++t) acc = V::add16(acc, V::mullo16(load16(src + (x + off[t])), c[t]));
            V::store(dst + x, acc);
        }
        scalar::across_range(src, dst, n, r, index, coeff, M, x, n);
    }

    template <int M>
    static void across32f(const float* src, float* dst, int n, int r, const int32_t* index, const float* coeff) {
        F c[M];
        int off[M];
        for (int t = 0; t < M; ++t) {
            c[t] = V::setf(coeff[t]);
            off[t] = index[t] - r;
        }
        const int x0 = r < n ? r : n;
        scalar::across_range(src, dst, n, r, index, coeff, M, 0, x0);
        int x = x0;
        for (; x + kFloats + r <= n; x += kFloats) {
            F acc = V::mulf(V::loadf(src + (x + off[0])), c[0]);
            for (int t = 1; t < M; ++t) acc = V::addf(acc, V::mulf(V::loadf(src + (x + off[t])), c[t]));
            V::storef(dst + x, acc);
        }
        scalar::across_range(src, dst, n, r, index, coeff, M, x, n);
    }

    template <int M>
    static I down16_at(const int16_t* const* rows, const I* c, int x) {
        I acc = V::mullo16(V::load(rows[0] + x), c[0]);
        for (int t = 1; t < M; ++t) acc = V::add16(acc, V::mullo16(V::load(rows[t] + x), c[t]));
        return acc;
    }
    template <int M>
    static F down32f_at(const float* const* rows, const F* c, int x) {
        F acc = V::mulf(V::loadf(rows[0] + x), c[0]);
        for (int t = 1; t < M; ++t) acc = V::addf(acc, V::mulf(V::loadf(rows[t] + x), c[t]));
        return acc;
    }

    template <int M>
    static void down16(const int16_t* const* rows, int16_t* dst, int n, const int16_t* coeff) {
        I c[M];
        for (int t = 0; t < M; ++t) c[t] = V::set16(coeff[t]);
        int x = 0;
        for (; x + kShorts <= n; x += kShorts) V::store(dst + x, down16_at<M>(rows, c, x));
        scalar::down<M>(rows, dst, n, coeff, x);
    }

    template <int M>
    static void down32f(const float* const* rows, float* dst, int n, const float* coeff) {
        F c[M];
        for (int t = 0; t < M; ++t) c[t] = V::setf(coeff[t]);
        int x = 0;
        for (; x + kFloats <= n; x += kFloats) V::storef(dst + x, V::quiet_nans(down32f_at<M>(rows, c, x)));
        scalar::down<M>(rows, dst, n, coeff, x);
    }

    template <int MA, int MB>
    static void laplace16(const int16_t* const* a, const int16_t* ca, const int16_t* const* b, const int16_t* cb,
                          int16_t* dst, int n) {
        I cva[MA], cvb[MB];
        for (int t = 0; t < MA; ++t) cva[t] = V::set16(ca[t]);
        for (int t = 0; t < MB; ++t) cvb[t] = V::set16(cb[t]);
        int x = 0;
        for (; x + kShorts <= n; x += kShorts)
            V::store(dst + x, V::add16(down16_at<MA>(a, cva, x), down16_at<MB>(b, cvb, x)));
        scalar::laplace<MA, MB>(a, ca, b, cb, dst, n, x);
    }

    template <int MA, int MB>
    static void laplace32f(const float* const* a, const float* ca, const float* const* b, const float* cb, float* dst,
                           int n) {
        F cva[MA], cvb[MB];
        for (int t = 0; t < MA; ++t) cva[t] = V::setf(ca[t]);
        for (int t = 0; t < MB; ++t) cvb[t] = V::setf(cb[t]);
        int x = 0;
        for (; x + kFloats <= n; x += kFloats)
            V::storef(dst + x, V::quiet_nans(V::addf(down32f_at<MA>(a, cva, x), down32f_at<MB>(b, cvb, x))));
        scalar::laplace<MA, MB>(a, ca, b, cb, dst, n, x);
    }

    template <int R, class S>
    static void box16(const S* src, int16_t* dst, int n) {
        const int x0 = R < n ? R : n;
        scalar::box_range<R>(src, dst, n, 0, x0);
        int x = x0;
        for (; x + kShorts + R <= n; x += kShorts) {
            I acc = load16(src + x - R);
            for (int j = -R + 1; j <= R; ++j) acc = V::add16(acc, load16(src + x + j));
            V::store(dst + x, acc);
        }
        scalar::box_range<R>(src, dst, n, x, n);
    }

    template <int R>
    static void box32f(const float* src, float* dst, int n) {
        const int x0 = R < n ? R : n;
        scalar::box_range<R>(src, dst, n, 0, x0);
        int x = x0;
        for (; x + kFloats + R <= n; x += kFloats) {
            F acc = V::loadf(src + x - R);
            for (int j = -R + 1; j <= R; ++j) acc = V::addf(acc, V::loadf(src + x + j));
            V::storef(dst + x, acc);
        }
        scalar::box_range<R>(src, dst, n, x, n);
    }

    template <bool kOut, bool kDst>
    static int column16_blocks(int16_t* col, const int16_t* in, const int16_t* out, int16_t* dst, int n) {
        int x = 0;
        for (; x + kShorts <= n; x += kShorts) {
            I c = V::add16(V::load(col + x), V::load(in + x));
            if (kOut) c = V::sub16(c, V::load(out + x));
            V::store(col + x, c);
            if (kDst) V::store(dst + x, c);
        }
        return x;
    }
    static void column16(int16_t* col, const int16_t* in, const int16_t* out, int16_t* dst, int n) {
        const int x = out ? (dst ? column16_blocks<true, true>(col, in, out, dst, n)
                                 : column16_blocks<true, false>(col, in, out, dst, n))
                          : (dst ? column16_blocks<false, true>(col, in, out, dst, n)
                                 : column16_blocks<false, false>(col, in, out, dst, n));
        scalar::column(col, in, out, dst, n, x);
    }

    template <bool kOut, bool kDst>
    static int column32f_blocks(float* col, const float* in, const float* out, float* dst, int n) {
        int x = 0;
        for (; x + kFloats <= n; x += kFloats) {
            F c = V::addf(V::loadf(col + x), V::loadf(in + x));
            if (kOut) c = V::subf(c, V::loadf(out + x));
            V::storef(col + x, c);
            if (kDst) V::storef(dst + x, V::quiet_nans(c));
        }
        return x;
    }
    static void column32f(float* col, const float* in, const float* out, float* dst, int n) {
        const int x = out ? (dst ? column32f_blocks<true, true>(col, in, out, dst, n)
                                 : column32f_blocks<true, false>(col, in, out, dst, n))
                          : (dst ? column32f_blocks<false, true>(col, in, out, dst, n)
                                 : column32f_blocks<false, false>(col, in, out, dst, n));
        scalar::column(col, in, out, dst, n, x);
    }

    static void column_init16(int16_t* col, const int16_t* in, int factor, int n) {
        const I f = V::set16(factor);
        int x = 0;
        for (; x + kShorts <= n; x += kShorts) V::store(col + x, V::mullo16(f, V::load(in + x)));
        scalar::column_init(col, in, factor, n, x);
    }
    static void column_init32f(float* col, const float* in, int factor, int n) {
        const F f = V::setf(static_cast<float>(factor));
        int x = 0;
        for (; x + kFloats <= n; x += kFloats) V::storef(col + x, V::mulf(f, V::loadf(in + x)));
        scalar::column_init(col, in, factor, n, x);
    }

    template <int M>
    static constexpr void fill_counted(FilterKernels& k) {
        k.across_8u[M] = across16<M, uint8_t>;
        k.across_8s[M] = across16<M, int8_t>;
        k.across_32f[M] = across32f<M>;
        k.down_16s[M] = down16<M>;
        k.down_32f[M] = down32f<M>;
    }
    template <int R>
    static constexpr void fill_radius(FilterKernels& k) {
        k.laplace_16s[R] = laplace16<laplace_taps_smooth(R), laplace_taps_second(R)>;
        k.laplace_32f[R] = laplace32f<laplace_taps_smooth(R), laplace_taps_second(R)>;
        k.box_8u[R] = box16<R, uint8_t>;
        k.box_8s[R] = box16<R, int8_t>;
        k.box_32f[R] = box32f<R>;
    }

    static constexpr FilterKernels table() {
        FilterKernels k{};
        fill_counted<1>(k);
        fill_counted<2>(k);
        fill_counted<3>(k);
        fill_counted<4>(k);
        fill_counted<5>(k);
        fill_counted<6>(k);
        fill_counted<7>(k);
        fill_radius<1>(k);
        fill_radius<2>(k);
        fill_radius<3>(k);
        k.column_16s = column16;
        k.column_32f = column32f;
        k.column_init_16s = column_init16;
        k.column_init_32f = column_init32f;
        return k;
    }
};

}  // namespace
}  // namespace a6
}  // namespace orucv
