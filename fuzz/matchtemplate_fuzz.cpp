// Template matching by every method, and the scratch-size queries.
#include "matchtemplate_list.h"
#include "support/harness.h"

using namespace orufuzz;

namespace {

using Query = OruStatus (*)(OruSize, OruSize, int, int*);

template <class T, Query Q, auto F>
void fuzz_Match(Harness& h, const char* name) {
    OruSize src_roi = h.roi(90, 1 << 12), tpl_roi = h.roi(20, 1 << 8);
    if (!h.in.one_in(10)) {  // mostly a template that fits
        if (tpl_roi.width > src_roi.width) tpl_roi.width = src_roi.width;
        if (tpl_roi.height > src_roi.height) tpl_roi.height = src_roi.height;
    }
    Image& src = h.image_of<T>("src", Role::In, src_roi.width, 1, src_roi.height);
    Image& tpl = h.image_of<T>("tpl", Role::In, tpl_roi.width, 1, tpl_roi.height);
    const int dw = src_roi.width - tpl_roi.width + 1, dh = src_roi.height - tpl_roi.height + 1;
    Image& dst = h.image_of<Oru32f>("dst", Role::Out, dw, 1, dh);
    int size = 0;
    if (Q(src_roi, tpl_roi, data_type_of<T>(), &size) != oruStsOk) size = 0;
    Image& buffer = h.image("buffer", Role::Scratch, size, 1, 0, 1);
    h.on_every_level([&] {
        h.call(name, [&] {
            return F(h.maybe_null(src.data<T>()), src.step(), src_roi, h.maybe_null(tpl.data<T>()), tpl.step(), tpl_roi,
                     h.maybe_null(dst.data<Oru32f>()), dst.step(), h.maybe_null(buffer.data()));
        });
    });
}

template <class T, Query Q, auto F>
void fuzz_BufSize(Harness& h, const char* name) {
    Image& out = h.cells<int>("size");
    out.allow_zero_on_failure();
    h.on_every_level([&] {
        OruSize src = h.roi(5000, 1 << 30), tpl = h.roi(300, 1 << 30);
        if (h.in.one_in(4)) src = OruSize{h.in.arg(1, 1 << 16), h.in.arg(1, 1 << 16)};
        const int type = data_type_arg(h.in);
        h.call(name, [&] { return F(src, tpl, type, h.maybe_null(out.data<int>())); });
    });
}

#define ENTRY(name, shape, T, method) Entry{#name, fuzz_##shape<T, oruiMatchTemplateGetBufSize_##method, name>},
const Entry kEntries[] = {ORUCV_MATCHTEMPLATE_FUNCTIONS(ENTRY)};

}  // namespace

ORUFUZZ_TARGET(kEntries)
