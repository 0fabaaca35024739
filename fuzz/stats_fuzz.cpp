// Means, deviations, extrema, norms and the exported sum kernel, of one
// channel or the channel of interest of three, masked and not.
#include "stats_list.h"
#include "support/harness.h"

using namespace orufuzz;

namespace {

enum Kind { Mean, MeanStdDev, SumSq, MinMaxIndx, Norm, NormDiff, NormRel };
enum Layout { C1 = 1, C3C = 3 };
enum Masking { Unmasked, Masked };

template <Kind K, class T, Layout L, Masking M, auto F>
void fuzz_stat(Harness& h, const char* name) {
    OruSize roi = h.roi();
    if (K == SumSq) {  // the kernel checks nothing: only what it accepts
        roi.width = roi.width < 1 ? 1 : roi.width;
        roi.height = roi.height < 1 ? 1 : roi.height;
    }
    Image& s1 = h.image_of<T>("src1", Role::In, roi.width, L, roi.height);
    Image& s2 = h.image_of<T>("src2", Role::In, roi.width, L, roi.height);
    Image& m = h.image_of<Oru8u>("mask", Role::In, roi.width, 1, roi.height);
    Image& out = h.cells<Oru64f>("results", 2);
    Image& points = h.cells<OruPoint>("locations", 2);
    Image& extrema = h.cells<Oru32f>("extrema", 2);
    h.on_every_level([&] {
        const T* a = h.maybe_null(s1.data<T>());
        const T* b = h.maybe_null(s2.data<T>());
        const Oru8u* mask = h.maybe_null(m.data<Oru8u>());
        Oru64f* r0 = h.maybe_null(out.data<Oru64f>());
        Oru64f* r1 = h.maybe_null(out.data<Oru64f>() + 1);
        Oru32f* lo = h.maybe_null(extrema.data<Oru32f>());
        Oru32f* hi = h.maybe_null(extrema.data<Oru32f>() + 1);
        OruPoint* at_lo = h.maybe_null(points.data<OruPoint>());
        OruPoint* at_hi = h.maybe_null(points.data<OruPoint>() + 1);
        const int coi = h.in.arg(1, 3);
        h.call(name, [&] {
            if constexpr (K == SumSq) {
                if (s1.step() < s1.row_bytes()) return OruStatus{oruStsStep};  // not a call it accepts
                return F(s1.data<T>(), s1.step(), roi.width, roi.height, out.data<Oru32s>(),
                         reinterpret_cast<long long*>(out.data<Oru64f>() + 1));
            } else if constexpr (K == Mean && L == C1) {
                return F(a, s1.step(), mask, m.step(), roi, r0);
            } else if constexpr (K == Mean) {
                return F(a, s1.step(), mask, m.step(), roi, coi, r0);
            } else if constexpr (K == MeanStdDev && M == Masked && L == C1) {
                return F(a, s1.step(), mask, m.step(), roi, r0, r1);
            } else if constexpr (K == MeanStdDev && M == Masked) {
                return F(a, s1.step(), mask, m.step(), roi, coi, r0, r1);
            } else if constexpr (K == MeanStdDev && L == C1) {
                return F(a, s1.step(), roi, r0, r1);
            } else if constexpr (K == MeanStdDev) {
                return F(a, s1.step(), roi, coi, r0, r1);
            } else if constexpr (K == MinMaxIndx && M == Masked && L == C1) {
                return F(a, s1.step(), mask, m.step(), roi, lo, hi, at_lo, at_hi);
            } else if constexpr (K == MinMaxIndx && M == Masked) {
                return F(a, s1.step(), mask, m.step(), roi, coi, lo, hi, at_lo, at_hi);
            } else if constexpr (K == MinMaxIndx && L == C1) {
                return F(a, s1.step(), roi, lo, hi, at_lo, at_hi);
            } else if constexpr (K == MinMaxIndx) {
                return F(a, s1.step(), roi, coi, lo, hi, at_lo, at_hi);
            } else if constexpr (K == Norm && L == C1) {
                return F(a, s1.step(), mask, m.step(), roi, r0);
            } else if constexpr (K == Norm) {
                return F(a, s1.step(), mask, m.step(), roi, coi, r0);
            } else if constexpr (L == C1) {
                return F(a, s1.step(), b, s2.step(), mask, m.step(), roi, r0);
            } else {
                return F(a, s1.step(), b, s2.step(), mask, m.step(), roi, coi, r0);
            }
        });
    });
}

#define ENTRY(name, kind, norm, T, layout, masking, order) Entry{#name, fuzz_stat<kind, T, layout, masking, name>},
const Entry kEntries[] = {ORUCV_STATS_FUNCTIONS(ENTRY)};

}  // namespace

ORUFUZZ_TARGET(kEntries)
