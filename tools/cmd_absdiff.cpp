// Absolute difference and motion history on the scene and on files.
#include <algorithm>
#include <cstdio>

#include "cli.h"
#include "orucv.h"

namespace orucv_tool {
namespace {

Image abs_diff(const Image& a, const Image& b, double* ms) {
    Image out(a.width, a.height);
    const OruSize roi{a.width, a.height};
    int status = 0;
    *ms = time_ms([&] {
        status = oruiAbsDiff_8u_C1R(a.pixels.data(), a.step(), b.pixels.data(), b.step(), out.pixels.data(),
                                    out.step(), roi);
    });
    check_status(status, "oruiAbsDiff_8u_C1R");
    return out;
}

void demo_absdiff(DemoContext& demo) {
    double ms = 0;
    const Image diff = abs_diff(demo.frame(0), demo.frame(3), &ms);
    demo.save("absdiff.png", diff, "oruiAbsDiff_8u_C1R", ms, "|frame 0 - frame 3|");

    // Motion history: silhouettes are the changes between successive frames.
    const int w = diff.width, h = diff.height;
    const float duration = 5.0f;
    FloatImage mhi(w, h);
    double total_ms = 0;
    for (int t = 1; t < 8; ++t) {
        double diff_ms = 0;
        Image silhouette = abs_diff(demo.frame(t - 1), demo.frame(t), &diff_ms);
        for (auto& p : silhouette.pixels) p = p > 40 ? 255 : 0;
        int status = 0;
        total_ms += time_ms(
            [&] {
                status = oruiUpdateMotionHistory_8u32f_C1IR(silhouette.pixels.data(), w, mhi.data(), mhi.step_bytes(),
                                                            {w, h}, static_cast<float>(t), duration);
            },
            1);
        check_status(status, "oruiUpdateMotionHistory_8u32f_C1IR");
    }
    // Recent motion bright, older motion darker, none black.
    const float now = 7.0f;
    Image out(w, h);
    for (size_t i = 0; i < out.pixels.size(); ++i) {
        const float v = mhi.pixels[i];
        out.pixels[i] = v <= 0 ? 0 : static_cast<uint8_t>(std::clamp((v - (now - duration)) / duration, 0.0f, 1.0f) * 255);
    }
    demo.save("motion-history.png", out, "oruiUpdateMotionHistory_8u32f_C1IR", total_ms / 7, "7 updates, duration 5");
}
ORUCV_DEMO_STEP(10, "absolute difference and motion history", demo_absdiff);

std::string size_text(int w, int h) { return std::to_string(w) + "x" + std::to_string(h); }

int run_absdiff(const Args& args) {
    const ReadOptions input = args.input();
    const ImageInfo ia = probe_image(args.positional[0], input), ib = probe_image(args.positional[1], input);
    if (ia.width != ib.width || ia.height != ib.height)
        throw ToolError("the images differ in size (" + size_text(ia.width, ia.height) + " and " +
                        size_text(ib.width, ib.height) + ")");
    const std::string& out_name = args.positional[2];
    if (ia.sample == Sample::U8 && ib.sample == Sample::U8) {
        const Image a = to_gray(read_image(args.positional[0], input));
        const Image b = to_gray(read_image(args.positional[1], input));
        Image out(a.width, a.height);
        int status = 0;
        const Timing t = time_runs([&] {
            status = oruiAbsDiff_8u_C1R(a.pixels.data(), a.step(), b.pixels.data(), b.step(), out.pixels.data(),
                                        out.step(), {a.width, a.height});
        });
        check_status(status, "oruiAbsDiff_8u_C1R");
        write_image(out_name, out);
        std::printf("%s: %dx%d, 8-bit, %s\n", out_name.c_str(), a.width, a.height, t.text().c_str());
        return 0;
    }
    // 16-bit or float input: the float difference of the exact values.
    const FloatImage a = to_gray(read_float_image(args.positional[0], input));
    const FloatImage b = to_gray(read_float_image(args.positional[1], input));
    FloatImage out(a.width, a.height);
    out.depth = a.depth && b.depth ? std::max(a.depth, b.depth) : 0;
    int status = 0;
    const Timing t = time_runs([&] {
        status = oruiAbsDiff_32f_C1R(a.data(), a.step_bytes(), b.data(), b.step_bytes(), out.data(), out.step_bytes(),
                                     {a.width, a.height});
    });
    check_status(status, "oruiAbsDiff_32f_C1R");
    write_image(out_name, out);
    std::printf("%s: %dx%d, float difference of %s and %s input, %s\n", out_name.c_str(), a.width, a.height,
                ia.depth_name().c_str(), ib.depth_name().c_str(), t.text().c_str());
    return 0;
}
ORUCV_COMMAND("absdiff", "A B OUT", "absolute difference of two images, as gray", run_absdiff, kReads | kRepeat, {},
              "Two 8-bit images give an 8-bit difference. A 16-bit or float image takes the float path: the\n"
              "difference of the exact values, written as 16-bit samples to PNG/PGM (both inputs 8 or 16 bit)\n"
              "or kept whole in a .pfm or .npy output.");

}  // namespace
}  // namespace orucv_tool
