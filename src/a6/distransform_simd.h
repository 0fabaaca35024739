// Vector row loops of the distance transform's neighbour passes, written once
// over a set of 32-bit lane operations that each instruction-set file
// supplies. Everything here has internal linkage: every including file gets
// its own copy, compiled for its own instruction set.
//
// Operations (struct Ops):
//   V                       kLanes distances in 32-bit lanes
//   V load(const void*), void store(void*, V)   unaligned
//   V set1(int32_t)         one value in every lane
//   V min32(V, V), add(V, V)   signed minimum, wrapping sum
#pragma once

#include "a6/distransform.h"

namespace orucv {
namespace a6 {
namespace {

template <class Ops>
void near3_row_simd(dist_t* d, const dist_t* near, int n, int32_t a, int32_t b) {
    scalar::near3_borders(d, near, n, a, b);
    const typename Ops::V va = Ops::set1(a), vb = Ops::set1(b);
    int x = 1;
    for (; x + Ops::kLanes <= n - 1; x += Ops::kLanes) {
        typename Ops::V m = Ops::min32(Ops::load(d + x), Ops::add(Ops::load(near + x), va));
        m = Ops::min32(m, Ops::add(Ops::load(near + x - 1), vb));
        Ops::store(d + x, Ops::min32(m, Ops::add(Ops::load(near + x + 1), vb)));
    }
    scalar::near3_span(d, near, x, n - 1, a, b);
}

template <class Ops, bool kTwoRows>
void near5_interior(dist_t* d, const dist_t* near1, const dist_t* near2, int n, int32_t a, int32_t b, int32_t c) {
    const typename Ops::V va = Ops::set1(a), vb = Ops::set1(b), vc = Ops::set1(c);
    auto plus = [](const dist_t* p, typename Ops::V w) { return Ops::add(Ops::load(p), w); };
    int x = 2;
    for (; x + Ops::kLanes <= n - 2; x += Ops::kLanes) {
        typename Ops::V m = Ops::min32(Ops::load(d + x), plus(near1 + x, va));
        m = Ops::min32(m, plus(near1 + x - 1, vb));
        m = Ops::min32(m, plus(near1 + x + 1, vb));
        m = Ops::min32(m, plus(near1 + x - 2, vc));
        m = Ops::min32(m, plus(near1 + x + 2, vc));
        if (kTwoRows) {
            m = Ops::min32(m, plus(near2 + x - 1, vc));
            m = Ops::min32(m, plus(near2 + x + 1, vc));
        }
        Ops::store(d + x, m);
    }
    scalar::near5_span<kTwoRows>(d, near1, near2, x, n - 2, a, b, c);
}

template <class Ops>
void near5_row_simd(dist_t* d, const dist_t* near1, const dist_t* near2, int n, int32_t a, int32_t b, int32_t c) {
    scalar::near5_borders(d, near1, near2, n, a, b, c);
    if (near2) near5_interior<Ops, true>(d, near1, near2, n, a, b, c);
    else near5_interior<Ops, false>(d, near1, near2, n, a, b, c);
}

}  // namespace
}  // namespace a6
}  // namespace orucv
