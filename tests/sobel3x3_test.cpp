// Fixed 3x3 Sobel and Scharr filters: check orders, hand-checked values,
// borders, origin, shift, and every path against the scalar twin and a
// reference model.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

#include "orucv.h"
#include "sobel3x3_list.h"
#include "support/image.h"
#include "support/simd.h"

using namespace orutest;

namespace {

enum class Src { U8, S8, F32 };
enum Filter { Dx, Dy, D2x, D2y, DxDy, ScharrDx, ScharrDy };

// Every member behind one signature; origin and shift are ignored by the
// members that have none.
using Call = OruStatus (*)(const void* src, int srcStep, void* dst, int dstStep, OruSize roi, int origin,
                           int shift);
struct Fn {
    const char* name;
    Src src;
    Filter filter;
    bool has_origin, has_shift;
    Call call;
};

template <class S>
constexpr Src kSrc = std::is_same<S, Oru8u>::value ? Src::U8 : std::is_same<S, Oru8s>::value ? Src::S8 : Src::F32;
template <class S>
using Dst = std::conditional_t<std::is_same<S, Oru32f>::value, Oru32f, Oru16s>;

// Call adapters by argument list.
template <class S, auto F>
OruStatus call_Plain(const void* s, int ss, void* d, int ds, OruSize r, int, int) {
    return F(static_cast<const S*>(s), ss, static_cast<Dst<S>*>(d), ds, r);
}
template <class S, auto F>
OruStatus call_Origin(const void* s, int ss, void* d, int ds, OruSize r, int o, int) {
    return F(static_cast<const S*>(s), ss, static_cast<Dst<S>*>(d), ds, o, r);
}
template <class S, auto F>
OruStatus call_Shift(const void* s, int ss, void* d, int ds, OruSize r, int, int sh) {
    return F(static_cast<const S*>(s), ss, static_cast<Dst<S>*>(d), ds, r, sh);
}
template <class S, auto F>
OruStatus call_OriginShift(const void* s, int ss, void* d, int ds, OruSize r, int o, int sh) {
    return F(static_cast<const S*>(s), ss, static_cast<Dst<S>*>(d), ds, o, r, sh);
}
struct Arguments {
    bool origin, shift;
};
constexpr Arguments kPlain{false, false}, kOrigin{true, false}, kShift{false, true}, kOriginShift{true, true};

#define SOBEL3X3_FUNCTION(name, arguments, S, filter, steps) \
    Fn{#name, kSrc<S>, filter, k##arguments.origin, k##arguments.shift, call_##arguments<S, name>},
const Fn kFunctions[] = {ORUCV_SOBEL3X3_FUNCTIONS(SOBEL3X3_FUNCTION)};

// ---- Reference model -------------------------------------------------------

const int kV[7][3] = {{1, 2, 1}, {-1, 0, 1}, {1, 2, 1}, {1, -2, 1}, {-1, 0, 1}, {3, 10, 3}, {-1, 0, 1}};
const int kH[7][3] = {{-1, 0, 1}, {1, 2, 1}, {1, -2, 1}, {1, 2, 1}, {-1, 0, 1}, {-1, 0, 1}, {3, 10, 3}};

// Exact integer result: the weighted sum over clamped neighbours, divided by
// 2^shift and rounded toward minus infinity for Scharr.
template <class T>
int model_int(const GuardedImage<T>& s, Filter f, int x, int y, bool flip, int shift) {
    const int w = s.width(), h = s.height();
    long long sum = 0;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) {
            const int yy = std::clamp(y - 1 + i, 0, h - 1), xx = std::clamp(x - 1 + j, 0, w - 1);
            sum += kV[f][flip ? 2 - i : i] * kH[f][j] * s.at(xx, yy);
        }
    if (f == ScharrDx || f == ScharrDy) sum >>= std::min(shift, 62);
    return static_cast<int>(sum);
}

// Float result in the library's documented order of roundings.
struct W32f {
    float c0, c1, c2, big, small;
};
W32f weights(Filter f, int shift) {
    if (f == Dx || f == Dy) return {1, 2, 1, 3, 1};
    float p = 1.0f;
    for (int i = 0; i < shift && p <= 3.4028235e38f; ++i) p *= 2.0f;
    const float k = 1.0f / p;
    return {3 * k, 10 * k, 3 * k, 13 * k, 3 * k};
}
float model_32f_sum(const GuardedImage<Oru32f>& s, Filter f, int x, int y, bool flip, int shift) {
    const int w = s.width(), h = s.height();
    const W32f c = weights(f, shift);
    auto d = [&](int r) {
        return w == 1 ? 0.0f : s.at(std::min(x + 1, w - 1), r) - s.at(std::max(x - 1, 0), r);
    };
    auto m = [&](int r) {
        if (w == 1) return c.big * s.at(0, r) + c.small * s.at(0, r);
        if (x == 0) return c.big * s.at(0, r) + c.small * s.at(1, r);
        if (x == w - 1) return c.small * s.at(x - 1, r) + c.big * s.at(x, r);
        return (c.c0 * s.at(x - 1, r) + c.c1 * s.at(x, r)) + c.c2 * s.at(x + 1, r);
    };
    if (f == Dx || f == ScharrDx) {
        if (y == 0) return c.big * d(0) + c.small * d(1);
        if (y == h - 1) return c.small * d(h - 2) + c.big * d(h - 1);
        return (c.c0 * d(y - 1) + c.c1 * d(y)) + c.c2 * d(y + 1);
    }
    int up = std::max(y - 1, 0), down = std::min(y + 1, h - 1);
    if (flip) std::swap(up, down);
    return m(down) - m(up);
}

// NaN results are the one quiet NaN, whatever payloads met on the way.
float model_32f(const GuardedImage<Oru32f>& s, Filter f, int x, int y, bool flip, int shift) {
    const float v = model_32f_sum(s, f, x, y, flip, shift);
    const uint32_t quiet = 0x7FC00000u;
    float q;
    std::memcpy(&q, &quiet, 4);
    return v == v ? v : q;
}

// Sprinkles NaNs of assorted signs and payloads over a float image.
void add_nans(GuardedImage<Oru32f>& img, uint64_t seed) {
    Rng rng(seed);
    for (int y = 0; y < img.height(); ++y)
        for (int x = 0; x < img.width(); ++x)
            if (rng.uniform(0, 7) == 0) {
                const uint32_t bits = 0x7F800001u | (rng.next() & 0x803FFFFFu);
                std::memcpy(&img.at(x, y), &bits, 4);
            }
}

// Runs fn on a random image of the given layout and compares with the
// model; returns the destination bytes for the path comparison.
template <class T, class D>
std::vector<uint8_t> run_against_model(const Fn& fn, int w, int h, Layout layout, uint64_t seed, int origin,
                                       int shift) {
    GuardedImage<T> src(w, h, 1, layout.pad_bytes, layout.misalign_bytes);
    if constexpr (std::is_same<T, Oru32f>::value) {
        src.fill_random(seed, -100.0, 100.0);
        if (seed % 3 == 0) add_nans(src, seed);
    } else {
        src.fill_random(seed);
    }
    const auto src_before = src.snapshot();
    GuardedImage<D> dst(w, h, 1, 2 * layout.pad_bytes, sizeof(D) * (layout.misalign_bytes ? 1 : 0));
    EXPECT_EQ(fn.call(src.data(), src.step(), dst.data(), dst.step(), {w, h}, origin, shift), oruStsOk) << fn.name;
    EXPECT_TRUE(dst.guards_intact()) << fn.name << " " << w << "x" << h;
    EXPECT_EQ(src.snapshot(), src_before) << fn.name;
    int bad = 0;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w && bad < 3; ++x) {
            if constexpr (std::is_same<T, Oru32f>::value) {
                const float expected = model_32f(src, fn.filter, x, y, origin == 1, shift);
                if (std::memcmp(&expected, &dst.at(x, y), 4) != 0) {
                    ADD_FAILURE() << fn.name << " " << w << "x" << h << " at " << x << "," << y << ": "
                                  << dst.at(x, y) << " != " << expected;
                    ++bad;
                }
            } else {
                const int expected = model_int(src, fn.filter, x, y, origin == 1, shift);
                if (dst.at(x, y) != expected) {
                    ADD_FAILURE() << fn.name << " " << w << "x" << h << " at " << x << "," << y << ": "
                                  << dst.at(x, y) << " != " << expected;
                    ++bad;
                }
            }
        }
    return dst.region_bytes();
}

