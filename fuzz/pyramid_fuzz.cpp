// One level down or up a Gaussian pyramid, and the scratch-size queries.
#include "pyramid_list.h"
#include "support/harness.h"

using namespace orufuzz;

namespace {

enum Direction { Down, Up };

template <Direction Dir, class T, int C, auto F>
void fuzz_level(Harness& h, const char* name) {
    OruSize roi = h.roi(150, 1 << 14);
    if (Dir == Down && !h.in.one_in(8)) {  // mostly the even sides it needs
        roi.width &= ~1;
        roi.height &= ~1;
    }
    const int dw = Dir == Down ? roi.width / 2 : 2 * roi.width, dh = Dir == Down ? roi.height / 2 : 2 * roi.height;
    Image& src = h.image_of<T>("src", Role::In, roi.width, C, roi.height);
    Image& dst = h.image_of<T>("dst", Role::Out, dw, C, dh);
    int size = 0;
    const OruStatus query = Dir == Down ? oruiPyrDownGetBufSize_Gauss5x5(roi.width, data_type_of<T>(), C, &size)
                                        : oruiPyrUpGetBufSize_Gauss5x5(roi.width, data_type_of<T>(), C, &size);
    Image& buffer = h.image("buffer", Role::Scratch, query == oruStsOk ? size : 0, 1, 0, 1);
    h.on_every_level([&] {
        h.call(name, [&] {
            return F(h.maybe_null(src.data<T>()), src.step(), h.maybe_null(dst.data<T>()), dst.step(), roi,
                     h.maybe_null(buffer.data()));
        });
    });
}

template <class T, int C, auto F>
void fuzz_Down(Harness& h, const char* name) {
    fuzz_level<Down, T, C, F>(h, name);
}
template <class T, int C, auto F>
void fuzz_Up(Harness& h, const char* name) {
    fuzz_level<Up, T, C, F>(h, name);
}

template <class T, int C, auto F>
void fuzz_size(Harness& h, const char* name) {
    Image& out = h.cells<int>("size");
    out.allow_zero_on_failure();
    int* size = out.data<int>();
    h.on_every_level([&] {
        const int width = h.in.one_in(4) ? h.in.arg(0, 1 << 20) : h.in.side(2000);
        const int type = data_type_arg(h.in), channels = h.in.arg(1, 3);
        h.call(name, [&] { return F(width, type, channels, h.maybe_null(size)); });
    });
}
template <class T, int C, auto F>
void fuzz_DownSize(Harness& h, const char* name) {
    fuzz_size<T, C, F>(h, name);
}
template <class T, int C, auto F>
void fuzz_UpSize(Harness& h, const char* name) {
    fuzz_size<T, C, F>(h, name);
}

#define ENTRY(name, shape, T, C) Entry{#name, fuzz_##shape<T, C, name>},
const Entry kEntries[] = {ORUCV_PYRAMID_FUNCTIONS(ENTRY)};

}  // namespace

ORUFUZZ_TARGET(kEntries)
