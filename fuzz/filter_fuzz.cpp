// The general strip filters through sequences of calls: specifications
// created with any arguments, strips of any height with any flags in any
// order, through the matching specification or another one, in place or
// not, specifications released and created again.
#include <string_view>
#include <type_traits>

#include "filter_list.h"
#include "support/harness.h"

using namespace orufuzz;

namespace {

enum Shape { SobelInit, BlurInit, LaplaceInit, Free, Sobel, Blur, Laplace };

// The strip functions, type-erased for the sequences.
using StripFn = OruStatus (*)(const void*, int, void*, int, OruSize*, OruFilterSpec*, int);
struct StripFunction {
    const char* name;
    StripFn call;
    int src_elem, dst_elem;
    bool is_float;
    int kind;  // 0 Sobel, 1 Blur, 2 Laplace
};
template <class S, class D, auto F>
OruStatus strip_call(const void* s, int ss, void* d, int ds, OruSize* roi, OruFilterSpec* fspec, int flag) {
    return F(static_cast<const S*>(s), ss, static_cast<D*>(d), ds, roi, fspec, flag);
}
struct StripTable {
    StripFunction f[16];
    int count = 0;
};
template <Shape Sh, class S, class D, auto F>
void add_strip(StripTable& t, const char* name) {
    if constexpr (Sh == Sobel || Sh == Blur || Sh == Laplace)
        t.f[t.count++] = StripFunction{name,
                                       strip_call<S, D, F>,
                                       sizeof(S),
                                       sizeof(D),
                                       std::is_same<S, Oru32f>::value,
                                       Sh == Sobel ? 0 : Sh == Blur ? 1 : 2};
}
const StripTable& strips() {
    static const StripTable table = [] {
        StripTable t{};
#define STRIP(name, shape, S, D) add_strip<shape, S, D, name>(t, #name);
        ORUCV_FILTER_FUNCTIONS(STRIP)
#undef STRIP
        return t;
    }();
    return table;
}

int kernel_size(Input& in) {
    static const int kSizes[] = {3, 5, 7};
    return in.one_in(10) ? in.arg(0, 8) : in.pick(kSizes);
}

// One planned strip: its function, images and arguments.
struct Strip {
    const StripFunction* fn;
    Image* src;
    Image* dst;
    int width, height, flag, slot;
};

constexpr int kSlots = 2;

// Creates a filter specification into *fspec through the harness: mostly one that
// serves the strip function fn, sometimes of any kind and arguments.
void create(Harness& h, OruFilterSpec** fspec, int width, const StripFunction& fn) {
    const bool any = h.in.one_in(4);
    const int kind = any ? h.in.range(0, 2) : fn.kind;
    const int type = any              ? data_type_arg(h.in)
                     : fn.is_float    ? oruDataType32f
                     : h.in.one_in(2) ? oruDataType8u
                                      : oruDataType8s;
    const int n = kernel_size(h.in);
    OruFilterSpec** out = h.maybe_null(fspec);
    if (kind == 0) {
        const int origin = h.in.arg(0, 1), top = n > 0 && n < 9 ? n - 1 : 6, xo = h.in.arg(0, top),
                  yo = h.in.arg(0, top);
        h.call("oruiSobelInitAlloc", [&] { return oruiSobelInitAlloc(width, type, n, origin, xo, yo, out); });
    } else if (kind == 1) {
        h.call("oruiBlurInitAlloc", [&] { return oruiBlurInitAlloc(width, type, n, out); });
    } else {
        h.call("oruiLaplaceInitAlloc", [&] { return oruiLaplaceInitAlloc(width, type, n, out); });
    }
}

// Every entry runs a sequence; the entry's own function comes first and
// most often.
template <Shape Sh, class S, class D, auto F>
void fuzz_sequence(Harness& h, const char* name) {
    const StripTable& table = strips();
    int preferred = -1;
    for (int i = 0; i < table.count; ++i)
        if (std::string_view(table.f[i].name) == name) preferred = i;

    int width = h.in.side(200);
    if (h.in.one_in(24)) width = -h.in.range(0, 2);
    // The strips, planned (and their images made) before the sequence runs.
    Strip plan[kMaxStrips];
    const int count = h.in.range(1, kMaxStrips);
    for (int k = 0; k < count; ++k) {
        Strip& s = plan[k];
        s.fn = &table.f[preferred >= 0 && !h.in.one_in(4) ? preferred : h.in.range(0, table.count - 1)];
        s.width = h.in.one_in(12) ? h.in.side(200) : width;
        s.height = h.in.one_in(3) ? h.in.range(0, 12) : h.in.side(40);
        if (s.width > 0 && s.height > (1 << 15) / s.width) s.height = (1 << 15) / s.width;
        static const int kFlags[] = {0, 1, 4, 4, 2, 1, 3, -1, 5};
        s.flag = h.in.pick(kFlags);
        s.slot = h.in.one_in(3) ? 1 : 0;
        const int w = s.width > 0 ? s.width : 0, rows = s.height > 0 ? s.height : 0;
        // The last strip writes up to n / 2 rows more than it reads.
        const bool in_place = s.fn->src_elem == s.fn->dst_elem && h.in.one_in(4);
        s.dst = &h.image(kStripDestinations[k], Role::Out, w * s.fn->dst_elem, rows + 3,
                         h.in.step(w * s.fn->dst_elem, s.fn->dst_elem), s.fn->dst_elem);
        if (s.fn->is_float) fill<Oru32f>(*s.dst, h.in);
        else fill<Oru16s>(*s.dst, h.in);
        if (in_place) {
            s.src = s.dst;
        } else {
            const int src_bytes = w * s.fn->src_elem;
            s.src = &h.image(kStripSources[k], Role::In, src_bytes, rows, h.in.step(src_bytes, s.fn->src_elem),
                             s.fn->src_elem);
            if (s.fn->is_float) fill<Oru32f>(*s.src, h.in);
            else fill<Oru8u>(*s.src, h.in);
        }
    }
    Image& specs = h.cells<OruFilterSpec*>("specs", kSlots, Role::Handle);
    Image& roi_cell = h.cells<OruSize>("roi", count);
    Image& foreign = h.image("foreign", Role::In, 64, 1, 64, 1);

    h.on_every_level([&] {
        OruFilterSpec** fspec = specs.data<OruFilterSpec*>();
        for (int i = 0; i < kSlots; ++i) fspec[i] = nullptr;
        // The first specification, mostly of the entry's own kind.
        if constexpr (Sh == SobelInit || Sh == BlurInit || Sh == LaplaceInit) {
            const int type = data_type_arg(h.in), n = kernel_size(h.in);
            OruFilterSpec** out = h.maybe_null(&fspec[0]);
            if constexpr (Sh == SobelInit) {
                const int origin = h.in.arg(0, 1), top = n > 0 && n < 9 ? n - 1 : 6, xo = h.in.arg(0, top),
                          yo = h.in.arg(0, top);
                h.call(name, [&] { return F(width, type, n, origin, xo, yo, out); });
            } else {
                h.call(name, [&] { return F(width, type, n, out); });
            }
        } else {
            create(h, &fspec[0], width, *plan[0].fn);
        }
        create(h, &fspec[1], width, *plan[count - 1].fn);
        for (int k = 0; k < count; ++k) {
            const Strip& s = plan[k];
            switch (h.in.byte() % 16) {
            case 0:
                // A new one in its place: the old one is released first.
                h.call("oruiConvolFree", [&] { return oruiConvolFree(&fspec[s.slot]); });
                create(h, &fspec[s.slot], h.in.one_in(4) ? h.in.side(200) : width, *s.fn);
                break;
            case 1: h.call("oruiConvolFree", [&] { return oruiConvolFree(h.maybe_null(&fspec[s.slot])); }); break;
            case 2: {
                // A pointer that cannot come from the allocator is left alone.
                uint8_t* at = foreign.data() + 1 + h.in.range(0, 30);
                if (reinterpret_cast<uintptr_t>(at) % 32 == 0) ++at;
                OruFilterSpec* odd = reinterpret_cast<OruFilterSpec*>(at);
                OruFilterSpec* const was = odd;
                h.call("oruiConvolFree", [&] {
                    const OruStatus st = oruiConvolFree(&odd);
                    if (odd != was) Harness::fail("oruiConvolFree changed a foreign pointer");
                    return st;
                });
                break;
            }
            default: break;
            }
            // An empty slot is mostly filled again before its strip.
            if (!fspec[s.slot] && !h.in.one_in(4)) create(h, &fspec[s.slot], width, *s.fn);
            OruSize* roi = &roi_cell.data<OruSize>()[k];
            *roi = OruSize{s.width, s.height};
            const OruSize before = *roi;
            const int dst_rows = s.dst->rows();
            h.call(s.fn->name, [&] {
                s.dst->set_writable_rows(dst_rows);
                const OruStatus st = s.fn->call(h.maybe_null(s.src->data()), s.src->step(), h.maybe_null(s.dst->data()),
                                                s.dst->step(), h.maybe_null(roi), h.maybe_null(fspec[s.slot]), s.flag);
                if (st >= 0) {
                    // Only the rows it reports were written, and never more
                    // than its rows plus those held back.
                    if (roi->height < 0 || roi->height > before.height + 3)
                        Harness::fail("%s reported %d rows for a strip of %d", s.fn->name, roi->height, before.height);
                    s.dst->set_writable_rows(roi->height);
                }
                return st;
            });
        }
        for (int i = 0; i < kSlots; ++i) h.call("oruiConvolFree", [&] { return oruiConvolFree(&fspec[i]); });
    });
}

#define ENTRY(name, shape, S, D) Entry{#name, fuzz_sequence<shape, S, D, name>},
const Entry kEntries[] = {ORUCV_FILTER_FUNCTIONS(ENTRY)};

}  // namespace

ORUFUZZ_TARGET(kEntries)
