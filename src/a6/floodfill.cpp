#include "a6/floodfill.h"

#include "core/cpu.h"

namespace orucv {
namespace a6 {

const FloodFillKernels floodfill_kernels_scalar = make_kernels<ScalarOps>();

const FloodFillKernels& floodfill_kernels() { return ORUCV_CHOOSE(floodfill_kernels); }

}  // namespace a6
}  // namespace orucv
