// Line sampling: the order of checks, the stepping rule in every octant and
// both directions (against a model written from the rule), every line of
// regions from 1x1 to 9x9, long lines across padded images, coordinates near
// the int limits, and every path.
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "a6/samplers.h"
#include "orucv.h"
#include "samplers_list.h"
#include "support/image.h"
#include "support/simd.h"

using namespace orutest;

namespace {

// One call of any function of the list.
using Call = OruStatus (*)(const void* src, int step, OruSize roi, void* dst, OruPoint p1, OruPoint p2);
template <class T, auto F>
OruStatus call_Line(const void* src, int step, OruSize roi, void* dst, OruPoint p1, OruPoint p2) {
    return F(static_cast<const T*>(src), step, roi, static_cast<T*>(dst), p1, p2);
}
struct Function {
    const char* name;
    int channels;
    bool is_float;
    Call call;
};
#define SAMPLER_FUNCTION(name, shape, T, C) Function{#name, C, sizeof(T) == 4, call_##shape<T, name>},
const Function kFunctions[] = {ORUCV_SAMPLERS_FUNCTIONS(SAMPLER_FUNCTION)};

long long ceil_div(long long a, long long b) { return a >= 0 ? (a + b - 1) / b : -(-a / b); }

// The points of the line from p to q by the stepping rule: the major axis
// (y when |dx| <= |dy|) moves one pixel per point, and after k steps the
// minor coordinate has moved ceil(minor * k / major - 1/2) toward q.
std::vector<OruPoint> model_line(OruPoint p, OruPoint q) {
    const long long dx = static_cast<long long>(q.x) - p.x, dy = static_cast<long long>(q.y) - p.y;
    const bool steep = std::llabs(dx) <= std::llabs(dy);
    const long long major = steep ? std::llabs(dy) : std::llabs(dx), minor = steep ? std::llabs(dx) : std::llabs(dy);
    const int sx = dx < 0 ? -1 : 1, sy = dy < 0 ? -1 : 1;
    std::vector<OruPoint> points;
    for (long long k = 0; k <= major; ++k) {
        const long long m = major ? ceil_div(2 * minor * k - major, 2 * major) : 0;
        const long long along = steep ? m : k, down = steep ? k : m;
        points.push_back({static_cast<int>(p.x + sx * along), static_cast<int>(p.y + sy * down)});
    }
    return points;
}

// Random bit patterns, so float pixels include NaNs with payloads and
// signalling NaNs, which must arrive unchanged.
template <class T>
void fill_bits(GuardedImage<T>& image, uint64_t seed) {
    Rng rng(seed);
    for (int y = 0; y < image.height(); ++y)
        for (int i = 0; i < image.width() * image.channels(); ++i) {
            const uint32_t v = rng.next();
            std::memcpy(&image.row(y)[i], &v, sizeof(T));
        }
}

// Whether dst holds the pixels of `points`, bit for bit.
template <class T>
bool holds_line(const GuardedImage<T>& image, const std::vector<OruPoint>& points, const T* dst) {
    const size_t pixel = sizeof(T) * image.channels();
    for (size_t k = 0; k < points.size(); ++k)
        if (std::memcmp(&image.at(points[k].x, points[k].y), dst + k * image.channels(), pixel) != 0) return false;
    return true;
}

// Samples p -> q on every path, and expects the model's pixels and nothing
// written beyond them (the destination ends against an inaccessible page).
template <class T>
void expect_line(const Function& fn, const GuardedImage<T>& image, OruPoint p, OruPoint q) {
    const std::vector<OruPoint> points = model_line(p, q);
    GuardedImage<T> dst(static_cast<int>(points.size()), 1, fn.channels);
    for (orucv::SimdLevel level : available_levels()) {
        ScopedSimdLevel scoped(level);
        dst.fill(T(0));
        ASSERT_EQ(fn.call(image.data(), image.step(), {image.width(), image.height()}, dst.data(), p, q), oruStsOk);
        EXPECT_TRUE(holds_line(image, points, dst.data()))
            << fn.name << " (" << p.x << "," << p.y << ") -> (" << q.x << "," << q.y << ") on " << level_name(level);
    }
    EXPECT_TRUE(dst.guards_intact()) << fn.name;
}

template <class T>
GuardedImage<T> random_image(const Function& fn, int width, int height, int pad_pixels, int misalign, uint64_t seed) {
    const int pixel = static_cast<int>(sizeof(T)) * fn.channels;
    GuardedImage<T> image(width, height, fn.channels, pad_pixels * pixel, misalign * static_cast<int>(sizeof(T)));
    fill_bits(image, seed);
    return image;
}

template <class Each>
void for_each_function(Each each) {
    for (const Function& fn : kFunctions) {
        SCOPED_TRACE(fn.name);
        if (fn.is_float) each(fn, Oru32f());
        else each(fn, Oru8u());
    }
}

}  // namespace

