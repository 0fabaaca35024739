// Absolute differences and the motion-history update.
#include "absdiff_list.h"
#include "support/harness.h"

using namespace orufuzz;

namespace {

template <class T, auto F>
void fuzz_Images(Harness& h, const char* name) {
    const OruSize roi = h.roi();
    Image& a = h.image_of<T>("src1", Role::In, roi.width, 1, roi.height);
    Image& b = h.image_of<T>("src2", Role::In, roi.width, 1, roi.height);
    Image& d = h.image_of<T>("dst", Role::Out, roi.width, 1, roi.height);
    h.on_every_level([&] {
        h.call(name, [&] {
            return F(h.maybe_null(a.data<T>()), a.step(), h.maybe_null(b.data<T>()), b.step(),
                     h.maybe_null(d.data<T>()), d.step(), roi);
        });
    });
}

template <class T, auto F>
void fuzz_Constant(Harness& h, const char* name) {
    const OruSize roi = h.roi();
    Image& a = h.image_of<T>("src", Role::In, roi.width, 1, roi.height);
    Image& d = h.image_of<T>("dst", Role::Out, roi.width, 1, roi.height);
    h.on_every_level([&] {
        const auto value = [&] {
            if constexpr (sizeof(T) == 4) return h.in.real();
            else return h.in.arg(-10, 270);
        }();
        h.call(name,
               [&] { return F(h.maybe_null(a.data<T>()), a.step(), h.maybe_null(d.data<T>()), d.step(), roi, value); });
    });
}

template <class T, auto F>
void fuzz_Motion(Harness& h, const char* name) {
    const OruSize roi = h.roi();
    Image& s = h.image_of<Oru8u>("silhouette", Role::In, roi.width, 1, roi.height);
    Image& m = h.image_of<Oru32f>("history", Role::Out, roi.width, 1, roi.height);
    h.on_every_level([&] {
        const float timestamp = h.in.real(), duration = h.in.real(-10.0f, 1000.0f);
        h.call(name, [&] {
            return F(h.maybe_null(s.data<Oru8u>()), s.step(), h.maybe_null(m.data<Oru32f>()), m.step(), roi, timestamp,
                     duration);
        });
    });
}

#define ENTRY(name, shape, T) Entry{#name, fuzz_##shape<T, name>},
const Entry kEntries[] = {ORUCV_ABSDIFF_FUNCTIONS(ENTRY)};

}  // namespace

ORUFUZZ_TARGET(kEntries)
