#include "image.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>

#ifdef ORUCV_WITH_PNG
#include <png.h>
#endif

namespace orucv_tool {
namespace {

using File = std::unique_ptr<FILE, int (*)(FILE*)>;

File open_file(const std::string& path, const char* mode) {
    File f(std::fopen(path.c_str(), mode), std::fclose);
    if (!f) throw ToolError("cannot open '" + path + "': " + std::strerror(errno));
    return f;
}

bool ends_with(const std::string& s, const std::string& suffix) {
    if (s.size() < suffix.size()) return false;
    std::string tail = s.substr(s.size() - suffix.size());
    std::transform(tail.begin(), tail.end(), tail.begin(), [](unsigned char c) { return std::tolower(c); });
    return tail == suffix;
}

// Netpbm header field: skips white space and comments.
int read_pnm_number(FILE* f, const std::string& path) {
    int c = std::fgetc(f);
    while (c != EOF && (std::isspace(c) || c == '#')) {
        if (c == '#')
            while (c != EOF && c != '\n') c = std::fgetc(f);
        c = std::fgetc(f);
    }
    if (c == EOF || !std::isdigit(c)) throw ToolError("'" + path + "': malformed PGM/PPM header");
    long v = 0;
    while (c != EOF && std::isdigit(c)) {
        v = v * 10 + (c - '0');
        if (v > 1 << 20) throw ToolError("'" + path + "': PGM/PPM header value too large");
        c = std::fgetc(f);
    }
    return static_cast<int>(v);
}

Image read_pnm(FILE* f, const std::string& path, char kind) {
    const bool plain = kind == '2' || kind == '3';
    const int channels = (kind == '3' || kind == '6') ? 3 : 1;
    const int w = read_pnm_number(f, path), h = read_pnm_number(f, path), maxval = read_pnm_number(f, path);
    if (w < 1 || h < 1 || static_cast<long long>(w) * h > (1ll << 28))
        throw ToolError("'" + path + "': unsupported image size");
    if (maxval < 1 || maxval > 255) throw ToolError("'" + path + "': only 8-bit PGM/PPM is supported");
    Image img(w, h, channels);
    if (plain) {
        for (auto& p : img.pixels) {
            const int v = read_pnm_number(f, path);
            p = static_cast<uint8_t>(std::min(v, maxval) * 255 / maxval);
        }
    } else if (std::fread(img.pixels.data(), 1, img.pixels.size(), f) != img.pixels.size()) {
        throw ToolError("'" + path + "': truncated image data");
    } else if (maxval != 255) {
        for (auto& p : img.pixels) p = static_cast<uint8_t>(std::min<int>(p, maxval) * 255 / maxval);
    }
    return img;
}

#ifdef ORUCV_WITH_PNG
Image read_png(FILE* f, const std::string& path) {
    png_image png;
    std::memset(&png, 0, sizeof png);
    png.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_stdio(&png, f)) throw ToolError("'" + path + "': " + png.message);
    const bool color = (png.format & PNG_FORMAT_FLAG_COLOR) != 0;
    png.format = color ? PNG_FORMAT_RGB : PNG_FORMAT_GRAY;
    if (png.width > (1u << 16) || png.height > (1u << 16)) {
        png_image_free(&png);
        throw ToolError("'" + path + "': image too large");
    }
    Image img(static_cast<int>(png.width), static_cast<int>(png.height), color ? 3 : 1);
    if (!png_image_finish_read(&png, nullptr, img.pixels.data(), img.step(), nullptr))
        throw ToolError("'" + path + "': " + png.message);
    return img;
}

void write_png(const std::string& path, const Image& img) {
    png_image png;
    std::memset(&png, 0, sizeof png);
    png.version = PNG_IMAGE_VERSION;
    png.width = static_cast<png_uint_32>(img.width);
    png.height = static_cast<png_uint_32>(img.height);
    png.format = img.channels == 3 ? PNG_FORMAT_RGB : PNG_FORMAT_GRAY;
    if (!png_image_write_to_file(&png, path.c_str(), 0, img.pixels.data(), img.step(), nullptr))
        throw ToolError("cannot write '" + path + "': " + png.message);
}
#endif

}  // namespace

