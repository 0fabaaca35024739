#include "a6/floodfill_simd.h"
#include "a6/ops_sse2.h"

namespace orucv {
namespace a6 {
const FloodFillKernels floodfill_kernels_sse2 = floodfill_table<Sse2>();
}  // namespace a6
}  // namespace orucv
