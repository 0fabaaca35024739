#include "a6/eigen_simd.h"
#include "a6/ops_avx2.h"

namespace orucv {
namespace a6 {
const EigenKernels eigen_kernels_avx2 = EigenRows<Avx2>::table();
}  // namespace a6
}  // namespace orucv
