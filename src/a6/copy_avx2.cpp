#include "a6/copy.h"

namespace orucv {
namespace a6 {
const CopyKernels copy_kernels_avx2 = make_copy_kernels();
}  // namespace a6
}  // namespace orucv
