// Fixed 3x3 Sobel and Scharr filters, every function of the list, on the
// demo scene. Bytes read plus written per pixel: 3 for 8-bit sources (16-bit
// results), 8 for floats.
#include <memory>
#include <type_traits>
#include <vector>

#include "bench_util.h"
#include "orucv.h"
#include "sobel3x3_list.h"

namespace {

template <class S, class D>
struct Frame {
    std::vector<S> src;
    std::vector<D> dst;
    int w, h;
    int src_step() const { return w * static_cast<int>(sizeof(S)); }
    int dst_step() const { return w * static_cast<int>(sizeof(D)); }
};

// The gray scene as 8u, as 8s (shifted by -128) or as floats.
template <class S, class D>
std::shared_ptr<Frame<S, D>> frame(int w, int h) {
    auto f = std::make_shared<Frame<S, D>>();
    const auto& scene = orubench::scene(w, h, 0).pixels;
    f->src.resize(scene.size());
    for (size_t i = 0; i < scene.size(); ++i)
        f->src[i] = std::is_same<S, Oru8s>::value ? static_cast<S>(scene[i] - 128) : static_cast<S>(scene[i]);
    f->dst.resize(scene.size());
    f->w = w;
    f->h = h;
    return f;
}

template <class S>
using Result = typename std::conditional<std::is_same<S, Oru32f>::value, Oru32f, Oru16s>::type;

}  // namespace

// Registrations by argument list (origin 0, shift 0).
#define SOBEL3X3_BENCH(name, S, ...)                                                            \
    ORUBENCH(#name, std::is_same<S, Oru32f>::value ? 8 : 3, [](int w, int h) {                 \
        auto f = frame<S, Result<S>>(w, h);                                                    \
        return [f] { name(f->src.data(), f->src_step(), f->dst.data(), f->dst_step(), __VA_ARGS__); }; \
    });
#define BENCH_Plain(name, S) SOBEL3X3_BENCH(name, S, {f->w, f->h})
#define BENCH_Origin(name, S) SOBEL3X3_BENCH(name, S, 0, {f->w, f->h})
#define BENCH_Shift(name, S) SOBEL3X3_BENCH(name, S, {f->w, f->h}, 0)
#define BENCH_OriginShift(name, S) SOBEL3X3_BENCH(name, S, 0, {f->w, f->h}, 0)
#define BENCH(name, arguments, S, filter, steps) BENCH_##arguments(name, S)
ORUCV_SOBEL3X3_FUNCTIONS(BENCH)