std::vector<uint8_t> run_against_model(const Fn& fn, int w, int h, Layout layout, uint64_t seed, int origin,
                                       int shift) {
    switch (fn.src) {
    case Src::U8: return run_against_model<Oru8u, Oru16s>(fn, w, h, layout, seed, origin, shift);
    case Src::S8: return run_against_model<Oru8s, Oru16s>(fn, w, h, layout, seed, origin, shift);
    default: return run_against_model<Oru32f, Oru32f>(fn, w, h, layout, seed, origin, shift);
    }
}

// Destination rows half a row apart: row after row, each value is that of
// the last row written over it. Checks the model's bytes on every path.
template <class T, class D>
void overlapping_rows(const Fn& fn, int origin, int shift) {
    const int w = 40, h = 9, step = (w / 2 + 2) * static_cast<int>(sizeof(D));
    GuardedImage<T> src(w, h);
    if constexpr (std::is_same<T, Oru32f>::value) src.fill_random(w + shift, -100.0, 100.0);
    else src.fill_random(w + shift);
    std::vector<uint8_t> expected((h - 1) * step + w * sizeof(D));
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            D v;
            if constexpr (std::is_same<T, Oru32f>::value) v = model_32f(src, fn.filter, x, y, origin == 1, shift);
            else v = static_cast<D>(model_int(src, fn.filter, x, y, origin == 1, shift));
            std::memcpy(expected.data() + y * step + x * sizeof(D), &v, sizeof(D));
        }
    expect_same_on_every_path([&] {
        std::vector<uint8_t> out(expected.size());
        EXPECT_EQ(fn.call(src.data(), src.step(), out.data(), step, {w, h}, origin, shift), oruStsOk);
        EXPECT_TRUE(out == expected) << fn.name;
        return out;
    });
}

}  // namespace

