#include "a6/accum_simd.h"
#include "a6/ops_sse2.h"

namespace orucv {
namespace a6 {
const AccumKernels accum_kernels_sse2 = accum_table<AccumRows<Sse2>>();
}  // namespace a6
}  // namespace orucv
