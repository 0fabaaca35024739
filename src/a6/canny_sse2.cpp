#include "a6/canny_simd.h"
#include "a6/ops_sse2.h"

namespace orucv {
namespace a6 {
const CannyKernels canny_kernels_sse2 = canny_table<CannyRows<Sse2>>();
}  // namespace a6
}  // namespace orucv
