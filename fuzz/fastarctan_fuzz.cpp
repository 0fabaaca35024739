// The fast arctangent of vector arrays, in place too.
#include "fastarctan_list.h"
#include "support/harness.h"

using namespace orufuzz;

namespace {

template <class T, auto F>
void fuzz_Vectors(Harness& h, const char* name) {
    int len = h.in.side(1000);
    if (h.in.one_in(32)) len = -1 - h.in.range(0, 5);
    const int in_place = h.in.range(0, 3);  // 1: into y, 2: into x
    Image& y = h.image_of<T>("y", in_place == 1 ? Role::Out : Role::In, len, 1, 1);
    Image& x = h.image_of<T>("x", in_place == 2 ? Role::Out : Role::In, len, 1, 1);
    Image& d = h.image_of<T>("dst", Role::Out, len, 1, 1);
    T* dst = in_place == 1 ? y.data<T>() : in_place == 2 ? x.data<T>() : d.data<T>();
    h.on_every_level([&] {
        h.call(name, [&] { return F(h.maybe_null(y.data<T>()), h.maybe_null(x.data<T>()), h.maybe_null(dst), len); });
    });
}

#define ENTRY(name, shape, T) Entry{#name, fuzz_##shape<T, name>},
const Entry kEntries[] = {ORUCV_FASTARCTAN_FUNCTIONS(ENTRY)};

}  // namespace

ORUFUZZ_TARGET(kEntries)