// The list makes both the wrappers and this table: its columns must say
// what each name says.
TEST(SampleLineList, ColumnsFollowTheNames) {
    for (const Function& fn : kFunctions) {
        const std::string name = fn.name;
        EXPECT_NE(name.find(fn.is_float ? "_32f_" : "_8u_"), std::string::npos) << name;
        EXPECT_NE(name.find("_C" + std::to_string(fn.channels) + "R"), std::string::npos) << name;
    }
}

// Pointers, step, size and float step first; a short step and points outside
// the region only then, as oruStsBadLine. Nothing is written on failure.
TEST(SampleLineChecks, OrderOfChecks) {
    for_each_function([](const Function& fn, auto t) {
        using T = decltype(t);
        const int e = static_cast<int>(sizeof(T)), pixel = e * fn.channels;
        GuardedImage<T> image(8, 4, fn.channels), dst(16, 1, fn.channels);
        const auto before = dst.snapshot();
        const int step = image.step();
        const OruSize roi{8, 4};
        auto call = [&](const void* s, int st, OruSize r, void* d, OruPoint p1, OruPoint p2) {
            return fn.call(s, st, r, d, p1, p2);
        };
        EXPECT_EQ(call(nullptr, 0, {-1, -1}, dst.data(), {-1, 0}, {0, 0}), oruStsNullPointer);
        EXPECT_EQ(call(image.data(), step, roi, nullptr, {0, 0}, {1, 1}), oruStsNullPointer);
        EXPECT_EQ(call(image.data(), 0, {0, 0}, dst.data(), {9, 9}, {0, 0}), oruStsStep);
        EXPECT_EQ(call(image.data(), -step, roi, dst.data(), {0, 0}, {1, 1}), oruStsStep);
        EXPECT_EQ(call(image.data(), step, {0, 4}, dst.data(), {0, 0}, {0, 0}), oruStsSize);
        EXPECT_EQ(call(image.data(), step, {8, -2}, dst.data(), {0, 0}, {0, 0}), oruStsSize);
        EXPECT_EQ(call(image.data(), 6, {8, 4}, dst.data(), {-5, 0}, {0, 0}), fn.is_float ? oruStsNotEvenStep : oruStsBadLine);
        // A step below the row width is a bad line, not a bad step.
        EXPECT_EQ(call(image.data(), 8 * pixel - (fn.is_float ? 4 : 1), roi, dst.data(), {0, 0}, {1, 1}), oruStsBadLine);
        const OruPoint outside[] = {{8, 0}, {-1, 0}, {0, 4}, {0, -1}, {INT_MIN, 0}, {0, INT_MAX}};
        for (OruPoint o : outside) {
            EXPECT_EQ(call(image.data(), step, roi, dst.data(), o, {1, 1}), oruStsBadLine) << o.x << "," << o.y;
            EXPECT_EQ(call(image.data(), step, roi, dst.data(), {1, 1}, o), oruStsBadLine) << o.x << "," << o.y;
        }
        EXPECT_EQ(dst.snapshot(), before);
        // The last pixel is the region's corner; a step of exactly the row
        // width is enough.
        EXPECT_EQ(call(image.data(), 8 * pixel, roi, dst.data(), {7, 3}, {0, 0}), oruStsOk);
    });
}

