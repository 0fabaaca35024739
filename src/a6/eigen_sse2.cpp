#include "a6/eigen_simd.h"
#include "a6/ops_sse2.h"

namespace orucv {
namespace a6 {
const EigenKernels eigen_kernels_sse2 = EigenRows<Sse2>::table();
}  // namespace a6
}  // namespace orucv
