#include "a6/accum.h"

#include "core/cpu.h"
#include "core/rows.h"

namespace orucv {
namespace a6 {

namespace {
struct ScalarRows {
    template <AccumOp op, class S, bool kMasked>
    static void row(const void* src1, const void* src2, const uint8_t* mask, float* acc, int n, float alpha) {
        scalar::accum_span<op, S, kMasked>(src1, src2, mask, acc, 0, n, alpha);
    }
};
}  // namespace

const AccumKernels accum_kernels_scalar = accum_table<ScalarRows>();

const AccumKernels& accum_kernels() { return ORUCV_CHOOSE(accum_kernels); }

void accumulate(AccumKernel id, Plane<const uint8_t> src1, Plane<const uint8_t> src2, Plane<const uint8_t> mask,
                Plane<float> acc, OruSize roi, float alpha) {
    const AccumRow row = accum_kernels().rows[static_cast<int>(id)];
    auto row_with_alpha = [&](const uint8_t* s1, const uint8_t* s2, const uint8_t* m, float* a, int n) {
        row(s1, s2, m, a, n, alpha);
    };
    for_each_row_joined(roi, row_with_alpha, src1, src2, mask, acc);
}

}  // namespace a6
}  // namespace orucv