// The examples that pin the rule down: one point, a row in both directions,
// and halves, which round toward the start.
TEST(SampleLineValues, ShortLinesByHand) {
    GuardedImage<Oru8u> image(10, 5);
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 10; ++x) image.at(x, y) = static_cast<Oru8u>(10 * y + x);
    auto sample = [&](OruPoint p, OruPoint q, int n) {
        GuardedImage<Oru8u> dst(n, 1);
        EXPECT_EQ(oruiSampleLine_8u_C1R(image.data(), image.step(), {10, 5}, dst.data(), p, q), oruStsOk);
        EXPECT_TRUE(dst.guards_intact());
        return dst.region_bytes();
    };
    using Bytes = std::vector<uint8_t>;
    EXPECT_EQ(sample({3, 2}, {3, 2}, 1), Bytes({23}));
    EXPECT_EQ(sample({0, 0}, {9, 0}, 10), Bytes({0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
    EXPECT_EQ(sample({9, 0}, {0, 0}, 10), Bytes({9, 8, 7, 6, 5, 4, 3, 2, 1, 0}));
    // y offsets 0, 0, 1, 1, 2: the half at k = 1 stays on the start's row...
    EXPECT_EQ(sample({0, 0}, {4, 2}, 5), Bytes({0, 1, 12, 13, 24}));
    // ...and backwards at k = 1 too, so the two directions differ.
    EXPECT_EQ(sample({4, 2}, {0, 0}, 5), Bytes({24, 23, 12, 11, 0}));
    // Steep, with halves at k = 1 and 3: x offsets 0, 0, 1, 1, 2.
    EXPECT_EQ(sample({5, 0}, {7, 4}, 5), Bytes({5, 15, 26, 36, 47}));
}

// Every line of every region from 1x1 to 9x9, rows tight or padded, on every
// path, against the model.
TEST(SampleLinePaths, EveryLineOfSmallRegions) {
    for_each_function([](const Function& fn, auto t) {
        using T = decltype(t);
        std::vector<std::unique_ptr<GuardedImage<T>>> dsts;
        for (int n = 1; n <= 9; ++n) dsts.emplace_back(new GuardedImage<T>(n, 1, fn.channels));
        for (int h = 1; h <= 9; ++h)
            for (int w = 1; w <= 9; ++w) {
                const bool padded = (w + h) % 2 == 1;
                const GuardedImage<T> image = random_image<T>(fn, w, h, padded ? 3 : 0, padded ? 1 : 0, w * 10 + h);
                for (orucv::SimdLevel level : available_levels()) {
                    ScopedSimdLevel scoped(level);
                    int failures = 0;
                    for (int p = 0; p < w * h; ++p)
                        for (int q = 0; q < w * h; ++q) {
                            const OruPoint p1{p % w, p / w}, p2{q % w, q / w};
                            const std::vector<OruPoint> points = model_line(p1, p2);
                            T* dst = dsts[points.size() - 1]->data();
                            const OruStatus s = fn.call(image.data(), image.step(), {w, h}, dst, p1, p2);
                            if (s != oruStsOk || !holds_line(image, points, dst)) {
                                if (++failures <= 3)
                                    ADD_FAILURE() << w << "x" << h << " (" << p1.x << "," << p1.y << ") -> (" << p2.x
                                                  << "," << p2.y << ") on " << level_name(level);
                            }
                        }
                }
            }
        for (const auto& d : dsts) EXPECT_TRUE(d->guards_intact());
    });
}

// Long lines on a padded image, region off alignment: every octant in both
// directions, slopes with and without halves, the axes and diagonals, corner
// to corner, and random lines.
TEST(SampleLinePaths, LongLinesInEveryOctant) {
    const int w = 301, h = 203;
    const OruPoint centre{150, 101};
    std::vector<std::pair<OruPoint, OruPoint>> lines;
    const int spans[][2] = {{150, 0},  {150, 1},  {150, 75}, {150, 74}, {149, 100}, {100, 100},
                            {0, 101},  {1, 101},  {75, 101}, {74, 100}, {101, 100}, {37, 99}};
    for (const auto& s : spans)
        for (int sx : {-1, 1})
            for (int sy : {-1, 1}) {
                const OruPoint far{centre.x + sx * s[0], centre.y + sy * s[1]};
                lines.push_back({centre, far});
                lines.push_back({far, centre});
            }
    const OruPoint corners[] = {{0, 0}, {w - 1, 0}, {0, h - 1}, {w - 1, h - 1}};
    for (OruPoint a : corners)
        for (OruPoint b : corners)
            if (a.x != b.x || a.y != b.y) lines.push_back({a, b});
    Rng rng(7);
    for (int i = 0; i < 40; ++i)
        lines.push_back({{rng.uniform(0, w - 1), rng.uniform(0, h - 1)}, {rng.uniform(0, w - 1), rng.uniform(0, h - 1)}});

    for_each_function([&](const Function& fn, auto t) {
        using T = decltype(t);
        const GuardedImage<T> image = random_image<T>(fn, w, h, 13, 3, 99);
        for (const auto& line : lines) expect_line<T>(fn, image, line.first, line.second);
    });
}

// Samples lines given in window coordinates, where the window holds pixels
// (x0, y0) .. of a region far larger than memory: the caller's pointer is
// placed so that only the window's bytes are touched.
template <class T>
void expect_lines_in_window(const Function& fn, const GuardedImage<T>& window, int step, OruSize roi, int x0, int y0,
                            const std::vector<std::pair<OruPoint, OruPoint>>& lines) {
    const unsigned long long offset = static_cast<unsigned long long>(y0) * step +
                                      static_cast<unsigned long long>(x0) * sizeof(T) * fn.channels;
    const void* src = reinterpret_cast<const void*>(reinterpret_cast<uintptr_t>(window.data()) -
                                                    static_cast<uintptr_t>(offset));
    for (const auto& line : lines) {
        const std::vector<OruPoint> points = model_line(line.first, line.second);
        GuardedImage<T> dst(static_cast<int>(points.size()), 1, fn.channels);
        const OruPoint a{x0 + line.first.x, y0 + line.first.y}, b{x0 + line.second.x, y0 + line.second.y};
        for (orucv::SimdLevel level : available_levels()) {
            ScopedSimdLevel scoped(level);
            ASSERT_EQ(fn.call(src, step, roi, dst.data(), a, b), oruStsOk);
            EXPECT_TRUE(holds_line(window, points, dst.data())) << level_name(level);
        }
    }
}

// Offsets beyond an int: rows about 1 MiB apart near row INT_MAX (random
// lines in a 16 x 10 window), and a last row of INT_MAX - 1 rows whose step
// is as large as an int allows (horizontal lines both ways at its end).
TEST(SampleLineLimits, CoordinatesAndStepsNearIntLimits) {
    for_each_function([](const Function& fn, auto t) {
        using T = decltype(t);
        const int pixel = static_cast<int>(sizeof(T)) * fn.channels;
        const GuardedImage<T> window = random_image<T>(fn, 16, 10, (1 << 20) / pixel - 16, 1, 5);
        std::vector<std::pair<OruPoint, OruPoint>> lines;
        Rng rng(11);
        for (int i = 0; i < 60; ++i)
            lines.push_back({{rng.uniform(0, 15), rng.uniform(0, 9)}, {rng.uniform(0, 15), rng.uniform(0, 9)}});
        expect_lines_in_window<T>(fn, window, window.step(), {19, INT_MAX}, 3, INT_MAX - 10, lines);

        const int step = fn.is_float ? INT_MAX - 3 : INT_MAX, width = step / pixel;
        const GuardedImage<T> row = random_image<T>(fn, 40, 1, 0, 0, 6);
        expect_lines_in_window<T>(fn, row, step, {width, INT_MAX}, width - 40, INT_MAX - 1,
                                  {{{0, 0}, {39, 0}}, {{39, 0}, {0, 0}}, {{7, 0}, {30, 0}}});
    });
}

TEST(SampleLineDeathTest, SetUpAssertsPixelSize) {
    GuardedImage<Oru8u> image(4, 4);
    orucv::a6::LineState line;
    EXPECT_DEATH(orucv::a6::init_line(image.data(), 8, {4, 4}, {0, 0}, {1, 1}, 2, &line),
                 "src/orcvsamplers:.*bt_pix == 1 \\|\\| bt_pix == 3 \\|\\| bt_pix == \\(\\(int\\)sizeof\\(Oru32f\\)\\) "
                 "\\|\\| bt_pix == 3\\*\\(\\(int\\)sizeof\\(Oru32f\\)\\)");
    EXPECT_EQ(orucv::a6::init_line(image.data(), 12, {4, 4}, {3, 0}, {0, 3}, 3, &line), 4);
    EXPECT_EQ(orucv::a6::init_line(image.data(), 11, {4, 4}, {3, 0}, {0, 3}, 3, &line), 0);
}
