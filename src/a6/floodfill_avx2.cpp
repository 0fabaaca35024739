#include "a6/floodfill_simd.h"
#include "a6/ops_avx2.h"

namespace orucv {
namespace a6 {
const FloodFillKernels floodfill_kernels_avx2 = floodfill_table<Avx2>();
}  // namespace a6
}  // namespace orucv
