// Fixed 3x3 Sobel and Scharr derivatives on the scene and on files.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "cli.h"
#include "orucv.h"

namespace orucv_tool {
namespace {

struct Operator {
    const char* flag;
    const char* function;
    OruStatus (*run)(const Oru8u* src, int srcStep, Oru16s* dst, int dstStep, OruSize roi);
    // The float form, for 16-bit and float images (nullptr: none).
    const char* float_function;
    OruStatus (*run_float)(const Oru32f* src, int srcStep, Oru32f* dst, int dstStep, OruSize roi);
};

const Operator kOperators[] = {
    {"--dx", "oruiSobel3x3_Dx_8u16s_C1R", oruiSobel3x3_Dx_8u16s_C1R, "oruiSobel3x3_Dx_32f_C1R",
     oruiSobel3x3_Dx_32f_C1R},
    {"--dy", "oruiSobel3x3_Dy_8u16s_C1R",
     [](const Oru8u* s, int ss, Oru16s* d, int ds, OruSize r) { return oruiSobel3x3_Dy_8u16s_C1R(s, ss, d, ds, 0, r); },
     "oruiSobel3x3_Dy_32f_C1R",
     [](const Oru32f* s, int ss, Oru32f* d, int ds, OruSize r) { return oruiSobel3x3_Dy_32f_C1R(s, ss, d, ds, 0, r); }},
    {"--d2x", "oruiSobel3x3_D2x_8u16s_C1R", oruiSobel3x3_D2x_8u16s_C1R, nullptr, nullptr},
    {"--d2y", "oruiSobel3x3_D2y_8u16s_C1R", oruiSobel3x3_D2y_8u16s_C1R, nullptr, nullptr},
    {"--dxdy", "oruiSobel3x3_DxDy_8u16s_C1R",
     [](const Oru8u* s, int ss, Oru16s* d, int ds, OruSize r) { return oruiSobel3x3_DxDy_8u16s_C1R(s, ss, d, ds, 0, r); },
     nullptr, nullptr},
    {"--scharr-dx", "oruiScharr_Dx_8u16s_C1R",
     [](const Oru8u* s, int ss, Oru16s* d, int ds, OruSize r) { return oruiScharr_Dx_8u16s_C1R(s, ss, d, ds, r, 0); },
     "oruiScharr_Dx_32f_C1R",
     [](const Oru32f* s, int ss, Oru32f* d, int ds, OruSize r) { return oruiScharr_Dx_32f_C1R(s, ss, d, ds, r, 0); }},
    {"--scharr-dy", "oruiScharr_Dy_8u16s_C1R",
     [](const Oru8u* s, int ss, Oru16s* d, int ds, OruSize r) { return oruiScharr_Dy_8u16s_C1R(s, ss, d, ds, 0, r, 0); },
     "oruiScharr_Dy_32f_C1R",
     [](const Oru32f* s, int ss, Oru32f* d, int ds, OruSize r) { return oruiScharr_Dy_32f_C1R(s, ss, d, ds, 0, r, 0); }},
};

Signed16Image derive(const Operator& op, const Image& gray, Timing* timing) {
    if (gray.height < 2) throw ToolError("the image needs at least two rows");
    Signed16Image out(gray.width, gray.height);
    int status = 0;
    *timing = time_runs([&] {
        status = op.run(gray.pixels.data(), gray.step(), out.data(), out.step_bytes(), {gray.width, gray.height});
    });
    check_status(status, op.function);
    return out;
}

void demo_sobel(DemoContext& demo) {
    const Image& scene = demo.frame(0);
    Timing dx_t, dy_t;
    const Signed16Image dx = derive(kOperators[0], scene, &dx_t);
    const Signed16Image dy = derive(kOperators[1], scene, &dy_t);
    // |Dx| + |Dy| reaches 2040 at most; scaled so the strongest edge is white.
    std::vector<int16_t> magnitude(dx.pixels.size());
    for (size_t i = 0; i < magnitude.size(); ++i)
        magnitude[i] = static_cast<int16_t>(std::abs(dx.pixels[i]) + std::abs(dy.pixels[i]));
    demo.save("sobel-magnitude.png", scale_to_8u(magnitude.data(), dx.width, dx.height, dx.step_bytes(), true),
              "oruiSobel3x3_Dx/Dy_8u16s_C1R", dx_t.min_ms() + dy_t.min_ms(), "|Dx| + |Dy| of frame 0, scaled to 8 bits");
}
ORUCV_DEMO_STEP(20, "Sobel gradient magnitude", demo_sobel);

}  // namespace

int run_strip_sobel(const Args& args);  // the general filter (cmd_filter.cpp)

namespace {

int run_sobel(const Args& args) {
    if (args.has("--size") || !args.get("--dx").empty() || !args.get("--dy").empty()) {
        for (const Operator& op : kOperators)
            if (args.has(op.flag) && op.flag != std::string("--dx") && op.flag != std::string("--dy"))
                throw ToolError(std::string("--size and orders are for --dx and --dy, not ") + op.flag);
        return run_strip_sobel(args);
    }
    const Operator* chosen = nullptr;
    for (const Operator& op : kOperators) {
        if (!args.has(op.flag)) continue;
        if (chosen) throw ToolError(std::string("choose one derivative, not both ") + chosen->flag + " and " + op.flag);
        chosen = &op;
    }
    if (!chosen) chosen = &kOperators[0];
    const std::string& out_name = args.positional[1];
    const std::string raw = args.get("--raw");
    const bool raw_values = keeps_values(output_format(out_name));
    const ReadOptions input = args.input();
    const ImageInfo info = probe_image(args.positional[0], input);
    if (info.sample != Sample::U8 && input.to8 == To8::Refuse && chosen->run_float) {
        // 16-bit or float images: the float derivative of the exact values.
        if (!raw.empty()) throw ToolError("--raw is for 16-bit results; float results go to .pfm or .npy whole");
        const FloatImage gray = to_gray(read_float_image(args.positional[0], input));
        if (gray.height < 2) throw ToolError("the image needs at least two rows");
        FloatImage out(gray.width, gray.height);
        int status = 0;
        const Timing t = time_runs([&] {
            status = chosen->run_float(gray.data(), gray.step_bytes(), out.data(), out.step_bytes(),
                                       {gray.width, gray.height});
        });
        check_status(status, chosen->float_function);
        write_image(out_name, out);
        std::printf("%s: %dx%d, %s, %s%s\n", out_name.c_str(), out.width, out.height, chosen->float_function,
                    t.text().c_str(), raw_values ? "" : " (a picture of the values scaled to 8 bits)");
        return 0;
    }
    if (!raw.empty() && raw_values) throw ToolError("--raw is for PNG/PGM outputs; .pfm and .npy keep the values anyway");
    const Image gray = to_gray(read_image(args.positional[0], input));
    Timing t;
    const Signed16Image d = derive(*chosen, gray, &t);
    const Signed16Png mode = raw == "offset" ? Signed16Png::Offset : raw == "abs" ? Signed16Png::Abs : Signed16Png::Picture;
    write_image(out_name, d, mode);
    const char* how = raw_values ? "" : mode == Signed16Png::Offset ? " (16-bit, value + 32768)"
                                      : mode == Signed16Png::Abs  ? " (16-bit, absolute values)"
                                                                  : " (magnitude scaled to 8 bits)";
    std::printf("%s: %dx%d, %s, %s%s\n", out_name.c_str(), d.width, d.height, chosen->function, t.text().c_str(), how);
    return 0;
}
ORUCV_COMMAND("sobel", "IN OUT", "Sobel or Scharr derivative of an image as gray", run_sobel, kReads8 | kRepeat,
              {{"--dx", "[A]", "derivative in x (the default), of order A with the general filter"},
               {"--dy", "[B]", "derivative in y, of order B with the general filter"},
               {"--size", "N", "the general filter of size 3, 5 or 7, streamed in strips"},
               {"--d2x", nullptr, "second derivative in x"},
               {"--d2y", nullptr, "second derivative in y"},
               {"--dxdy", nullptr, "mixed second derivative"},
               {"--scharr-dx", nullptr, "Scharr derivative in x"},
               {"--scharr-dy", nullptr, "Scharr derivative in y"},
               {"--raw", "offset|abs", "PNG/PGM output of 16-bit values: value + 32768, or the absolute value"}},
              "8-bit images give signed 16-bit derivatives. A .npy output keeps them as int16, a .pfm as float;\n"
              "a PNG/PGM output is a picture of the magnitude scaled to 8 bits, or with --raw the values as\n"
              "16-bit samples: offset stores value + 32768 (0 is 32768), abs stores |value|.\n"
              "16-bit and float images take the float functions where they exist (--dx, --dy, --scharr-dx,\n"
              "--scharr-dy); --to8 converts them for the 8-bit functions instead.\n"
              "--size N, or an order after --dx or --dy, runs the general Sobel filter (orders 0..N-1, both\n"
              "directions at once, default --dx 1) on gray 8-bit images a strip of 16 rows at a time, so\n"
              "memory stays a few rows whatever the height; PNG/PGM outputs then hold value + 32768 as\n"
              "16-bit samples (--raw abs: |value|).");

}  // namespace
}  // namespace orucv_tool
