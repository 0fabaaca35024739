// Fixed 3x3 Sobel and Scharr derivatives on the scene and on files.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "cli.h"
#include "orucv.h"

namespace orucv_tool {
namespace {

// 16-bit results of one derivative of an 8-bit gray image.
struct Derivative {
    std::vector<int16_t> pixels;
    int width = 0, height = 0;
    int step_bytes() const { return width * 2; }
};

struct Operator {
    const char* flag;
    const char* function;
    OruStatus (*run)(const Oru8u* src, int srcStep, Oru16s* dst, int dstStep, OruSize roi);
};

const Operator kOperators[] = {
    {"--dx", "oruiSobel3x3_Dx_8u16s_C1R", oruiSobel3x3_Dx_8u16s_C1R},
    {"--dy", "oruiSobel3x3_Dy_8u16s_C1R",
     [](const Oru8u* s, int ss, Oru16s* d, int ds, OruSize r) { return oruiSobel3x3_Dy_8u16s_C1R(s, ss, d, ds, 0, r); }},
    {"--d2x", "oruiSobel3x3_D2x_8u16s_C1R", oruiSobel3x3_D2x_8u16s_C1R},
    {"--d2y", "oruiSobel3x3_D2y_8u16s_C1R", oruiSobel3x3_D2y_8u16s_C1R},
    {"--dxdy", "oruiSobel3x3_DxDy_8u16s_C1R",
     [](const Oru8u* s, int ss, Oru16s* d, int ds, OruSize r) { return oruiSobel3x3_DxDy_8u16s_C1R(s, ss, d, ds, 0, r); }},
    {"--scharr-dx", "oruiScharr_Dx_8u16s_C1R",
     [](const Oru8u* s, int ss, Oru16s* d, int ds, OruSize r) { return oruiScharr_Dx_8u16s_C1R(s, ss, d, ds, r, 0); }},
    {"--scharr-dy", "oruiScharr_Dy_8u16s_C1R",
     [](const Oru8u* s, int ss, Oru16s* d, int ds, OruSize r) { return oruiScharr_Dy_8u16s_C1R(s, ss, d, ds, 0, r, 0); }},
};

Derivative derive(const Operator& op, const Image& gray, double* ms) {
    if (gray.height < 2) throw ToolError("the image needs at least two rows");
    Derivative out;
    out.width = gray.width;
    out.height = gray.height;
    out.pixels.resize(static_cast<size_t>(gray.width) * gray.height);
    int status = 0;
    *ms = time_ms([&] {
        status = op.run(gray.pixels.data(), gray.step(), out.pixels.data(), out.step_bytes(), {gray.width, gray.height});
    });
    check_status(status, op.function);
    return out;
}

void demo_sobel(DemoContext& demo) {
    const Image& scene = demo.frame(0);
    double dx_ms = 0, dy_ms = 0;
    const Derivative dx = derive(kOperators[0], scene, &dx_ms);
    const Derivative dy = derive(kOperators[1], scene, &dy_ms);
    // |Dx| + |Dy| reaches 2040 at most; scaled so the strongest edge is white.
    std::vector<int16_t> magnitude(dx.pixels.size());
    for (size_t i = 0; i < magnitude.size(); ++i)
        magnitude[i] = static_cast<int16_t>(std::abs(dx.pixels[i]) + std::abs(dy.pixels[i]));
    demo.save("sobel-magnitude.png", scale_to_8u(magnitude.data(), dx.width, dx.height, dx.step_bytes(), true),
              "oruiSobel3x3_Dx/Dy_8u16s_C1R", dx_ms + dy_ms, "|Dx| + |Dy| of frame 0, scaled to 8 bits");
}
ORUCV_DEMO_STEP(20, "Sobel gradient magnitude", demo_sobel);

int run_sobel(const Args& args) {
    if (args.positional.size() != 2) throw ToolError("usage: orucv sobel IN OUT [--dx|--dy|...]");
    const Operator* chosen = nullptr;
    for (const Operator& op : kOperators) {
        if (!args.has(op.flag)) continue;
        if (chosen) throw ToolError(std::string("choose one derivative, not both ") + chosen->flag + " and " + op.flag);
        chosen = &op;
    }
    if (!chosen) chosen = &kOperators[0];
    const Image gray = to_gray(read_image(args.positional[0]));
    double ms = 0;
    const Derivative d = derive(*chosen, gray, &ms);
    write_image(args.positional[1], scale_to_8u(d.pixels.data(), d.width, d.height, d.step_bytes(), true));
    std::printf("%s: %dx%d, %s, %.3f ms (magnitude scaled to 8 bits)\n", args.positional[1].c_str(), d.width,
                d.height, chosen->function, ms);
    return 0;
}
ORUCV_COMMAND("sobel",
              "IN OUT [--dx|--dy|--d2x|--d2y|--dxdy|--scharr-dx|--scharr-dy]   3x3 derivative of a gray image "
              "(default --dx), magnitude scaled to 8 bits",
              run_sobel, "--dx --dy --d2x --d2y --dxdy --scharr-dx --scharr-dy");

}  // namespace
}  // namespace orucv_tool
