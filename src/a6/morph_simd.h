// The morphology row kernels, written once over the vector operations of
// ops_<isa>.h: four vectors per step, then one, then the scalar twin for the
// tail. Every step loads all its elements before it stores, so a fold may
// write over the rows it reads ahead of (the in-place passes of morph.cpp).
// Internal linkage: each instruction-set file instantiates its own.
#pragma once

#include "a6/morph.h"

namespace orucv {
namespace a6 {
namespace {

template <class V>
struct MorphVec {
    using I = typename V::I;

    // The order key of float bits and back (the mapping is its own inverse).
    static I key(I b) { return V::xor_(b, V::and_(V::template srai32<31>(b), V::set32(0x7FFFFFFF))); }
    // The packed minimum gives a < b ? a : b; an unordered compare sets every
    // lane that meets a NaN to all ones.
    static I with_nans(I r, I a, I b) { return V::or_(r, V::cast(V::cmpunordf(V::castf(a), V::castf(b)))); }

    struct MinU8 {
        using S = scalar::MinU8;
        static I op(I a, I b) { return V::min_u8(a, b); }
        static I out(I v) { return v; }
        static I in(I v) { return v; }
    };
    struct MaxU8 {
        using S = scalar::MaxU8;
        static I op(I a, I b) { return V::max_u8(a, b); }
        static I out(I v) { return v; }
        static I in(I v) { return v; }
    };
    struct MinF32 {
        using S = scalar::MinF32;
        static I op(I a, I b) { return with_nans(V::cast(V::minf(V::castf(a), V::castf(b))), a, b); }
        static I out(I v) { return V::cast(V::quiet_nans(V::castf(v))); }
        static I in(I v) { return v; }
    };
    struct MaxF32 {
        using S = scalar::MaxF32;
        static I op(I a, I b) { return with_nans(V::cast(V::maxf(V::castf(a), V::castf(b))), a, b); }
        static I out(I v) { return V::cast(V::quiet_nans(V::castf(v))); }
        static I in(I v) { return v; }
    };
    struct MinF32Plain {
        using S = scalar::MinF32Plain;
        static I op(I a, I b) { return V::cast(V::minf(V::castf(a), V::castf(b))); }
        static I out(I v) { return v; }
        static I in(I v) { return v; }
    };
    struct MaxF32Plain {
        using S = scalar::MaxF32Plain;
        static I op(I a, I b) { return V::cast(V::maxf(V::castf(a), V::castf(b))); }
        static I out(I v) { return v; }
        static I in(I v) { return v; }
    };
    struct MinKey {
        using S = scalar::MinKey;
        static I op(I a, I b) { return V::min32(a, b); }
        static I out(I v) { return key(v); }
        static I in(I v) { return key(v); }
    };
    struct MaxKey {
        using S = scalar::MaxKey;
        static I op(I a, I b) { return V::max32(a, b); }
        static I out(I v) { return key(v); }
        static I in(I v) { return key(v); }
    };

    // Folds of up to twelve rows keep their row pointers in registers (K is
    // the count); longer ones (K = 0) read them from the list, which costs
    // a load and a loop step per row and step.
    template <class Op, bool kOut>
    static void fold(const typename Op::S::E* const* rows, int count, void* dst, int n) {
        using E = typename Op::S::E;
        E* d = static_cast<E*>(dst);
        switch (count) {
        case 1: return fold_k<Op, kOut, 1>(rows, count, d, n);
        case 2: return fold_k<Op, kOut, 2>(rows, count, d, n);
        case 3: return fold_k<Op, kOut, 3>(rows, count, d, n);
        case 4: return fold_k<Op, kOut, 4>(rows, count, d, n);
        case 5: return fold_k<Op, kOut, 5>(rows, count, d, n);
        case 6: return fold_k<Op, kOut, 6>(rows, count, d, n);
        case 7: return fold_k<Op, kOut, 7>(rows, count, d, n);
        case 8: return fold_k<Op, kOut, 8>(rows, count, d, n);
        case 9: return fold_k<Op, kOut, 9>(rows, count, d, n);
        case 10: return fold_k<Op, kOut, 10>(rows, count, d, n);
        case 11: return fold_k<Op, kOut, 11>(rows, count, d, n);
        case 12: return fold_k<Op, kOut, 12>(rows, count, d, n);
        default: return fold_k<Op, kOut, 0>(rows, count, d, n);
        }
    }

