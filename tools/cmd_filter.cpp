// The general strip filters (blur, Laplace, and the general form of sobel)
// on files, streamed 16 rows at a time, and the corner picture of the
// minimal eigenvalue; their demo steps.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "cli.h"
#include "orucv.h"
#include "row_io.h"

namespace orucv_tool {

enum class FilterKind { Sobel, Blur, Laplace };

namespace {

constexpr int kStripRows = 16;

const char* function_name(FilterKind kind) {
    return kind == FilterKind::Sobel ? "oruiSobel_8u16s_C1R"
           : kind == FilterKind::Blur ? "oruiBlur_8u16s_C1R"
                                      : "oruiLaplace_8u16s_C1R";
}

// A filter specification released on every path.
struct FilterHandle {
    OruFilterSpec* p = nullptr;
    FilterHandle(FilterKind kind, int width, int size, int xorder, int yorder) {
        const OruStatus s = kind == FilterKind::Sobel ? oruiSobelInitAlloc(width, oruDataType8u, size, 0, xorder, yorder, &p)
                            : kind == FilterKind::Blur ? oruiBlurInitAlloc(width, oruDataType8u, size, &p)
                                                       : oruiLaplaceInitAlloc(width, oruDataType8u, size, &p);
        check_status(s, kind == FilterKind::Sobel ? "oruiSobelInitAlloc"
                        : kind == FilterKind::Blur ? "oruiBlurInitAlloc"
                                                   : "oruiLaplaceInitAlloc");
    }
    ~FilterHandle() { oruiConvolFree(&p); }
    FilterHandle(const FilterHandle&) = delete;
    FilterHandle& operator=(const FilterHandle&) = delete;
};

OruStatus filter_strip(FilterKind kind, const Oru8u* src, int srcStep, Oru16s* dst, int dstStep, OruSize* roi,
                       OruFilterSpec* fspec, int flag) {
    if (kind == FilterKind::Sobel) return oruiSobel_8u16s_C1R(src, srcStep, dst, dstStep, roi, fspec, flag);
    if (kind == FilterKind::Blur) return oruiBlur_8u16s_C1R(src, srcStep, dst, dstStep, roi, fspec, flag);
    return oruiLaplace_8u16s_C1R(src, srcStep, dst, dstStep, roi, fspec, flag);
}

// Reads IN a strip at a time, filters it and writes the rows that come out:
// memory for 16 source rows and 16 + n/2 result rows whatever the height.
// PNG/PGM outputs: the blur's mean (8-bit), else 16-bit value + 32768 (or
// |value| with --raw abs); .npy keeps int16, .pfm float.
int stream_filter(const Args& args, FilterKind kind, int size, int xorder, int yorder) {
    RowReader in(args.positional[0], args.input(), RowReader::Bytes, RowReader::Gray);
    const std::string& out_name = args.positional[1];
    const OutputFormat format = output_format(out_name);
    const bool abs_values = args.get("--raw") == "abs";
    if (abs_values && keeps_values(format)) throw ToolError("--raw is for PNG/PGM outputs; .pfm and .npy keep the values");
    const int w = in.width(), h = in.height(), area = size * size;
    const Sample sample = format == OutputFormat::Npy   ? Sample::I16
                          : format == OutputFormat::Pfm ? Sample::F32
                          : kind == FilterKind::Blur    ? Sample::U8
                                                        : Sample::U16;
    FilterHandle fspec(kind, w, size, xorder, yorder);
    RowWriter out(out_name, w, h, 1, sample, &in);
    Progress progress(args.command->name, static_cast<uint64_t>(h));
    std::vector<uint8_t> src(static_cast<size_t>(w) * kStripRows);
    std::vector<int16_t> dst(static_cast<size_t>(w) * (kStripRows + size / 2));
    std::vector<uint8_t> row8(sample == Sample::U8 ? w : 0);
    std::vector<uint16_t> row16(sample == Sample::U16 ? w : 0);
    std::vector<float> row32(sample == Sample::F32 ? w : 0);
    double filter_ms = 0;
    for (int y = 0; y < h;) {
        const int rows = std::min(kStripRows, h - y);
        for (int i = 0; i < rows; ++i) in.read_row(src.data() + static_cast<size_t>(i) * w);
        const int flag = y == 0 ? (rows == h ? 0 : 1) : y + rows == h ? 2 : 4;
        OruSize roi{w, rows};
        const auto t0 = std::chrono::steady_clock::now();
        check_status(filter_strip(kind, src.data(), w, dst.data(), 2 * w, &roi, fspec.p, flag), function_name(kind));
        filter_ms += std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - t0).count();
        for (int i = 0; i < roi.height; ++i) {
            const int16_t* r = dst.data() + static_cast<size_t>(i) * w;
            if (sample == Sample::I16) {
                out.write_row(r);
            } else if (sample == Sample::F32) {
                for (int x = 0; x < w; ++x) row32[x] = r[x];
                out.write_row(row32.data());
            } else if (sample == Sample::U8) {
                for (int x = 0; x < w; ++x) row8[x] = static_cast<uint8_t>((r[x] + area / 2) / area);
                out.write_row(row8.data());
            } else {
                for (int x = 0; x < w; ++x) row16[x] = static_cast<uint16_t>(abs_values ? std::abs(r[x]) : r[x] + 32768);
                out.write_row(row16.data());
            }
        }
        y += rows;
        progress.update(static_cast<uint64_t>(y));
    }
    out.finish();
    progress.finish();
    const char* stored = sample == Sample::U8    ? " (the mean, 8-bit)"
                         : sample == Sample::U16 ? (abs_values ? " (16-bit, absolute values)" : " (16-bit, value + 32768)")
                                                 : "";
    std::printf("%s: %dx%d, %s size %d in strips of %d rows, %.2f ms%s\n", out_name.c_str(), w, h,
                function_name(kind), size, kStripRows, filter_ms, stored);
    return 0;
}

int kernel_size(const Args& args) {
    const int size = args.get_int("--size", 3, 3, 7);
    if (size % 2 == 0) throw ToolError("option --size takes 3, 5 or 7, not " + std::to_string(size));
    return size;
}

int run_blur(const Args& args) { return stream_filter(args, FilterKind::Blur, kernel_size(args), 0, 0); }
ORUCV_COMMAND("blur", "IN OUT", "box sum of N x N pixels, streamed in strips", run_blur, kReads8,
              {{"--size", "N", "side of the square window: 3, 5 or 7 (default 3)"}},
              "Gray 8-bit images, read and written a strip of 16 rows at a time, so memory stays a few rows\n"
              "whatever the height. A PNG/PGM output holds the mean of each window (the sum / N*N, rounded);\n"
              ".npy keeps the 16-bit sums, .pfm holds them as floats. Edges replicate the nearest pixel.");

int run_laplace(const Args& args) { return stream_filter(args, FilterKind::Laplace, kernel_size(args), 2, 0); }
ORUCV_COMMAND("laplace", "IN OUT", "Laplacian of size N, streamed in strips", run_laplace, kReads8,
              {{"--size", "N", "kernel size: 3, 5 or 7 (default 3)"},
               {"--raw", "offset|abs", "PNG/PGM output: value + 32768 (the default) or the absolute value"}},
              "Gray 8-bit images, read and written a strip of 16 rows at a time. The results are signed\n"
              "16-bit sums (wrapping beyond the 16-bit range for sizes 5 and 7 on strong edges): .npy keeps\n"
              "them, .pfm holds them as floats, PNG/PGM stores them as 16-bit samples.");

}  // namespace

