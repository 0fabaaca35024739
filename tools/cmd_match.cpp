// Template matching on the scene and on files.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "cli.h"
#include "orucv.h"

namespace orucv_tool {
namespace {

using MatchFn = OruStatus (*)(const Oru8u*, int, OruSize, const Oru8u*, int, OruSize, Oru32f*, int, Oru8u*);
using MatchFloatFn = OruStatus (*)(const Oru32f*, int, OruSize, const Oru32f*, int, OruSize, Oru32f*, int, Oru8u*);
using SizeFn = OruStatus (*)(OruSize, OruSize, int, int*);

struct Method {
    const char* option;
    const char* function;  // the 8-bit form; the float form ends in _32f_C1R
    MatchFn match;
    MatchFloatFn match_float;
    SizeFn size;
    bool lowest_best;  // squared differences: the best match scores lowest
};

#define ORUCV_METHOD(option, Name, lowest)                                                                   \
    {                                                                                                        \
        option, "oruiMatchTemplate_" #Name "_8u32f_C1R", oruiMatchTemplate_##Name##_8u32f_C1R,               \
            oruiMatchTemplate_##Name##_32f_C1R, oruiMatchTemplateGetBufSize_##Name, lowest                   \
    }
const Method kMethods[] = {
    ORUCV_METHOD("sqdiff", SqDiff, true),  ORUCV_METHOD("sqdiff-normed", SqDiffNormed, true),
    ORUCV_METHOD("corr", Corr, false),     ORUCV_METHOD("corr-normed", CorrNormed, false),
    ORUCV_METHOD("coeff", Coeff, false),   ORUCV_METHOD("coeff-normed", CoeffNormed, false),
};
#undef ORUCV_METHOD

const Method& method_named(const std::string& name) {
    for (const Method& m : kMethods)
        if (name == m.option) return m;
    throw ToolError("unknown method '" + name + "'");
}

std::string function_name(const Method& method, bool floats) {
    std::string name = method.function;
    if (floats) name.replace(name.find("_8u32f_"), 7, "_32f_");
    return name;
}

struct Match {
    FloatImage scores;
    int best_x = 0, best_y = 0;
    float best = 0.0f;
    Timing timing;
    std::string function;
};

void find_best(Match& m, const Method& method) {
    bool first = true;
    for (int y = 0; y < m.scores.height; ++y)
        for (int x = 0; x < m.scores.width; ++x) {
            const float v = m.scores.row(y)[x];
            if (std::isnan(v)) continue;
            if (first || (method.lowest_best ? v < m.best : v > m.best)) m.best = v, m.best_x = x, m.best_y = y;
            first = false;
        }
}

void check_sizes(int iw, int ih, int tw, int th) {
    if (tw > iw || th > ih)
        throw ToolError("the template (" + std::to_string(tw) + "x" + std::to_string(th) + ") is larger than the image (" +
                        std::to_string(iw) + "x" + std::to_string(ih) + ")");
}

// 8-bit images. Scores of byte images come from exact integer sums, so a
// band of result rows matched on its own gives the very scores of one whole
// call: large work is matched in bands, with progress between them.
Match match(const Image& image, const Image& tpl, const Method& method) {
    check_sizes(image.width, image.height, tpl.width, tpl.height);
    const OruSize ts{tpl.width, tpl.height};
    Match m;
    m.function = method.function;
    m.scores = FloatImage(image.width - tpl.width + 1, image.height - tpl.height + 1);
    const double work = static_cast<double>(m.scores.width) * m.scores.height * tpl.width * tpl.height;
    const int bands = static_cast<int>(std::clamp(work / 2e8, 1.0, std::min(100.0, double(m.scores.height))));
    std::vector<int> starts;
    for (int b = 0; b <= bands; ++b) starts.push_back(static_cast<int>(static_cast<int64_t>(m.scores.height) * b / bands));
    int largest = 0;
    for (int b = 0; b < bands; ++b) {
        int size = 0;
        check_status(method.size({image.width, starts[b + 1] - starts[b] + tpl.height - 1}, ts, oruDataType8u, &size),
                     "oruiMatchTemplateGetBufSize");
        largest = std::max(largest, size);
    }
    std::vector<Oru8u> buffer(static_cast<size_t>(largest));
    int status = 0;
    m.timing = time_runs([&] {
        Progress progress("match", static_cast<uint64_t>(bands));
        for (int b = 0; b < bands && status >= 0; ++b) {
            const int rows = starts[b + 1] - starts[b];
            status = method.match(image.row(starts[b]), image.step(), {image.width, rows + tpl.height - 1},
                                  tpl.pixels.data(), tpl.step(), ts, m.scores.row(starts[b]), m.scores.step_bytes(),
                                  buffer.data());
            progress.update(b + 1);
        }
    });
    check_status(status, method.function);
    find_best(m, method);
    return m;
}

// 16-bit or float images, in one call.
Match match(const FloatImage& image, const FloatImage& tpl, const Method& method) {
    check_sizes(image.width, image.height, tpl.width, tpl.height);
    const OruSize src{image.width, image.height}, ts{tpl.width, tpl.height};
    Match m;
    m.function = function_name(method, true);
    int size = 0;
    check_status(method.size(src, ts, oruDataType32f, &size), "oruiMatchTemplateGetBufSize");
    std::vector<Oru8u> buffer(static_cast<size_t>(size));
    m.scores = FloatImage(image.width - tpl.width + 1, image.height - tpl.height + 1);
    int status = 0;
    m.timing = time_runs([&] {
        status = method.match_float(image.data(), image.step_bytes(), src, tpl.data(), tpl.step_bytes(), ts,
                                    m.scores.data(), m.scores.step_bytes(), buffer.data());
    });
    check_status(status, m.function.c_str());
    find_best(m, method);
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
    demo.save("match-scores.png", scale_to_8u(m.scores), method.function, m.timing.min_ms(), detail);
    demo.save("match-found.png", outlined(earlier, m.best_x, m.best_y, side, side), method.function, m.timing.min_ms(),
              "frame 2, the best match outlined");
}
ORUCV_DEMO_STEP(90, "template matching", demo_match);

int run_match(const Args& args) {
    const Method& method = method_named(args.get("--method", "coeff-normed"));
    const ReadOptions input = args.input();
    const ImageInfo ii = probe_image(args.positional[0], input), it = probe_image(args.positional[1], input);
    check_sizes(ii.width, ii.height, it.width, it.height);
    Match m;
    Image picture;  // the image as 8-bit gray, for --outline
    if (ii.sample == Sample::U8 && it.sample == Sample::U8) {
        const Image image = to_gray(read_image(args.positional[0], input));
        m = match(image, to_gray(read_image(args.positional[1], input)), method);
        if (args.has("--outline")) picture = image;
    } else {
        const FloatImage image = to_gray(read_float_image(args.positional[0], input));
        m = match(image, to_gray(read_float_image(args.positional[1], input)), method);
        if (args.has("--outline"))
            picture = image.depth ? scale_to_8u(image, 0.0f, image.depth == 16 ? 65535.0f : 255.0f) : scale_to_8u(image);
    }
    write_image(args.positional[2], m.scores);
    if (args.has("--outline"))
        write_image(args.get("--outline"), outlined(picture, m.best_x, m.best_y, it.width, it.height));
    std::printf("%s: %dx%d scores (%s), %s\nbest match at (%d, %d), %dx%d, score %.9g\n", args.positional[2].c_str(),
                m.scores.width, m.scores.height, method.option, m.timing.text().c_str(), m.best_x, m.best_y, it.width,
                it.height, m.best);
    return 0;
}
ORUCV_COMMAND("match", "IMAGE TEMPLATE OUT", "score map of a template over an image (both as gray) and the best match",
              run_match, kReads | kRepeat,
              {{"--method", "sqdiff|sqdiff-normed|corr|corr-normed|coeff|coeff-normed", "the measure (default coeff-normed)"},
               {"--outline", "OUT", "also write the image with the best match framed in red"}},
              "8-bit images take the 8-bit functions, 16-bit or float ones the float functions. A .pfm or\n"
              ".npy output keeps the scores; a PNG/PGM output is a picture of them scaled to their range. The\n"
              "best match is the lowest score for the sqdiff measures and the highest for the others; its\n"
              "top-left corner is printed.");

}  // namespace
}  // namespace orucv_tool