    template <class Op, bool kOut, int K, class E>
    static void fold_k(const E* const* list, int count, E* dst, int n) {
        constexpr int N = V::kBytes / static_cast<int>(sizeof(E));
        const E* fixed[K > 0 ? K : 1];
        for (int m = 0; m < K; ++m) fixed[m] = list[m];
        const E* const* rows = K > 0 ? fixed : list;
        const int c = K > 0 ? K : count;
        // A row not a whole number of vectors ends with a vector that
        // overlaps the one before it. It is computed first, before any
        // store, and stored last: an in-place pass reads only elements at
        // or after those it writes, so every element it computes comes from
        // the rows as they were.
        const bool overlap = n >= N && n % N != 0;
        const I last = overlap ? vector<Op, kOut>(rows, c, n - N) : I();
        int i = 0;
        for (; i + 4 * N <= n; i += 4 * N) {
            const E* p = rows[0] + i;
            I a0 = V::load(p), a1 = V::load(p + N), a2 = V::load(p + 2 * N), a3 = V::load(p + 3 * N);
            for (int m = 1; m < c; ++m) {
                p = rows[m] + i;
                a0 = Op::op(a0, V::load(p));
                a1 = Op::op(a1, V::load(p + N));
                a2 = Op::op(a2, V::load(p + 2 * N));
                a3 = Op::op(a3, V::load(p + 3 * N));
            }
            if (kOut) a0 = Op::out(a0), a1 = Op::out(a1), a2 = Op::out(a2), a3 = Op::out(a3);
            V::store(dst + i, a0);
            V::store(dst + i + N, a1);
            V::store(dst + i + 2 * N, a2);
            V::store(dst + i + 3 * N, a3);
        }
        for (; i + N <= n; i += N) V::store(dst + i, vector<Op, kOut>(rows, c, i));
        if (overlap) V::store(dst + n - N, last);
        else scalar::fold_from<typename Op::S, kOut>(rows, c, dst, i, n);
    }
    template <class Op, bool kOut, class E>
    static I vector(const E* const* rows, int count, int i) {
        I a = V::load(rows[0] + i);
        for (int m = 1; m < count; ++m) a = Op::op(a, V::load(rows[m] + i));
        return kOut ? Op::out(a) : a;
    }
    template <class Op>
    static void reduce(const typename Op::S::E* const* rows, int count, typename Op::S::E* dst, int n) {
        fold<Op, false>(rows, count, dst, n);
    }
    template <class Op>
    static void reduce_out(const typename Op::S::E* const* rows, int count, typename Op::S::Out* dst, int n) {
        fold<Op, true>(rows, count, dst, n);
    }
    // reduce_out with non-temporal stores from the first element aligned to
    // a vector on (elements before it and after the last whole vector come
    // from the scalar twin).
    template <class Op>
    static void reduce_out_stream(const typename Op::S::E* const* rows, int count, typename Op::S::Out* dst, int n) {
        using E = typename Op::S::E;
        constexpr int N = V::kBytes / static_cast<int>(sizeof(E));
        E* d = reinterpret_cast<E*>(dst);
        const uintptr_t at = reinterpret_cast<uintptr_t>(d);
        const int head = static_cast<int>((V::kBytes - at % V::kBytes) % V::kBytes / sizeof(E));
        if (at % sizeof(E) != 0 || head + N > n) return fold<Op, true>(rows, count, d, n);
        scalar::fold_from<typename Op::S, true>(rows, count, d, 0, head);
        int i = head;
        for (; i + N <= n; i += N) V::stream(d + i, vector<Op, true>(rows, count, i));
        scalar::fold_from<typename Op::S, true>(rows, count, d, i, n);
    }

    // The caller's elements into the ring: a copy, or their order keys.
    template <class Op>
    static void load(const typename Op::S::Out* src, typename Op::S::E* dst, int n) {
        using E = typename Op::S::E;
        constexpr int N = V::kBytes / static_cast<int>(sizeof(E));
        int i = 0;
        for (; i + 2 * N <= n; i += 2 * N) {
            const I a = V::load(src + i), b = V::load(src + i + N);
            V::store(dst + i, Op::in(a));
            V::store(dst + i + N, Op::in(b));
        }
        for (; i + N <= n; i += N) V::store(dst + i, Op::in(V::load(src + i)));
        if (i < n && n >= N) V::store(dst + n - N, Op::in(V::load(src + n - N)));
        else scalar::load_from<typename Op::S>(src, dst, i, n);
    }

    static bool has_nan(const float* src, int n) {
        using F = typename V::F;
        F any = V::zerof();
        int i = 0;
        for (; i + 2 * V::kFloats <= n; i += 2 * V::kFloats) {
            const F a = V::loadf(src + i), b = V::loadf(src + i + V::kFloats);
            any = _or(any, _or(V::cmpunordf(a, a), V::cmpunordf(b, b)));
        }
        for (; i + V::kFloats <= n; i += V::kFloats) {
            const F a = V::loadf(src + i);
            any = _or(any, V::cmpunordf(a, a));
        }
        return V::movemaskf(any) != 0 || scalar::has_nan_from(src, i, n);
    }
    static typename V::F _or(typename V::F a, typename V::F b) { return V::castf(V::or_(V::cast(a), V::cast(b))); }

    template <class Op>
    static constexpr MorphRows<typename Op::S::E, typename Op::S::Out> rows_of() {
        MorphRows<typename Op::S::E, typename Op::S::Out> r{};
        r.reduce = reduce<Op>;
        r.reduce_out = reduce_out<Op>;
        r.reduce_out_stream = reduce_out_stream<Op>;
        r.load = load<Op>;
        return r;
    }

    static constexpr MorphKernels table() {
        MorphKernels k{};
        k.min_8u = rows_of<MinU8>();
        k.max_8u = rows_of<MaxU8>();
        k.min_32f = rows_of<MinF32>();
        k.max_32f = rows_of<MaxF32>();
        k.min_32f_plain = rows_of<MinF32Plain>();
        k.max_32f_plain = rows_of<MaxF32Plain>();
        k.min_key = rows_of<MinKey>();
        k.max_key = rows_of<MaxKey>();
        k.has_nan = has_nan;
        k.stream_fence = V::stream_fence;
        return k;
    }
};

}  // namespace
}  // namespace a6
}  // namespace orucv
