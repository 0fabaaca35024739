// Image statistics on the scene and on files: `orucv stats` (mean, deviation,
// extrema with their locations, norms) and `orucv compare` (difference and
// relative norms, PSNR; exit 0 for equal images, 1 for different ones).
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "cli.h"
#include "orucv.h"

namespace orucv_tool {
namespace {

// The statistics functions of one pixel type, by layout: one channel (C1) or
// the channel of interest of three (C3C); masked forms end in M.
template <class T>
struct Functions {
    const char* type;
    OruStatus (*mean_sd)(const T*, int, OruSize, Oru64f*, Oru64f*);
    OruStatus (*mean_sd_c3)(const T*, int, OruSize, int, Oru64f*, Oru64f*);
    OruStatus (*mean_sd_m)(const T*, int, const Oru8u*, int, OruSize, Oru64f*, Oru64f*);
    OruStatus (*mean_sd_c3m)(const T*, int, const Oru8u*, int, OruSize, int, Oru64f*, Oru64f*);
    OruStatus (*extrema)(const T*, int, OruSize, Oru32f*, Oru32f*, OruPoint*, OruPoint*);
    OruStatus (*extrema_c3)(const T*, int, OruSize, int, Oru32f*, Oru32f*, OruPoint*, OruPoint*);
    OruStatus (*extrema_m)(const T*, int, const Oru8u*, int, OruSize, Oru32f*, Oru32f*, OruPoint*, OruPoint*);
    OruStatus (*extrema_c3m)(const T*, int, const Oru8u*, int, OruSize, int, Oru32f*, Oru32f*, OruPoint*, OruPoint*);
    // Inf, L1, L2; all masked.
    OruStatus (*norm[3])(const T*, int, const Oru8u*, int, OruSize, Oru64f*);
    OruStatus (*norm_c3[3])(const T*, int, const Oru8u*, int, OruSize, int, Oru64f*);
    OruStatus (*diff[3])(const T*, int, const T*, int, const Oru8u*, int, OruSize, Oru64f*);
    OruStatus (*diff_c3[3])(const T*, int, const T*, int, const Oru8u*, int, OruSize, int, Oru64f*);
    OruStatus (*rel[3])(const T*, int, const T*, int, const Oru8u*, int, OruSize, Oru64f*);
    OruStatus (*rel_c3[3])(const T*, int, const T*, int, const Oru8u*, int, OruSize, int, Oru64f*);
};
#define ORUCV_NORMS(kind, t, layout) \
    { orui##kind##_Inf_##t##_##layout##MR, orui##kind##_L1_##t##_##layout##MR, orui##kind##_L2_##t##_##layout##MR }
#define ORUCV_FUNCTIONS(t)                                                                                        \
    {                                                                                                             \
        #t, oruiMean_StdDev_##t##_C1R, oruiMean_StdDev_##t##_C3CR, oruiMean_StdDev_##t##_C1MR,                    \
            oruiMean_StdDev_##t##_C3CMR, oruiMinMaxIndx_##t##_C1R, oruiMinMaxIndx_##t##_C3CR,                     \
            oruiMinMaxIndx_##t##_C1MR, oruiMinMaxIndx_##t##_C3CMR, ORUCV_NORMS(Norm, t, C1),                      \
            ORUCV_NORMS(Norm, t, C3C), ORUCV_NORMS(NormDiff, t, C1), ORUCV_NORMS(NormDiff, t, C3C),               \
            ORUCV_NORMS(NormRel, t, C1), ORUCV_NORMS(NormRel, t, C3C)                                             \
    }
const Functions<Oru8u> kBytes = ORUCV_FUNCTIONS(8u);
const Functions<Oru32f> kFloats = ORUCV_FUNCTIONS(32f);
#undef ORUCV_FUNCTIONS
#undef ORUCV_NORMS

const char* const kNormNames[3] = {"Inf", "L1", "L2"};

// Up to this many pixels no 8-bit sum (at most 255 each) passes 2^31 - 1,
// where the byte functions' 32-bit sums wrap: larger 8-bit images are
// measured in bands of rows and the bands' results combined.
constexpr long long kByteSumPixels = 8421504;

// An image as the functions take it.
template <class T>
struct Plane {
    const T* data;
    int step;
    int width, height, channels;
};
Plane<Oru8u> plane_of(const Image& im) { return {im.pixels.data(), im.step(), im.width, im.height, im.channels}; }
Plane<Oru32f> plane_of(const FloatImage& im) {
    return {im.data(), im.step_bytes(), im.width, im.height, im.channels};
}

struct Mask {
    std::vector<Oru8u> bytes;  // one per pixel; all 255 when no mask was given
    bool given = false;
    long long selected = 0;
};

// The mask file (any nonzero byte selects its pixel), or all pixels.
Mask read_mask(const Args& args, int width, int height) {
    Mask m;
    m.bytes.assign(static_cast<size_t>(width) * height, 255);
    if (args.has("--mask")) {
        const Image im = to_gray(read_image(args.get("--mask"), args.input()));
        if (im.width != width || im.height != height)
            throw ToolError("the mask is " + std::to_string(im.width) + "x" + std::to_string(im.height) +
                            ", the image " + std::to_string(width) + "x" + std::to_string(height));
        m.bytes = im.pixels;
        m.given = true;
    }
    for (Oru8u b : m.bytes) m.selected += b != 0;
    return m;
}

std::string name(const char* kind, const char* type, bool c3, bool masked) {
    return std::string("orui") + kind + "_" + type + (c3 ? "_C3C" : "_C1") + (masked ? "MR" : "R");
}
std::string norm_name(const char* kind, int k, const char* type, bool c3) {
    return std::string("orui") + kind + "_" + kNormNames[k] + "_" + type + (c3 ? "_C3CMR" : "_C1MR");
}

struct ChannelStats {
    Oru64f mean = 0, deviation = 0, norm[3] = {0, 0, 0};
    Oru32f min = 0, max = 0;
    OruPoint min_at{0, 0}, max_at{0, 0};
};

// Mean and deviation, extrema and norms of one channel (coi 1..3 of a
// three-channel image, 0 for one channel).
template <class T>
ChannelStats channel_stats(const Functions<T>& f, const Plane<T>& im, const Oru8u* m, bool masked, int coi) {
    ChannelStats s;
    const OruSize roi{im.width, im.height};
    const int ms = im.width;
    const bool c3 = coi != 0;
    OruStatus st[5] = {};
    if (c3 && masked) st[0] = f.mean_sd_c3m(im.data, im.step, m, ms, roi, coi, &s.mean, &s.deviation);
    else if (c3) st[0] = f.mean_sd_c3(im.data, im.step, roi, coi, &s.mean, &s.deviation);
    else if (masked) st[0] = f.mean_sd_m(im.data, im.step, m, ms, roi, &s.mean, &s.deviation);
    else st[0] = f.mean_sd(im.data, im.step, roi, &s.mean, &s.deviation);
    if (c3 && masked) st[1] = f.extrema_c3m(im.data, im.step, m, ms, roi, coi, &s.min, &s.max, &s.min_at, &s.max_at);
    else if (c3) st[1] = f.extrema_c3(im.data, im.step, roi, coi, &s.min, &s.max, &s.min_at, &s.max_at);
    else if (masked) st[1] = f.extrema_m(im.data, im.step, m, ms, roi, &s.min, &s.max, &s.min_at, &s.max_at);
    else st[1] = f.extrema(im.data, im.step, roi, &s.min, &s.max, &s.min_at, &s.max_at);
    for (int k = 0; k < 3; ++k)
        st[2 + k] = c3 ? f.norm_c3[k](im.data, im.step, m, ms, roi, coi, &s.norm[k])
                       : f.norm[k](im.data, im.step, m, ms, roi, &s.norm[k]);
    check_status(st[0], name("Mean_StdDev", f.type, c3, masked).c_str());
    check_status(st[1], name("MinMaxIndx", f.type, c3, masked).c_str());
    for (int k = 0; k < 3; ++k) check_status(st[2 + k], norm_name("Norm", k, f.type, c3).c_str());
    return s;
}

struct DiffNorms {
    Oru64f diff[3] = {0, 0, 0}, rel[3] = {0, 0, 0}, ref[3] = {0, 0, 0};
};

// Difference norms of a - b, and the same relative to b (or b's own norms,
// with_reference), over the mask.
template <class T>
DiffNorms diff_norms(const Functions<T>& f, const Plane<T>& a, const Plane<T>& b, const Oru8u* m, int coi,
                     bool with_reference) {
    DiffNorms d;
    const OruSize roi{a.width, a.height};
    OruStatus st[9] = {};
    for (int k = 0; k < 3; ++k) {
        if (coi) {
            st[k] = f.diff_c3[k](a.data, a.step, b.data, b.step, m, a.width, roi, coi, &d.diff[k]);
            st[3 + k] = f.rel_c3[k](a.data, a.step, b.data, b.step, m, a.width, roi, coi, &d.rel[k]);
            if (with_reference) st[6 + k] = f.norm_c3[k](b.data, b.step, m, a.width, roi, coi, &d.ref[k]);
        } else {
            st[k] = f.diff[k](a.data, a.step, b.data, b.step, m, a.width, roi, &d.diff[k]);
            st[3 + k] = f.rel[k](a.data, a.step, b.data, b.step, m, a.width, roi, &d.rel[k]);
            if (with_reference) st[6 + k] = f.norm[k](b.data, b.step, m, a.width, roi, &d.ref[k]);
        }
    }
    for (int k = 0; k < 3; ++k) {
        check_status(st[k], norm_name("NormDiff", k, f.type, coi != 0).c_str());
        check_status(st[3 + k], norm_name("NormRel", k, f.type, coi != 0).c_str());
        check_status(st[6 + k], norm_name("Norm", k, f.type, coi != 0).c_str());
    }
    return d;
}

// ---- Bands of an 8-bit image too large for one call. Within a band the
// byte functions' sums are exact integers, and each comes back exactly from
// the doubles they return: S = mean * n and Q = n * (deviation^2 + mean^2)
// round to them (their errors stay far below 1/2 for n <= 8421504), as do
// L1 and L2^2. The bands' sums add up, and the results follow from them as
// the functions form them.
int band_rows(int width) { return static_cast<int>(std::max<long long>(1, kByteSumPixels / width)); }

template <class Fn>
void for_each_band(int width, int height, Fn fn) {
    const int rows = band_rows(width);
    for (int y = 0; y < height; y += rows) fn(y, std::min(rows, height - y));
}
template <class T>
Plane<T> band(const Plane<T>& p, int y, int rows) {
    return {p.data + static_cast<size_t>(y) * p.step / sizeof(T), p.step, p.width, rows, p.channels};
}
long long selected_in(const Mask& mask, int width, int y, int rows) {
    long long n = 0;
    for (size_t i = static_cast<size_t>(y) * width; i < static_cast<size_t>(y + rows) * width; ++i) n += mask.bytes[i] != 0;
    return n;
}
long long whole(double v) { return std::llround(v); }

ChannelStats byte_stats(const Image& im, const Mask& mask, int coi) {
    const Plane<Oru8u> p = plane_of(im);
    if (band_rows(im.width) >= im.height) return channel_stats(kBytes, p, mask.bytes.data(), mask.given, coi);
    ChannelStats total;
    long long n = 0, sum = 0, squares = 0, l1 = 0, l2 = 0;
    bool found = false;
    for_each_band(im.width, im.height, [&](int y, int rows) {
        const ChannelStats s =
            channel_stats(kBytes, band(p, y, rows), mask.bytes.data() + static_cast<size_t>(y) * im.width, mask.given, coi);
        const long long nb = mask.given ? selected_in(mask, im.width, y, rows) : static_cast<long long>(im.width) * rows;
        if (nb == 0) return;
        n += nb;
        sum += whole(s.mean * nb);
        squares += whole(nb * (s.deviation * s.deviation + s.mean * s.mean));
        l1 += whole(s.norm[1]);
        l2 += whole(s.norm[2] * s.norm[2]);
        total.norm[0] = std::max(total.norm[0], s.norm[0]);
        // The first band holding an extreme keeps it: ties go to the first occurrence.
        if (!found || s.min < total.min) total.min = s.min, total.min_at = {s.min_at.x, s.min_at.y + y};
        if (!found || s.max > total.max) total.max = s.max, total.max_at = {s.max_at.x, s.max_at.y + y};
        found = true;
    });
    if (n) {
        const long double mean = static_cast<long double>(sum) / n;
        total.mean = static_cast<double>(mean);
        total.deviation = static_cast<double>(std::sqrt(std::fabs(static_cast<long double>(squares) / n - mean * mean)));
    }
    total.norm[1] = static_cast<double>(l1);
    total.norm[2] = static_cast<double>(std::sqrt(static_cast<long double>(l2)));
    return total;
}

DiffNorms byte_diff_norms(const Image& a, const Image& b, const Mask& mask, int coi) {
    const Plane<Oru8u> pa = plane_of(a), pb = plane_of(b);
    if (band_rows(a.width) >= a.height) return diff_norms(kBytes, pa, pb, mask.bytes.data(), coi, false);
    // Each norm as the sum of the bands', then the relative norms by the
    // functions' rule: a zero reference gives the numerator times 2^52.
    long long d[3] = {0, 0, 0}, r[3] = {0, 0, 0};
    for_each_band(a.width, a.height, [&](int y, int rows) {
        const DiffNorms n = diff_norms(kBytes, band(pa, y, rows), band(pb, y, rows),
                                       mask.bytes.data() + static_cast<size_t>(y) * a.width, coi, true);
        d[0] = std::max(d[0], whole(n.diff[0])), r[0] = std::max(r[0], whole(n.ref[0]));
        d[1] += whole(n.diff[1]), r[1] += whole(n.ref[1]);
        d[2] += whole(n.diff[2] * n.diff[2]), r[2] += whole(n.ref[2] * n.ref[2]);
    });
    DiffNorms total;
    for (int k = 0; k < 3; ++k) {
        const long double q = r[k] == 0 ? d[k] * 4503599627370496.0L : static_cast<long double>(d[k]) / r[k];
        total.diff[k] = k == 2 ? static_cast<double>(std::sqrt(static_cast<long double>(d[k]))) : d[k];
        total.rel[k] = static_cast<double>(k == 2 ? std::sqrt(q) : q);
    }
    return total;
}

// Peak signal-to-noise ratio from the squared L2 norms of the channels'
// differences over `samples` selected samples.
double psnr(double peak, double sum_of_squares, double samples) {
    return 10.0 * std::log10(peak * peak / (sum_of_squares / samples));
}

// The image's pixels as the statistics take them: bytes while no byte sum
// can wrap, the exact values as floats otherwise.
struct Loaded {
    Image bytes;
    FloatImage floats;
    bool as_bytes = true;
    ImageInfo info;
    int width() const { return as_bytes ? bytes.width : floats.width; }
    int height() const { return as_bytes ? bytes.height : floats.height; }
    int channels() const { return as_bytes ? bytes.channels : floats.channels; }
};

Loaded load(const std::string& path, const ReadOptions& input, bool force_floats) {
    Loaded l;
    l.info = probe_image(path, input);
    if (l.info.channels != 1 && l.info.channels != 3)
        throw ToolError("'" + path + "' has " + std::to_string(l.info.channels) +
                        " channels; statistics take one or three (--drop-alpha drops an alpha channel)");
    l.as_bytes = !force_floats && l.info.sample == Sample::U8 && l.info.width <= kByteSumPixels;
    if (l.as_bytes) l.bytes = read_image(path, input);
    else l.floats = read_float_image(path, input);
    return l;
}

std::string describe(const Loaded& l) {
    std::string d = std::to_string(l.width()) + "x" + std::to_string(l.height()) + ", " + l.info.depth_name() +
                    (l.channels() == 3 ? " colour" : " gray");
    if (l.as_bytes && static_cast<long long>(l.width()) * l.height() > kByteSumPixels)
        d += ", in bands of " + std::to_string(band_rows(l.width())) + " rows";
    if (!l.as_bytes && l.info.sample == Sample::U8) d += " (float functions: rows of more than 8421504 pixels)";
    return d;
}

std::string selection(const Mask& mask, int width, int height) {
    if (!mask.given) return "";
    return ", the mask selects " + std::to_string(mask.selected) + " of " +
           std::to_string(static_cast<long long>(width) * height) + " pixels";
}

void print_stats(const ChannelStats& s) {
    std::printf("  mean %.10g, standard deviation %.10g\n", s.mean, s.deviation);
    std::printf("  minimum %.9g at (%d, %d), maximum %.9g at (%d, %d)\n", s.min, s.min_at.x, s.min_at.y, s.max,
                s.max_at.x, s.max_at.y);
    std::printf("  norms: Inf %.10g, L1 %.10g, L2 %.10g\n", s.norm[0], s.norm[1], s.norm[2]);
}

int run_stats(const Args& args) {
    const Loaded im = load(args.positional[0], args.input(), false);
    const int coi = args.get_int("--coi", 0, 1, 3);
    if (coi && im.channels() == 1) throw ToolError("--coi picks a channel of a colour image; this one is gray");
    const Mask mask = read_mask(args, im.width(), im.height());
    std::printf("%s: %s%s\n", args.positional[0].c_str(), describe(im).c_str(),
                selection(mask, im.width(), im.height()).c_str());
    if (mask.given && mask.selected == 0) std::printf("  no pixel selected: every result is 0\n");
    std::vector<int> channels;
    if (im.channels() == 1) channels = {0};
    else if (coi) channels = {coi};
    else channels = {1, 2, 3};
    for (int c : channels) {
        ChannelStats s;
        const Timing t = time_runs([&] {
            s = im.as_bytes ? byte_stats(im.bytes, mask, c)
                            : channel_stats(kFloats, plane_of(im.floats), mask.bytes.data(), mask.given, c);
        });
        if (c) std::printf(" channel %d\n", c);
        print_stats(s);
        std::printf("  %s\n", t.text().c_str());
    }
    return 0;
}
ORUCV_COMMAND("stats", "IN", "mean, standard deviation, extrema with locations and norms of an image", run_stats,
              kReads | kRepeat,
              {{"--mask", "M", "an image of the same size: only pixels whose mask value is nonzero count"},
               {"--coi", "N", "the channel (1, 2 or 3) of a colour image; all three when not given"}},
              "The standard deviation is the population one (divided by the pixel count). Locations are the\n"
              "first pixel in raster order, (x, y) from the top left. Norms: Inf the largest |value|, L1 the\n"
              "sum of |value|, L2 the square root of the sum of squares.\n"
              "8-bit images up to 8421504 pixels are measured with the 8-bit functions (exact integer sums);\n"
              "larger ones, 16-bit and float images with the float functions, on the exact values.");

int run_compare(const Args& args) {
    const ReadOptions input = args.input();
    const ImageInfo ia = probe_image(args.positional[0], input), ib = probe_image(args.positional[1], input);
    if (ia.width != ib.width || ia.height != ib.height || ia.channels != ib.channels)
        throw ToolError("the images differ in size or channels (" + std::to_string(ia.width) + "x" +
                        std::to_string(ia.height) + "x" + std::to_string(ia.channels) + " and " +
                        std::to_string(ib.width) + "x" + std::to_string(ib.height) + "x" +
                        std::to_string(ib.channels) + ")");
    // Both as bytes, or both as the exact values.
    const bool floats = ia.sample != Sample::U8 || ib.sample != Sample::U8;
    const Loaded a = load(args.positional[0], input, floats), b = load(args.positional[1], input, floats);
    const Mask mask = read_mask(args, a.width(), a.height());
    std::printf("%s and %s: %s%s\n", args.positional[0].c_str(), args.positional[1].c_str(), describe(a).c_str(),
                selection(mask, a.width(), a.height()).c_str());

    std::vector<int> channels = a.channels() == 1 ? std::vector<int>{0} : std::vector<int>{1, 2, 3};
    double inf = 0, l1 = 0, squares = 0;
    bool nan = false;
    for (int c : channels) {
        DiffNorms d;
        const Timing t = time_runs([&] {
            d = a.as_bytes ? byte_diff_norms(a.bytes, b.bytes, mask, c)
                           : diff_norms(kFloats, plane_of(a.floats), plane_of(b.floats), mask.bytes.data(), c, false);
        });
        if (c) std::printf(" channel %d\n", c);
        std::printf("  difference norms: Inf %.10g, L1 %.10g, L2 %.10g\n", d.diff[0], d.diff[1], d.diff[2]);
        std::printf("  relative to the second: Inf %.10g, L1 %.10g, L2 %.10g\n", d.rel[0], d.rel[1], d.rel[2]);
        std::printf("  %s\n", t.text().c_str());
        nan = nan || std::isnan(d.diff[0]);
        inf = std::max(inf, d.diff[0]);
        l1 += d.diff[1];
        squares += d.diff[2] * d.diff[2];
    }
    // The peak is the largest value the samples can hold: 255, 65535 (the
    // files' maxval for 16-bit data), 1.0 for float files.
    const bool float_files = ia.sample == Sample::F32 || ib.sample == Sample::F32;
    const double peak = float_files ? 1.0 : std::max(ia.maxval, ib.maxval);
    const double samples = static_cast<double>(mask.selected) * a.channels();
    const bool equal = !nan && inf == 0;
    if (samples == 0) std::printf("no pixel selected: nothing differs\n");
    else if (equal) std::printf("PSNR infinite (peak %g): the images are equal\n", peak);
    else std::printf("PSNR %.2f dB (peak %g): the images differ\n", psnr(peak, squares, samples), peak);
    return equal ? 0 : 1;
}
ORUCV_COMMAND("compare", "A B", "norms of the difference of two images and PSNR; exit 0 when equal, 1 when not",
              run_compare, kReads | kRepeat,
              {{"--mask", "M", "an image of the same size: only pixels whose mask value is nonzero are compared"}},
              "Prints the Inf, L1 and L2 norms of A - B and the same norms relative to B's, per channel of a\n"
              "colour image, and the PSNR over all channels (peak 255 for 8-bit, the maxval for 16-bit, 1.0\n"
              "for float files). A relative norm whose reference norm is 0 divides by 2^-52 instead.\n"
              "Exit status: 0 the images are equal (over the mask), 1 they differ, 2 an error.");

// ---- Demo: the scene's statistics, and frame 0 against frame 3.
void mark(Image& im, OruPoint p, uint8_t r, uint8_t g, uint8_t b) {
    for (int d = -6; d <= 6; ++d)
        for (const OruPoint q : {OruPoint{p.x + d, p.y}, OruPoint{p.x, p.y + d}})
            if (q.x >= 0 && q.y >= 0 && q.x < im.width && q.y < im.height)
                im.at(q.x, q.y, 0) = r, im.at(q.x, q.y, 1) = g, im.at(q.x, q.y, 2) = b;
}

void demo_stats(DemoContext& demo) {
    const Image& f0 = demo.frame(0);
    const Image& f3 = demo.frame(3);
    Mask all;
    all.bytes.assign(f0.pixels.size(), 255);
    all.selected = static_cast<long long>(f0.pixels.size());
    ChannelStats s;
    Timing t = time_runs([&] { s = channel_stats(kBytes, plane_of(f0), all.bytes.data(), false, 0); });
    Image marked(f0.width, f0.height, 3);
    for (size_t i = 0; i < f0.pixels.size(); ++i)
        for (int c = 0; c < 3; ++c) marked.pixels[3 * i + c] = f0.pixels[i];
    mark(marked, s.min_at, 0, 96, 255);
    mark(marked, s.max_at, 255, 32, 0);
    char detail[200];
    std::snprintf(detail, sizeof detail, "mean %.2f, deviation %.2f, min %g at (%d,%d) blue, max %g at (%d,%d) red",
                  s.mean, s.deviation, s.min, s.min_at.x, s.min_at.y, s.max, s.max_at.x, s.max_at.y);
    demo.save("stats.png", marked, "oruiMean_StdDev/MinMaxIndx/Norm_8u_C1", t.min_ms(), detail);

    DiffNorms d;
    t = time_runs([&] { d = diff_norms(kBytes, plane_of(f0), plane_of(f3), all.bytes.data(), 0, false); });
    Image diff(f0.width, f0.height);
    for (size_t i = 0; i < f0.pixels.size(); ++i)
        diff.pixels[i] = static_cast<uint8_t>(std::min(255, 4 * std::abs(f0.pixels[i] - f3.pixels[i])));
    std::snprintf(detail, sizeof detail, "frame 0 - frame 3: Inf %g, L1 %g, L2 %.1f, L2 relative %.4f, PSNR %.2f dB",
                  d.diff[0], d.diff[1], d.diff[2], d.rel[2],
                  psnr(255, d.diff[2] * d.diff[2], static_cast<double>(f0.pixels.size())));
    demo.save("compare.png", diff, "oruiNormDiff/NormRel_8u_C1MR", t.min_ms(), detail);
}
ORUCV_DEMO_STEP(12, "image statistics", demo_stats);

}  // namespace
}  // namespace orucv_tool
