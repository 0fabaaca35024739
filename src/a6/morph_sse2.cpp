#include "a6/morph_simd.h"
#include "a6/ops_sse2.h"

namespace orucv {
namespace a6 {
const MorphKernels morph_kernels_sse2 = MorphVec<Sse2>::table();
}  // namespace a6
}  // namespace orucv
