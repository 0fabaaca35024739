// Intensity profiles: the pixels of the digital line between two points, as
// a table and as a small line plot, on the scene and on files.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "cli.h"
#include "orucv.h"

namespace orucv_tool {
namespace {

OruPoint parse_point(const std::string& text, const char* what) {
    int x = 0, y = 0;
    char tail = 0;
    if (std::sscanf(text.c_str(), "%d,%d%c", &x, &y, &tail) != 2)
        throw ToolError(std::string(what) + " needs X,Y, not '" + text + "'");
    return {x, y};
}

// The points of the line in the library's stepping: the major axis (y when
// |dx| <= |dy|) moves one pixel per point, the minor coordinate has moved
// ceil(minor * k / major - 1/2) after k steps.
std::vector<OruPoint> line_points(OruPoint p, OruPoint q) {
    const long long dx = static_cast<long long>(q.x) - p.x, dy = static_cast<long long>(q.y) - p.y;
    const bool steep = std::llabs(dx) <= std::llabs(dy);
    const long long major = steep ? std::llabs(dy) : std::llabs(dx), minor = steep ? std::llabs(dx) : std::llabs(dy);
    std::vector<OruPoint> points;
    for (long long k = 0; k <= major; ++k) {
        const long long a = 2 * minor * k - major, b = 2 * major;  // ceil(a / b)
        const long long m = major == 0 ? 0 : a >= 0 ? (a + b - 1) / b : -(-a / b);
        const long long along = steep ? m : k, down = steep ? k : m;
        points.push_back({static_cast<int>(p.x + (dx < 0 ? -along : along)),
                          static_cast<int>(p.y + (dy < 0 ? -down : down))});
    }
    return points;
}

struct Profile {
    std::vector<OruPoint> points;
    std::vector<float> values;  // `channels` per point
    int channels = 1;
    bool integers = true;  // 8-bit samples
    const char* function = "";
    Timing timing;
};

template <class T>
using SampleLine = OruStatus (*)(const T*, int, OruSize, T*, OruPoint, OruPoint);

template <class T>
Profile sample(const T* pixels, int width, int height, int channels, int step, OruPoint p, OruPoint q,
               SampleLine<T> c1, const char* c1_name, SampleLine<T> c3, const char* c3_name) {
    if (channels != 1 && channels != 3) throw ToolError("profiles are of gray or RGB images");
    for (OruPoint o : {p, q})
        if (o.x < 0 || o.y < 0 || o.x >= width || o.y >= height)
            throw ToolError("point " + std::to_string(o.x) + "," + std::to_string(o.y) + " lies outside the " +
                            std::to_string(width) + "x" + std::to_string(height) + " image");
    Profile pr;
    pr.points = line_points(p, q);
    pr.channels = channels;
    pr.integers = sizeof(T) == 1;
    pr.function = channels == 1 ? c1_name : c3_name;
    std::vector<T> dst(pr.points.size() * channels);
    int status = 0;
    pr.timing = time_runs([&] { status = (channels == 1 ? c1 : c3)(pixels, step, {width, height}, dst.data(), p, q); });
    check_status(status, pr.function);
    pr.values.assign(dst.begin(), dst.end());
    return pr;
}

Profile sample(const Image& image, OruPoint p, OruPoint q) {
    return sample<Oru8u>(image.pixels.data(), image.width, image.height, image.channels, image.step(), p, q,
                         oruiSampleLine_8u_C1R, "oruiSampleLine_8u_C1R", oruiSampleLine_8u_C3R,
                         "oruiSampleLine_8u_C3R");
}

Profile sample(const FloatImage& image, OruPoint p, OruPoint q) {
    return sample<Oru32f>(image.data(), image.width, image.height, image.channels, image.step_bytes(), p, q,
                          oruiSampleLine_32f_C1R, "oruiSampleLine_32f_C1R", oruiSampleLine_32f_C3R,
                          "oruiSampleLine_32f_C3R");
}

// One row per point: index, x, y and the value of each channel.
void write_table(FILE* out, const Profile& pr) {
    std::fprintf(out, pr.channels == 1 ? "index,x,y,value\n" : "index,x,y,r,g,b\n");
    for (size_t k = 0; k < pr.points.size(); ++k) {
        std::fprintf(out, "%zu,%d,%d", k, pr.points[k].x, pr.points[k].y);
        for (int c = 0; c < pr.channels; ++c) std::fprintf(out, ",%.9g", pr.values[k * pr.channels + c]);
        std::fputc('\n', out);
    }
}

void draw_segment(Image& img, int x0, int y0, int x1, int y1, const uint8_t colour[3]) {
    const int n = std::max(std::abs(x1 - x0), std::abs(y1 - y0));
    for (int i = 0; i <= n; ++i) {
        const int x = n ? x0 + (x1 - x0) * i / n : x0, y = n ? y0 + (y1 - y0) * i / n : y0;
        for (int c = 0; c < 3; ++c) img.at(x, y, c) = colour[c];
    }
}

// A white picture with a gray frame and one line per channel (black for
// gray images, red, green and blue for RGB). The vertical axis spans 0..255
// for 8-bit samples, the finite values' range otherwise.
Image plot(const Profile& pr) {
    const int n = static_cast<int>(pr.points.size()), margin = 8;
    const int width = std::clamp(n, 240, 1200) + 2 * margin, height = 160 + 2 * margin;
    Image img(width, height, 3, 255);
    const uint8_t frame[3] = {190, 190, 190};
    draw_segment(img, margin - 1, margin - 1, width - margin, margin - 1, frame);
    draw_segment(img, margin - 1, height - margin, width - margin, height - margin, frame);
    draw_segment(img, margin - 1, margin - 1, margin - 1, height - margin, frame);
    draw_segment(img, width - margin, margin - 1, width - margin, height - margin, frame);
    float lo = 0.0f, hi = 255.0f;
    if (!pr.integers) {
        lo = INFINITY, hi = -INFINITY;
        for (float v : pr.values)
            if (std::isfinite(v)) lo = std::min(lo, v), hi = std::max(hi, v);
        if (!(lo <= hi)) lo = 0.0f, hi = 1.0f;
        if (lo == hi) lo -= 0.5f, hi += 0.5f;
    }
    const uint8_t colours[4][3] = {{0, 0, 0}, {210, 40, 40}, {30, 150, 50}, {40, 70, 210}};
    auto px = [&](int k) { return margin + (n > 1 ? static_cast<int>(1LL * k * (width - 2 * margin - 1) / (n - 1)) : 0); };
    auto py = [&](float v) {
        const double f = std::isfinite(v) ? (v - lo) / (static_cast<double>(hi) - lo) : 0.0;
        return height - margin - 1 - static_cast<int>(std::lround(std::clamp(f, 0.0, 1.0) * (height - 2 * margin - 1)));
    };
    for (int c = 0; c < pr.channels; ++c) {
        const uint8_t* colour = colours[pr.channels == 1 ? 0 : c + 1];
        for (int k = 0; k < n; ++k) {
            const int k0 = std::max(0, k - 1);
            draw_segment(img, px(k0), py(pr.values[k0 * pr.channels + c]), px(k), py(pr.values[k * pr.channels + c]),
                         colour);
        }
    }
    return img;
}

void demo_profile(DemoContext& demo) {
    const OruPoint p{20, 400}, q{620, 90};
    const Profile pr = sample(demo.frame(0), p, q);
    demo.save("profile.png", plot(pr), pr.function, pr.timing.min_ms(),
              std::to_string(pr.points.size()) + " pixels of frame 0 from (20,400) to (620,90)");
}
ORUCV_DEMO_STEP(95, "intensity profile", demo_profile);

int run_profile(const Args& args) {
    const OruPoint p = parse_point(args.positional[1], "X1,Y1"), q = parse_point(args.positional[2], "X2,Y2");
    const ReadOptions input = args.input();
    const ImageInfo info = probe_image(args.positional[0], input);
    const Profile pr = info.sample == Sample::U8 ? sample(read_image(args.positional[0], input), p, q)
                                                 : sample(read_float_image(args.positional[0], input), p, q);
    const std::string csv = args.get("--csv"), plot_name = args.get("--plot");
    if (!plot_name.empty()) write_image(plot_name, plot(pr));
    if (csv.empty()) {
        write_table(stdout, pr);
        return 0;
    }
    std::unique_ptr<FILE, int (*)(FILE*)> out(std::fopen(csv.c_str(), "w"), std::fclose);
    if (!out) throw ToolError("cannot write '" + csv + "'");
    write_table(out.get(), pr);
    if (std::ferror(out.get()) || std::fclose(out.release()) != 0) {
        std::remove(csv.c_str());
        throw ToolError("cannot write '" + csv + "'");
    }
    std::printf("%s: %zu pixels from (%d,%d) to (%d,%d), %d channel%s, %s, %s%s%s\n", csv.c_str(), pr.points.size(),
                p.x, p.y, q.x, q.y, pr.channels, pr.channels == 1 ? "" : "s", pr.function, pr.timing.text().c_str(),
                plot_name.empty() ? "" : ", plot in ", plot_name.c_str());
    return 0;
}
ORUCV_COMMAND("profile", "IN X1,Y1 X2,Y2", "the pixels along a line segment, as a table and a plot", run_profile,
              kReads | kRepeat,
              {{"--csv", "FILE", "write the table to FILE instead of the standard output"},
               {"--plot", "OUT", "draw the profile as a line plot (one line per channel)"}},
              "The table has one row per pixel of the digital line from X1,Y1 to X2,Y2, in order: index, x,\n"
              "y and the value of each channel. The line takes one pixel per step along its longer axis\n"
              "(y when the extents are equal); a half step rounds toward the start, so the two directions\n"
              "of one segment can pass through different pixels. 8-bit images are sampled as bytes,\n"
              "16-bit and float images with their exact values. With --csv the table goes to the file and\n"
              "a summary line to the standard output.");

}  // namespace
}  // namespace orucv_tool
