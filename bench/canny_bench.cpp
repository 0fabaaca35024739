// Canny edge detector on the Sobel derivatives of the demo scene, thresholds
// 40 and 120. Compute-bound: no memcpy reference.
#include <cstdint>
#include <memory>
#include <vector>

#include "bench_util.h"
#include "canny_list.h"
#include "orucv.h"

namespace {

struct CannyFrame {
    std::vector<int16_t> dx, dy;
    std::vector<uint8_t> edges, buffer;
};

// The 3x3 Sobel x and y derivatives (origin 0) of the scene.
void scene_derivatives(const orucv_tool::Image& img, std::vector<int16_t>& dx, std::vector<int16_t>& dy) {
    const int w = img.width, h = img.height;
    dx.assign(static_cast<size_t>(w) * h, 0);
    dy.assign(static_cast<size_t>(w) * h, 0);
    oruiSobel3x3_Dx_8u16s_C1R(img.pixels.data(), img.step(), dx.data(), 2 * w, {w, h});
    oruiSobel3x3_Dy_8u16s_C1R(img.pixels.data(), img.step(), dy.data(), 2 * w, 0, {w, h});
}

}  // namespace

// The detector on the scene's derivatives; the size query is not measured.
#define BENCH_BufferSize(name)
#define BENCH_Detect(name)                                                                                      \
    ORUBENCH(#name, 0, [](int w, int h) {                                                                       \
        auto f = std::make_shared<CannyFrame>();                                                                \
        scene_derivatives(orubench::scene(w, h), f->dx, f->dy);                                                 \
        int size = 0;                                                                                           \
        oruiCannyGetSize({w, h}, &size);                                                                        \
        f->buffer.resize(size);                                                                                 \
        f->edges.resize(static_cast<size_t>(w) * h);                                                            \
        return [f, w, h] {                                                                                      \
            name(f->dx.data(), 2 * w, f->dy.data(), 2 * w, f->edges.data(), w, {w, h}, 40.0f, 120.0f,          \
                 f->buffer.data());                                                                             \
        };                                                                                                      \
    });
#define BENCH(name, shape) BENCH_##shape(name)
ORUCV_CANNY_FUNCTIONS(BENCH)
