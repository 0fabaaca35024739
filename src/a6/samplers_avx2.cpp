#include "a6/samplers_simd.h"
#include "a6/ops_avx2.h"

namespace orucv {
namespace a6 {
const SamplerKernels sampler_kernels_avx2 = SamplerRows<Avx2>::table();
}  // namespace a6
}  // namespace orucv
