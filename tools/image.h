// Images for the command-line program and their files.
//
// Reading keeps the file's own values: 8-bit files give `Image`, 16-bit
// files (PNG, PGM/PPM with maxval above 255) and float files (PFM, NumPy
// .npy) give `FloatImage` with the exact values. No gamma curve is applied
// and alpha is never composited: it is refused, or dropped with
// `--drop-alpha`. A command that needs 8 bits refuses a 16-bit file unless
// `--to8 shift|scale` says how to convert it.
//
// Every reader checks the header against one limit (ReadOptions::max_pixels,
// `--max-pixels`) before it allocates anything: the pixel count, and the
// bytes the decoded image needs (at most kBytesPerLimitPixel per pixel of
// the limit).
//
// Writers choose the format by the output's extension: .png (8 or 16 bit),
// .pgm/.ppm/.pnm (8 or 16 bit), .pfm (float) and .npy (the values' own
// type); any other name is refused before any work is done.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace orucv_tool {

struct ToolError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// 8-bit pixels, channels interleaved, rows back to back.
struct Image {
    int width = 0, height = 0, channels = 1;
    std::vector<uint8_t> pixels;

    Image() = default;
    Image(int w, int h, int c = 1, uint8_t fill = 0)
        : width(w), height(h), channels(c), pixels(static_cast<size_t>(w) * h * c, fill) {}
    int step() const { return width * channels; }
    uint8_t* row(int y) { return pixels.data() + static_cast<size_t>(y) * step(); }
    const uint8_t* row(int y) const { return pixels.data() + static_cast<size_t>(y) * step(); }
    uint8_t& at(int x, int y, int c = 0) { return row(y)[x * channels + c]; }
    uint8_t at(int x, int y, int c = 0) const { return row(y)[x * channels + c]; }
};

// Float pixels. `depth` says what the values are, and so how a PNG/PGM/PPM
// output holds them: 8 or 16 for samples of that depth (rounded and clamped
// to 0..255 or 0..65535), 0 for measures such as distances or scores (an
// 8-bit picture scaled to a range). PFM and .npy outputs keep every value.
struct FloatImage {
    int width = 0, height = 0, channels = 1;
    int depth = 0;
    std::vector<float> pixels;

    FloatImage() = default;
    FloatImage(int w, int h, float fill = 0.0f, int c = 1)
        : width(w), height(h), channels(c), pixels(static_cast<size_t>(w) * h * c, fill) {}
    int step_bytes() const { return width * channels * 4; }
    float* data() { return pixels.data(); }
    const float* data() const { return pixels.data(); }
    float* row(int y) { return pixels.data() + static_cast<size_t>(y) * width * channels; }
    const float* row(int y) const { return pixels.data() + static_cast<size_t>(y) * width * channels; }
};

// Signed 16-bit results (derivatives), one channel.
struct Signed16Image {
    int width = 0, height = 0;
    std::vector<int16_t> pixels;

    Signed16Image() = default;
    Signed16Image(int w, int h) : width(w), height(h), pixels(static_cast<size_t>(w) * h) {}
    int step_bytes() const { return width * 2; }
    int16_t* data() { return pixels.data(); }
    const int16_t* data() const { return pixels.data(); }
};

// How 16-bit samples become 8-bit ones (`--to8`).
enum class To8 {
    Refuse,  // a 16-bit file is an error naming --to8
    Shift,   // the top 8 of the significant bits (maxval 1023: v >> 2; 16-bit PNG: v >> 8)
    Scale,   // round(v * 255 / maxval)
};

constexpr uint64_t kDefaultMaxPixels = uint64_t(1) << 28;
constexpr uint64_t kBytesPerLimitPixel = 4;

// What every reader accepts; commands fill it from the common input options
// (Args::input()).
struct ReadOptions {
    uint64_t max_pixels = kDefaultMaxPixels;  // --max-pixels
    bool drop_alpha = false;                  // --drop-alpha
    To8 to8 = To8::Refuse;                    // --to8 shift|scale
    uint64_t max_bytes() const { return max_pixels * kBytesPerLimitPixel; }
};

// The sample types of files and rows.
enum class Sample { U8, U16, I16, F32 };
int sample_bytes(Sample s);

// What a file holds, from its header (after alpha is dropped).
struct ImageInfo {
    std::string format;  // "PNG", "PGM", "PPM", "PFM", "NPY"
    int width = 0, height = 0, channels = 1;
    Sample sample = Sample::U8;  // U8, U16 or F32 (16-bit signed .npy reads as F32)
    int maxval = 255;            // largest sample value of integer files (PGM/PPM maxval)
    bool alpha_dropped = false;
    bool interlaced = false;
    // "16-bit", "8-bit", "float": for messages.
    std::string depth_name() const;
};

// Header of a file without reading its pixels, for commands that read the
// image whole: its pixel count is checked against the limit.
ImageInfo probe_image(const std::string& path, const ReadOptions& options);
// For commands that work on 8-bit pixels: 8-bit files as they are, 16-bit
// files converted as --to8 says (refused without it), float files refused.
Image read_image(const std::string& path, const ReadOptions& options = ReadOptions());
// Exact values as float, for commands with a float path. depth is 8 or 16
// for integer files, 0 for float files.
FloatImage read_float_image(const std::string& path, const ReadOptions& options = ReadOptions());

// The output format named by the extension (case ignored); ToolError for
// any other name, and for .png in a build without libpng. The parser calls
// it on every output name before a command starts its work.
enum class OutputFormat { Png, Pgm, Ppm, Pnm, Pfm, Npy };
OutputFormat output_format(const std::string& path);
// PFM and .npy keep every value of a result.
bool keeps_values(OutputFormat format);

// 8-bit image: PNG/PGM/PPM as is, PFM as float, .npy as uint8.
void write_image(const std::string& path, const Image& image);
// PFM/.npy keep the values; PNG/PGM/PPM hold samples of image.depth, or for
// depth 0 an 8-bit picture of [lo, hi] (lo == hi: the finite values' range).
void write_image(const std::string& path, const FloatImage& image, float lo = 0.0f, float hi = 0.0f);

// How a signed 16-bit result goes into a PNG/PGM (`--raw`).
enum class Signed16Png {
    Picture,  // 8-bit: |v| scaled so the largest magnitude is 255 (for viewing)
    Offset,   // 16-bit: v + 32768 (0 is 32768)
    Abs,      // 16-bit: |v|
};
// .npy keeps int16, PFM float; PNG/PGM as `mode` says.
void write_image(const std::string& path, const Signed16Image& image, Signed16Png mode);

bool png_supported();

// Gray from RGB with weights 77, 150, 29 (/256, rounded); gray as is.
Image to_gray(const Image& image);
FloatImage to_gray(const FloatImage& image);
// 8-bit picture of [lo, hi] (lo == hi: the finite values' range); NaN is 0.
Image scale_to_8u(const FloatImage& image, float lo = 0.0f, float hi = 0.0f);
// 8-bit picture of 16-bit values, of |v| when absolute.
Image scale_to_8u(const int16_t* data, int width, int height, int step_bytes, bool absolute);

}  // namespace orucv_tool
