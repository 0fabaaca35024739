// Fast arctangent over the float Sobel derivatives of the demo scene, one
// element per pixel. Bytes per element: 4 + 4 read, 4 written. Beside it,
// the C library's atan2f loop (in degrees, 0..360) over the same arrays.
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "bench_util.h"
#include "fastarctan_list.h"
#include "orucv.h"

namespace {

struct Gradients {
    std::vector<float> dx, dy, angles;
};

std::shared_ptr<Gradients> gradients(int w, int h) {
    auto g = std::make_shared<Gradients>();
    const auto& gray = orubench::scene(w, h).pixels;
    const std::vector<float> src(gray.begin(), gray.end());
    const size_t n = static_cast<size_t>(w) * h;
    g->dx.resize(n);
    g->dy.resize(n);
    g->angles.resize(n);
    oruiSobel3x3_Dx_32f_C1R(src.data(), 4 * w, g->dx.data(), 4 * w, {w, h});
    oruiSobel3x3_Dy_32f_C1R(src.data(), 4 * w, g->dy.data(), 4 * w, 0, {w, h});
    return g;
}

void atan2f_loop(benchmark::State& state, int w, int h) {
    auto g = gradients(w, h);
    const int n = w * h;
    for (auto _ : state) {
        const float* y = g->dy.data();
        const float* x = g->dx.data();
        float* a = g->angles.data();
        for (int i = 0; i < n; ++i) {
            const float d = std::atan2(y[i], x[i]) * 57.29577951308232f;
            a[i] = d < 0.0f ? d + 360.0f : d;
        }
        benchmark::ClobberMemory();
    }
    state.counters["pix/s"] = benchmark::Counter(static_cast<double>(n) * state.iterations(), benchmark::Counter::kIsRate);
}

const bool atan2f_registered = [] {
    for (const orubench::FrameSize& f : orubench::frame_sizes())
        benchmark::RegisterBenchmark(("atan2f_loop/" + std::to_string(f.width) + "x" + std::to_string(f.height)).c_str(),
                                     [f](benchmark::State& s) { atan2f_loop(s, f.width, f.height); })
            ->Unit(benchmark::kMillisecond);
    return true;
}();

}  // namespace

#define BENCH_Vectors(name, T)                                                              \
    ORUBENCH(#name, 12, [](int w, int h) {                                                   \
        auto g = gradients(w, h);                                                            \
        return [g, w, h] { name(g->dy.data(), g->dx.data(), g->angles.data(), w * h); };     \
    });
#define BENCH(name, shape, T) BENCH_##shape(name, T)
ORUCV_FASTARCTAN_FUNCTIONS(BENCH)