// The general form of `orucv sobel` (--size, or --dx/--dy with an order).
int run_strip_sobel(const Args& args) {
    const int size = kernel_size(args);
    auto order = [&](const char* name) {
        if (!args.has(name)) return 0;
        const std::string v = args.get(name);
        const int order = v.empty() ? 1 : std::atoi(v.c_str());
        if (order > size - 1) throw ToolError(std::string("option ") + name + " takes 0.." + std::to_string(size - 1) +
                                              " for size " + std::to_string(size) + ", not " + v);
        return order;
    };
    int xorder = order("--dx"), yorder = order("--dy");
    if (!args.has("--dx") && !args.has("--dy")) xorder = 1;
    return stream_filter(args, FilterKind::Sobel, size, xorder, yorder);
}

namespace {

// ---- Corners

struct Corner {
    int x, y;
    float value;
};

// The minimal eigenvalue (aperture 3, window 3) and its strongest local
// maxima, at least 8 pixels apart, above 1% of the strongest.
std::vector<Corner> find_corners(const Image& gray, size_t count, Timing* timing) {
    const int w = gray.width, h = gray.height;
    int size = 0;
    check_status(oruiMinEigenValGetSize(w, 3, 3, &size), "oruiMinEigenValGetSize");
    std::vector<Oru8u> buffer(static_cast<size_t>(size));
    std::vector<float> measure(static_cast<size_t>(w) * h);
    int status = 0;
    *timing = time_runs([&] {
        status = oruiMinEigenVal_8u32f_C1R(gray.pixels.data(), gray.step(), measure.data(), 4 * w, {w, h}, 3, 3,
                                           buffer.data());
    });
    check_status(status, "oruiMinEigenVal_8u32f_C1R");
    const float top = *std::max_element(measure.begin(), measure.end());
    auto at = [&](int x, int y) { return measure[static_cast<size_t>(y) * w + x]; };
    std::vector<Corner> candidates;
    for (int y = 1; y + 1 < h; ++y)
        for (int x = 1; x + 1 < w; ++x) {
            const float v = at(x, y);
            if (!(v > 0.01f * top)) continue;
            bool peak = true;
            for (int dy = -1; dy <= 1 && peak; ++dy)
                for (int dx = -1; dx <= 1; ++dx) {
                    const float n = at(x + dx, y + dy);
                    // Ties go to the first in scan order.
                    if (n > v || (n == v && (dy < 0 || (dy == 0 && dx < 0)))) peak = false;
                }
            if (peak) candidates.push_back({x, y, v});
        }
    std::stable_sort(candidates.begin(), candidates.end(), [](const Corner& a, const Corner& b) { return a.value > b.value; });
    std::vector<Corner> kept;
    for (const Corner& c : candidates) {
        if (kept.size() == count) break;
        bool far = true;
        for (const Corner& k : kept) far = far && (c.x - k.x) * (c.x - k.x) + (c.y - k.y) * (c.y - k.y) >= 64;
        if (far) kept.push_back(c);
    }
    return kept;
}

// The image darkened, each corner a white square ringed in black.
Image corner_picture(const Image& gray, const std::vector<Corner>& corners) {
    Image out = gray;
    for (uint8_t& p : out.pixels) p = static_cast<uint8_t>(p * 3 / 4);
    auto put = [&](int x, int y, uint8_t v) {
        if (x >= 0 && y >= 0 && x < out.width && y < out.height) out.at(x, y) = v;
    };
    for (const Corner& c : corners)
        for (int ring = 3; ring <= 4; ++ring)
            for (int i = -ring; i <= ring; ++i) {
                const uint8_t v = ring == 3 ? 255 : 0;
                put(c.x + i, c.y - ring, v), put(c.x + i, c.y + ring, v);
                put(c.x - ring, c.y + i, v), put(c.x + ring, c.y + i, v);
            }
    return out;
}

int run_corners(const Args& args) {
    const int count = args.get_int("--count", 100, 1, 1 << 20);
    const Image gray = to_gray(read_image(args.positional[0], args.input()));
    Timing t;
    const std::vector<Corner> corners = find_corners(gray, static_cast<size_t>(count), &t);
    write_image(args.positional[1], corner_picture(gray, corners));
    std::printf("%s: %dx%d, %zu corners, oruiMinEigenVal_8u32f_C1R %s\n", args.positional[1].c_str(), gray.width,
                gray.height, corners.size(), t.text().c_str());
    return 0;
}
ORUCV_COMMAND("corners", "IN OUT", "the strongest corners of an image, marked", run_corners, kReads8 | kRepeat,
              {{"--count", "N", "corners to mark at most (default 100)"}},
              "The minimal eigenvalue of the gradient covariance (Sobel aperture 3, 3x3 window) per pixel;\n"
              "its local maxima above 1% of the strongest, at least 8 pixels apart, strongest first, are\n"
              "marked on the darkened image as white squares ringed in black.");

// ---- Demo

Signed16Image filter_whole(FilterKind kind, const Image& gray, int size, Timing* timing) {
    FilterHandle fspec(kind, gray.width, size, 0, 0);
    Signed16Image out(gray.width, gray.height);
    int status = 0;
    *timing = time_runs([&] {
        OruSize roi{gray.width, gray.height};
        status = filter_strip(kind, gray.pixels.data(), gray.step(), out.data(), out.step_bytes(), &roi, fspec.p, 0);
    });
    check_status(status, function_name(kind));
    return out;
}

void demo_filters(DemoContext& demo) {
    const Image& scene = demo.frame(0);
    Timing t;
    const Signed16Image sums = filter_whole(FilterKind::Blur, scene, 7, &t);
    Image mean(scene.width, scene.height);
    for (size_t i = 0; i < mean.pixels.size(); ++i) mean.pixels[i] = static_cast<uint8_t>((sums.pixels[i] + 24) / 49);
    demo.save("blur.png", mean, "oruiBlur_8u16s_C1R", t.min_ms(), "7x7 box mean of frame 0");
    const Signed16Image lap = filter_whole(FilterKind::Laplace, scene, 3, &t);
    demo.save("laplace.png", scale_to_8u(lap.data(), lap.width, lap.height, lap.step_bytes(), true),
              "oruiLaplace_8u16s_C1R", t.min_ms(), "|Laplacian| (size 3) of frame 0, scaled to 8 bits");
    const std::vector<Corner> corners = find_corners(scene, 150, &t);
    demo.save("corners.png", corner_picture(scene, corners), "oruiMinEigenVal_8u32f_C1R", t.min_ms(),
              std::to_string(corners.size()) + " strongest corners of frame 0");
}
ORUCV_DEMO_STEP(25, "Box blur, Laplacian and corners", demo_filters);

}  // namespace
}  // namespace orucv_tool
