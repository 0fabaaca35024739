#include "a6/matchtemplate_simd.h"
#include "a6/ops_sse2.h"

namespace orucv {
namespace a6 {
const MatchKernels match_kernels_sse2 = match_table<MatchVectors<Sse2>>();
}  // namespace a6
}  // namespace orucv
