// Corner eigenvalues and eigenvectors, and their scratch-size queries.
#include "eigen_list.h"
#include "support/harness.h"

using namespace orufuzz;

namespace {

int kernel_size(Input& in) {
    static const int kSizes[] = {3, 5, 7};
    return in.one_in(12) ? in.arg(0, 9) : in.pick(kSizes);
}

template <class S, auto F>
void fuzz_GetSize(Harness& h, const char* name) {
    int* size = h.cells<int>("size").data<int>();
    h.on_every_level([&] {
        const int width = h.in.one_in(4) ? h.in.arg(0, 1 << 25) : h.in.side(2000);
        const int aperture = kernel_size(h.in), window = kernel_size(h.in);
        h.call(name, [&] { return F(width, aperture, window, h.maybe_null(size)); });
    });
}

template <int Values, auto Query, class S, auto F>
void fuzz_corners(Harness& h, const char* name) {
    const OruSize roi = h.roi(120, 1 << 13);
    const int aperture = kernel_size(h.in), window = kernel_size(h.in);
    Image& src = h.image_of<S>("src", Role::In, roi.width, 1, roi.height);
    Image& dst = h.image_of<Oru32f>("dst", Role::Out, roi.width, Values, roi.height);
    int size = 0;
    if (Query(roi.width, aperture, window, &size) != oruStsOk) size = 0;
    Image& buffer = h.image("buffer", Role::Scratch, size, 1, 0, 1);
    h.on_every_level([&] {
        h.call(name, [&] {
            return F(h.maybe_null(src.data<S>()), src.step(), h.maybe_null(dst.data<Oru32f>()), dst.step(), roi,
                     aperture, window, h.maybe_null(buffer.data()));
        });
    });
}

template <class S, auto F>
void fuzz_EigenValsVecs(Harness& h, const char* name) {
    fuzz_corners<6, oruiEigenValsVecsGetSize, S, F>(h, name);
}
template <class S, auto F>
void fuzz_MinEigenVal(Harness& h, const char* name) {
    fuzz_corners<1, oruiMinEigenValGetSize, S, F>(h, name);
}

#define ENTRY(name, shape, S) Entry{#name, fuzz_##shape<S, name>},
const Entry kEntries[] = {ORUCV_EIGEN_FUNCTIONS(ENTRY)};

}  // namespace

ORUFUZZ_TARGET(kEntries)
