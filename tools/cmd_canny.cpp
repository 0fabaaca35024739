// Canny edge detector on the scene and on files, from Sobel derivatives.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

#include "cli.h"
#include "orucv.h"

namespace orucv_tool {
namespace {

// The 3x3 Sobel x and y derivatives (origin 0) of a gray image.
void scene_derivatives(const Image& img, std::vector<int16_t>& dx, std::vector<int16_t>& dy) {
    const int w = img.width, h = img.height;
    dx.assign(static_cast<size_t>(w) * h, 0);
    dy.assign(static_cast<size_t>(w) * h, 0);
    check_status(oruiSobel3x3_Dx_8u16s_C1R(img.pixels.data(), img.step(), dx.data(), 2 * w, {w, h}),
                 "oruiSobel3x3_Dx_8u16s_C1R");
    check_status(oruiSobel3x3_Dy_8u16s_C1R(img.pixels.data(), img.step(), dy.data(), 2 * w, 0, {w, h}),
                 "oruiSobel3x3_Dy_8u16s_C1R");
}

}  // namespace

Image canny_edges(const Image& gray, float low, float high, double* ms, size_t* edge_count, Timing* timing) {
    const int w = gray.width, h = gray.height;
    int size = 0;
    if (oruiCannyGetSize({w, h}, &size) != oruStsOk)
        throw ToolError("image of " + std::to_string(w) + "x" + std::to_string(h) + " is too large for the detector");
    std::vector<int16_t> dx, dy;
    scene_derivatives(gray, dx, dy);
    std::vector<uint8_t> buffer(static_cast<size_t>(size));
    Image edges(w, h);
    int status = 0;
    const Timing t = time_runs([&] {
        status = oruiCanny_16s8u_C1R(dx.data(), 2 * w, dy.data(), 2 * w, edges.pixels.data(), edges.step(), {w, h},
                                     low, high, buffer.data());
    });
    *ms = t.min_ms();
    if (timing) *timing = t;
    check_status(status, "oruiCanny_16s8u_C1R");
    *edge_count = 0;
    for (uint8_t p : edges.pixels) *edge_count += p != 0;
    return edges;
}

namespace {

void demo_canny(DemoContext& demo) {
    double ms = 0;
    size_t count = 0;
    const Image edges = canny_edges(demo.frame(0), 40.0f, 120.0f, &ms, &count);
    char detail[96];
    std::snprintf(detail, sizeof detail, "Sobel 3x3 derivatives, thresholds 40/120, %zu edge pixels", count);
    demo.save("canny.png", edges, "oruiCanny_16s8u_C1R", ms, detail);
}
ORUCV_DEMO_STEP(51, "Canny edge detector", demo_canny);

// Gaussian smoothing by `passes` passes of the pyramids' 1 4 6 4 1 kernel in
// each direction (variance 1 per pass, so sigma = sqrt(passes)): the passes
// combine into one binomial kernel of 4 * passes + 1 taps, applied in double
// precision and rounded once. Borders mirror without repeating the edge
// pixel, as the pyramids do.
Image binomial_smooth(const Image& in, int passes) {
    const int taps = 4 * passes + 1, r = 2 * passes;
    std::vector<double> k(taps, 0.0);
    k[0] = 1.0;
    for (int n = 1; n < taps; ++n)
        for (int i = n; i > 0; --i) k[i] += k[i - 1];
    const double total = std::ldexp(1.0, 4 * passes);
    for (double& v : k) v /= total;
    auto mirror = [](int i, int n) {
        if (n == 1) return 0;
        const int period = 2 * (n - 1);
        i %= period;
        if (i < 0) i += period;
        return i < n ? i : period - i;
    };
    const int w = in.width, h = in.height;
    std::vector<double> across(static_cast<size_t>(w) * h);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            double sum = 0;
            for (int t = 0; t < taps; ++t) sum += k[t] * in.at(mirror(x + t - r, w), y);
            across[static_cast<size_t>(y) * w + x] = sum;
        }
    Image out(w, h);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            double sum = 0;
            for (int t = 0; t < taps; ++t) sum += k[t] * across[static_cast<size_t>(mirror(y + t - r, h)) * w + x];
            out.at(x, y) = static_cast<uint8_t>(std::min(255.0, std::floor(sum + 0.5)));
        }
    return out;
}

int run_canny(const Args& args) {
    const double low = args.get_double("--low", 40.0, 0.0, 1e9), high = args.get_double("--high", 120.0, 0.0, 1e9);
    if (high < low) throw ToolError("--high must be at least --low");
    const double sigma = args.get_double("--sigma", 0.0, 0.0, 8.0);
    const int passes = static_cast<int>(std::lround(sigma * sigma));
    Image gray = to_gray(read_image(args.positional[0], args.input()));
    if (passes > 0) gray = binomial_smooth(gray, passes);
    double ms = 0;
    size_t count = 0;
    Timing timing;
    const Image edges = canny_edges(gray, static_cast<float>(low), static_cast<float>(high), &ms, &count, &timing);
    write_image(args.positional[1], edges);
    char smoothing[64] = "";
    if (passes > 0) std::snprintf(smoothing, sizeof smoothing, ", smoothed with sigma %.3g", std::sqrt(passes));
    std::printf("%s: %dx%d%s, %zu edge pixels, %s\n", args.positional[1].c_str(), gray.width, gray.height,
                smoothing, count, timing.text().c_str());
    return 0;
}
ORUCV_COMMAND("canny", "IN OUT", "Canny edges (255, else 0) of an image as gray, from its Sobel 3x3 derivatives",
              run_canny, kReads8 | kRepeat,
              {{"--low", "L", "lower hysteresis threshold (default 40)"},
               {"--high", "H", "upper hysteresis threshold (default 120)"},
               {"--sigma", "S", "Gaussian smoothing first, as round(S^2) passes of the 1 4 6 4 1 kernel (default 0: none)"}},
              "Photographs usually need --sigma 1 or more: without smoothing, noise and texture give edges.\n"
              "The smoothing is the pyramids' 5-tap kernel applied round(S^2) times, a Gaussian of sigma\n"
              "sqrt(round(S^2)); the time printed is the detector's own.");

}  // namespace
}  // namespace orucv_tool
