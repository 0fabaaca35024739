// Line sampling: 2,000 random lines (endpoints uniform over the frame) of
// the demo scene per call, for every function of the list. The pix/s figure
// counts frame pixels per call, not sampled points; lines are not streaming
// work, so there is no memcpy reference.
#include <algorithm>
#include <cstdlib>
#include <memory>
#include <vector>

#include "bench_util.h"
#include "orucv.h"
#include "samplers_list.h"

namespace {

constexpr int kLines = 2000;

template <class T>
struct LineFrame {
    std::vector<T> image, dst;
    std::vector<OruPoint> ends;  // pairs
};

// The scene in C channels (gray repeated) and the same random lines for
// every function and level.
template <class T, int C>
std::shared_ptr<LineFrame<T>> line_frame(int w, int h) {
    auto f = std::make_shared<LineFrame<T>>();
    const auto& gray = orubench::scene(w, h).pixels;
    f->image.resize(gray.size() * C);
    for (size_t i = 0; i < gray.size(); ++i)
        for (int c = 0; c < C; ++c) f->image[i * C + c] = static_cast<T>(gray[i] + 20 * c);
    const std::vector<uint8_t> r = orubench::random_bytes(8 * kLines, 11);
    auto coordinate = [&](int i, int limit) {
        const unsigned v = r[2 * i] | (r[2 * i + 1] << 8);
        return static_cast<int>(v % static_cast<unsigned>(limit));
    };
    for (int i = 0; i < 2 * kLines; ++i) f->ends.push_back({coordinate(2 * i, w), coordinate(2 * i + 1, h)});
    f->dst.resize(static_cast<size_t>(std::max(w, h)) * C);
    return f;
}

}  // namespace

#define BENCH_Line(name, T, C)                                                                            \
    ORUBENCH(#name, 0, [](int w, int h) {                                                                  \
        auto f = line_frame<T, C>(w, h);                                                                   \
        const int step = w * C * static_cast<int>(sizeof(T));                                              \
        return [f, w, h, step] {                                                                           \
            for (int i = 0; i < kLines; ++i)                                                               \
                name(f->image.data(), step, {w, h}, f->dst.data(), f->ends[2 * i], f->ends[2 * i + 1]);    \
            benchmark::DoNotOptimize(f->dst.data());                                                       \
        };                                                                                                 \
    });
#define BENCH(name, shape, T, C) BENCH_##shape(name, T, C)
ORUCV_SAMPLERS_FUNCTIONS(BENCH)
