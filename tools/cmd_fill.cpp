// Flood fills on the scene and on files.
#include <cstdio>
#include <string>
#include <vector>

#include "cli.h"
#include "orucv.h"

namespace orucv_tool {
namespace {

struct FillSpec {
    int x, y, value;
    bool eight = false, gradient = false;
    int lo = 0, hi = 0;
};

const char* fill_name(const FillSpec& f) {
    if (f.gradient) return f.eight ? "oruiFloodFill_Grad8Con_8u_C1IR" : "oruiFloodFill_Grad4Con_8u_C1IR";
    return f.eight ? "oruiFloodFill_8Con_8u_C1IR" : "oruiFloodFill_4Con_8u_C1IR";
}

// Fills `image` in place and returns the region record.
OruConnectedComp flood_fill(Image& image, const FillSpec& f, double* ms) {
    const OruSize roi{image.width, image.height};
    int bytes = 0;
    check_status((f.gradient ? oruiFloodFillGetSize_Grad : oruiFloodFillGetSize)(roi, &bytes),
                 f.gradient ? "oruiFloodFillGetSize_Grad" : "oruiFloodFillGetSize");
    std::vector<Oru8u> buffer(static_cast<size_t>(static_cast<unsigned>(bytes)));
    OruConnectedComp region{};
    int status = 0;
    *ms = time_ms(
        [&] {
            const OruPoint seed{f.x, f.y};
            Oru8u* p = image.pixels.data();
            if (f.gradient)
                status = (f.eight ? oruiFloodFill_Grad8Con_8u_C1IR : oruiFloodFill_Grad4Con_8u_C1IR)(
                    p, image.step(), roi, seed, f.value, f.lo, f.hi, &region, buffer.data());
            else
                status = (f.eight ? oruiFloodFill_8Con_8u_C1IR : oruiFloodFill_4Con_8u_C1IR)(
                    p, image.step(), roi, seed, f.value, &region, buffer.data());
        },
        1);
    check_status(status, fill_name(f));
    return region;
}

std::string describe(const OruConnectedComp& r) {
    char text[160];
    std::snprintf(text, sizeof text, "area %.0f, value %g, rect x %d y %d w %d h %d", r.area, r.value, r.rect.x,
                  r.rect.y, r.rect.width, r.rect.height);
    return text;
}

void demo_fill(DemoContext& demo) {
    Image image = demo.frame(0);
    // The background follows a noisy gradient: a gradient fill from a corner
    // takes it and stops at the shapes' edges.
    FillSpec background{4, 4, 255, true, true, 6, 6};
    double ms = 0;
    const OruConnectedComp region = flood_fill(image, background, &ms);
    demo.save("floodfill.png", image, fill_name(background), ms, "background from (4,4), tolerance 6: " + describe(region));
}
ORUCV_DEMO_STEP(70, "flood fill", demo_fill);

// Runs `fill` on a fresh copy of `original` for each of the --repeat runs,
// timing the fill alone; `image` ends as the last run left it.
template <class Img, class Fill>
Timing fill_runs(const Img& original, Img& image, Fill&& fill) {
    Timing timing;
    for (int run = 0; run < repeat_count(); ++run) {
        image = original;
        timing.ms.push_back(time_runs(fill, 1).min_ms());
    }
    return timing;
}

int run_fill(const Args& args) {
    const auto seed = args.get_pair("--seed");
    const int connect = args.get_int("--connect", 4);
    const bool gradient = args.has("--lo") || args.has("--hi");
    const ReadOptions input = args.input();
    const ImageInfo info = probe_image(args.positional[0], input);
    if (seed.first < 0 || seed.second < 0 || seed.first >= info.width || seed.second >= info.height)
        throw ToolError("seed " + std::to_string(seed.first) + "," + std::to_string(seed.second) +
                        " lies outside the " + std::to_string(info.width) + "x" + std::to_string(info.height) +
                        " image");
    const std::string& out_name = args.positional[1];
    const OruPoint at{seed.first, seed.second};
    OruConnectedComp region{};
    std::string kind = std::to_string(connect) + "-connected " + (gradient ? "gradient" : "fixed-range") + " fill";
    Timing timing;
    bool unchanged = false;
    int width = info.width, height = info.height;
    if (info.sample == Sample::U8) {
        FillSpec f{seed.first, seed.second, args.get_int("--value", 0, 0, 255)};
        f.eight = connect == 8;
        f.gradient = gradient;
        f.lo = args.get_int("--lo", 0, 0, 255), f.hi = args.get_int("--hi", 0, 0, 255);
        if (f.lo + f.hi > 255) throw ToolError("--lo and --hi add up to at most 255");
        const Image original = to_gray(read_image(args.positional[0], input));
        Image image;
        double ms = 0;
        timing = fill_runs(original, image, [&] { region = flood_fill(image, f, &ms); });
        unchanged = !gradient && original.at(f.x, f.y) == f.value;
        write_image(out_name, image);
    } else {
        // 16-bit or float images: the float fills, on the exact values.
        const double value = args.get_double("--value", 0.0);
        const double lo = args.get_double("--lo", 0.0, 0.0), hi = args.get_double("--hi", 0.0, 0.0);
        const FloatImage original = to_gray(read_float_image(args.positional[0], input));
        FloatImage image;
        const OruSize roi{original.width, original.height};
        int bytes = 0;
        check_status((gradient ? oruiFloodFillGetSize_Grad : oruiFloodFillGetSize)(roi, &bytes),
                     gradient ? "oruiFloodFillGetSize_Grad" : "oruiFloodFillGetSize");
        std::vector<Oru8u> buffer(static_cast<size_t>(static_cast<unsigned>(bytes)));
        const char* name = gradient ? (connect == 8 ? "oruiFloodFill_Grad8Con_32f_C1IR" : "oruiFloodFill_Grad4Con_32f_C1IR")
                                    : (connect == 8 ? "oruiFloodFill_8Con_32f_C1IR" : "oruiFloodFill_4Con_32f_C1IR");
        int status = 0;
        timing = fill_runs(original, image, [&] {
            const float v = static_cast<float>(value);
            if (gradient)
                status = (connect == 8 ? oruiFloodFill_Grad8Con_32f_C1IR : oruiFloodFill_Grad4Con_32f_C1IR)(
                    image.data(), image.step_bytes(), roi, at, v, static_cast<float>(lo), static_cast<float>(hi),
                    &region, buffer.data());
            else
                status = (connect == 8 ? oruiFloodFill_8Con_32f_C1IR : oruiFloodFill_4Con_32f_C1IR)(
                    image.data(), image.step_bytes(), roi, at, v, &region, buffer.data());
        });
        check_status(status, name);
        unchanged = !gradient && original.row(at.y)[at.x] == static_cast<float>(value);
        write_image(out_name, image);
    }
    if (unchanged) {
        std::printf("%s: the seed already holds the value: nothing filled\n", out_name.c_str());
        return 0;
    }
    std::printf("%s: %dx%d, %s from (%d,%d): %s, %s\n", out_name.c_str(), width, height, kind.c_str(), at.x, at.y,
                describe(region).c_str(), timing.text().c_str());
    return 0;
}
ORUCV_COMMAND("fill", "IN OUT", "flood fill from a seed (gradient fill with --lo/--hi), of an image as gray", run_fill,
              kReads | kRepeat,
              {{"--seed", "X,Y", "the seed pixel", true},
               {"--value", "V", "the new value (0..255 for 8-bit images)", true},
               {"--connect", "4|8", "neighbours (default 4)"},
               {"--lo", "D", "gradient fill: a neighbour may be up to D below an adjacent region pixel"},
               {"--hi", "D", "gradient fill: a neighbour may be up to D above an adjacent region pixel"}},
              "8-bit images are filled as 8-bit; 16-bit and float images with the float fills, on their\n"
              "exact values (the output keeps their depth).");

}  // namespace
}  // namespace orucv_tool
