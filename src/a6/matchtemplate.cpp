// Scalar twins of the template-matching kernels and the kernel chooser.
#include "a6/matchtemplate.h"

#include "core/cpu.h"

namespace orucv {
namespace a6 {

// The twins themselves, compiled here without vectorisation.
const MatchKernels match_kernels_scalar = {
    {scalar::sum_bytes<uint8_t>, scalar::sqdiff_bytes<uint8_t>, scalar::corr_bytes<uint8_t>,
     ORUCV_MATCH_COLUMNS(scalar::column_scores, uint8_t), ORUCV_MATCH_ADVANCES(scalar::advance, uint8_t),
     ORUCV_MATCH_GROUP_SUMS(scalar::group_sums, uint8_t)},
    {scalar::sum_bytes<int8_t>, scalar::sqdiff_bytes<int8_t>, scalar::corr_bytes<int8_t>,
     ORUCV_MATCH_COLUMNS(scalar::column_scores, int8_t), ORUCV_MATCH_ADVANCES(scalar::advance, int8_t),
     ORUCV_MATCH_GROUP_SUMS(scalar::group_sums, int8_t)},
    {scalar::sum_32f, scalar::sqdiff_32f, scalar::corr_32f, ORUCV_MATCH_COLUMNS(scalar::column_scores, float),
     ORUCV_MATCH_ADVANCES(scalar::advance, float), {nullptr, nullptr, nullptr, nullptr}},
};

const MatchKernels& match_kernels() { return ORUCV_CHOOSE(match_kernels); }

}  // namespace a6
}  // namespace orucv
