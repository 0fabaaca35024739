// Scalar twins of the template-matching kernels and the kernel chooser.
#include "a6/matchtemplate.h"

#include "core/cpu.h"

namespace orucv {
namespace a6 {
namespace {

template <class T>
int64_t sum_8(const T* p, int n) { return scalar::sum_bytes(p, n); }
template <class T>
int64_t sqdiff_8(const T* a, const T* b, int n) { return scalar::sqdiff_bytes(a, b, n); }
template <class T>
int64_t corr_8(const T* a, const T* b, int n) { return scalar::corr_bytes(a, b, n); }

double sum_32f(const float* p, int n) { return scalar::sum_32f(p, n); }
double sqdiff_32f(const float* a, const float* b, int n) { return scalar::sqdiff_32f(a, b, n); }
double corr_32f(const float* a, const float* b, int n) { return scalar::corr_32f(a, b, n); }

template <class T, int M>
void column_scores(const T* runs, int width, int height, int count, const T* tpl,
                   const typename MatchAcc<T>::type* sum, const typename MatchAcc<T>::type* sum_sq,
                   const ScoreConstants& c, float* out, int out_step) {
    scalar::column_scores<T, M>(runs, width, height, count, tpl, sum, sum_sq, c, out, out_step);
}

template <class T, bool kSum, bool kSq>
void advance(T* view, const T* src_col, int src_step, int rows, int width, int height,
             typename MatchAcc<T>::type* row_sum, typename MatchAcc<T>::type* row_sq,
             typename MatchAcc<T>::type* patch_sum, typename MatchAcc<T>::type* patch_sq) {
    scalar::advance<T, kSum, kSq>(view, src_col, src_step, rows, width, height, row_sum, row_sq, patch_sum, patch_sq);
}

template <class T, bool kSum, bool kSq>
void group_sums(const T* src, int src_step, int rows, int width, int height, int x0, int ncols, int32_t* row_sum8,
                int32_t* row_sq8, int64_t* patch_sum, int64_t* patch_sq) {
    scalar::group_sums<T, kSum, kSq>(src, src_step, rows, width, height, x0, ncols, row_sum8, row_sq8, patch_sum,
                                     patch_sq);
}

}  // namespace

const MatchKernels match_kernels_scalar = {
    {sum_8<uint8_t>, sqdiff_8<uint8_t>, corr_8<uint8_t>, ORUCV_MATCH_COLUMNS(column_scores, uint8_t),
     ORUCV_MATCH_ADVANCES(advance, uint8_t), ORUCV_MATCH_GROUP_SUMS(group_sums, uint8_t)},
    {sum_8<int8_t>, sqdiff_8<int8_t>, corr_8<int8_t>, ORUCV_MATCH_COLUMNS(column_scores, int8_t),
     ORUCV_MATCH_ADVANCES(advance, int8_t), ORUCV_MATCH_GROUP_SUMS(group_sums, int8_t)},
    {sum_32f, sqdiff_32f, corr_32f, ORUCV_MATCH_COLUMNS(column_scores, float), ORUCV_MATCH_ADVANCES(advance, float),
     {nullptr, nullptr, nullptr, nullptr}},
};

const MatchKernels& match_kernels() { return ORUCV_CHOOSE(match_kernels); }

}  // namespace a6
}  // namespace orucv
