#include "a6/canny_simd.h"
#include "a6/ops_avx2.h"

namespace orucv {
namespace a6 {
const CannyKernels canny_kernels_avx2 = canny_table<CannyRows<Avx2>>();
}  // namespace a6
}  // namespace orucv
