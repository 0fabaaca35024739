// Canny edge detector on the Sobel derivatives of the demo scene, thresholds
// 40 and 120. Compute-bound: no memcpy reference.
#include <cstdint>
#include <memory>
#include <vector>

#include "bench_util.h"
#include "orucv.h"

namespace {

struct CannyFrame {
    std::vector<int16_t> dx, dy;
    std::vector<uint8_t> edges, buffer;
};

// The 3x3 Sobel x and y derivatives (origin 0, rows downward) of an 8-bit
// image with replicated borders: dx = right minus left columns weighted
// 1 2 1 down, dy = lower minus upper rows weighted 1 2 1 across.
void scene_derivatives(const orucv_tool::Image& img, std::vector<int16_t>& dx, std::vector<int16_t>& dy) {
    const int w = img.width, h = img.height;
    dx.assign(static_cast<size_t>(w) * h, 0);
    dy.assign(static_cast<size_t>(w) * h, 0);
    auto s = [&](int x, int y) {
        x = x < 0 ? 0 : x >= w ? w - 1 : x;
        y = y < 0 ? 0 : y >= h ? h - 1 : y;
        return static_cast<int>(img.at(x, y));
    };
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            auto d = [&](int yy) { return s(x + 1, yy) - s(x - 1, yy); };
            auto m = [&](int yy) { return s(x - 1, yy) + 2 * s(x, yy) + s(x + 1, yy); };
            dx[static_cast<size_t>(y) * w + x] = static_cast<int16_t>(d(y - 1) + 2 * d(y) + d(y + 1));
            dy[static_cast<size_t>(y) * w + x] = static_cast<int16_t>(m(y + 1) - m(y - 1));
        }
}

ORUBENCH("Canny_16s8u_SobelScene", 0, [](int w, int h) {
    auto f = std::make_shared<CannyFrame>();
    scene_derivatives(orubench::scene(w, h), f->dx, f->dy);
    int size = 0;
    oruiCannyGetSize({w, h}, &size);
    f->buffer.resize(size);
    f->edges.resize(static_cast<size_t>(w) * h);
    return [f, w, h] {
        oruiCanny_16s8u_C1R(f->dx.data(), 2 * w, f->dy.data(), 2 * w, f->edges.data(), w, {w, h}, 40.0f, 120.0f,
                            f->buffer.data());
    };
});

}  // namespace
