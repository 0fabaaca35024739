#include "a6/stats_simd.h"
#include "a6/ops_avx2.h"

namespace orucv {
namespace a6 {
const StatsKernels stats_kernels_avx2 = StatsRows<Avx2>::table();
}  // namespace a6
}  // namespace orucv
