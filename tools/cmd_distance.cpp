// Chamfer distance transforms on the scene's edges and on files.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "cli.h"
#include "orucv.h"

namespace orucv_tool {
namespace {

struct Mask {
    int size;  // 3 or 5
    int code;  // for oruiGetDistanceTransformMask
    const char* name;
};

Mask parse_mask(const Args& args) {
    const int size = args.get_int("--mask", 3);
    const std::string metric = args.get("--metric", "l2");
    const int norm = metric == "c" ? 0 : metric == "l1" ? 1 : 2;
    if (size == 5 && norm != 2) throw ToolError("the 5x5 mask exists for the l2 metric only");
    static const char* const names[] = {"chessboard", "city block", "Euclidean"};
    return {size, size * 10 + norm, names[norm]};
}

// Distance of every pixel to the nearest zero pixel of `features`.
FloatImage distance_map(const Image& features, const Mask& mask, double* ms, Timing* timing = nullptr) {
    Oru32f metrics[3] = {0, 0, 0};
    check_status(oruiGetDistanceTransformMask(mask.code, metrics), "oruiGetDistanceTransformMask");
    FloatImage out(features.width, features.height);
    const OruSize roi{features.width, features.height};
    auto fn = mask.size == 5 ? oruiDistanceTransform_5x5_8u32f_C1R : oruiDistanceTransform_3x3_8u32f_C1R;
    int status = 0;
    const Timing t = time_runs([&] {
        status = fn(features.pixels.data(), features.step(), out.data(), out.step_bytes(), roi, metrics);
    });
    *ms = t.min_ms();
    if (timing) *timing = t;
    check_status(status, mask.size == 5 ? "oruiDistanceTransform_5x5_8u32f_C1R" : "oruiDistanceTransform_3x3_8u32f_C1R");
    return out;
}

void demo_distance(DemoContext& demo) {
    // The Canny edges are the features: edge pixels become 0, the rest 255.
    double canny_ms = 0;
    size_t count = 0;
    Image edges = canny_edges(demo.frame(0), 40.0f, 120.0f, &canny_ms, &count);
    for (auto& p : edges.pixels) p = p ? 0 : 255;
    const Mask mask{5, 52, "Euclidean"};
    double ms = 0;
    const FloatImage map = distance_map(edges, mask, &ms);
    demo.save("distance.png", scale_to_8u(map), "oruiDistanceTransform_5x5_8u32f_C1R", ms,
              "5x5 Euclidean distance to the Canny edges, scaled");
}
ORUCV_DEMO_STEP(60, "chamfer distance transform", demo_distance);

int run_distance(const Args& args) {
    const Mask mask = parse_mask(args);
    const Image in = to_gray(read_image(args.positional[0], args.input()));
    double ms = 0;
    Timing timing;
    const FloatImage map = distance_map(in, mask, &ms, &timing);
    const bool any_feature = std::find(in.pixels.begin(), in.pixels.end(), 0) != in.pixels.end();
    const float largest = map.pixels.empty() ? 0.0f : *std::max_element(map.pixels.begin(), map.pixels.end());
    write_image(args.positional[1], map, 0.0f, largest > 0 ? largest : 1.0f);
    std::printf("%s: %dx%d, %dx%d %s mask, largest distance %g%s, %s\n", args.positional[1].c_str(), in.width,
                in.height, mask.size, mask.size, mask.name, largest,
                any_feature ? "" : " (no zero pixel: every distance is 4096)", timing.text().c_str());
    return 0;
}
ORUCV_COMMAND("distance", "IN OUT", "chamfer distance of every pixel to the nearest zero pixel of an image (as gray)",
              run_distance, kReads8 | kRepeat,
              {{"--mask", "3|5", "mask size (default 3; 5 is for l2 only)"},
               {"--metric", "c|l1|l2", "chessboard, city block or Euclidean weights (default l2)"}},
              "A .pfm or .npy output keeps the distances; a PNG/PGM output is a picture where black is 0 and\n"
              "white the largest distance.");

}  // namespace
}  // namespace orucv_tool
