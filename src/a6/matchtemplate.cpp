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

template <class T>
void sqdiff_column_8(const T* runs, int width, int height, int count, const T* tpl, int64_t* out) {
    scalar::column_by_runs<T, int64_t, sqdiff_8<T>>(runs, width, height, count, tpl, out);
}
template <class T>
void corr_column_8(const T* runs, int width, int height, int count, const T* tpl, int64_t* out) {
    scalar::column_by_runs<T, int64_t, corr_8<T>>(runs, width, height, count, tpl, out);
}

double sum_32f(const float* p, int n) { return scalar::sum_32f(p, n); }
double sqdiff_32f(const float* a, const float* b, int n) { return scalar::sqdiff_32f(a, b, n); }
double corr_32f(const float* a, const float* b, int n) { return scalar::corr_32f(a, b, n); }

void sqdiff_column_32f(const float* runs, int width, int height, int count, const float* tpl, double* out) {
    scalar::column_by_runs<float, double, sqdiff_32f>(runs, width, height, count, tpl, out);
}
void corr_column_32f(const float* runs, int width, int height, int count, const float* tpl, double* out) {
    scalar::column_by_runs<float, double, corr_32f>(runs, width, height, count, tpl, out);
}

}  // namespace

const MatchKernels match_kernels_scalar = {
    {sum_8<uint8_t>, sqdiff_8<uint8_t>, corr_8<uint8_t>, sqdiff_column_8<uint8_t>, corr_column_8<uint8_t>},
    {sum_8<int8_t>, sqdiff_8<int8_t>, corr_8<int8_t>, sqdiff_column_8<int8_t>, corr_column_8<int8_t>},
    {sum_32f, sqdiff_32f, corr_32f, sqdiff_column_32f, corr_column_32f},
    ORUCV_MATCH_SCORES(scalar::score_column, int64_t),
    ORUCV_MATCH_SCORES(scalar::score_column, double),
};

const MatchKernels& match_kernels() { return ORUCV_CHOOSE(match_kernels); }

}  // namespace a6
}  // namespace orucv
