// 8-bit images for the command-line program, and their files: PNG (when
// built with libpng) and binary or plain PGM/PPM.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace orucv_tool {

struct Image {
    int width = 0, height = 0, channels = 1;
    std::vector<uint8_t> pixels;  // rows back to back, channels interleaved

    Image() = default;
    Image(int w, int h, int c = 1, uint8_t fill = 0)
        : width(w), height(h), channels(c), pixels(static_cast<size_t>(w) * h * c, fill) {}
    int step() const { return width * channels; }
    uint8_t* row(int y) { return pixels.data() + static_cast<size_t>(y) * step(); }
    const uint8_t* row(int y) const { return pixels.data() + static_cast<size_t>(y) * step(); }
    uint8_t& at(int x, int y, int c = 0) { return row(y)[x * channels + c]; }
    uint8_t at(int x, int y, int c = 0) const { return row(y)[x * channels + c]; }
};

// A float image with its own step, for results such as distances or scores.
struct FloatImage {
    int width = 0, height = 0;
    std::vector<float> pixels;
    FloatImage() = default;
    FloatImage(int w, int h, float fill = 0.0f) : width(w), height(h), pixels(static_cast<size_t>(w) * h, fill) {}
    int step_bytes() const { return width * 4; }
    float* data() { return pixels.data(); }
    const float* data() const { return pixels.data(); }
};

struct ToolError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Reads PNG, PGM or PPM (by content, not by name); throws ToolError.
Image read_image(const std::string& path);
// Writes PNG when the name ends in .png, PPM/PGM otherwise; throws ToolError.
void write_image(const std::string& path, const Image& image);
bool png_supported();

Image to_gray(const Image& image);
// Linear map of [lo, hi] onto 0..255 (lo == hi: the range of the values).
Image scale_to_8u(const FloatImage& image, float lo = 0.0f, float hi = 0.0f);
Image scale_to_8u(const int16_t* data, int width, int height, int step_bytes, bool absolute);

}  // namespace orucv_tool
