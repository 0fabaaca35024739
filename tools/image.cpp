#include "image.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "row_io.h"

namespace orucv_tool {
namespace {

std::string lower_extension(const std::string& path) {
    const size_t slash = path.find_last_of('/');
    const size_t dot = path.find_last_of('.');
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash)) return "";
    std::string ext = path.substr(dot);
    std::transform(ext.begin(), ext.end(), ext.begin(), [](unsigned char c) { return std::tolower(c); });
    return ext;
}

// Rows are appended as they are decoded into reserved memory, so a file
// that ends early has touched only the rows it held.
template <class Img>
void read_rows(RowReader& in, Img& image) {
    const size_t row = in.row_samples();
    image.pixels.reserve(row * in.height());
    for (int y = 0; y < in.height(); ++y) {
        image.pixels.resize(row * (y + 1));
        in.read_row(image.pixels.data() + row * y);
    }
}

uint8_t round_to_8u(float v) { return std::isnan(v) ? 0 : static_cast<uint8_t>(std::clamp(std::nearbyint(v), 0.0f, 255.0f)); }
uint16_t round_to_16u(float v) {
    return std::isnan(v) ? 0 : static_cast<uint16_t>(std::clamp(std::nearbyint(v), 0.0f, 65535.0f));
}

}  // namespace

bool png_supported() {
#ifdef ORUCV_WITH_PNG
    return true;
#else
    return false;
#endif
}

OutputFormat output_format(const std::string& path) {
    const std::string ext = lower_extension(path);
    if (ext == ".png") {
        if (!png_supported())
            throw ToolError("cannot write '" + path + "': this build has no PNG support (name a .pgm or .ppm)");
        return OutputFormat::Png;
    }
    if (ext == ".pgm") return OutputFormat::Pgm;
    if (ext == ".ppm") return OutputFormat::Ppm;
    if (ext == ".pnm") return OutputFormat::Pnm;
    if (ext == ".pfm") return OutputFormat::Pfm;
    if (ext == ".npy") return OutputFormat::Npy;
    throw ToolError("cannot write '" + path + "': " + (ext.empty() ? "the name has no extension" : "'" + ext + "' is not a format orucv writes") +
                    " (.png, .pgm, .ppm, .pnm, .pfm or .npy)");
}

bool keeps_values(OutputFormat format) { return format == OutputFormat::Pfm || format == OutputFormat::Npy; }

ImageInfo probe_image(const std::string& path, const ReadOptions& options) {
    return RowReader(path, options, RowReader::Exact, RowReader::AsIs, 1).info();
}

Image read_image(const std::string& path, const ReadOptions& options) {
    RowReader in(path, options, RowReader::Bytes, RowReader::AsIs, 1);
    Image image;
    image.width = in.width(), image.height = in.height(), image.channels = in.channels();
    read_rows(in, image);
    return image;
}

FloatImage read_float_image(const std::string& path, const ReadOptions& options) {
    RowReader in(path, options, RowReader::Exact, RowReader::AsIs, 4);
    FloatImage image;
    image.width = in.width(), image.height = in.height(), image.channels = in.channels();
    image.depth = in.info().sample == Sample::U8 ? 8 : in.info().sample == Sample::U16 ? 16 : 0;
    read_rows(in, image);
    return image;
}

void write_image(const std::string& path, const Image& image) {
    RowWriter out(path, image.width, image.height, image.channels, Sample::U8);
    for (int y = 0; y < image.height; ++y) out.write_row(image.row(y));
    out.finish();
}

void write_image(const std::string& path, const FloatImage& image, float lo, float hi) {
    const OutputFormat format = output_format(path);
    if (keeps_values(format)) {
        RowWriter out(path, image.width, image.height, image.channels, Sample::F32);
        for (int y = 0; y < image.height; ++y) out.write_row(image.row(y));
        out.finish();
        return;
    }
    if (image.depth == 0) {
        Image picture = scale_to_8u(image, lo, hi);
        write_image(path, picture);
        return;
    }
    const size_t n = static_cast<size_t>(image.width) * image.channels;
    RowWriter out(path, image.width, image.height, image.channels, image.depth == 16 ? Sample::U16 : Sample::U8);
    std::vector<uint8_t> row8(n);
    std::vector<uint16_t> row16(n);
    for (int y = 0; y < image.height; ++y) {
        const float* in = image.row(y);
        if (image.depth == 16) {
            for (size_t i = 0; i < n; ++i) row16[i] = round_to_16u(in[i]);
            out.write_row(row16.data());
        } else {
            for (size_t i = 0; i < n; ++i) row8[i] = round_to_8u(in[i]);
            out.write_row(row8.data());
        }
    }
    out.finish();
}

void write_image(const std::string& path, const Signed16Image& image, Signed16Png mode) {
    const OutputFormat format = output_format(path);
    if (keeps_values(format)) {
        RowWriter out(path, image.width, image.height, 1, Sample::I16);
        for (int y = 0; y < image.height; ++y) out.write_row(image.data() + static_cast<size_t>(y) * image.width);
        out.finish();
        return;
    }
    if (mode == Signed16Png::Picture) {
        write_image(path, scale_to_8u(image.data(), image.width, image.height, image.step_bytes(), true));
        return;
    }
    RowWriter out(path, image.width, image.height, 1, Sample::U16);
    std::vector<uint16_t> row(static_cast<size_t>(image.width));
    for (int y = 0; y < image.height; ++y) {
        const int16_t* in = image.data() + static_cast<size_t>(y) * image.width;
        for (int x = 0; x < image.width; ++x)
            row[x] = static_cast<uint16_t>(mode == Signed16Png::Offset ? in[x] + 32768 : std::abs(in[x]));
        out.write_row(row.data());
    }
    out.finish();
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

FloatImage to_gray(const FloatImage& image) {
    if (image.channels == 1) return image;
    FloatImage gray(image.width, image.height);
    gray.depth = image.depth;
    const size_t n = static_cast<size_t>(image.width) * image.height;
    for (size_t i = 0; i < n; ++i) {
        const float* p = image.pixels.data() + 3 * i;
        // Integer samples keep the rounded integer weights of the 8-bit path.
        gray.pixels[i] = image.depth ? std::floor((77.0f * p[0] + 150.0f * p[1] + 29.0f * p[2] + 128.0f) / 256.0f)
                                     : (77.0f * p[0] + 150.0f * p[1] + 29.0f * p[2]) / 256.0f;
    }
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
    Image out(image.width, image.height, image.channels);
    for (size_t i = 0; i < image.pixels.size(); ++i) {
        const float v = image.pixels[i];
        const float s = std::isnan(v) ? 0.0f : (v - lo) * scale;
        out.pixels[i] = static_cast<uint8_t>(std::clamp(s + 0.5f, 0.0f, 255.0f));
    }
    return out;
}

Image scale_to_8u(const int16_t* data, int width, int height, int step_bytes, bool absolute) {
    int lo = 0, hi = 0;
    auto row = [&](int y) {
        return reinterpret_cast<const int16_t*>(reinterpret_cast<const char*>(data) + static_cast<size_t>(y) * step_bytes);
    };
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
