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

int run_fill(const Args& args) {
    const char* usage = "usage: orucv fill IN OUT --seed X,Y --value V [--connect 4|8] [--lo D --hi D]";
    if (args.positional.size() != 2 || !args.has("--seed") || !args.has("--value")) throw ToolError(usage);
    for (const auto& option : args.options)
        if (option.first != "--seed" && option.first != "--value" && option.first != "--connect" &&
            option.first != "--lo" && option.first != "--hi")
            throw ToolError("unknown option " + option.first + "\n" + usage);
    FillSpec f{0, 0, args.get_int("--value", 0)};
    const auto seed = args.get_pair("--seed");
    f.x = seed.first, f.y = seed.second;
    const int connect = args.get_int("--connect", 4);
    if (connect != 4 && connect != 8) throw ToolError("--connect takes 4 or 8");
    f.eight = connect == 8;
    f.gradient = args.has("--lo") || args.has("--hi");
    f.lo = args.get_int("--lo", 0), f.hi = args.get_int("--hi", 0);
    if (f.value < 0 || f.value > 255) throw ToolError("--value takes 0..255");
    if (f.gradient && (f.lo < 0 || f.hi < 0 || f.lo + f.hi > 255))
        throw ToolError("--lo and --hi take tolerances of at least 0 that add up to at most 255");

    Image image = to_gray(read_image(args.positional[0]));
    if (f.x < 0 || f.y < 0 || f.x >= image.width || f.y >= image.height)
        throw ToolError("seed " + std::to_string(f.x) + "," + std::to_string(f.y) + " lies outside the " +
                        std::to_string(image.width) + "x" + std::to_string(image.height) + " image");
    const bool unchanged = !f.gradient && image.at(f.x, f.y) == f.value;
    double ms = 0;
    const OruConnectedComp region = flood_fill(image, f, &ms);
    write_image(args.positional[1], image);
    if (unchanged) {
        std::printf("%s: the seed already holds %d: nothing filled\n", args.positional[1].c_str(), f.value);
        return 0;
    }
    std::printf("%s: %dx%d, %d-connected %s fill from (%d,%d): %s, %.3f ms\n", args.positional[1].c_str(), image.width,
                image.height, connect, f.gradient ? "gradient" : "fixed-range", f.x, f.y, describe(region).c_str(), ms);
    return 0;
}
ORUCV_COMMAND("fill", "IN OUT --seed X,Y --value V [--connect 4|8] [--lo D --hi D]   flood fill (gradient with --lo/--hi)",
              run_fill);

}  // namespace
}  // namespace orucv_tool