// ---- The list --------------------------------------------------------------

// The list makes both the wrappers and this test's table, so its columns
// are checked against what each name says.
TEST(Sobel3x3List, ColumnsFollowTheNames) {
    const char* const filter_part[] = {"Sobel3x3_Dx_", "Sobel3x3_Dy_",  "Sobel3x3_D2x_", "Sobel3x3_D2y_",
                                       "Sobel3x3_DxDy_", "Scharr_Dx_", "Scharr_Dy_"};
    const char* const src_part[] = {"_8u16s_", "_8s16s_", "_32f_"};
    for (const Fn& fn : kFunctions) {
        const std::string name = fn.name;
        SCOPED_TRACE(name);
        EXPECT_NE(name.find(filter_part[fn.filter]), std::string::npos);
        EXPECT_NE(name.find(src_part[static_cast<int>(fn.src)]), std::string::npos);
    }
}

// ---- Checks ----------------------------------------------------------------

TEST(Sobel3x3Checks, OrderOfChecks) {
    for (const Fn& fn : kFunctions) {
        SCOPED_TRACE(fn.name);
        const bool is_float = fn.src == Src::F32;
        const int es = is_float ? 4 : 1, ed = is_float ? 4 : 2;
        GuardedImage<Oru32f> src(8, 4), dst(8, 4);
        const auto before = dst.snapshot();
        const int ss = 8 * es, ds = 8 * ed;
        auto call = [&](const void* s, int sst, void* d, int dst_step, OruSize r, int o = 0, int sh = 0) {
            return fn.call(s, sst, d, dst_step, r, o, sh);
        };
        EXPECT_EQ(call(nullptr, 0, dst.data(), 0, {0, 0}, 5, -1), oruStsNullPointer);
        EXPECT_EQ(call(src.data(), ss, nullptr, ds, {8, 4}), oruStsNullPointer);
        EXPECT_EQ(call(src.data(), 0, dst.data(), 3, {0, 1}, 5, -1), oruStsStep);
        EXPECT_EQ(call(src.data(), ss, dst.data(), -2, {8, 4}), oruStsStep);
        EXPECT_EQ(call(src.data(), 3, dst.data(), 3, {0, 4}, 5, -1), oruStsSize);
        EXPECT_EQ(call(src.data(), ss, dst.data(), ds, {8, 1}, 5, -1), oruStsSize);  // one row refused
        EXPECT_EQ(call(src.data(), ss, dst.data(), ds, {8, -2}), oruStsSize);
        EXPECT_EQ(call(src.data(), ss, dst.data(), ds + 1, {8, 4}, 5, -1), oruStsNotEvenStep);
        if (is_float) {
            EXPECT_EQ(call(src.data(), ss + 2, dst.data(), ds, {8, 4}), oruStsNotEvenStep);
        }
        if (fn.has_origin) {
            EXPECT_EQ(call(src.data(), ss, dst.data(), ds, {8, 4}, 2, -1), oruStsBadArg);
            EXPECT_EQ(call(src.data(), ss, dst.data(), ds, {8, 4}, -1, 0), oruStsBadArg);
        }
        if (fn.has_shift) {
            EXPECT_EQ(call(src.data(), ss, dst.data(), ds, {8, 4}, 0, -1), oruStsBadArg);
        }
        if (!is_float) {
            // Steps shorter than a row are the caller's business, except for
            // one member; the failed calls above wrote nothing.
            EXPECT_EQ(dst.snapshot(), before);
            // 8-bit sources may have any step.
            EXPECT_EQ(call(src.data(), ss + 1, dst.data(), ds, {8, 4}), oruStsOk);
            const auto written = dst.snapshot();
            const OruStatus expected = std::string(fn.name) == "oruiSobel3x3_D2y_8u16s_C1R" ? oruStsSize : oruStsOk;
            EXPECT_EQ(call(src.data(), 7, dst.data(), 30, {8, 2}), expected);  // dstStep = 2 width - 2
            EXPECT_EQ(call(src.data(), 7, dst.data(), 16, {8, 2}), expected);
            EXPECT_EQ(call(src.data(), 8, dst.data(), 14, {8, 2}), expected);
            if (expected == oruStsSize) {
                EXPECT_EQ(dst.snapshot(), written);
                EXPECT_EQ(call(src.data(), 7, dst.data(), 17, {8, 2}), oruStsNotEvenStep);  // granularity first
            }
        } else {
            EXPECT_EQ(dst.snapshot(), before);
        }
    }
}

