#include "a6/eigen.h"

#include "core/assert.h"
#include "core/cpu.h"
#include "core/rows.h"

namespace orucv {
namespace a6 {

namespace {
constexpr EigenKernels scalar_table() {
    EigenKernels k{};
    k.products_16s = [](float* xx, float* xy, float* yy, int n) { scalar::products_16s(xx, xy, yy, n); };
    k.products_32f = [](float* xx, float* xy, float* yy, int n) { scalar::products_32f(xx, xy, yy, n); };
    k.min_eigen = [](const float* sxx, const float* sxy, const float* syy, float* dst, int n, float k) {
        scalar::min_eigen(sxx, sxy, syy, dst, n, k);
    };
    k.eigen_vv = [](const float* sxx, const float* sxy, const float* syy, float* dst, int n, float k) {
        scalar::eigen_vv(sxx, sxy, syy, dst, n, k);
    };
    return k;
}
}  // namespace

const EigenKernels eigen_kernels_scalar = scalar_table();

const EigenKernels& eigen_kernels() { return ORUCV_CHOOSE(eigen_kernels); }

namespace {

constexpr int kStripRows = kCornerPlaneRows - 1;  // source rows per strip at most

// The five specifications of one call, released on every path.
class Specs {
public:
    ~Specs() {
        for (FilterSpec*& s : all_) release(&s);
    }
    OruStatus create(int width, bool float_source, int aperture, int box) {
        const int type = float_source ? oruDataType32f : oruDataType8u;
        if (create_sobel(width, type, aperture, 0, 1, 0, &all_[0]) || create_sobel(width, type, aperture, 0, 0, 1, &all_[1]))
            return oruStsMemAlloc;
        for (int i = 2; i < 5; ++i)
            if (create_blur(width, oruDataType32f, box, &all_[i])) return oruStsMemAlloc;
        return oruStsOk;
    }
    FilterSpec* sobel_x() const { return all_[0]; }
    FilterSpec* sobel_y() const { return all_[1]; }
    FilterSpec* box(int plane) const { return all_[2 + plane]; }

private:
    FilterSpec* all_[5] = {};
};

// 1 / (255 * 2^(a-1) * 2^(a-1) * w * w); every factor and product is exact.
float corner_scale(int aperture, int window) {
    float p = 1.0f;
    for (int i = 1; i < aperture; ++i) p = p + p;
    return 1.0f / (255.0f * p * p * static_cast<float>(window) * static_cast<float>(window));
}

template <class S>
struct DerivativeOf {
    using Type = int16_t;
};
template <>
struct DerivativeOf<float> {
    using Type = float;
};

}  // namespace

// Strips: the first takes 7 rows (or the whole image in one call), each
// further one min(7, rest - 1) until at most 8 - a/2 - w/2 rows remain for
// the last. So no call of the cascade writes more rows than a plane holds:
// a middle strip of t rows gives t derivative rows and t sums, the last of
// L rows L + a/2 derivative rows (at most 7, rows 1..7) and L + a/2 + w/2
// sums (at most 8, rows 0..7).
template <class S>
OruStatus corners(const S* src, int srcStep, float* dst, int dstStep, OruSize roi, int aperture, int box, int window,
                  bool vectors, uint8_t* buffer) {
    using D = typename DerivativeOf<S>::Type;
    constexpr bool kFloat = sizeof(S) == 4;
    Specs specs;
    if (OruStatus s = specs.create(roi.width, kFloat, aperture, box)) return s;

    const EigenKernels& k = eigen_kernels();
    const float scale = corner_scale(aperture, window);
    const int w = roi.width, h = roi.height;
    const int step = 4 * w;  // plane rows
    float* plane[3];
    for (int p = 0; p < 3; ++p) plane[p] = reinterpret_cast<float*>(buffer + static_cast<ptrdiff_t>(p) * step * kCornerPlaneRows);
    const int last_rows = kCornerPlaneRows - aperture / 2 - box / 2;

    int in = 0, out = 0;
    while (in < h) {
        const int rest = h - in;
        int rows, flag;
        if (in == 0) {
            rows = rest <= kStripRows ? rest : kStripRows;
            flag = rest <= kStripRows ? 0 : 1;
        } else if (rest <= last_rows) {
            rows = rest, flag = 2;
        } else {
            rows = rest - 1 < kStripRows ? rest - 1 : kStripRows;
            flag = 4;
        }
        const S* s = row_at(src, srcStep, in);
        D* dx = reinterpret_cast<D*>(row_at(plane[0], step, 1));
        D* dy = reinterpret_cast<D*>(row_at(plane[2], step, 1));
        const int derived = run_strip(specs.sobel_x(), s, srcStep, dx, step, rows, flag);
        const int derived_y = run_strip(specs.sobel_y(), s, srcStep, dy, step, rows, flag);
        ORUCV_ASSERT(derived == derived_y && derived < kCornerPlaneRows, "src/orcveigen", "corners");
        for (int i = 1; i <= derived; ++i) {
            float* xx = row_at(plane[0], step, i);
            float* xy = row_at(plane[1], step, i);
            float* yy = row_at(plane[2], step, i);
            if (kFloat) k.products_32f(xx, xy, yy, w);
            else k.products_16s(xx, xy, yy, w);
        }
        int summed = 0;
        for (int p = 0; p < 3; ++p)
            summed = run_strip(specs.box(p), row_at(plane[p], step, 1), step, plane[p], step, derived, flag);
        ORUCV_ASSERT(summed <= kCornerPlaneRows && out + summed <= h, "src/orcveigen", "corners");
        for (int i = 0; i < summed; ++i) {
            float* d = row_at(dst, dstStep, out + i);
            const float* sxx = row_at(plane[0], step, i);
            const float* sxy = row_at(plane[1], step, i);
            const float* syy = row_at(plane[2], step, i);
            if (vectors) k.eigen_vv(sxx, sxy, syy, d, w, scale);
            else k.min_eigen(sxx, sxy, syy, d, w, scale);
        }
        in += rows;
        out += summed;
    }
    ORUCV_ASSERT(out == h, "src/orcveigen", "corners");
    return oruStsOk;
}

template OruStatus corners(const uint8_t*, int, float*, int, OruSize, int, int, int, bool, uint8_t*);
template OruStatus corners(const int8_t*, int, float*, int, OruSize, int, int, int, bool, uint8_t*);
template OruStatus corners(const float*, int, float*, int, OruSize, int, int, int, bool, uint8_t*);

}  // namespace a6
}  // namespace orucv
