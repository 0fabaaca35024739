#include "a6/filter_simd.h"
#include "a6/ops_sse2.h"

namespace orucv {
namespace a6 {
const FilterKernels filter_kernels_sse2 = FilterRows<Sse2>::table();
}  // namespace a6
}  // namespace orucv
