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

int run_absdiff(const Args& args) {
    if (args.positional.size() != 3) throw ToolError("usage: orucv absdiff A B OUT");
    const Image a = to_gray(read_image(args.positional[0]));
    const Image b = to_gray(read_image(args.positional[1]));
    if (a.width != b.width || a.height != b.height) throw ToolError("the two images differ in size");
    double ms = 0;
    write_image(args.positional[2], abs_diff(a, b, &ms));
    std::printf("%s: %dx%d, %.3f ms\n", args.positional[2].c_str(), a.width, a.height, ms);
    return 0;
}
ORUCV_COMMAND("absdiff", "A B OUT   absolute difference of two images (as gray)", run_absdiff);

}  // namespace
}  // namespace orucv_tool
