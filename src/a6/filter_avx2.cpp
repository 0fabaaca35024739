#include "a6/filter_simd.h"
#include "a6/ops_avx2.h"

namespace orucv {
namespace a6 {
const FilterKernels filter_kernels_avx2 = FilterRows<Avx2>::table();
}  // namespace a6
}  // namespace orucv
