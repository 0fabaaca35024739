// Running accumulators on the scene and on files: a running-average
// background of the moving scene, the scene's temporal deviation, and the
// average of several images.
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "cli.h"
#include "orucv.h"
#include "scene.h"

namespace orucv_tool {
namespace {

// Folds one 8-bit frame into the running average (channels are averaged
// independently, so an interleaved image is one row of width * channels).
double fold(const Image& frame, FloatImage& average, float alpha) {
    const int row = frame.width * frame.channels;
    const OruSize roi{row, frame.height};
    int status = 0;
    const double ms = time_ms(
        [&] {
            status = oruiAddWeighted_8u32f_C1IR(frame.pixels.data(), row, average.data(), average.step_bytes(), roi,
                                                alpha);
        },
        1);
    check_status(status, "oruiAddWeighted_8u32f_C1IR");
    return ms;
}

// The average as an 8-bit image of the frames' geometry.
Image to_image(const FloatImage& average, int width, int channels) {
    Image out = scale_to_8u(average, 0.0f, 255.0f);
    out.width = width;
    out.channels = channels;
    return out;
}

void demo_accum(DemoContext& demo) {
    const Image& first = demo.frame(0);
    const int w = first.width, h = first.height;
    const float alpha = 0.2f;

    // Plain running average: the moving disc leaves a fading trail.
    FloatImage average(w, h);
    fold(first, average, 1.0f);
    double ms = 0;
    for (int t = 1; t < kSceneFrames; ++t) ms += fold(demo.frame(t), average, alpha);
    demo.save("background.png", to_image(average, w, 1), "oruiAddWeighted_8u32f_C1IR", ms / (kSceneFrames - 1),
              "running average of 8 frames, alpha 0.2");

    // Where the scene moves: the per-pixel standard deviation over the
    // frames, from running sums of the values and of their squares.
    FloatImage sum(w, h), squares(w, h);
    double sums_ms = 0;
    for (int t = 0; t < kSceneFrames; ++t) {
        const Image& frame = demo.frame(t);
        int status = 0;
        sums_ms += time_ms(
            [&] {
                status = oruiAdd_8u32f_C1IR(frame.pixels.data(), w, sum.data(), sum.step_bytes(), {w, h});
                if (status == 0)
                    status = oruiAddSquare_8u32f_C1IR(frame.pixels.data(), w, squares.data(), squares.step_bytes(),
                                                      {w, h});
            },
            1);
        check_status(status, "oruiAdd_8u32f_C1IR / oruiAddSquare_8u32f_C1IR");
    }
    FloatImage deviation(w, h);
    for (size_t i = 0; i < deviation.pixels.size(); ++i) {
        const float mean = sum.pixels[i] / kSceneFrames;
        deviation.pixels[i] = std::sqrt(std::fmax(squares.pixels[i] / kSceneFrames - mean * mean, 0.0f));
    }
    demo.save("temporal-deviation.png", scale_to_8u(deviation), "oruiAdd + oruiAddSquare_8u32f_C1IR",
              sums_ms / kSceneFrames, "standard deviation over 8 frames");
}
ORUCV_DEMO_STEP(25, "running-average background", demo_accum);

// orucv average OUT IN... [--alpha A]: without --alpha every input weighs
// the same (alpha 1/k for the k-th image, the cumulative mean); with it,
// an exponential running average in the order given.
int run_average(const Args& args) {
    if (args.positional.size() < 2) throw ToolError("usage: orucv average OUT IN... [--alpha A]");
    const double alpha_option = args.get_double("--alpha", 0.0);
    if (args.has("--alpha") && !(alpha_option > 0.0 && alpha_option <= 1.0))
        throw ToolError("--alpha must lie in (0, 1]");
    std::vector<Image> inputs;
    for (size_t i = 1; i < args.positional.size(); ++i) inputs.push_back(read_image(args.positional[i]));
    // Mixed gray and colour inputs are all averaged as gray.
    bool mixed = false;
    for (const Image& im : inputs) mixed |= im.channels != inputs[0].channels;
    for (Image& im : inputs) {
        if (mixed) im = to_gray(im);
        if (im.width != inputs[0].width || im.height != inputs[0].height)
            throw ToolError("the images differ in size");
    }
    const int w = inputs[0].width, h = inputs[0].height, c = inputs[0].channels;
    FloatImage average(w * c, h);
    double ms = 0;
    for (size_t k = 0; k < inputs.size(); ++k) {
        const float alpha = k == 0 ? 1.0f : args.has("--alpha") ? static_cast<float>(alpha_option) : 1.0f / (k + 1);
        ms += fold(inputs[k], average, alpha);
    }
    write_image(args.positional[0], to_image(average, w, c));
    std::printf("%s: %zu images, %dx%d, %.3f ms per image\n", args.positional[0].c_str(), inputs.size(), w, h,
                ms / inputs.size());
    return 0;
}
ORUCV_COMMAND("average", "OUT IN... [--alpha A]   running average of images (equal weights without --alpha)",
              run_average);

}  // namespace
}  // namespace orucv_tool
