// Accumulators, every function of the list. Bytes read plus written per
// pixel: the sources (1 or 4 bytes each), the mask (1) and the accumulator
// (4 + 4).
#include <memory>
#include <type_traits>
#include <vector>

#include "accum_list.h"
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

// Registrations by argument list: operation and masking. Bytes per pixel:
// the sources, the mask and the accumulator read and written.
#define ACCUM_BENCH(name, S, bytes_per_pixel, ...)                \
    ORUBENCH(#name, bytes_per_pixel, [](int w, int h) {           \
        auto f = frames<S>(w, h);                                 \
        return [f, w, h] { name(__VA_ARGS__); };                  \
    });
#define BENCH_Add_false(name, S) \
    ACCUM_BENCH(name, S, sizeof(S) + 8.0, f->a.data(), w * int(sizeof(S)), f->acc.data(), 4 * w, {w, h})
#define BENCH_Add_true(name, S)                                                                                 \
    ACCUM_BENCH(name, S, sizeof(S) + 9.0, f->a.data(), w * int(sizeof(S)), f->mask.data(), w, f->acc.data(), 4 * w, \
                {w, h})
#define BENCH_Product_false(name, S)                                                                           \
    ACCUM_BENCH(name, S, 2 * sizeof(S) + 8.0, f->a.data(), w * int(sizeof(S)), f->b.data(), w * int(sizeof(S)), \
                f->acc.data(), 4 * w, {w, h})
#define BENCH_Product_true(name, S)                                                                            \
    ACCUM_BENCH(name, S, 2 * sizeof(S) + 9.0, f->a.data(), w * int(sizeof(S)), f->b.data(), w * int(sizeof(S)), \
                f->mask.data(), w, f->acc.data(), 4 * w, {w, h})
#define BENCH_Weighted_false(name, S) \
    ACCUM_BENCH(name, S, sizeof(S) + 8.0, f->a.data(), w * int(sizeof(S)), f->acc.data(), 4 * w, {w, h}, kAlpha)
#define BENCH_Weighted_true(name, S)                                                                            \
    ACCUM_BENCH(name, S, sizeof(S) + 9.0, f->a.data(), w * int(sizeof(S)), f->mask.data(), w, f->acc.data(), 4 * w, \
                {w, h}, kAlpha)
#define BENCH_Square_false BENCH_Add_false
#define BENCH_Square_true BENCH_Add_true
#define BENCH(name, op, S, masked) BENCH_##op##_##masked(name, S)
ORUCV_ACCUM_FUNCTIONS(BENCH)
