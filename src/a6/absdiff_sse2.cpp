#include "a6/absdiff_simd.h"
#include "a6/ops_sse2.h"

namespace orucv {
namespace a6 {
const AbsDiffKernels absdiff_kernels_sse2 = AbsDiffRows<Sse2>::table();
}  // namespace a6
}  // namespace orucv
