#include "a6/matchtemplate_simd.h"
#include "a6/ops_avx2.h"

namespace orucv {
namespace a6 {
const MatchKernels match_kernels_avx2 = match_table<MatchVectors<Avx2>>();
}  // namespace a6
}  // namespace orucv
