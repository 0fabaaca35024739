#include "a6/absdiff_simd.h"
#include "a6/ops_avx2.h"

namespace orucv {
namespace a6 {
const AbsDiffKernels absdiff_kernels_avx2 = AbsDiffRows<Avx2>::table();
}  // namespace a6
}  // namespace orucv
