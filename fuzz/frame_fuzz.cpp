// The library frame: the version record, the aligned allocator (sequences
// of allocations and releases, foreign and null pointers), the tables, and
// the channel copies (which check nothing: they get only what they accept).
#include <cstdint>
#include <cstring>

#include "frame_list.h"
#include "support/harness.h"

using namespace orufuzz;

namespace {

template <auto F>
void fuzz_Version(Harness& h, const char* name) {
    h.on_every_level([&] {
        h.call(name, [&] {
            const OruLibVersion* v = F();
            if (!v || v != F() || !v->Name || !v->Version || !v->BuildDate)
                Harness::fail("%s: no version record", name);
            if (!std::strlen(v->Name) || !std::strlen(v->Version) || !std::strlen(v->BuildDate))
                Harness::fail("%s: an empty version text", name);
            return oruStsOk;
        });
    });
}

unsigned length_arg(Input& in) {
    static const unsigned kHuge[] = {0xFFFFFFFFu, 0xFFFFFFE0u, 0xFFFFFFDCu, 0x80000000u, 0u, 1u, 31u, 33u};
    if (in.one_in(64)) return in.pick(kHuge);
    return in.one_in(16) ? static_cast<unsigned>(in.range(0, 1 << 20)) : static_cast<unsigned>(in.range(0, 4096));
}

// Allocations held in handle cells, released in any order; every block must
// be 32-byte aligned and usable for all its bytes.
template <auto F>
void fuzz_Alloc(Harness& h, const char* name) {
    constexpr int kSlots = 4;
    Image& slots = h.cells<void*>("blocks", kSlots, Role::Handle);
    Image& foreign = h.image("foreign", Role::In, 64, 1, 64, 1);
    void** block = slots.data<void*>();
    h.on_every_level([&] {
        for (int i = 0; i < kSlots; ++i) block[i] = nullptr;
        const int steps = h.in.range(1, 12);
        for (int s = 0; s < steps; ++s) {
            const int i = h.in.range(0, kSlots - 1);
            switch (h.in.range(0, 3)) {
            case 0:
            case 1: {
                if (block[i]) break;
                const unsigned length = length_arg(h.in);
                h.call(name, [&] {
                    block[i] = F(length);
                    if (!block[i]) return oruStsOk;
                    if (reinterpret_cast<uintptr_t>(block[i]) % 32)
                        Harness::fail("%s(%u): a block off 32 bytes", name, length);
                    uint8_t* p = static_cast<uint8_t*>(block[i]);
                    if (length <= (1u << 20)) std::memset(p, 0x5A, length);
                    else p[0] = p[length - 1] = 0x5A;
                    return oruStsOk;
                });
                break;
            }
            case 2:
                h.call("_orcvFree_", [&] {
                    _orcvFree_(&block[i]);
                    if (block[i]) Harness::fail("_orcvFree_ left its variable set");
                    return oruStsOk;
                });
                break;
            default: {
                // Foreign pointers off 32 bytes, NULL variables and NULL
                // itself are left alone.
                void* odd = foreign.data() + 1 + 32 * h.in.range(0, 1) + h.in.range(0, 30);
                if (reinterpret_cast<uintptr_t>(odd) % 32 == 0) odd = static_cast<uint8_t*>(odd) + 1;
                void* none = nullptr;
                h.call("_orcvFree_", [&] {
                    void* kept = odd;
                    _orcvFree_(&kept);
                    _orcvFree_(&none);
                    _orcvFree_(nullptr);
                    if (kept != odd || none) Harness::fail("_orcvFree_ changed a variable it must ignore");
                    return oruStsOk;
                });
            }
            }
        }
        for (int i = 0; i < kSlots; ++i) _orcvFree_(&block[i]);
    });
}

template <auto F>
void fuzz_Free(Harness& h, const char* name) {
    fuzz_Alloc<_orcvAlloc>(h, name);
}

template <const auto& F>
void fuzz_Table(Harness& h, const char* name) {
    const size_t bytes = sizeof(F);
    h.on_every_level([&] {
        const size_t at = static_cast<size_t>(h.in.u32()) % bytes;
        h.call(name, [&] {
            // Every byte is readable, and the documented ones hold.
            uint8_t sum = 0;
            for (size_t i = 0; i < bytes; ++i)
                sum = static_cast<uint8_t>(sum + reinterpret_cast<const uint8_t*>(&F)[i]);
            (void)sum;
            if constexpr (sizeof(F) == sizeof(a6__orcv8to32f)) {
                if (a6__orcv8to32f[at / 4] != static_cast<float>(static_cast<int>(at / 4) - 128))
                    Harness::fail("%s[%zu] is wrong", name, at / 4);
            }
            if constexpr (sizeof(F) == sizeof(_orcvAdd128_A6)) {
                if (_orcvAdd128_A6[at] != 0x80) Harness::fail("%s[%zu] is wrong", name, at);
            }
            return oruStsOk;
        });
    });
}

// A step the copies accept: the row's bytes, often padded by whole elements.
int copy_step(Input& in, int row_bytes, int elem) { return row_bytes + (in.one_in(2) ? 0 : elem * in.range(1, 20)); }

template <class T, int C>
OruSize copy_roi(Harness& h) {
    const OruSize roi = h.roi(300, 1 << 14);  // up to four planes and the pixels: 20 images' bytes
    return OruSize{roi.width < 1 ? 1 : roi.width, roi.height < 1 ? 1 : roi.height};
}

template <auto F, class T, int C>
void fuzz_Channel(Harness& h, const char* name) {
    const OruSize roi = copy_roi<T, C>(h);
    const int e = sizeof(T);
    Image& src = h.image("src", Role::In, roi.width * C * e, roi.height, copy_step(h.in, roi.width * C * e, e), e);
    Image& dst = h.image("dst", Role::Out, roi.width * e, roi.height, copy_step(h.in, roi.width * e, e), e);
    fill<T>(src, h.in);
    fill<T>(dst, h.in);
    const int coi = h.in.range(0, C - 1);
    h.on_every_level(
        [&] { h.call(name, [&] { return F(src.data<T>(), src.step(), dst.data<T>(), dst.step(), roi, coi); }); });
}

// The planes share one step; each sits against its own page.
template <auto F, class T, int C, bool ToPlanes>
void fuzz_planes(Harness& h, const char* name) {
    const OruSize roi = copy_roi<T, C>(h);
    const int e = sizeof(T);
    const Role planes_role = ToPlanes ? Role::Out : Role::In;
    Image& pixels = h.image("pixels", ToPlanes ? Role::In : Role::Out, roi.width * C * e, roi.height,
                            copy_step(h.in, roi.width * C * e, e), e);
    fill<T>(pixels, h.in);
    const int plane_step = copy_step(h.in, roi.width * e, e);
    static const char* const kNames[] = {"plane0", "plane1", "plane2", "plane3"};
    T* p[4] = {};
    for (int c = 0; c < C; ++c) {
        Image& plane = h.image(kNames[c], planes_role, roi.width * e, roi.height, plane_step, e);
        fill<T>(plane, h.in);
        p[c] = plane.data<T>();
    }
    h.on_every_level([&] {
        h.call(name, [&] {
            if constexpr (ToPlanes && C == 3)
                return F(pixels.data<T>(), pixels.step(), p[0], p[1], p[2], plane_step, roi);
            else if constexpr (ToPlanes)
                return F(pixels.data<T>(), pixels.step(), p[0], p[1], p[2], p[3], plane_step, roi);
            else if constexpr (C == 3) return F(p[0], p[1], p[2], plane_step, pixels.data<T>(), pixels.step(), roi);
            else return F(p[0], p[1], p[2], p[3], plane_step, pixels.data<T>(), pixels.step(), roi);
        });
    });
}
template <auto F, class T, int C>
void fuzz_Split(Harness& h, const char* name) {
    fuzz_planes<F, T, C, true>(h, name);
}
template <auto F, class T, int C>
void fuzz_Merge(Harness& h, const char* name) {
    fuzz_planes<F, T, C, false>(h, name);
}

#define ENTRY(name, shape, ...) Entry{#name, fuzz_##shape<name, ##__VA_ARGS__>},
const Entry kEntries[] = {ORUCV_FRAME_FUNCTIONS(ENTRY)};

}  // namespace

ORUFUZZ_TARGET(kEntries)
