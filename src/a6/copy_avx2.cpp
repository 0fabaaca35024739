#include "a6/copy.h"

namespace orucv {
namespace a6 {
const CopyKernels copy_kernels_avx2 = copy_table();
}  // namespace a6
}  // namespace orucv
