#include "a6/absdiff.h"

#include "core/cpu.h"
#include "core/image.h"

namespace orucv {
namespace a6 {

const AbsDiffKernels absdiff_kernels_scalar = {scalar::diff_8u, scalar::diff_const_8u, scalar::diff_32f,
                                               scalar::diff_const_32f, scalar::motion_direct,
                                               scalar::motion_mapped};

const AbsDiffKernels& absdiff_kernels() { return ORUCV_CHOOSE(absdiff_kernels); }

int a6_orcvUpdateMotionHistory_8u32f_C1IR(const uint8_t* pSilhouette, int silhStep, float* pMHI, int mhiStep,
                                          int width, int height, float timestamp, float threshold) {
    const AbsDiffKernels& k = absdiff_kernels();
    // Positive thresholds need no mapping of the history patterns.
    auto row = scalar::float_bits(threshold) > 0 ? k.motion_direct : k.motion_mapped;
    for (int y = 0; y < height; ++y)
        row(row_at(pSilhouette, silhStep, y), row_at(pMHI, mhiStep, y), width, timestamp, threshold);
    return 0;
}

}  // namespace a6
}  // namespace orucv
