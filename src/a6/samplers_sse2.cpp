#include "a6/samplers_simd.h"
#include "a6/ops_sse2.h"

namespace orucv {
namespace a6 {
const SamplerKernels sampler_kernels_sse2 = SamplerRows<Sse2>::table();
}  // namespace a6
}  // namespace orucv
