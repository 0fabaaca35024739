// The chamfer distance transforms and their standard masks.
#include "distransform_list.h"
#include "support/harness.h"

using namespace orufuzz;

namespace {

template <int Side, auto F>
void fuzz_Mask(Harness& h, const char* name) {
    static const int kCodes[] = {30, 31, 32, 52, 50, 51, 33, 0, -1, 53};
    const int code = h.in.one_in(4) ? h.in.arg(0, 100) : h.in.pick(kCodes);
    Oru32f* metrics = h.cells<Oru32f>("metrics", 3).data<Oru32f>();
    h.on_every_level([&] { h.call(name, [&] { return F(code, h.maybe_null(metrics)); }); });
}

template <int Side, auto F>
void fuzz_Transform(Harness& h, const char* name) {
    const OruSize roi = h.roi();
    Image& src = h.image_of<Oru8u>("src", Role::In, roi.width, 1, roi.height);
    Image& dst = h.image_of<Oru32f>("dst", Role::Out, roi.width, 1, roi.height);
    Image& metrics = h.image_of<Oru32f>("metrics", Role::In, Side == 5 ? 3 : 2, 1, 1);
    if (h.in.one_in(2)) {
        // Mostly ordinary weights; the fill above gives the strange ones.
        static const float kWeights[][3] = {{1, 1, 0}, {1, 2, 0}, {0.955f, 1.3693f, 0}, {1, 1.4f, 2.1969f}};
        const float* w = kWeights[h.in.range(0, 3)];
        for (int i = 0; i < (Side == 5 ? 3 : 2); ++i) metrics.data<Oru32f>()[i] = w[i];
    }
    h.on_every_level([&] {
        h.call(name, [&] {
            return F(h.maybe_null(src.data<Oru8u>()), src.step(), h.maybe_null(dst.data<Oru32f>()), dst.step(), roi,
                     h.maybe_null(metrics.data<Oru32f>()));
        });
    });
}

#define ENTRY(name, shape, side) Entry{#name, fuzz_##shape<side, name>},
const Entry kEntries[] = {ORUCV_DISTRANSFORM_FUNCTIONS(ENTRY)};

}  // namespace

ORUFUZZ_TARGET(kEntries)
