#include "a6/fastarctan_simd.h"
#include "a6/ops_sse2.h"

namespace orucv {
namespace a6 {
const FastArctanKernels fastarctan_kernels_sse2 = FastArctanRows<Sse2>::table();
}  // namespace a6
}  // namespace orucv
