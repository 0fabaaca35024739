#include "a6/accum.h"

#include "core/cpu.h"
#include "core/rows.h"

namespace orucv {
namespace a6 {

using scalar::row;
const AccumKernels accum_kernels_scalar = ORUCV_ACCUM_TABLE();

const AccumKernels& accum_kernels() { return ORUCV_CHOOSE(accum_kernels); }

int a6_orcvAccumulate(AccumKernel id, const AccumImage& im) {
    const AccumRow row = accum_kernels().rows[id];
    for (int y = 0; y < im.height; ++y)
        row(row_at(static_cast<const char*>(im.src1), im.src1Step, y),
            row_at(static_cast<const char*>(im.src2), im.src2Step, y), row_at(im.mask, im.maskStep, y),
            row_at(im.acc, im.accStep, y), im.width, im.alpha);
    return 0;
}

}  // namespace a6
}  // namespace orucv
