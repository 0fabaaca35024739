// Gradient orientation: 3x3 Sobel derivatives, then the fast arctangent,
// in strips of rows, so that memory holds a few rows whatever the height;
// shown as colour (hue the angle, brightness the gradient magnitude).
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "cli.h"
#include "orucv.h"
#include "row_io.h"

namespace orucv_tool {
namespace {

struct OrientationTimes {
    double sobel_ms = 0, arctan_ms = 0;
};

// Angles in degrees (of (Dx, Dy), y pointing down) and gradient magnitudes
// of an image given row by row: read(row) fills the next source row,
// emit(y, count, angles, magnitudes) takes `count` output rows from row y.
// Each strip is derived from its rows and one more on each side, so every
// output row is that of the whole image (whose edge rows the derivatives
// replicate).
template <class Read, class Emit>
OrientationTimes orientation_rows(int width, int height, Read&& read, Emit&& emit) {
    if (height < 2) throw ToolError("the image needs at least two rows");
    const int strip = std::max(1, std::min(height, (1 << 18) / width));
    const size_t w = static_cast<size_t>(width);
    std::vector<float> src((strip + 2) * w), dx(src.size()), dy(src.size()), magnitude(strip * w), angle(strip * w);
    int base = 0, held = 0;  // the image row of src row 0, the rows in src
    OrientationTimes times;
    for (int y0 = 0; y0 < height; y0 += strip) {
        const int count = std::min(strip, height - y0);
        const int first = std::max(0, y0 - 1), last = std::min(height - 1, y0 + count);
        if (first > base) {
            std::copy(src.begin() + (first - base) * w, src.begin() + held * w, src.begin());
            held -= first - base;
            base = first;
        }
        while (base + held <= last) read(src.data() + held++ * w);
        const int step = width * 4;
        int sx = 0, sy = 0, sa = 0;
        times.sobel_ms += time_ms([&] {
            sx = oruiSobel3x3_Dx_32f_C1R(src.data(), step, dx.data(), step, {width, held});
            sy = oruiSobel3x3_Dy_32f_C1R(src.data(), step, dy.data(), step, 0, {width, held});
        });
        check_status(sx, "oruiSobel3x3_Dx_32f_C1R");
        check_status(sy, "oruiSobel3x3_Dy_32f_C1R");
        const size_t at = (y0 - base) * w, n = count * w;
        times.arctan_ms += time_ms(
            [&] { sa = oruibFastArctan_32f(dy.data() + at, dx.data() + at, angle.data(), static_cast<int>(n)); });
        check_status(sa, "oruibFastArctan_32f");
        for (size_t i = 0; i < n; ++i) magnitude[i] = std::sqrt(dx[at + i] * dx[at + i] + dy[at + i] * dy[at + i]);
        emit(y0, count, angle.data(), magnitude.data());
    }
    return times;
}

// Hue the angle, brightness the magnitude over `full` (at most 1), full
// saturation; NaN angles (NaN samples) are black.
void colour_row(const float* angle, const float* magnitude, size_t n, double full, uint8_t* rgb) {
    for (size_t i = 0; i < n; ++i, rgb += 3) {
        const double v = std::isfinite(angle[i]) ? std::clamp(magnitude[i] / full, 0.0, 1.0) : 0.0;
        double h = std::isfinite(angle[i]) ? std::fmod(angle[i], 360.0) : 0.0;
        if (h < 0) h += 360.0;
        const int sector = std::min(5, static_cast<int>(h / 60.0));
        const double f = h / 60.0 - sector, rise = v * f, fall = v * (1.0 - f);
        const double channels[6][3] = {{v, rise, 0}, {fall, v, 0}, {0, v, rise},
                                       {0, fall, v}, {rise, 0, v}, {v, 0, fall}};
        for (int c = 0; c < 3; ++c) rgb[c] = static_cast<uint8_t>(std::lround(channels[sector][c] * 255.0));
    }
}

void demo_orientation(DemoContext& demo) {
    const Image& scene = demo.frame(0);
    Image picture(scene.width, scene.height, 3);
    int next = 0;
    const OrientationTimes t = orientation_rows(
        scene.width, scene.height,
        [&](float* row) {
            std::copy(scene.row(next), scene.row(next) + scene.width, row);
            ++next;
        },
        [&](int y0, int count, const float* angle, const float* magnitude) {
            colour_row(angle, magnitude, static_cast<size_t>(count) * scene.width, 255.0, picture.row(y0));
        });
    char detail[96];
    std::snprintf(detail, sizeof detail, "hue = gradient direction, brightness = magnitude; Sobel %.3f ms", t.sobel_ms);
    demo.save("orientation.png", picture, "oruibFastArctan_32f", t.arctan_ms, detail);
}
ORUCV_DEMO_STEP(25, "gradient orientation", demo_orientation);

int run_orientation(const Args& args) {
    RowReader in(args.positional[0], args.input(), RowReader::Exact, RowReader::Gray);
    const std::string& out_name = args.positional[1];
    const bool values = keeps_values(output_format(out_name));
    const ImageInfo& info = in.info();
    const double full = args.get_double("--max", info.sample == Sample::F32 ? 1.0 : info.maxval, 1e-30);
    RowWriter out(out_name, in.width(), in.height(), values ? 1 : 3, values ? Sample::F32 : Sample::U8, &in);
    Progress progress("orientation", static_cast<uint64_t>(in.height()));
    const size_t w = static_cast<size_t>(in.width());
    std::vector<uint8_t> rgb(3 * w);
    const OrientationTimes t = orientation_rows(
        in.width(), in.height(), [&](float* row) { in.read_row(row); },
        [&](int y0, int count, const float* angle, const float* magnitude) {
            for (int r = 0; r < count; ++r) {
                if (values) {
                    out.write_row(angle + r * w);
                } else {
                    colour_row(angle + r * w, magnitude + r * w, w, full, rgb.data());
                    out.write_row(rgb.data());
                }
            }
            progress.update(static_cast<uint64_t>(y0) + count);
        });
    out.finish();
    progress.finish();
    std::printf("%s: %dx%d, %s, oruibFastArctan_32f %.3f ms, Sobel derivatives %.3f ms\n", out_name.c_str(),
                in.width(), in.height(), values ? "angles in degrees" : "hue = angle, brightness = magnitude",
                t.arctan_ms, t.sobel_ms);
    return 0;
}
ORUCV_COMMAND("orientation", "IN OUT", "gradient direction of an image as a colour picture, or its angles",
              run_orientation, kReads | kRepeat,
              {{"--max", "M", "gradient magnitude shown at full brightness (default: the largest sample value, "
                              "1 for float images)"}},
              "The 3x3 Sobel derivatives Dx and Dy of the image (gray; RGB is made gray) give the direction\n"
              "of every pixel's gradient, atan2(Dy, Dx) in degrees by oruibFastArctan_32f: 0 points right,\n"
              "90 down (y grows downward), within 0.14 degrees. A PNG/PPM output shows it as colour: hue the\n"
              "angle, brightness the gradient magnitude; a .pfm or .npy output keeps the angles. 8-, 16-bit\n"
              "and float images are derived from their exact values. Rows are read and written in strips,\n"
              "so memory holds a few rows whatever the height. Times are totals over the strips (the\n"
              "fastest of --repeat runs of each).");

}  // namespace
}  // namespace orucv_tool
