#include "scene.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace orucv_tool {
namespace {

uint32_t hash(uint32_t x) {
    x ^= x >> 16;
    x *= 0x7FEB352Du;
    x ^= x >> 15;
    x *= 0x846CA68Bu;
    x ^= x >> 16;
    return x;
}

// Shapes are laid out on a 640x480 canvas and scaled to the requested size.
struct Canvas {
    int width, height;
    float sx, sy;
    Canvas(int w, int h) : width(w), height(h), sx(w / 640.0f), sy(h / 480.0f) {}
};

void render(const Canvas& cv, int frame, Image& out) {
    const float disc_x = 120.0f + 38.0f * frame, disc_y = 300.0f - 14.0f * frame;
    for (int y = 0; y < cv.height; ++y) {
        const float v = y / cv.sy;
        for (int x = 0; x < cv.width; ++x) {
            const float u = x / cv.sx;
            // Background: a diagonal gradient with soft sensor noise.
            float r = 40.0f + 0.12f * u + 0.10f * v, g = 60.0f + 0.08f * u + 0.16f * v, b = 90.0f + 0.10f * v;
            const float noise = static_cast<float>(hash(x * 7919u + y * 104729u) & 7) - 3.5f;
            // A bright rectangle, a dark triangle and a mid-gray ring.
            if (u > 380 && u < 560 && v > 60 && v < 200) r = 220, g = 200, b = 120;
            if (v > 250 && v < 440 && u > 420 && u - 420 < (v - 250) * 0.9f) r = 30, g = 35, b = 45;
            const float ring = std::hypot(u - 200.0f, v - 120.0f);
            if (ring > 55 && ring < 80) r = 150, g = 150, b = 160;
            // A textured patch (a checkerboard of 8-pixel cells with stripes).
            if (u > 40 && u < 200 && v > 330 && v < 450) {
                const bool cell = ((static_cast<int>(u) / 8) + (static_cast<int>(v) / 8)) & 1;
                const float stripe = 30.0f * std::sin(u * 0.7f);
                r = g = b = (cell ? 180.0f : 70.0f) + stripe;
            }
            // The moving object: a bright disc with a dark rim.
            const float d = std::hypot(u - disc_x, v - disc_y);
            if (d < 36) r = g = b = d < 30 ? 235.0f : 20.0f;
            const float c[3] = {r + noise, g + noise, b + noise};
            for (int ch = 0; ch < out.channels; ++ch)
                out.at(x, y, ch) = static_cast<uint8_t>(std::clamp(c[ch] + 0.5f, 0.0f, 255.0f));
        }
    }
}

}  // namespace

Image render_scene_rgb(int width, int height, int frame) {
    Image out(width, height, 3);
    render(Canvas(width, height), frame, out);
    return out;
}

Image render_scene(int width, int height, int frame) { return to_gray(render_scene_rgb(width, height, frame)); }

}  // namespace orucv_tool
