#include "a6/pyr_blocks128.h"

namespace orucv {
namespace a6 {
const PyrKernels pyr_kernels_sse2 = PyrRows<PyrBlocks128>::table();
}  // namespace a6
}  // namespace orucv
