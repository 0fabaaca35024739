// Fast arctangent: the order of checks, stated results to the last bit,
// special floats, accuracy around the circle, and every path on lengths
// 0..70 with arrays off alignment.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "fastarctan_list.h"
#include "orucv.h"
#include "support/bits.h"
#include "support/image.h"
#include "support/simd.h"

using namespace orutest;

namespace {

using Call = OruStatus (*)(const Oru32f* y, const Oru32f* x, Oru32f* dst, int len);
struct Function {
    const char* name;
    Call call;
};
#define ARCTAN_FUNCTION(name, shape, T) Function{#name, name},
const Function kFunctions[] = {ORUCV_FASTARCTAN_FUNCTIONS(ARCTAN_FUNCTION)};

// Arrays of n floats ending against an inaccessible page, a gap of whole
// floats before it (which moves them off vector alignment).
using Array = GuardedImage<Oru32f>;

struct Case {
    float x, y;
    uint32_t expected;
};

// Runs the cases as one array on every path and expects their bits.
void expect_cases(const Function& fn, const std::vector<Case>& cases) {
    const int n = static_cast<int>(cases.size());
    Array y(n, 1), x(n, 1), dst(n, 1, 1, 0, 4);
    for (int i = 0; i < n; ++i) x.at(i, 0) = cases[i].x, y.at(i, 0) = cases[i].y;
    for (orucv::SimdLevel level : available_levels()) {
        ScopedSimdLevel scoped(level);
        dst.fill(0.0f);
        ASSERT_EQ(fn.call(y.data(), x.data(), dst.data(), n), oruStsOk);
        for (int i = 0; i < n; ++i)
            EXPECT_EQ(bits(dst.at(i, 0)), cases[i].expected)
                << fn.name << " (" << cases[i].x << ", " << cases[i].y << ") gives " << dst.at(i, 0) << " on "
                << level_name(level);
    }
    EXPECT_TRUE(dst.guards_intact());
}

// The reference direction in degrees, in [0, 360).
double direction(float x, float y) {
    const double d = std::atan2(static_cast<double>(y), static_cast<double>(x)) * 180.0 / M_PI;
    return d < 0 ? d + 360.0 : d;
}

// Distance of two angles on the circle, in degrees.
double angle_error(double a, double b) {
    const double d = std::fabs(std::fmod(a - b, 360.0));
    return d > 180.0 ? 360.0 - d : d;
}

}  // namespace

// Null pointers before the length; nothing written on failure; a length of
// 0 touches nothing (the arrays given lie beyond the end of their pages).
TEST(FastArctanChecks, OrderOfChecks) {
    for (const Function& fn : kFunctions) {
        Array y(4, 1), x(4, 1), dst(4, 1);
        const auto before = dst.snapshot();
        EXPECT_EQ(fn.call(nullptr, x.data(), dst.data(), -1), oruStsNullPointer);
        EXPECT_EQ(fn.call(y.data(), nullptr, dst.data(), 4), oruStsNullPointer);
        EXPECT_EQ(fn.call(y.data(), x.data(), nullptr, -1), oruStsNullPointer);
        EXPECT_EQ(fn.call(y.data(), x.data(), dst.data(), -1), oruStsSize);
        EXPECT_EQ(fn.call(y.data(), x.data(), dst.data(), INT_MIN), oruStsSize);
        EXPECT_EQ(dst.snapshot(), before);
        Array none(0, 1);
        EXPECT_EQ(fn.call(none.data(), none.data(), none.data(), 0), oruStsOk);
    }
}

// The quadratic's constant term is kept (the x axis gives -0.1405), the three
// corrections compose in order, and t is the correctly rounded quotient (a
// reciprocal estimate refined by one Newton step misses t = 1/2, 3/8, 4/5,
// 2/7 and 1/7 by an ulp, and which ones depends on the processor).
TEST(FastArctanValues, StatedResultsToTheBit) {
    const std::vector<Case> cases = {
        {1, 0, 0xBE0FDF57u},           // -0.14050041
        {0, 0, 0xBE0FDF57u},           // the floor keeps (0, 0) defined: -0.14050041
        {-1, 0, 0x433423F8u},          // 180.14050
        {0, 1, 0x42B447F0u},           // 90.140503
        {0, -1, 0x4386EE04u},          // 269.85950
        {1, 1, 0x42348FE1u},           // 45.140507: t = 1 takes p, not 90 - p
        {1, -1e-6f, 0x43B411FAu},      // 360.14044, just above 360
        {-1, 1, 0x4306DC08u},          // 134.85950
        {-1, -1, 0x436123F8u},         // 225.14050
        {1, -1, 0x439D6E04u},          // 314.85950
        {4, 3, 0x42132413u},           // 36.785229 (t = 3/4)
        {3, 4, 0x4254DBEDu},           // 53.214771
        {-250, 1000, 0x42D04A19u},     // 104.14472 (t = 1/4)
        {2, 1, 0x41D3A05Cu},           // 26.453300 (t = 1/2)
        {8, 3, 0x41A45E66u},           // 20.546093 (t = 3/8)
        {-5, -4, 0x435A9D4Au},         // 218.61441 (t = 4/5)
        {7, 2, 0x41803161u},           // 16.024111 (t = 2/7)
        {1, 7, 0x42A37890u},           // 81.735474 (t = 1/7)
    };
    for (const Function& fn : kFunctions) expect_cases(fn, cases);
}

