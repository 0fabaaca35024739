// Absolute difference and motion history, every function of the list on two
// scene frames. Bytes read plus written per pixel: 3 (8u), 12 (32f), 2 and 8
// (constant forms), 1 + 4 + 4 (history).
#include <memory>
#include <vector>

#include "absdiff_list.h"
#include "bench_util.h"
#include "orucv.h"

namespace {

template <class T>
struct Frames {
    std::vector<T> a, b, dst;
};

// Two scene frames and a destination.
template <class T>
std::shared_ptr<Frames<T>> frames(int w, int h) {
    auto f = std::make_shared<Frames<T>>();
    const auto& s0 = orubench::scene(w, h, 0).pixels;
    const auto& s3 = orubench::scene(w, h, 3).pixels;
    f->a.assign(s0.begin(), s0.end());
    f->b.assign(s3.begin(), s3.end());
    f->dst.resize(static_cast<size_t>(w) * h);
    return f;
}

}  // namespace

#define BENCH_Images(name, T)                                                                        \
    ORUBENCH(#name, 3.0 * sizeof(T), [](int w, int h) {                                            \
        auto f = frames<T>(w, h);                                                                   \
        const int s = w * static_cast<int>(sizeof(T));                                              \
        return [f, w, h, s] { name(f->a.data(), s, f->b.data(), s, f->dst.data(), s, {w, h}); };     \
    });
#define BENCH_Constant(name, T)                                                                      \
    ORUBENCH(#name, 2.0 * sizeof(T), [](int w, int h) {                                            \
        auto f = frames<T>(w, h);                                                                   \
        const int s = w * static_cast<int>(sizeof(T));                                              \
        return [f, w, h, s] { name(f->a.data(), s, f->dst.data(), s, {w, h}, 100); };                \
    });
#define BENCH_Motion(name, T)                                                                        \
    ORUBENCH(#name, 9, [](int w, int h) {                                                           \
        auto silhouette = std::make_shared<std::vector<T>>(orubench::random_bytes(size_t(w) * h, 5)); \
        for (auto& p : *silhouette) p = p < 20 ? 255 : 0;                                           \
        auto mhi = std::make_shared<std::vector<float>>(size_t(w) * h, 3.0f);                       \
        return [silhouette, mhi, w, h] {                                                            \
            name(silhouette->data(), w, mhi->data(), 4 * w, {w, h}, 10.0f, 5.0f);                   \
        };                                                                                          \
    });
#define BENCH(name, shape, T) BENCH_##shape(name, T)
ORUCV_ABSDIFF_FUNCTIONS(BENCH)
