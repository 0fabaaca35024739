// Canny edge detector on the scene and on files, from Sobel derivatives.
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

Image canny_edges(const Image& gray, float low, float high, double* ms, size_t* edge_count) {
    const int w = gray.width, h = gray.height;
    int size = 0;
    if (oruiCannyGetSize({w, h}, &size) != oruStsOk)
        throw ToolError("image of " + std::to_string(w) + "x" + std::to_string(h) + " is too large for the detector");
    std::vector<int16_t> dx, dy;
    scene_derivatives(gray, dx, dy);
    std::vector<uint8_t> buffer(static_cast<size_t>(size));
    Image edges(w, h);
    int status = 0;
    *ms = time_ms([&] {
        status = oruiCanny_16s8u_C1R(dx.data(), 2 * w, dy.data(), 2 * w, edges.pixels.data(), edges.step(), {w, h},
                                     low, high, buffer.data());
    });
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

int run_canny(const Args& args) {
    if (args.positional.size() != 2) throw ToolError("usage: orucv canny IN OUT --low L --high H");
    const double low = args.get_double("--low", 40.0), high = args.get_double("--high", 120.0);
    if (!(low >= 0) || !(high >= low) || !std::isfinite(high))
        throw ToolError("thresholds need 0 <= --low <= --high, finite");
    const Image gray = to_gray(read_image(args.positional[0]));
    double ms = 0;
    size_t count = 0;
    const Image edges = canny_edges(gray, static_cast<float>(low), static_cast<float>(high), &ms, &count);
    write_image(args.positional[1], edges);
    std::printf("%s: %dx%d, %zu edge pixels, %.3f ms\n", args.positional[1].c_str(), gray.width, gray.height, count,
                ms);
    return 0;
}
ORUCV_COMMAND("canny", "IN OUT --low L --high H   Canny edges (255) of an image as gray, from its Sobel 3x3 "
                       "derivatives (defaults 40 and 120)",
              run_canny);

}  // namespace
}  // namespace orucv_tool
