// Accumulators, all 23 functions. Bytes read plus written per pixel: the
// sources (1 or 4 bytes each), the mask (1) and the accumulator (4 + 4).
#include <memory>
#include <type_traits>
#include <vector>

#include "bench_util.h"
#include "orucv.h"

namespace {

template <class S>
struct Frames {
    std::vector<S> a, b;
    std::vector<Oru8u> mask;
    std::vector<Oru32f> acc;
};

// Two scene frames as sources (8s: shifted into the signed range), a mask
// selecting about half of the pixels, and a zero accumulator.
template <class S>
std::shared_ptr<Frames<S>> frames(int w, int h) {
    auto f = std::make_shared<Frames<S>>();
    for (int i : {0, 3}) {
        std::vector<S>& dst = i == 0 ? f->a : f->b;
        for (Oru8u p : orubench::scene(w, h, i).pixels)
            dst.push_back(sizeof(S) == 1 ? static_cast<S>(p ^ (std::is_same<S, Oru8s>::value ? 0x80 : 0)) : S(p));
    }
    f->mask = orubench::random_bytes(static_cast<size_t>(w) * h, 11);
    for (Oru8u& m : f->mask) m = m < 128 ? 0 : m;
    f->acc.assign(static_cast<size_t>(w) * h, 0.0f);
    return f;
}

constexpr float kAlpha = 0.05f;

}  // namespace

#define ACCUM_BENCH(fn, S, bytes_per_pixel, ...)                  \
    ORUBENCH(#fn, bytes_per_pixel, [](int w, int h) {             \
        auto f = frames<S>(w, h);                                 \
        return [f, w, h] { fn(__VA_ARGS__); };                    \
    })
#define ONE(fn, S) ACCUM_BENCH(fn, S, sizeof(S) + 8.0, f->a.data(), w * int(sizeof(S)), f->acc.data(), 4 * w, {w, h})
#define ONE_M(fn, S)                                                                                           \
    ACCUM_BENCH(fn, S, sizeof(S) + 9.0, f->a.data(), w * int(sizeof(S)), f->mask.data(), w, f->acc.data(), 4 * w, \
                {w, h})
#define TWO(fn, S)                                                                                           \
    ACCUM_BENCH(fn, S, 2 * sizeof(S) + 8.0, f->a.data(), w * int(sizeof(S)), f->b.data(), w * int(sizeof(S)), \
                f->acc.data(), 4 * w, {w, h})
#define TWO_M(fn, S)                                                                                          \
    ACCUM_BENCH(fn, S, 2 * sizeof(S) + 9.0, f->a.data(), w * int(sizeof(S)), f->b.data(), w * int(sizeof(S)), \
                f->mask.data(), w, f->acc.data(), 4 * w, {w, h})
#define WTD(fn, S) \
    ACCUM_BENCH(fn, S, sizeof(S) + 8.0, f->a.data(), w * int(sizeof(S)), f->acc.data(), 4 * w, {w, h}, kAlpha)
#define WTD_M(fn, S)                                                                                           \
    ACCUM_BENCH(fn, S, sizeof(S) + 9.0, f->a.data(), w * int(sizeof(S)), f->mask.data(), w, f->acc.data(), 4 * w, \
                {w, h}, kAlpha)

ONE(oruiAdd_8u32f_C1IR, Oru8u);
ONE(oruiAdd_8s32f_C1IR, Oru8s);
ONE_M(oruiAdd_8u32f_C1IMR, Oru8u);
ONE_M(oruiAdd_8s32f_C1IMR, Oru8s);
ONE_M(oruiAdd_32f_C1IMR, Oru32f);
ONE(oruiAddSquare_8u32f_C1IR, Oru8u);
ONE(oruiAddSquare_8s32f_C1IR, Oru8s);
ONE(oruiAddSquare_32f_C1IR, Oru32f);
ONE_M(oruiAddSquare_8u32f_C1IMR, Oru8u);
ONE_M(oruiAddSquare_8s32f_C1IMR, Oru8s);
ONE_M(oruiAddSquare_32f_C1IMR, Oru32f);
TWO(oruiAddProduct_8u32f_C1IR, Oru8u);
TWO(oruiAddProduct_8s32f_C1IR, Oru8s);
TWO(oruiAddProduct_32f_C1IR, Oru32f);
TWO_M(oruiAddProduct_8u32f_C1IMR, Oru8u);
TWO_M(oruiAddProduct_8s32f_C1IMR, Oru8s);
TWO_M(oruiAddProduct_32f_C1IMR, Oru32f);
WTD(oruiAddWeighted_8u32f_C1IR, Oru8u);
WTD(oruiAddWeighted_8s32f_C1IR, Oru8s);
WTD(oruiAddWeighted_32f_C1IR, Oru32f);
WTD_M(oruiAddWeighted_8u32f_C1IMR, Oru8u);
WTD_M(oruiAddWeighted_8s32f_C1IMR, Oru8s);
WTD_M(oruiAddWeighted_32f_C1IMR, Oru32f);
