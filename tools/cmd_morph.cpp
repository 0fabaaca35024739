// Erosion, dilation, opening, closing and the morphological gradient of
// images of any height, streamed row by row through the strip functions
// (memory holds a few rows whatever the height), and the demo's step.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "cli.h"
#include "orucv.h"
#include "row_io.h"

namespace orucv_tool {
namespace {

template <class T>
using StripFn = OruStatus (*)(const T*, int, T*, int, OruSize*, OruMorphState*, int);

// The strip functions by [dilate][rect, cross, mask][1, 3, 4 channels].
#define ORUCV_MORPH_CHANNELS(prefix, type) {prefix##type##_C1R, prefix##type##_C3R, prefix##type##_C4R}
#define ORUCV_MORPH_SHAPES(op, type)                                                                  \
    {ORUCV_MORPH_CHANNELS(orui##op##Strip_Rect_, type), ORUCV_MORPH_CHANNELS(orui##op##Strip_Cross_, type), \
     ORUCV_MORPH_CHANNELS(orui##op##Strip_, type)}
template <class T>
struct StripFns;
template <>
struct StripFns<Oru8u> {
    static constexpr StripFn<Oru8u> fn[2][3][3] = {ORUCV_MORPH_SHAPES(Erode, 8u), ORUCV_MORPH_SHAPES(Dilate, 8u)};
    static constexpr int data_type = oruDataType8u;
    static constexpr const char* type = "8u";
};
template <>
struct StripFns<Oru32f> {
    static constexpr StripFn<Oru32f> fn[2][3][3] = {ORUCV_MORPH_SHAPES(Erode, 32f), ORUCV_MORPH_SHAPES(Dilate, 32f)};
    static constexpr int data_type = oruDataType32f;
    static constexpr const char* type = "32f";
};

struct Element {
    int shape = oruMorphRect;
    OruSize size{3, 3};
    OruPoint anchor{1, 1};
    std::vector<Oru8u> mask;  // oruMorphMask: a nonzero byte is a member
    std::string text;         // "rect 3x3 anchored at 1,1"
};

constexpr int kMaxSide = 1001;

Element element_of(const Args& args) {
    Element e;
    const std::string shape = args.get("--shape", "rect");
    const bool sized = args.has("--size");
    std::pair<int, int> size = sized ? args.get_size("--size") : std::pair<int, int>{3, 3};
    if (shape.rfind("mask:", 0) == 0) {
        const std::string path = shape.substr(5);
        if (path.empty()) throw ToolError("--shape mask:FILE needs a file name");
        const Image m = to_gray(read_image(path, args.input()));
        if (sized && (size.first != m.width || size.second != m.height))
            throw ToolError("--size " + args.get("--size") + " differs from the mask '" + path + "' (" +
                            std::to_string(m.width) + "x" + std::to_string(m.height) + ")");
        size = {m.width, m.height};
        e.shape = oruMorphMask;
        e.mask.assign(m.pixels.begin(), m.pixels.end());
        e.text = "mask " + path;
    } else if (shape == "rect" || shape == "cross" || shape == "ellipse") {
        e.shape = shape == "rect" ? oruMorphRect : shape == "cross" ? oruMorphCross : oruMorphEllipse;
        e.text = shape;
    } else {
        throw ToolError("option --shape takes rect, cross, ellipse or mask:FILE, not '" + shape + "'");
    }
    if (size.first > kMaxSide || size.second > kMaxSide)
        throw ToolError("the element's sides are at most " + std::to_string(kMaxSide));
    e.size = {size.first, size.second};
    const std::pair<int, int> anchor = args.has("--anchor") ? args.get_pair("--anchor")
                                                            : std::pair<int, int>{size.first / 2, size.second / 2};
    if (anchor.first < 0 || anchor.first >= size.first || anchor.second < 0 || anchor.second >= size.second)
        throw ToolError("--anchor " + std::to_string(anchor.first) + "," + std::to_string(anchor.second) +
                        " lies outside the " + std::to_string(size.first) + "x" + std::to_string(size.second) +
                        " element");
    e.anchor = {anchor.first, anchor.second};
    e.text += " " + std::to_string(size.first) + "x" + std::to_string(size.second) + " anchored at " +
              std::to_string(anchor.first) + "," + std::to_string(anchor.second);
    return e;
}

// One erosion or dilation: a state, fed strips, giving rows.
template <class T>
class Stage {
public:
    Stage(int width, int channels, const Element& e, bool dilate) : width_(width) {
        const int shape_index = e.shape == oruMorphRect ? 0 : e.shape == oruMorphCross ? 1 : 2;
        fn_ = StripFns<T>::fn[dilate][shape_index][channels == 1 ? 0 : channels == 3 ? 1 : 2];
        name_ = std::string(dilate ? "oruiDilateStrip_" : "oruiErodeStrip_") +
                (shape_index == 0 ? "Rect_" : shape_index == 1 ? "Cross_" : "") + StripFns<T>::type + "_C" +
                std::to_string(channels) + "R";
        step_ = width * channels * static_cast<int>(sizeof(T));
        check_status(oruiMorphologyInitAlloc(width, StripFns<T>::data_type, channels, e.size, e.anchor, e.shape,
                                             e.mask.empty() ? nullptr : e.mask.data(), &state_),
                     "oruiMorphologyInitAlloc");
    }
    ~Stage() { oruiMorphologyFree(&state_); }
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    // n source rows in (the image's last when `last`); the rows written to
    // dst come back. The first strip with rows starts the image.
    int push(const T* src, int n, T* dst, bool last) {
        if (n == 0 && !last) return 0;
        const int flag = started_ ? (last ? oruMorphLast : oruMorphMiddle) : (last ? oruMorphWhole : oruMorphFirst);
        OruSize roi{width_, n};
        const auto t0 = std::chrono::steady_clock::now();
        const OruStatus status = fn_(src, step_, dst, step_, &roi, state_, flag);
        ms_ += std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - t0).count();
        check_status(status, name_.c_str());
        started_ = !last;
        return roi.height;
    }
    double ms() const { return ms_; }

private:
    int width_, step_ = 0;
    StripFn<T> fn_ = nullptr;
    std::string name_;
    OruMorphState* state_ = nullptr;
    bool started_ = false;
    double ms_ = 0;
};

enum class Operation { Erode, Dilate, Open, Close, Gradient };

// Runs the operation over the reader's rows into the writer, kStrip source
// rows at a time; returns the milliseconds spent in the strip functions.
template <class T>
double stream(Operation op, const Element& e, RowReader& in, RowWriter& out, const char* what) {
    constexpr int kStrip = 16;
    const int width = in.width(), height = in.height(), channels = in.channels();
    const size_t row = static_cast<size_t>(width) * channels;
    // A stage writes at most its strip's rows plus the element's height.
    const size_t capacity = static_cast<size_t>(kStrip + 2 * e.size.height);
    std::vector<T> src(row * kStrip), a(row * capacity), b(row * capacity);
    const bool two = op != Operation::Erode && op != Operation::Dilate;
    Stage<T> first(width, channels, e, op == Operation::Dilate || op == Operation::Close || op == Operation::Gradient);
    std::unique_ptr<Stage<T>> second;
    if (two) second = std::make_unique<Stage<T>>(width, channels, e, op == Operation::Open);
    Progress progress(what, static_cast<uint64_t>(height));
    for (int y = 0; y < height; y += kStrip) {
        const int n = std::min(kStrip, height - y);
        const bool last = y + n == height;
        for (int i = 0; i < n; ++i) in.read_row(src.data() + row * i);
        int rows = first.push(src.data(), n, a.data(), last);
        const T* result = a.data();
        if (op == Operation::Open || op == Operation::Close) {
            rows = second->push(a.data(), rows, b.data(), last);
            result = b.data();
        } else if (op == Operation::Gradient) {
            // The dilation less the erosion of the same rows (never negative).
            const int eroded = second->push(src.data(), n, b.data(), last);
            if (eroded != rows) throw ToolError("the erosion and the dilation gave different rows");
            for (size_t i = 0; i < row * rows; ++i) a[i] = static_cast<T>(a[i] - b[i]);
        }
        for (int i = 0; i < rows; ++i) out.write_row(result + row * i);
        progress.update(static_cast<uint64_t>(y + n));
    }
    out.finish();
    progress.finish();
    return first.ms() + (second ? second->ms() : 0);
}

const char* operation_name(Operation op) {
    switch (op) {
    case Operation::Erode: return "erosion";
    case Operation::Dilate: return "dilation";
    case Operation::Open: return "opening";
    case Operation::Close: return "closing";
    default: return "morphological gradient";
    }
}

int run_morph(const Args& args, Operation op, const char* command) {
    const Element e = element_of(args);
    const ReadOptions input = args.input();
    bool is_float = false;
    {
        const RowReader probe(args.positional[0], input, RowReader::Exact);
        is_float = probe.info().sample == Sample::F32;
    }
    RowReader in(args.positional[0], input, is_float ? RowReader::Exact : RowReader::Bytes);
    if (in.channels() != 1 && in.channels() != 3 && in.channels() != 4)
        throw ToolError("'" + in.path() + "' has " + std::to_string(in.channels()) +
                        " channels: gray, RGB and RGBA images are supported (--drop-alpha drops an alpha channel)");
    const std::string& out_name = args.positional[1];
    if (is_float && !keeps_values(output_format(out_name)))
        throw ToolError("'" + in.path() + "' holds float values: write them to a .pfm or .npy file");
    RowWriter out(out_name, in.width(), in.height(), in.channels(), is_float ? Sample::F32 : Sample::U8, &in);
    const double ms = is_float ? stream<Oru32f>(op, e, in, out, command) : stream<Oru8u>(op, e, in, out, command);
    std::printf("%s: %dx%d, %d channel%s (%s), %s by %s, %.3f ms in the strip functions\n", out_name.c_str(),
                in.width(), in.height(), in.channels(), in.channels() == 1 ? "" : "s", is_float ? "32f" : "8u",
                operation_name(op), e.text.c_str(), ms);
    return 0;
}

int run_erode(const Args& args) { return run_morph(args, Operation::Erode, "erode"); }
int run_dilate(const Args& args) { return run_morph(args, Operation::Dilate, "dilate"); }
int run_open(const Args& args) { return run_morph(args, Operation::Open, "open"); }
int run_close(const Args& args) { return run_morph(args, Operation::Close, "close"); }
int run_gradient(const Args& args) { return run_morph(args, Operation::Gradient, "gradient"); }

#define ORUCV_MORPH_OPTIONS                                                                              \
    {{"--shape", "SHAPE", "rect, cross, ellipse or mask:FILE (nonzero pixels are members); default rect"}, \
     {"--size", "WxH", "the element's size (default 3x3; a mask file's own size)"},                        \
     {"--anchor", "X,Y", "the element's pixel on the destination pixel (default its centre)"}}
#define ORUCV_MORPH_DETAILS                                                                                 \
    "Works on 8-bit images (gray, RGB, RGBA) and on float images (.pfm, .npy; written to .pfm or .npy),\n" \
    "each channel on its own, with the nearest edge pixel standing for pixels beyond the edges. The\n"     \
    "image streams through in strips of 16 rows: memory holds a few rows whatever its height."

ORUCV_COMMAND("erode", "IN OUT", "erosion: the minimum under a structuring element", run_erode, kReads8,
              ORUCV_MORPH_OPTIONS, ORUCV_MORPH_DETAILS);
ORUCV_COMMAND("dilate", "IN OUT", "dilation: the maximum under a structuring element", run_dilate, kReads8,
              ORUCV_MORPH_OPTIONS, ORUCV_MORPH_DETAILS);
ORUCV_COMMAND("open", "IN OUT", "opening: erosion, then dilation (removes small bright details)", run_open, kReads8,
              ORUCV_MORPH_OPTIONS, ORUCV_MORPH_DETAILS);
ORUCV_COMMAND("close", "IN OUT", "closing: dilation, then erosion (fills small dark details)", run_close, kReads8,
              ORUCV_MORPH_OPTIONS, ORUCV_MORPH_DETAILS);
ORUCV_COMMAND("gradient", "IN OUT", "morphological gradient: dilation less erosion (outlines)", run_gradient,
              kReads8, ORUCV_MORPH_OPTIONS, ORUCV_MORPH_DETAILS);

// The demo: an opening and a closing of the scene by a 7x7 ellipse, and its
// gradient by a 3x3 rectangle, each over the whole frame in one call.
Image morph(const Image& in, const Element& e, bool dilate, double* ms) {
    Image out(in.width, in.height);
    Stage<Oru8u> stage(in.width, 1, e, dilate);
    stage.push(in.pixels.data(), in.height, out.pixels.data(), true);
    *ms += stage.ms();
    return out;
}

void demo_morph(DemoContext& demo) {
    const Image& scene = demo.frame(0);
    Element ellipse;
    ellipse.shape = oruMorphEllipse;
    ellipse.size = {7, 7};
    ellipse.anchor = {3, 3};
    double ms = 0;
    const Image opened = morph(morph(scene, ellipse, false, &ms), ellipse, true, &ms);
    demo.save("morph_open.png", opened, "oruiErodeStrip_8u_C1R, oruiDilateStrip_8u_C1R", ms,
              "opening by a 7x7 ellipse");
    ms = 0;
    const Image closed = morph(morph(scene, ellipse, true, &ms), ellipse, false, &ms);
    demo.save("morph_close.png", closed, "oruiDilateStrip_8u_C1R, oruiErodeStrip_8u_C1R", ms,
              "closing by a 7x7 ellipse");
    ms = 0;
    const Element square;  // 3x3 rectangle
    Image gradient = morph(scene, square, true, &ms);
    const Image eroded = morph(scene, square, false, &ms);
    for (size_t i = 0; i < gradient.pixels.size(); ++i)
        gradient.pixels[i] = static_cast<Oru8u>(gradient.pixels[i] - eroded.pixels[i]);
    demo.save("morph_gradient.png", gradient, "oruiDilateStrip_Rect_8u_C1R, oruiErodeStrip_Rect_8u_C1R", ms,
              "morphological gradient by a 3x3 rectangle");
}
ORUCV_DEMO_STEP(55, "morphology", demo_morph);

}  // namespace
}  // namespace orucv_tool
