#include "a6/fastarctan_simd.h"
#include "a6/ops_avx2.h"

namespace orucv {
namespace a6 {
const FastArctanKernels fastarctan_kernels_avx2 = FastArctanRows<Avx2>::table();
}  // namespace a6
}  // namespace orucv
