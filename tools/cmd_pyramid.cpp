// Gaussian pyramids on the scene and on files: levels down and back up.
#include <cstdio>
#include <string>
#include <type_traits>
#include <vector>

#include "cli.h"
#include "orucv.h"
#include "scene.h"

namespace orucv_tool {
namespace {

template <class T>
using PyrFn = OruStatus (*)(const T*, int, T*, int, OruSize, Oru8u*);

template <class T>
struct PyrFns;
template <>
struct PyrFns<Oru8u> {
    static constexpr PyrFn<Oru8u> fn[2][2] = {{oruiPyrUp_Gauss5x5_8u_C1R, oruiPyrUp_Gauss5x5_8u_C3R},
                                              {oruiPyrDown_Gauss5x5_8u_C1R, oruiPyrDown_Gauss5x5_8u_C3R}};
    static constexpr const char* type = "8u";
    static constexpr int data_type = oruDataType8u;
};
template <>
struct PyrFns<Oru32f> {
    static constexpr PyrFn<Oru32f> fn[2][2] = {{oruiPyrUp_Gauss5x5_32f_C1R, oruiPyrUp_Gauss5x5_32f_C3R},
                                               {oruiPyrDown_Gauss5x5_32f_C1R, oruiPyrDown_Gauss5x5_32f_C3R}};
    static constexpr const char* type = "32f";
    static constexpr int data_type = oruDataType32f;
};

Oru8u* pixel_data(Image& img) { return img.pixels.data(); }
const Oru8u* pixel_data(const Image& img) { return img.pixels.data(); }
Oru32f* pixel_data(FloatImage& img) { return img.data(); }
const Oru32f* pixel_data(const FloatImage& img) { return img.data(); }
int step_of(const Image& img) { return img.step(); }
int step_of(const FloatImage& img) { return img.step_bytes(); }

// One level of a gray or colour image (Image: 8-bit, FloatImage: float).
// PyrDown needs even sides: an odd last column or row is left out of the
// region.
template <class Img>
Img pyramid_level(const Img& in, bool down, Timing* timing) {
    using T = std::remove_const_t<std::remove_pointer_t<decltype(pixel_data(in))>>;
    if (in.channels != 1 && in.channels != 3) throw ToolError("only gray and RGB images are supported");
    const OruSize roi = down ? OruSize{in.width & ~1, in.height & ~1} : OruSize{in.width, in.height};
    if (roi.width < 1 || roi.height < 1 || (down && (roi.width < 2 || roi.height < 2)))
        throw ToolError("image of " + std::to_string(in.width) + "x" + std::to_string(in.height) +
                        " is too small for another level");
    const bool colour = in.channels == 3;
    const std::string name = std::string(down ? "oruiPyrDown" : "oruiPyrUp") + "_Gauss5x5_" + PyrFns<T>::type +
                             (colour ? "_C3R" : "_C1R");
    const PyrFn<T> fn = PyrFns<T>::fn[down][colour];
    int size = 0;
    check_status(down ? oruiPyrDownGetBufSize_Gauss5x5(roi.width, PyrFns<T>::data_type, in.channels, &size)
                      : oruiPyrUpGetBufSize_Gauss5x5(roi.width, PyrFns<T>::data_type, in.channels, &size),
                 down ? "oruiPyrDownGetBufSize_Gauss5x5" : "oruiPyrUpGetBufSize_Gauss5x5");
    std::vector<Oru8u> buffer(static_cast<size_t>(size));
    Img out;
    out.width = down ? roi.width / 2 : roi.width * 2;
    out.height = down ? roi.height / 2 : roi.height * 2;
    out.channels = in.channels;
    out.pixels.resize(static_cast<size_t>(out.width) * out.height * out.channels);
    if constexpr (std::is_same_v<Img, FloatImage>) out.depth = in.depth;
    int status = 0;
    *timing = time_runs([&] {
        status = fn(pixel_data(in), step_of(in), pixel_data(out), step_of(out), roi, buffer.data());
    });
    check_status(status, name.c_str());
    return out;
}

Image pyramid_level(const Image& in, bool down, double* ms) {
    Timing t;
    Image out = pyramid_level(in, down, &t);
    *ms = t.min_ms();
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

// Levels of an image: 8-bit images on the 8-bit path, 16-bit and float
// images on the float path (the output keeps their depth).
template <class Img>
int pyramid(const Args& args, Img image, bool down, int levels) {
    const int width = image.width, height = image.height;
    Timing total;
    for (int level = 0; level < levels; ++level) {
        Timing t;
        image = pyramid_level(image, down, &t);
        total.ms.resize(t.ms.size());
        for (size_t i = 0; i < t.ms.size(); ++i) total.ms[i] += t.ms[i];
    }
    write_image(args.positional[1], image);
    std::printf("%s: %dx%d -> %dx%d in %d level%s, %s\n", args.positional[1].c_str(), width, height, image.width,
                image.height, levels, levels == 1 ? "" : "s", total.text().c_str());
    return 0;
}

int run_pyramid(const Args& args, bool down) {
    const int levels = down ? args.get_int("--levels", 1, 1, 30) : 1;
    const ReadOptions input = args.input();
    if (probe_image(args.positional[0], input).sample == Sample::U8)
        return pyramid(args, read_image(args.positional[0], input), down, levels);
    return pyramid(args, read_float_image(args.positional[0], input), down, levels);
}

int run_pyrdown(const Args& args) { return run_pyramid(args, true); }
int run_pyrup(const Args& args) { return run_pyramid(args, false); }

ORUCV_COMMAND("pyrdown", "IN OUT", "Gaussian pyramid levels down, half the size each (gray or colour)", run_pyrdown,
              kReads | kRepeat, {{"--levels", "N", "levels to go down, 1 to 30 (default 1)"}},
              "Odd sides lose their last pixel. 8-bit images take the 8-bit functions; 16-bit and float\n"
              "images the float ones, and a PNG/PGM/PPM output keeps their depth (rounded).");
ORUCV_COMMAND("pyrup", "IN OUT", "Gaussian pyramid level up, twice the size (gray or colour)", run_pyrup,
              kReads | kRepeat, {},
              "8-bit images take the 8-bit functions; 16-bit and float images the float ones, and a\n"
              "PNG/PGM/PPM output keeps their depth (rounded).");

}  // namespace
}  // namespace orucv_tool
