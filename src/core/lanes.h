// The order of float sums. A float sum that must be fast is split into
// lanes, and its order is defined by those lanes, so that the scalar twin
// and every vector path, whatever its width, give the same bits:
//
//  - a run of n terms is summed in L lanes (L a power of two, fixed by the
//    family, not by the instruction set): term i goes to lane i mod L, terms
//    in increasing i;
//  - a path whose vectors hold fewer than L lanes keeps several vectors, one
//    more register per group of lanes;
//  - at the end the lanes fold in halves, lane j += lane j + L/2 for every
//    j < L/2, then L/4, ... until lane 0 holds the sum. For L = 8 that is
//    ((l0 + l4) + (l2 + l6)) + ((l1 + l5) + (l3 + l7)), and for L = 4
//    (l0 + l2) + (l1 + l3), which is what halving a vector register gives.
//
// A family may state a different final combination (for example lanes added
// one after the other in a wider type); the lane assignment stays this one.
#pragma once

namespace orucv {
namespace {  // internal linkage, as every header instruction-set files include

template <int L, class Acc>
inline Acc fold_lane_halves(Acc* lane) {
    static_assert(L > 0 && (L & (L - 1)) == 0, "a power of two lanes");
    for (int half = L / 2; half > 0; half /= 2)
        for (int j = 0; j < half; ++j) lane[j] = lane[j] + lane[j + half];
    return lane[0];
}

// The reference order: term(i) for i in [0, n) into L lanes of type Acc.
template <int L, class Acc, class Term>
inline Acc lane_sum(int n, Term term) {
    Acc lane[L] = {};
    for (int i = 0; i < n; ++i) lane[i % L] = lane[i % L] + static_cast<Acc>(term(i));
    return fold_lane_halves<L>(lane);
}

}  // namespace
}  // namespace orucv