// ---- Hand-checked values -----------------------------------------------------

// On   1   2   4
//      8  16  32
//     64 128   0
TEST(Sobel3x3Values, HandChecked) {
    const int pix[9] = {1, 2, 4, 8, 16, 32, 64, 128, 0};
    GuardedImage<Oru8u> u(3, 3);
    GuardedImage<Oru32f> f(3, 3);
    for (int i = 0; i < 9; ++i) u.at(i % 3, i / 3) = static_cast<Oru8u>(pix[i]), f.at(i % 3, i / 3) = pix[i];
    GuardedImage<Oru16s> d(3, 3);
    GuardedImage<Oru32f> fd(3, 3);
    const OruSize roi{3, 3};
    // Centre: d = 3, 24, -64 by row; m = 9, 72, 320; h = 1, 8, -192.
    ASSERT_EQ(oruiSobel3x3_Dx_8u16s_C1R(u.data(), 3, d.data(), 6, roi), oruStsOk);
    EXPECT_EQ(d.at(1, 1), 3 + 48 - 64);
    EXPECT_EQ(d.at(0, 0), 3 * 1 + 8);  // row 0: 3 d(0) + d(1), column 0: d = s(1) - s(0)
    ASSERT_EQ(oruiSobel3x3_Dy_8u16s_C1R(u.data(), 3, d.data(), 6, 0, roi), oruStsOk);
    EXPECT_EQ(d.at(1, 1), 320 - 9);
    EXPECT_EQ(d.at(2, 2), 128 - 112);  // corner: m = s(1) + 3 s(2), rows 1 and 2
    ASSERT_EQ(oruiSobel3x3_Dy_8u16s_C1R(u.data(), 3, d.data(), 6, 1, roi), oruStsOk);
    EXPECT_EQ(d.at(1, 1), 9 - 320);
    ASSERT_EQ(oruiSobel3x3_D2x_8u16s_C1R(u.data(), 3, d.data(), 6, roi), oruStsOk);
    EXPECT_EQ(d.at(1, 1), 1 + 16 - 192);
    ASSERT_EQ(oruiSobel3x3_D2y_8u16s_C1R(u.data(), 3, d.data(), 6, roi), oruStsOk);
    EXPECT_EQ(d.at(1, 1), 9 - 144 + 320);
    ASSERT_EQ(oruiSobel3x3_DxDy_8u16s_C1R(u.data(), 3, d.data(), 6, 0, roi), oruStsOk);
    EXPECT_EQ(d.at(1, 1), -64 - 3);
    ASSERT_EQ(oruiScharr_Dx_8u16s_C1R(u.data(), 3, d.data(), 6, roi, 0), oruStsOk);
    EXPECT_EQ(d.at(1, 1), 9 + 240 - 192);
    EXPECT_EQ(d.at(2, 2), 3 * 16 + 13 * -128);  // last row: 3 d(1) + 13 d(2)
    ASSERT_EQ(oruiScharr_Dx_8u16s_C1R(u.data(), 3, d.data(), 6, roi, 5), oruStsOk);
    EXPECT_EQ(d.at(1, 1), 1);     // 57 / 32
    EXPECT_EQ(d.at(2, 2), -51);   // -1616 / 32 = -50.5, toward minus infinity
    ASSERT_EQ(oruiScharr_Dx_32f_C1R(f.data(), 12, fd.data(), 12, roi, 5), oruStsOk);
    EXPECT_EQ(fd.at(2, 2), -50.5f);
    ASSERT_EQ(oruiSobel3x3_Dx_32f_C1R(f.data(), 12, fd.data(), 12, roi), oruStsOk);
    EXPECT_EQ(fd.at(1, 1), -13.0f);
    ASSERT_EQ(oruiSobel3x3_Dy_32f_C1R(f.data(), 12, fd.data(), 12, 1, roi), oruStsOk);
    EXPECT_EQ(fd.at(1, 1), -311.0f);
}

