#include "a6/morph_simd.h"
#include "a6/ops_avx2.h"

namespace orucv {
namespace a6 {
const MorphKernels morph_kernels_avx2 = MorphVec<Avx2>::table();
}  // namespace a6
}  // namespace orucv