// -0.0 counts as 0; an infinite component against a finite one gives the
// axis, two infinities the diagonal; any NaN gives the quiet NaN; tiny
// magnitudes meet the 1e-8 floor.
TEST(FastArctanValues, SpecialFloats) {
    const float inf = std::numeric_limits<float>::infinity();
    const float nan_payload = from_bits(0xFFC12345u), snan = from_bits(0x7F800001u);
    const float denormal = from_bits(1);
    const uint32_t x_axis = 0xBE0FDF57u, y_axis = 0x42B447F0u, neg_x_axis = 0x433423F8u, neg_y_axis = 0x4386EE04u;
    const uint32_t nan = 0x7FC00000u;
    const std::vector<Case> cases = {
        {0.0f, -0.0f, x_axis}, {-0.0f, 0.0f, x_axis},     {-0.0f, -0.0f, x_axis},      {-0.0f, 1.0f, y_axis},
        {1.0f, -0.0f, x_axis}, {inf, 0.0f, x_axis},       {inf, 5.0f, x_axis},         {-inf, 5.0f, neg_x_axis},
        {3.0f, inf, y_axis},   {3.0f, -inf, neg_y_axis},  {inf, inf, 0x42348FE1u},     {-inf, -inf, 0x436123F8u},
        {inf, -inf, 0x439D6E04u}, {nan_payload, 1.0f, nan}, {1.0f, nan_payload, nan}, {snan, inf, nan},
        {std::nanf(""), std::nanf(""), nan}, {denormal, 0.0f, x_axis}, {denormal, denormal, x_axis},
        {1e-8f, 1e-8f, 0x42348FE1u},
    };
    for (const Function& fn : kFunctions) expect_cases(fn, cases);
}

// Within 0.1406 degrees of the true direction all around the circle, at
// several magnitudes.
TEST(FastArctanValues, AccuracyAroundTheCircle) {
    const int n = 3600;
    for (const Function& fn : kFunctions)
        for (float magnitude : {1e-3f, 1.0f, 255.0f, 1e30f}) {
            Array y(n, 1), x(n, 1), dst(n, 1);
            for (int i = 0; i < n; ++i) {
                const double a = (i + 0.37) * M_PI / 1800.0;
                x.at(i, 0) = static_cast<float>(magnitude * std::cos(a));
                y.at(i, 0) = static_cast<float>(magnitude * std::sin(a));
            }
            ASSERT_EQ(fn.call(y.data(), x.data(), dst.data(), n), oruStsOk);
            for (int i = 0; i < n; ++i) {
                const float a = dst.at(i, 0);
                EXPECT_TRUE(a >= -0.1406f && a <= 360.1406f) << a;
                EXPECT_LE(angle_error(a, direction(x.at(i, 0), y.at(i, 0))), 0.1406) << i << " at " << magnitude;
            }
        }
}

// Every length 0..70, arrays off alignment by different amounts, every path
// against the scalar twin: every element equals its own one-element call
// (the padded tail), nothing is written past the end, and the angles may
// replace either input.
TEST(FastArctanPaths, LengthsOffsetsAndInPlace) {
    const float specials[] = {0.0f, -0.0f, 1.0f, -1.0f, std::numeric_limits<float>::infinity(), std::nanf(""),
                              from_bits(1), 1e-9f, -3e38f};
    for (const Function& fn : kFunctions)
        for (int n = 0; n <= 70; ++n)
            for (int shift = 0; shift < 4; ++shift) {
                SCOPED_TRACE(testing::Message() << "length " << n << " shift " << shift);
                Array y(n, 1, 1, 0, 4 * shift), x(n, 1, 1, 0, 4 * ((shift + 1) % 4));
                Rng rng(n * 4 + shift);
                auto value = [&] { return rng.uniform(0, 5) ? rng.uniform(-100.0f, 100.0f) : specials[rng.uniform(0, 8)]; };
                for (int i = 0; i < n; ++i) x.at(i, 0) = value(), y.at(i, 0) = value();
                expect_same_on_every_path([&] {
                    Array dst(n, 1, 1, 0, 4 * ((shift + 2) % 4)), one(1, 1), over_y = y, over_x = x;
                    EXPECT_EQ(fn.call(y.data(), x.data(), dst.data(), n), oruStsOk);
                    EXPECT_TRUE(dst.guards_intact());
                    for (int i = 0; i < n; ++i) {
                        EXPECT_EQ(fn.call(&y.at(i, 0), &x.at(i, 0), one.data(), 1), oruStsOk);
                        EXPECT_EQ(bits(dst.at(i, 0)), bits(one.at(0, 0))) << "element " << i;
                    }
                    EXPECT_EQ(fn.call(over_y.data(), x.data(), over_y.data(), n), oruStsOk);
                    EXPECT_EQ(fn.call(y.data(), over_x.data(), over_x.data(), n), oruStsOk);
                    EXPECT_EQ(over_y.region_bytes(), dst.region_bytes());
                    EXPECT_EQ(over_x.region_bytes(), dst.region_bytes());
                    return dst.region_bytes();
                });
            }
}