// A vertical step edge of 255: 16 * 255 next to the edge, 0 away from it,
// on the SIMD part of a row and on the scalar edges.
TEST(Sobel3x3Values, ScharrStepEdgeAndConstants) {
    for (int w : {6, 40}) {
        const int edge = w - 3;
        GuardedImage<Oru8u> s(w, 4);
        for (int y = 0; y < 4; ++y)
            for (int x = 0; x < w; ++x) s.at(x, y) = x < edge ? 0 : 255;
        GuardedImage<Oru16s> d(w, 4);
        expect_same_on_every_path([&] {
            EXPECT_EQ(oruiScharr_Dx_8u16s_C1R(s.data(), s.step(), d.data(), d.step(), {w, 4}, 0), oruStsOk);
            for (int y = 0; y < 4; ++y)
                for (int x = 0; x < w; ++x)
                    EXPECT_EQ(d.at(x, y), x == edge - 1 || x == edge ? 16 * 255 : 0) << w << " " << x << "," << y;
            return d.region_bytes();
        });
    }
    // A constant image gives 0 everywhere, borders included.
    for (const Fn& fn : kFunctions) {
        GuardedImage<Oru32f> s(37, 5), d(37, 5);
        if (fn.src == Src::F32) s.fill(-7.25f);
        else std::memset(s.data(), fn.src == Src::U8 ? 200 : 0x90, s.step() * 5);
        const int ds = fn.src == Src::F32 ? 37 * 4 : 37 * 2;
        ASSERT_EQ(fn.call(s.data(), s.step(), d.data(), ds, {37, 5}, 0, 0), oruStsOk);
        for (int i = 0; i < 37 * 5; ++i) {
            if (fn.src == Src::F32) EXPECT_EQ(d.data()[i], 0.0f) << fn.name << " " << i;
            else EXPECT_EQ(reinterpret_cast<Oru16s*>(d.data())[i], 0) << fn.name << " " << i;
        }
    }
}

// One column: Dx, D2x and DxDy give 0, Dy gives 4 (s(y+1) - s(y-1)).
TEST(Sobel3x3Values, OneColumn) {
    GuardedImage<Oru8u> s(1, 4);
    const int col[4] = {10, 50, 0, 255};
    for (int y = 0; y < 4; ++y) s.at(0, y) = static_cast<Oru8u>(col[y]);
    GuardedImage<Oru16s> d(1, 4);
    for (auto f : {oruiSobel3x3_Dx_8u16s_C1R, oruiSobel3x3_D2x_8u16s_C1R}) {
        ASSERT_EQ(f(s.data(), 1, d.data(), 2, {1, 4}), oruStsOk);
        for (int y = 0; y < 4; ++y) EXPECT_EQ(d.at(0, y), 0);
    }
    ASSERT_EQ(oruiSobel3x3_Dy_8u16s_C1R(s.data(), 1, d.data(), 2, 0, {1, 4}), oruStsOk);
    const int expected[4] = {4 * (50 - 10), 4 * (0 - 10), 4 * (255 - 50), 4 * (255 - 0)};
    for (int y = 0; y < 4; ++y) EXPECT_EQ(d.at(0, y), expected[y]);
    // Float Scharr: the pixel is its own neighbour on both sides, so e keeps
    // the rounded edge sum 13 s + 3 s, which for 0.1 is not 16 * 0.1.
    GuardedImage<Oru32f> f(1, 2), fd(1, 2);
    f.at(0, 0) = 0.1f, f.at(0, 1) = 0.0f;
    ASSERT_EQ(oruiScharr_Dy_32f_C1R(f.data(), 4, fd.data(), 4, 0, {1, 2}, 0), oruStsOk);
    EXPECT_EQ(fd.at(0, 0), -(13.0f * 0.1f + 3.0f * 0.1f));
    EXPECT_NE(fd.at(0, 0), -16.0f * 0.1f);
}

