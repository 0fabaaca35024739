#include "a6/distransform_simd.h"
#include "a6/ops_avx2.h"

namespace orucv {
namespace a6 {
const DistanceKernels distance_kernels_avx2 = DistanceRows<Avx2>::table();
}  // namespace a6
}  // namespace orucv