bool png_supported() {
#ifdef ORUCV_WITH_PNG
    return true;
#else
    return false;
#endif
}

Image read_image(const std::string& path) {
    File f = open_file(path, "rb");
    unsigned char magic[8] = {};
    const size_t got = std::fread(magic, 1, sizeof magic, f.get());
    std::rewind(f.get());
    if (got >= 2 && magic[0] == 'P' && std::strchr("2356", magic[1]) && magic[1]) {
        std::fgetc(f.get());
        std::fgetc(f.get());
        return read_pnm(f.get(), path, static_cast<char>(magic[1]));
    }
    if (got == 8 && std::memcmp(magic, "\x89PNG\r\n\x1a\n", 8) == 0) {
#ifdef ORUCV_WITH_PNG
        return read_png(f.get(), path);
#else
        throw ToolError("'" + path + "': this build has no PNG support; use PGM or PPM");
#endif
    }
    throw ToolError("'" + path + "': not a PNG, PGM or PPM image");
}

void write_image(const std::string& path, const Image& img) {
    if (img.channels != 1 && img.channels != 3) throw ToolError("only gray and RGB images can be written");
    if (ends_with(path, ".png")) {
#ifdef ORUCV_WITH_PNG
        write_png(path, img);
        return;
#else
        throw ToolError("this build has no PNG support; write a .pgm or .ppm file");
#endif
    }
    File f = open_file(path, "wb");
    std::fprintf(f.get(), "P%c\n%d %d\n255\n", img.channels == 3 ? '6' : '5', img.width, img.height);
    if (std::fwrite(img.pixels.data(), 1, img.pixels.size(), f.get()) != img.pixels.size())
        throw ToolError("cannot write '" + path + "'");
}

Image to_gray(const Image& image) {
    if (image.channels == 1) return image;
    Image gray(image.width, image.height, 1);
    for (int y = 0; y < image.height; ++y)
        for (int x = 0; x < image.width; ++x)
            gray.at(x, y) = static_cast<uint8_t>(
                (77 * image.at(x, y, 0) + 150 * image.at(x, y, 1) + 29 * image.at(x, y, 2) + 128) >> 8);
    return gray;
}

Image scale_to_8u(const FloatImage& image, float lo, float hi) {
    if (lo == hi) {
        lo = hi = 0.0f;
        bool first = true;
        for (float v : image.pixels)
            if (std::isfinite(v)) {
                if (first || v < lo) lo = v;
                if (first || v > hi) hi = v;
                first = false;
            }
    }
    const float scale = hi > lo ? 255.0f / (hi - lo) : 0.0f;
    Image out(image.width, image.height, 1);
    for (size_t i = 0; i < image.pixels.size(); ++i) {
        const float v = image.pixels[i];
        const float s = std::isnan(v) ? 0.0f : (v - lo) * scale;
        out.pixels[i] = static_cast<uint8_t>(std::clamp(s + 0.5f, 0.0f, 255.0f));
    }
    return out;
}

Image scale_to_8u(const int16_t* data, int width, int height, int step_bytes, bool absolute) {
    int lo = 0, hi = 0;
    auto row = [&](int y) { return reinterpret_cast<const int16_t*>(reinterpret_cast<const char*>(data) + y * step_bytes); };
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const int v = absolute ? std::abs(row(y)[x]) : row(y)[x];
            lo = std::min(lo, v), hi = std::max(hi, v);
        }
    Image out(width, height, 1);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const int v = absolute ? std::abs(row(y)[x]) : row(y)[x];
            out.at(x, y) = static_cast<uint8_t>(hi > lo ? (v - lo) * 255 / (hi - lo) : 0);
        }
    return out;
}

}  // namespace orucv_tool
