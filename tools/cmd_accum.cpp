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

// orucv average OUT IN... [--alpha A]: without --alpha every input
// weighs the same (weight 1/k for the k-th image, the cumulative mean);
// with it, an exponential running average in the order given.
int run_average(const Args& args) {
    const bool weighted = args.has("--alpha");
    const double weight = args.get_double("--alpha", 0.0, 0.0, 1.0);
    if (weighted && !(weight > 0.0)) throw ToolError("--alpha must lie in (0, 1]");
    const ReadOptions input = args.input();
    const size_t count = args.positional.size() - 1;
    // The inputs' geometry and depth from their headers, before any work.
    std::vector<ImageInfo> infos;
    bool wide = false, any_float = false, mixed = false;
    for (size_t i = 1; i < args.positional.size(); ++i) {
        infos.push_back(probe_image(args.positional[i], input));
        const ImageInfo& f = infos.back();
        if (f.width != infos[0].width || f.height != infos[0].height) throw ToolError("the images differ in size");
        mixed |= f.channels != infos[0].channels;
        wide |= f.sample == Sample::U16;
        any_float |= f.sample == Sample::F32;
    }
    // Mixed gray and colour inputs are all averaged as gray; channels are
    // averaged independently, so an interleaved image is one row of width *
    // channels.
    const int w = infos[0].width, h = infos[0].height, c = mixed ? 1 : infos[0].channels;
    FloatImage average(w * c, h);
    Progress progress("average", count);
    Timing timing;
    for (size_t k = 0; k < count; ++k) {
        const float alpha = k == 0 ? 1.0f : weighted ? static_cast<float>(weight) : 1.0f / (k + 1);
        const std::string& name = args.positional[k + 1];
        int status = 0;
        Timing t;
        if (!wide && !any_float) {
            Image frame = read_image(name, input);
            if (mixed) frame = to_gray(frame);
            t = time_runs(
                [&] {
                    status = oruiAddWeighted_8u32f_C1IR(frame.pixels.data(), w * c, average.data(),
                                                        average.step_bytes(), {w * c, h}, alpha);
                },
                1);
            check_status(status, "oruiAddWeighted_8u32f_C1IR");
        } else {
            FloatImage frame = read_float_image(name, input);
            if (mixed) frame = to_gray(frame);
            t = time_runs(
                [&] {
                    status = oruiAddWeighted_32f_C1IR(frame.data(), frame.step_bytes(), average.data(),
                                                      average.step_bytes(), {w * c, h}, alpha);
                },
                1);
            check_status(status, "oruiAddWeighted_32f_C1IR");
        }
        timing.ms.push_back(t.min_ms());
        progress.update(k + 1);
    }
    progress.finish();
    average.width = w;
    average.channels = c;
    average.depth = any_float ? 0 : wide ? 16 : 8;
    write_image(args.positional[0], average, 0.0f, 255.0f);
    double total = 0;
    for (double ms : timing.ms) total += ms;
    std::printf("%s: %zu images, %dx%d, %.3f ms per image for the running average\n", args.positional[0].c_str(),
                count, w, h, total / count);
    return 0;
}
ORUCV_COMMAND("average", "OUT IN...", "running average of images (equal weights without --alpha)", run_average, kReads,
              {{"--alpha", "A", "weight of each new image in an exponential running average, in (0, 1]"}},
              "8-bit inputs are averaged with oruiAddWeighted_8u32f_C1IR, 16-bit or float ones with the float\n"
              "form. A PNG/PGM/PPM output holds the average rounded to the inputs' depth; a .pfm or .npy\n"
              "output keeps it whole.");

}  // namespace
}  // namespace orucv_tool
