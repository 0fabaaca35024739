#include "a6/sobel3x3_simd.h"
#include "a6/ops_sse2.h"

namespace orucv {
namespace a6 {
const Sobel3x3Kernels sobel3x3_kernels_sse2 = sobel3x3_table<Sobel3x3Rows<Sse2>>();
}  // namespace a6
}  // namespace orucv
