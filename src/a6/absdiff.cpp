#include "a6/absdiff.h"

#include "core/cpu.h"
#include "core/rows.h"

namespace orucv {
namespace a6 {

namespace {
constexpr AbsDiffKernels scalar_table() {
    AbsDiffKernels k{};
    k.diff_8u = scalar::diff_8u;
    k.diff_const_8u = scalar::diff_const_8u;
    k.diff_32f = scalar::diff_32f;
    k.diff_const_32f = scalar::diff_const_32f;
    k.motion_direct = scalar::motion<false>;
    k.motion_mapped = scalar::motion<true>;
    return k;
}
}  // namespace

const AbsDiffKernels absdiff_kernels_scalar = scalar_table();

const AbsDiffKernels& absdiff_kernels() { return ORUCV_CHOOSE(absdiff_kernels); }

void abs_diff(const Oru8u* a, int aStep, const Oru8u* b, int bStep, Oru8u* dst, int dstStep, OruSize roi) {
    for_each_row_joined(roi, absdiff_kernels().diff_8u, plane(a, aStep), plane(b, bStep), plane(dst, dstStep));
}

void abs_diff(const Oru32f* a, int aStep, const Oru32f* b, int bStep, Oru32f* dst, int dstStep, OruSize roi) {
    for_each_row_joined(roi, absdiff_kernels().diff_32f, plane(a, aStep), plane(b, bStep), plane(dst, dstStep));
}

void abs_diff_const(const Oru8u* a, int aStep, Oru8u value, Oru8u* dst, int dstStep, OruSize roi) {
    const auto row = absdiff_kernels().diff_const_8u;
    for_each_row_joined(
        roi, [&](const Oru8u* s, Oru8u* d, int n) { row(s, value, d, n); }, plane(a, aStep), plane(dst, dstStep));
}

void abs_diff_const(const Oru32f* a, int aStep, Oru32f value, Oru32f* dst, int dstStep, OruSize roi) {
    const auto row = absdiff_kernels().diff_const_32f;
    for_each_row_joined(
        roi, [&](const Oru32f* s, Oru32f* d, int n) { row(s, value, d, n); }, plane(a, aStep), plane(dst, dstStep));
}

void update_motion_history(const Oru8u* silhouette, int silhStep, Oru32f* mhi, int mhiStep, OruSize roi,
                           Oru32f timestamp, Oru32f threshold) {
    const AbsDiffKernels& k = absdiff_kernels();
    // Positive thresholds need no mapping of the history patterns.
    const auto row = static_cast<int32_t>(float_bits(threshold)) > 0 ? k.motion_direct : k.motion_mapped;
    for_each_row_joined(
        roi, [&](const Oru8u* s, Oru32f* m, int n) { row(s, m, n, timestamp, threshold); },
        plane(silhouette, silhStep), plane(mhi, mhiStep));
}

}  // namespace a6
}  // namespace orucv
