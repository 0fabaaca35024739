#include "a6/stats_simd.h"
#include "a6/ops_sse2.h"

namespace orucv {
namespace a6 {
const StatsKernels stats_kernels_sse2 = StatsRows<Sse2>::table();
}  // namespace a6
}  // namespace orucv
