// Template matching on the scene and on files.
#include <cstdio>
#include <string>
#include <vector>

#include "cli.h"
#include "orucv.h"

namespace orucv_tool {
namespace {

using MatchFn = OruStatus (*)(const Oru8u*, int, OruSize, const Oru8u*, int, OruSize, Oru32f*, int, Oru8u*);
using SizeFn = OruStatus (*)(OruSize, OruSize, int, int*);

struct Method {
    const char* option;
    const char* function;
    MatchFn match;
    SizeFn size;
    bool lowest_best;  // squared differences: the best match scores lowest
};

const Method kMethods[] = {
    {"sqdiff", "oruiMatchTemplate_SqDiff_8u32f_C1R", oruiMatchTemplate_SqDiff_8u32f_C1R,
     oruiMatchTemplateGetBufSize_SqDiff, true},
    {"sqdiff-normed", "oruiMatchTemplate_SqDiffNormed_8u32f_C1R", oruiMatchTemplate_SqDiffNormed_8u32f_C1R,
     oruiMatchTemplateGetBufSize_SqDiffNormed, true},
    {"corr", "oruiMatchTemplate_Corr_8u32f_C1R", oruiMatchTemplate_Corr_8u32f_C1R, oruiMatchTemplateGetBufSize_Corr,
     false},
    {"corr-normed", "oruiMatchTemplate_CorrNormed_8u32f_C1R", oruiMatchTemplate_CorrNormed_8u32f_C1R,
     oruiMatchTemplateGetBufSize_CorrNormed, false},
    {"coeff", "oruiMatchTemplate_Coeff_8u32f_C1R", oruiMatchTemplate_Coeff_8u32f_C1R, oruiMatchTemplateGetBufSize_Coeff,
     false},
    {"coeff-normed", "oruiMatchTemplate_CoeffNormed_8u32f_C1R", oruiMatchTemplate_CoeffNormed_8u32f_C1R,
     oruiMatchTemplateGetBufSize_CoeffNormed, false},
};

const Method& method_named(const std::string& name) {
    for (const Method& m : kMethods)
        if (name == m.option) return m;
    throw ToolError("unknown method '" + name +
                    "' (sqdiff, sqdiff-normed, corr, corr-normed, coeff or coeff-normed)");
}

struct Match {
    FloatImage scores;
    int best_x = 0, best_y = 0;
    float best = 0.0f;
    double ms = 0.0;
};

Match match(const Image& image, const Image& tpl, const Method& method) {
    if (tpl.width > image.width || tpl.height > image.height)
        throw ToolError("the template (" + std::to_string(tpl.width) + "x" + std::to_string(tpl.height) +
                        ") is larger than the image (" + std::to_string(image.width) + "x" +
                        std::to_string(image.height) + ")");
    const OruSize src{image.width, image.height}, ts{tpl.width, tpl.height};
    int size = 0;
    check_status(method.size(src, ts, oruDataType8u, &size), "oruiMatchTemplateGetBufSize");
    std::vector<Oru8u> buffer(static_cast<size_t>(size));
    Match m;
    m.scores = FloatImage(image.width - tpl.width + 1, image.height - tpl.height + 1);
    int status = 0;
    m.ms = time_ms([&] {
        status = method.match(image.pixels.data(), image.step(), src, tpl.pixels.data(), tpl.step(), ts,
                              m.scores.data(), m.scores.step_bytes(), buffer.data());
    });
    check_status(status, method.function);
    for (int y = 0; y < m.scores.height; ++y)
        for (int x = 0; x < m.scores.width; ++x) {
            const float v = m.scores.pixels[static_cast<size_t>(y) * m.scores.width + x];
            const bool first = x == 0 && y == 0;
            if (first || (method.lowest_best ? v < m.best : v > m.best)) m.best = v, m.best_x = x, m.best_y = y;
        }
    return m;
}

// The gray image in colour with a red frame around w x h at (x, y).
Image outlined(const Image& gray, int x, int y, int w, int h) {
    Image out(gray.width, gray.height, 3);
    for (int j = 0; j < gray.height; ++j)
        for (int i = 0; i < gray.width; ++i)
            for (int c = 0; c < 3; ++c) out.at(i, j, c) = gray.at(i, j);
    auto mark = [&](int i, int j) {
        if (i < 0 || j < 0 || i >= out.width || j >= out.height) return;
        out.at(i, j, 0) = 255, out.at(i, j, 1) = 0, out.at(i, j, 2) = 0;
    };
    for (int t = 0; t < 2; ++t) {
        for (int i = x - t; i < x + w + t; ++i) mark(i, y - 1 - t), mark(i, y + h + t);
        for (int j = y - t; j < y + h + t; ++j) mark(x - 1 - t, j), mark(x + w + t, j);
    }
    return out;
}

// The disc of frame 5, cut out with its rim, is found in frame 2.
void demo_match(DemoContext& demo) {
    const Image& later = demo.frame(5);
    const Image& earlier = demo.frame(2);
    const int side = 80, cx = 120 + 38 * 5 - side / 2, cy = 300 - 14 * 5 - side / 2;
    Image tpl(side, side);
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) tpl.at(x, y) = later.at(cx + x, cy + y);
    const Method& method = method_named("coeff-normed");
    const Match m = match(earlier, tpl, method);
    char detail[160];
    std::snprintf(detail, sizeof detail, "80x80 disc of frame 5 in frame 2: best (%d, %d), %.4f", m.best_x, m.best_y,
                  m.best);
    demo.save("match-scores.png", scale_to_8u(m.scores), method.function, m.ms, detail);
    demo.save("match-found.png", outlined(earlier, m.best_x, m.best_y, side, side), method.function, m.ms,
              "frame 2, the best match outlined");
}
ORUCV_DEMO_STEP(90, "template matching", demo_match);

int run_match(const Args& args) {
    if (args.positional.size() != 3)
        throw ToolError("usage: orucv match IMAGE TEMPLATE OUT [--method sqdiff|sqdiff-normed|corr|corr-normed|"
                        "coeff|coeff-normed]");
    const Method& method = method_named(args.get("--method", "coeff-normed"));
    const Image image = to_gray(read_image(args.positional[0]));
    const Image tpl = to_gray(read_image(args.positional[1]));
    const Match m = match(image, tpl, method);
    write_image(args.positional[2], scale_to_8u(m.scores));
    std::printf("%s: %dx%d scores (%s), best at (%d, %d) = %g, %.3f ms\n", args.positional[2].c_str(),
                m.scores.width, m.scores.height, method.option, m.best_x, m.best_y, m.best, m.ms);
    return 0;
}
ORUCV_COMMAND("match",
              "IMAGE TEMPLATE OUT [--method sqdiff|sqdiff-normed|corr|corr-normed|coeff|coeff-normed]   score map "
              "of the template over the image (as gray; default coeff-normed) and the best location",
              run_match);

}  // namespace
}  // namespace orucv_tool
