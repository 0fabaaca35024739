#include "a6/distransform_simd.h"
#include "a6/ops_sse2.h"

namespace orucv {
namespace a6 {
const DistanceKernels distance_kernels_sse2 = DistanceRows<Sse2>::table();
}  // namespace a6
}  // namespace orucv
