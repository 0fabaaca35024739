#include "a6/accum_simd.h"
#include "a6/ops_avx2.h"

namespace orucv {
namespace a6 {
const AccumKernels accum_kernels_avx2 = accum_table<AccumRows<Avx2>>();
}  // namespace a6
}  // namespace orucv