// ---- Shift and origin ------------------------------------------------------

// Every count, 0 to 40 and the largest int: integer results are the sum
// rounded toward minus infinity on every path; from 13 on only 0 and -1.
TEST(Sobel3x3Shift, EveryCount) {
    std::vector<int> counts;
    for (int c = 0; c <= 40; ++c) counts.push_back(c);
    counts.insert(counts.end(), {126, 127, 128, 200, INT_MAX});
    for (const Fn& fn : kFunctions) {
        if (!fn.has_shift) continue;
        for (int count : counts) {
            if (fn.src != Src::F32 && count > 40) continue;
            SCOPED_TRACE(std::string(fn.name) + " shift " + std::to_string(count));
            expect_same_on_every_path([&] { return run_against_model(fn, 45, 4, {8, 0}, count, 0, count); });
        }
    }
}

// origin 1 is the upper row minus the lower one: the exact negation for the
// Sobel members, the negated sum shifted for Scharr.
TEST(Sobel3x3Origin, NegatesUnshifted) {
    GuardedImage<Oru8u> s(33, 5);
    s.fill_random(9);
    GuardedImage<Oru16s> d0(33, 5), d1(33, 5);
    const OruSize roi{33, 5};
    for (auto f : {oruiSobel3x3_Dy_8u16s_C1R, oruiSobel3x3_DxDy_8u16s_C1R}) {
        ASSERT_EQ(f(s.data(), s.step(), d0.data(), d0.step(), 0, roi), oruStsOk);
        ASSERT_EQ(f(s.data(), s.step(), d1.data(), d1.step(), 1, roi), oruStsOk);
        for (int y = 0; y < 5; ++y)
            for (int x = 0; x < 33; ++x) EXPECT_EQ(d1.at(x, y), -d0.at(x, y));
    }
    ASSERT_EQ(oruiScharr_Dy_8u16s_C1R(s.data(), s.step(), d0.data(), d0.step(), 0, roi, 0), oruStsOk);
    ASSERT_EQ(oruiScharr_Dy_8u16s_C1R(s.data(), s.step(), d1.data(), d1.step(), 1, roi, 3), oruStsOk);
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 33; ++x) EXPECT_EQ(d1.at(x, y), (-d0.at(x, y)) >> 3);
}

// ---- Every member on every path --------------------------------------------

// Widths 1..70 (below and above the vector widths), heights 2..9, tight,
// padded and misaligned rows: the model, the guards, the untouched source,
// and the scalar twin's bytes on every path.
TEST(Sobel3x3Paths, EveryMemberAgainstModel) {
    for (const Fn& fn : kFunctions) {
        SCOPED_TRACE(fn.name);
        const int elem = fn.src == Src::F32 ? 4 : 1;
        const auto layouts = layouts_for(elem);
        for (int w = 1; w <= 70; ++w)
            for (int h = 2; h <= 9; ++h) {
                const Layout layout = layouts[(w + h) % layouts.size()];
                const int origin = fn.has_origin ? (w + h) % 2 : 0;
                const int shift = fn.has_shift ? w % 5 : 0;
                expect_same_on_every_path(
                    [&] { return run_against_model(fn, w, h, layout, w * 16 + h, origin, shift); });
            }
    }
}

TEST(Sobel3x3Paths, OverlappingDestinationRows) {
    for (const Fn& fn : kFunctions)
        for (int origin = 0; origin <= (fn.has_origin ? 1 : 0); ++origin) {
            const int shift = fn.has_shift ? 2 : 0;
            if (std::string(fn.name) == "oruiSobel3x3_D2y_8u16s_C1R") continue;  // refuses such steps
            switch (fn.src) {
            case Src::U8: overlapping_rows<Oru8u, Oru16s>(fn, origin, shift); break;
            case Src::S8: overlapping_rows<Oru8s, Oru16s>(fn, origin, shift); break;
            default: overlapping_rows<Oru32f, Oru32f>(fn, origin, shift); break;
            }
        }
}
