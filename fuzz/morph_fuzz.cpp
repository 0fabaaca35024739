// Morphology through sequences of calls: states created with any element
// (rectangles, crosses, ellipses, masks) and arguments, strips of any height
// (0 included) with any flags in any order, through the matching state or
// another one, in place or not, states released and created again.
#include <string_view>

#include "morph_list.h"
#include "support/harness.h"

using namespace orufuzz;

namespace {

enum Kind { State, Strip };

using StripFn = OruStatus (*)(const void*, int, void*, int, OruSize*, OruMorphState*, int);
struct StripFunction {
    const char* name;
    StripFn call;
    int elem, channels;
    int shape;  // the state's shape it takes (oruMorphMask: masks and ellipses)
};
template <class T, auto F>
OruStatus strip_call(const void* s, int ss, void* d, int ds, OruSize* roi, OruMorphState* state, int flag) {
    return F(static_cast<const T*>(s), ss, static_cast<T*>(d), ds, roi, state, flag);
}

struct StripTable {
    StripFunction f[40];
    int count = 0;
};
enum Shape { None = -1, Rect = oruMorphRect, Cross = oruMorphCross, Mask = oruMorphMask };
template <Kind K, Shape S, class T, int C, auto F>
void add_strip(StripTable& t, const char* name) {
    if constexpr (K == Strip) t.f[t.count++] = StripFunction{name, strip_call<T, F>, static_cast<int>(sizeof(T)), C, S};
}
const StripTable& strips() {
    static const StripTable table = [] {
        StripTable t{};
#define STRIP(name, kind, operation, shape, T, C) add_strip<kind, shape, T, C, name>(t, #name);
        ORUCV_MORPH_FUNCTIONS(STRIP)
#undef STRIP
        return t;
    }();
    return table;
}

constexpr int kSlots = 2;
constexpr int kMaxMask = 12;

struct PlannedStrip {
    const StripFunction* fn;
    Image* src;
    Image* dst;
    int width, height, flag, slot;
};

// Creates a state into *state through the harness: mostly an element that
// fits the strips planned, sometimes any arguments.
void create(Harness& h, OruMorphState** state, int width, const StripFunction& fn, Image& mask) {
    const int w = h.in.range(1, 9), ht = h.in.range(1, 9);
    OruSize size{w, ht};
    if (h.in.one_in(16)) size = OruSize{h.in.range(-2, kMaxMask), h.in.range(-2, kMaxMask)};
    OruPoint anchor{h.in.range(0, w - 1), h.in.range(0, ht - 1)};
    if (h.in.one_in(16)) anchor = OruPoint{h.in.arg(0, w), h.in.arg(0, ht)};
    static const int kShapes[] = {oruMorphRect, oruMorphCross, oruMorphEllipse, oruMorphMask, 3, -1, 99};
    const int shape = h.in.one_in(4)                               ? h.in.pick(kShapes)
                      : fn.shape == oruMorphMask && h.in.one_in(3) ? oruMorphEllipse
                                                                   : fn.shape;
    const int type = h.in.one_in(8) ? data_type_arg(h.in) : fn.elem == 4 ? oruDataType32f : oruDataType8u;
    const int channels = h.in.one_in(8) ? h.in.arg(1, 4) : fn.channels;
    // The mask image holds kMaxMask x kMaxMask bytes, enough for any size.
    const Oru8u* bytes = h.maybe_null(mask.data());
    OruMorphState** out = h.maybe_null(state);
    h.call("oruiMorphologyInitAlloc",
           [&] { return oruiMorphologyInitAlloc(width, type, channels, size, anchor, shape, bytes, out); });
}

template <Kind K, class T, int C, auto F>
void fuzz_sequence(Harness& h, const char* name) {
    const StripTable& table = strips();
    int preferred = 0;
    bool own = false;
    for (int i = 0; i < table.count; ++i)
        if (std::string_view(table.f[i].name) == name) preferred = i, own = true;
    if (!own) preferred = h.in.range(0, table.count - 1);

    int width = h.in.side(150);
    if (h.in.one_in(24)) width = -h.in.range(0, 2);
    PlannedStrip plan[kMaxStrips];
    const int count = h.in.range(1, kMaxStrips);
    for (int k = 0; k < count; ++k) {
        PlannedStrip& s = plan[k];
        s.fn = &table.f[h.in.one_in(5) ? h.in.range(0, table.count - 1) : preferred];
        s.width = h.in.one_in(8) ? h.in.side(150) : width;
        s.height = h.in.one_in(2) ? h.in.range(0, 6) : h.in.side(40);
        if (h.in.one_in(24)) s.height = -1;
        static const int kFlags[] = {
            oruMorphWhole, oruMorphFirst, oruMorphMiddle, oruMorphMiddle, oruMorphLast, oruMorphFirst, 3, -1, 8};
        s.flag = h.in.pick(kFlags);
        s.slot = h.in.one_in(3) ? 1 : 0;
        const int w = s.width > 0 ? s.width : 0, rows = s.height > 0 ? s.height : 0;
        const int row_bytes = w * s.fn->channels * s.fn->elem;
        // The last strip writes up to the element's height - 1 rows more.
        s.dst = &h.image(kStripDestinations[k], Role::Out, row_bytes, rows + kMaxMask - 1,
                         h.in.step(row_bytes, s.fn->elem), s.fn->elem);
        if (s.fn->elem == 4) fill<Oru32f>(*s.dst, h.in);
        else fill<Oru8u>(*s.dst, h.in);
        if (h.in.one_in(4)) {
            s.src = s.dst;
        } else {
            s.src = &h.image(kStripSources[k], Role::In, row_bytes, rows, h.in.step(row_bytes, s.fn->elem), s.fn->elem);
            if (s.fn->elem == 4) fill<Oru32f>(*s.src, h.in);
            else fill<Oru8u>(*s.src, h.in);
        }
    }
    Image& states = h.cells<OruMorphState*>("states", kSlots, Role::Handle);
    Image& roi_cell = h.cells<OruSize>("roi", count);
    Image& mask = h.image("mask", Role::In, kMaxMask * kMaxMask, 1, kMaxMask * kMaxMask, 1);
    fill<Oru8u>(mask, h.in);

    h.on_every_level([&] {
        OruMorphState** state = states.data<OruMorphState*>();
        for (int i = 0; i < kSlots; ++i) state[i] = nullptr;
        create(h, &state[0], width, table.f[preferred], mask);
        create(h, &state[1], width, *plan[count - 1].fn, mask);
        for (int k = 0; k < count; ++k) {
            const PlannedStrip& s = plan[k];
            switch (h.in.byte() % 12) {
            case 0:
                // A new one in its place: the old one is released first.
                h.call("oruiMorphologyFree", [&] { return oruiMorphologyFree(&state[s.slot]); });
                create(h, &state[s.slot], h.in.one_in(4) ? h.in.side(150) : width, *s.fn, mask);
                break;
            case 1:
                h.call("oruiMorphologyFree", [&] { return oruiMorphologyFree(h.maybe_null(&state[s.slot])); });
                break;
            default: break;
            }
            // An empty slot is mostly filled again before its strip.
            if (!state[s.slot] && !h.in.one_in(4)) create(h, &state[s.slot], width, *s.fn, mask);
            OruSize* roi = &roi_cell.data<OruSize>()[k];
            *roi = OruSize{s.width, s.height};
            const OruSize before = *roi;
            const int dst_rows = s.dst->rows();
            h.call(s.fn->name, [&] {
                s.dst->set_writable_rows(dst_rows);
                const OruStatus st = s.fn->call(h.maybe_null(s.src->data()), s.src->step(), h.maybe_null(s.dst->data()),
                                                s.dst->step(), h.maybe_null(roi), h.maybe_null(state[s.slot]), s.flag);
                if (st >= 0) {
                    if (roi->height < 0 || roi->height > before.height + kMaxMask - 1)
                        Harness::fail("%s reported %d rows for a strip of %d", s.fn->name, roi->height, before.height);
                    s.dst->set_writable_rows(roi->height);
                }
                return st;
            });
        }
        for (int i = 0; i < kSlots; ++i) h.call("oruiMorphologyFree", [&] { return oruiMorphologyFree(&state[i]); });
    });
}

#define ENTRY(name, kind, operation, shape, T, C) Entry{#name, fuzz_sequence<kind, T, C, name>},
const Entry kEntries[] = {ORUCV_MORPH_FUNCTIONS(ENTRY)};

}  // namespace

ORUFUZZ_TARGET(kEntries)
