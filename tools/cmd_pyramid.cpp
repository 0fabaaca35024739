// Gaussian pyramids on the scene and on files: levels down and back up.
#include <cstdio>
#include <string>
#include <vector>

#include "cli.h"
#include "orucv.h"
#include "scene.h"

namespace orucv_tool {
namespace {

using PyrFn = OruStatus (*)(const Oru8u*, int, Oru8u*, int, OruSize, Oru8u*);

// One level of an 8-bit gray or colour image. PyrDown needs even sides: an
// odd last column or row is left out of the region.
Image pyramid_level(const Image& in, bool down, double* ms) {
    if (in.channels != 1 && in.channels != 3) throw ToolError("only gray and RGB images are supported");
    const OruSize roi = down ? OruSize{in.width & ~1, in.height & ~1} : OruSize{in.width, in.height};
    if (roi.width < 1 || roi.height < 1 || (down && (roi.width < 2 || roi.height < 2)))
        throw ToolError("image of " + std::to_string(in.width) + "x" + std::to_string(in.height) +
                        " is too small for another level");
    const bool colour = in.channels == 3;
    const char* name = down ? (colour ? "oruiPyrDown_Gauss5x5_8u_C3R" : "oruiPyrDown_Gauss5x5_8u_C1R")
                            : (colour ? "oruiPyrUp_Gauss5x5_8u_C3R" : "oruiPyrUp_Gauss5x5_8u_C1R");
    const PyrFn fn = down ? (colour ? oruiPyrDown_Gauss5x5_8u_C3R : oruiPyrDown_Gauss5x5_8u_C1R)
                          : (colour ? oruiPyrUp_Gauss5x5_8u_C3R : oruiPyrUp_Gauss5x5_8u_C1R);
    int size = 0;
    check_status(down ? oruiPyrDownGetBufSize_Gauss5x5(roi.width, oruDataType8u, in.channels, &size)
                      : oruiPyrUpGetBufSize_Gauss5x5(roi.width, oruDataType8u, in.channels, &size),
                 down ? "oruiPyrDownGetBufSize_Gauss5x5" : "oruiPyrUpGetBufSize_Gauss5x5");
    std::vector<Oru8u> buffer(static_cast<size_t>(size));
    Image out(down ? roi.width / 2 : roi.width * 2, down ? roi.height / 2 : roi.height * 2, in.channels);
    int status = 0;
    *ms = time_ms([&] {
        status = fn(in.pixels.data(), in.step(), out.pixels.data(), out.step(), roi, buffer.data());
    });
    check_status(status, name);
    return out;
}

void demo_pyramid(DemoContext& demo) {
    const char* down_name = "oruiPyrDown_Gauss5x5_8u_C1R";
    std::vector<Image> levels{demo.frame(0)};
    for (int level = 1; level <= 3; ++level) {
        double ms = 0;
        levels.push_back(pyramid_level(levels.back(), true, &ms));
        demo.save("pyramid-down" + std::to_string(level) + ".png", levels.back(), down_name, ms,
                  "level " + std::to_string(level) + " of the scene");
    }
    // Back up from the smallest level: the detail lost on the way down stays lost.
    Image up = levels.back();
    double total_ms = 0;
    for (int level = 3; level >= 1; --level) {
        double ms = 0;
        up = pyramid_level(up, false, &ms);
        total_ms += ms;
    }
    demo.save("pyramid-up.png", up, "oruiPyrUp_Gauss5x5_8u_C1R", total_ms / 3, "level 3 expanded three times");

    const Image colour = render_scene_rgb(kSceneWidth, kSceneHeight, 0);
    double ms = 0;
    const Image small = pyramid_level(colour, true, &ms);
    demo.save("pyramid-down1-rgb.png", small, "oruiPyrDown_Gauss5x5_8u_C3R", ms, "colour scene, level 1");
}
ORUCV_DEMO_STEP(90, "Gaussian pyramid", demo_pyramid);

int run_pyrdown(const Args& args) {
    if (args.positional.size() != 2) throw ToolError("usage: orucv pyrdown IN OUT [--levels N]");
    const int levels = args.get_int("--levels", 1);
    if (levels < 1 || levels > 30) throw ToolError("--levels needs a number from 1 to 30");
    Image image = read_image(args.positional[0]);
    const int width = image.width, height = image.height;
    double total_ms = 0;
    for (int level = 0; level < levels; ++level) {
        double ms = 0;
        image = pyramid_level(image, true, &ms);
        total_ms += ms;
    }
    write_image(args.positional[1], image);
    std::printf("%s: %dx%d -> %dx%d in %d level%s, %.3f ms\n", args.positional[1].c_str(), width, height, image.width,
                image.height, levels, levels == 1 ? "" : "s", total_ms);
    return 0;
}
ORUCV_COMMAND("pyrdown", "IN OUT [--levels N]   Gaussian pyramid levels down (gray or colour; odd sides lose a pixel)",
              run_pyrdown);

int run_pyrup(const Args& args) {
    if (args.positional.size() != 2) throw ToolError("usage: orucv pyrup IN OUT");
    const Image image = read_image(args.positional[0]);
    double ms = 0;
    const Image up = pyramid_level(image, false, &ms);
    write_image(args.positional[1], up);
    std::printf("%s: %dx%d -> %dx%d, %.3f ms\n", args.positional[1].c_str(), image.width, image.height, up.width,
                up.height, ms);
    return 0;
}
ORUCV_COMMAND("pyrup", "IN OUT   Gaussian pyramid level up, twice the size (gray or colour)", run_pyrup);

}  // namespace
}  // namespace orucv_tool
