// General strip filters: check orders, specifications, kernel generation,
// equality with the fixed 3x3 filters, the strip protocol over every split,
// and every path against the scalar twin and the reference model.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "filter_list.h"
#include "orucv.h"
#include "support/filter_model.h"
#include "support/image.h"
#include "support/simd.h"

using namespace orutest;

namespace {

enum Kind { kSobel, kBlur, kLaplace };

using Call = OruStatus (*)(const void* src, int srcStep, void* dst, int dstStep, OruSize* roi, OruFilterSpec* fspec,
                           int flag);
struct Function {
    const char* name;
    Kind kind;
    int type;  // data type code of the source
    Call call;
};

template <class S>
constexpr int type_of() {
    return sizeof(S) == 4 ? oruDataType32f : std::is_signed<S>::value ? oruDataType8s : oruDataType8u;
}
#define FILTER_CALL(name, kind, S, D)                                                                    \
    Function{#name, kind, type_of<S>(), [](const void* s, int ss, void* d, int ds, OruSize* r, OruFilterSpec* p, \
                                           int f) { return name(static_cast<const S*>(s), ss, static_cast<D*>(d), ds, r, p, f); }},
#define FILTER_SobelInit(name, S, D)
#define FILTER_BlurInit(name, S, D)
#define FILTER_LaplaceInit(name, S, D)
#define FILTER_Free(name, S, D)
#define FILTER_Sobel(name, S, D) FILTER_CALL(name, kSobel, S, D)
#define FILTER_Blur(name, S, D) FILTER_CALL(name, kBlur, S, D)
#define FILTER_Laplace(name, S, D) FILTER_CALL(name, kLaplace, S, D)
#define FILTER_ENTRY(name, shape, S, D) FILTER_##shape(name, S, D)
const Function kFunctions[] = {ORUCV_FILTER_FUNCTIONS(FILTER_ENTRY)};

const Function& function(Kind kind, int type) {
    for (const Function& f : kFunctions)
        if (f.kind == kind && f.type == type) return f;
    std::abort();
}

// One filter configuration: the kind, size, Sobel orders and origin.
struct Config {
    Kind kind;
    int size, xorder = 0, yorder = 0, origin = 0;
};
// Sobel orders with zero cells (5: 1, 7: 3) and an odd y order for origin.
const Config kConfigs[] = {{kSobel, 3, 1, 0},    {kSobel, 5, 1, 3, 1}, {kSobel, 7, 3, 2, 0}, {kBlur, 3},
                           {kBlur, 5},           {kBlur, 7},           {kLaplace, 3},        {kLaplace, 5},
                           {kLaplace, 7}};

struct FilterHandle {
    OruFilterSpec* p = nullptr;
    FilterHandle(const Config& c, int type, int width) {
        const OruStatus s = c.kind == kSobel ? oruiSobelInitAlloc(width, type, c.size, c.origin, c.xorder, c.yorder, &p)
                            : c.kind == kBlur ? oruiBlurInitAlloc(width, type, c.size, &p)
                                              : oruiLaplaceInitAlloc(width, type, c.size, &p);
        EXPECT_EQ(s, oruStsOk);
    }
    ~FilterHandle() { oruiConvolFree(&p); }
};

template <class S, class D>
Plain<D> model(const Config& c, const Plain<S>& s) {
    if constexpr (sizeof(S) == 4) {
        if (c.kind == kSobel)
            return separable_32f(s, kernel_model(c.size, c.xorder), kernel_model(c.size, c.yorder, c.yorder % 2 && c.origin));
        if (c.kind == kLaplace) return laplace_32f(s, c.size);
        return box<float, float>(s, c.size);
    } else {
        if (c.kind == kSobel)
            return separable_16s(s, kernel_model(c.size, c.xorder), kernel_model(c.size, c.yorder, c.yorder % 2 && c.origin));
        if (c.kind == kLaplace) return laplace_16s(s, c.size);
        return box<S, int16_t>(s, c.size);
    }
}

// Feeds the image in strips of the given heights (one strip: flag 0) and
// checks each call's row count: min(n/2, rows so far) held back, the last
// strip writes the rest.
template <class S, class D>
void run_strips(const Config& c, const GuardedImage<S>& src, GuardedImage<D>& dst, const std::vector<int>& strips) {
    const Function& fn = function(c.kind, type_of<S>());
    FilterHandle fspec(c, type_of<S>(), src.width());
    int in = 0, out = 0;
    for (size_t i = 0; i < strips.size(); ++i) {
        const bool last = i + 1 == strips.size();
        const int flag = strips.size() == 1 ? 0 : i == 0 ? 1 : last ? 2 : 4;
        OruSize roi{src.width(), strips[i]};
        ASSERT_EQ(fn.call(src.row(in), src.step(), dst.row(out), dst.step(), &roi, fspec.p, flag), oruStsOk)
            << fn.name;
        in += strips[i];
        const int held = last ? 0 : std::min(c.size / 2, in);
        EXPECT_EQ(roi.height, in - held - out) << fn.name << " strip " << i;
        EXPECT_EQ(roi.width, src.width());
        out += roi.height;
    }
    EXPECT_EQ(out, src.height());
}

template <class D>
void expect_equal(const Plain<D>& expected, const GuardedImage<D>& dst) {
    for (int y = 0; y < dst.height(); ++y)
        for (int x = 0; x < dst.width(); ++x) {
            if constexpr (sizeof(D) == 4)
                ASSERT_EQ(std::memcmp(&dst.at(x, y), &expected.px[static_cast<size_t>(y) * dst.width() + x], 4), 0)
                    << dst.at(x, y) << " != " << expected.get(x, y) << " at " << x << "," << y;
            else
                ASSERT_EQ(dst.at(x, y), expected.get(x, y)) << "at " << x << "," << y;
        }
}

template <class S>
void fill_source(GuardedImage<S>& img, uint64_t seed) {
    if constexpr (sizeof(S) == 4) img.fill_random(seed, -100.0, 100.0);
    else img.fill_random(seed);
}

// Calls f(config, source type) with the source and destination types.
template <class F>
void for_each_type(F f) {
    f(Oru8u{}, Oru16s{});
    f(Oru8s{}, Oru16s{});
    f(Oru32f{}, Oru32f{});
}

}  // namespace

TEST(FilterChecks, SobelOrder) {
    FilterHandle s8({kSobel, 3, 1, 0}, oruDataType8u, 8), s32({kSobel, 3, 1, 0}, oruDataType32f, 8);
    GuardedImage<Oru8u> a(8, 4);
    GuardedImage<Oru16s> d(8, 4);
    GuardedImage<Oru32f> fa(8, 4), fd(8, 4);
    const auto before = d.snapshot();
    const auto fbefore = fd.snapshot();
    OruSize roi{8, 4};
    auto u8 = [&](int ss, int ds, OruSize r, int flag, OruFilterSpec* fspec, const Oru8u* src) {
        roi = r;
        const OruStatus st = oruiSobel_8u16s_C1R(src, ss, d.data(), ds, &roi, fspec, flag);
        EXPECT_EQ(roi.height, r.height);  // untouched on failure
        return st;
    };
    EXPECT_EQ(u8(8, 16, {-1, 4}, 9, s8.p, nullptr), oruStsNullPointer);
    EXPECT_EQ(u8(8, 16, {8, 4}, 0, nullptr, a.data()), oruStsNullPointer);
    EXPECT_EQ(oruiSobel_8u16s_C1R(a.data(), 8, d.data(), 16, nullptr, s8.p, 0), oruStsNullPointer);
    EXPECT_EQ(u8(8, 16, {0, 4}, 9, s8.p, a.data()), oruStsSize);
    EXPECT_EQ(u8(8, 16, {8, 0}, 9, s8.p, a.data()), oruStsSize);
    EXPECT_EQ(u8(7, 16, {8, 4}, 9, s8.p, a.data()), oruStsSize);
    EXPECT_EQ(u8(8, 14, {8, 4}, 9, s8.p, a.data()), oruStsSize);
    EXPECT_EQ(u8(8, 17, {8, 4}, 9, s8.p, a.data()), oruStsSize);  // odd step: a size fault
    EXPECT_EQ(u8(8, 16, {8, 4}, 3, s8.p, a.data()), oruStsBadArg);
    EXPECT_EQ(u8(8, 16, {8, 4}, -1, s8.p, a.data()), oruStsBadArg);
    EXPECT_EQ(u8(8, 16, {8, 4}, 0, s32.p, a.data()), oruStsContextMismatch);
    EXPECT_EQ(u8(8, 16, {7, 4}, 0, s8.p, a.data()), oruStsContextMismatch);
    EXPECT_EQ(u8(8, 16, {8, 4}, 4, s8.p, a.data()), oruStsBadArg);  // fresh specification
    EXPECT_EQ(u8(8, 16, {8, 4}, 2, s8.p, a.data()), oruStsBadArg);
    EXPECT_EQ(d.snapshot(), before);

    // The float member: steps below the row or not a multiple of 4 are size faults too.
    auto f32 = [&](int ss, int ds, int flag, OruFilterSpec* fspec) {
        roi = {8, 4};
        return oruiSobel_32f_C1R(fa.data(), ss, fd.data(), ds, &roi, fspec, flag);
    };
    EXPECT_EQ(f32(30, 32, 0, s32.p), oruStsSize);
    EXPECT_EQ(f32(34, 32, 0, s32.p), oruStsSize);
    EXPECT_EQ(f32(32, 36, 3, s32.p), oruStsBadArg);
    EXPECT_EQ(f32(32, 32, 0, s8.p), oruStsContextMismatch);
    EXPECT_EQ(fd.snapshot(), fbefore);
}

TEST(FilterChecks, BlurAndLaplaceOrder) {
    GuardedImage<Oru8u> a(8, 4);
    GuardedImage<Oru16s> d(8, 4);
    GuardedImage<Oru32f> fa(8, 4), fd(8, 4);
    for (Kind kind : {kBlur, kLaplace}) {
        const auto before = d.snapshot();
        const auto fbefore = fd.snapshot();
        FilterHandle s8({kind, 3}, oruDataType8s, 8), s32({kind, 3}, oruDataType32f, 8),
            other({kSobel, 3, 1, 0}, oruDataType8u, 8);
        const Function& f8 = function(kind, oruDataType8u);
        const Function& f32 = function(kind, oruDataType32f);
        auto u8 = [&](int ss, int ds, OruSize r, int flag, OruFilterSpec* fspec, const void* src = nullptr) {
            return f8.call(src ? src : a.data(), ss, d.data(), ds, &r, fspec, flag);
        };
        SCOPED_TRACE(f8.name);
        EXPECT_EQ(u8(0, 0, {-1, 4}, 9, nullptr), oruStsNullPointer);
        EXPECT_EQ(u8(0, 16, {-1, 4}, 9, s8.p), oruStsStep);
        EXPECT_EQ(u8(8, 0, {8, 4}, 9, s8.p), oruStsStep);
        EXPECT_EQ(u8(1, 1, {8, 0}, 9, s8.p), oruStsSize);  // short steps are the caller's business
        EXPECT_EQ(u8(8, 15, {8, 4}, 9, s8.p), oruStsNotEvenStep);
        EXPECT_EQ(u8(7, 16, {8, 4}, 5, s8.p), oruStsBadArg);
        EXPECT_EQ(u8(8, 16, {8, 4}, 0, s32.p), oruStsContextMismatch);
        EXPECT_EQ(u8(8, 16, {8, 4}, 0, other.p), oruStsContextMismatch);
        for (int flag : {2, 3, 4}) EXPECT_EQ(u8(8, 16, {8, 4}, flag, s8.p), oruStsBadArg) << flag;
        EXPECT_EQ(d.snapshot(), before);
        // An 8u call takes an 8s specification; 3 is a whole image once a pass is under way.
        EXPECT_EQ(u8(8, 16, {8, 2}, 1, s8.p), oruStsOk);
        EXPECT_EQ(u8(8, 16, {8, 4}, 3, s8.p), oruStsOk);

        auto fl = [&](int ss, int ds, int rows = 4) {
            OruSize r{8, rows};
            return f32.call(fa.data(), ss, fd.data(), ds, &r, s32.p, 0);
        };
        EXPECT_EQ(fl(33, 32), oruStsNotEvenStep);
        EXPECT_EQ(fl(32, 0), oruStsStep);
        EXPECT_EQ(fd.snapshot(), fbefore);
        // Blur tests float steps for evenness only, Laplace for multiples of 4.
        EXPECT_EQ(fl(32, 34, 1), kind == kBlur ? oruStsOk : oruStsNotEvenStep);
    }
}

TEST(FilterSpecs, CreationAndRelease) {
    OruFilterSpec* p = nullptr;
    EXPECT_EQ(oruiSobelInitAlloc(0, 4, 4, 2, -1, 9, nullptr), oruStsNullPointer);
    EXPECT_EQ(oruiSobelInitAlloc(0, 4, 4, 2, -1, 9, &p), oruStsSize);
    EXPECT_EQ(oruiSobelInitAlloc(8, 4, 4, 2, -1, 9, &p), oruStsBadArg);  // origin before size
    EXPECT_EQ(oruiSobelInitAlloc(8, 4, 4, 1, 0, 0, &p), oruStsSize);
    EXPECT_EQ(oruiSobelInitAlloc(8, 4, 5, 1, 5, 0, &p), oruStsSize);
    EXPECT_EQ(oruiSobelInitAlloc(8, 4, 5, 1, 0, -1, &p), oruStsSize);
    EXPECT_EQ(oruiSobelInitAlloc(8, 4, 5, 1, 4, 4, &p), oruStsBadArg);
    for (auto init : {oruiBlurInitAlloc, oruiLaplaceInitAlloc}) {
        EXPECT_EQ(init(0, 4, 4, nullptr), oruStsNullPointer);
        EXPECT_EQ(init(0, 4, 3, &p), oruStsSize);
        EXPECT_EQ(init(8, 4, 9, &p), oruStsSize);
        EXPECT_EQ(init(8, 4, 1, &p), oruStsSize);
        EXPECT_EQ(init(8, 4, 3, &p), oruStsBadArg);
    }
    EXPECT_EQ(p, nullptr);  // failed creations write nothing
    EXPECT_EQ(oruiSobelInitAlloc(0x7FFFFFFF, 9, 7, 0, 0, 0, &p), oruStsMemAlloc);
    EXPECT_EQ(p, nullptr);

    EXPECT_EQ(oruiBlurInitAlloc(100, oruDataType32f, 7, &p), oruStsOk);
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(p) % 32, 0u);
    EXPECT_EQ(oruiConvolFree(nullptr), oruStsNullPointer);
    EXPECT_EQ(oruiConvolFree(&p), oruStsOk);
    EXPECT_EQ(p, nullptr);
    EXPECT_EQ(oruiConvolFree(&p), oruStsOk);  // a variable holding NULL is left alone
    OruFilterSpec* odd = reinterpret_cast<OruFilterSpec*>(uintptr_t{48});
    EXPECT_EQ(oruiConvolFree(&odd), oruStsOk);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(odd), 48u);
}

// A pass ends with its last strip; a fresh specification refuses every flag
// but 0 and 1, and 1 or 0 during a pass starts a new one.
TEST(FilterSpecs, PassesAndFlags) {
    GuardedImage<Oru32f> src(5, 6), dst(5, 9);
    src.fill_random(3, -5, 5);
    FilterHandle fspec({kLaplace, 5}, oruDataType32f, 5);
    OruSize roi{5, 3};
    EXPECT_EQ(oruiLaplace_32f_C1R(src.data(), src.step(), dst.data(), dst.step(), &roi, fspec.p, 1), oruStsOk);
    EXPECT_EQ(roi.height, 1);
    roi = {5, 2};
    EXPECT_EQ(oruiLaplace_32f_C1R(src.data(), src.step(), dst.data(), dst.step(), &roi, fspec.p, 1), oruStsOk);
    EXPECT_EQ(roi.height, 0);  // restarted: both rows held back
    roi = {5, 1};
    EXPECT_EQ(oruiLaplace_32f_C1R(src.data(), src.step(), dst.data(), dst.step(), &roi, fspec.p, 2), oruStsOk);
    EXPECT_EQ(roi.height, 3);
    roi = {5, 1};
    EXPECT_EQ(oruiLaplace_32f_C1R(src.data(), src.step(), dst.data(), dst.step(), &roi, fspec.p, 4), oruStsBadArg);
    EXPECT_EQ(oruiLaplace_32f_C1R(src.data(), src.step(), dst.data(), dst.step(), &roi, fspec.p, 0), oruStsOk);
    EXPECT_EQ(roi.height, 1);
}

// The cells of every kernel, read from the impulse response of the Sobel
// filter: out(x, y) = kx[cx - x + r] * ky[cy - y + r].
TEST(FilterKernels, EveryOrderOfEverySize) {
    EXPECT_EQ(kernel_model(3, 0), (std::vector<int>{1, 2, 1}));
    EXPECT_EQ(kernel_model(3, 1), (std::vector<int>{-1, 0, 1}));
    EXPECT_EQ(kernel_model(3, 2), (std::vector<int>{1, -2, 1}));
    EXPECT_EQ(kernel_model(5, 1), (std::vector<int>{-1, -2, 0, 2, 1}));
    for (int n : {3, 5, 7})
        for (int xo = 0; xo < n; ++xo)
            for (int yo = 0; yo < n; ++yo)
                for (int origin : {0, 1}) {
                    const int side = 2 * n + 1, c = n, r = n / 2;
                    const std::vector<int> kx = kernel_model(n, xo), ky = kernel_model(n, yo, yo % 2 && origin);
                    GuardedImage<Oru8s> s(side, side);
                    GuardedImage<Oru32f> sf(side, side);
                    s.fill(0), sf.fill(0.0f);
                    s.at(c, c) = 1, sf.at(c, c) = 1.0f;
                    GuardedImage<Oru16s> d(side, side);
                    GuardedImage<Oru32f> df(side, side);
                    const Config cfg{kSobel, n, xo, yo, origin};
                    run_strips(cfg, s, d, {side});
                    run_strips(cfg, sf, df, {side});
                    for (int y = 0; y < side; ++y)
                        for (int x = 0; x < side; ++x) {
                            const int i = c - x + r, j = c - y + r;
                            const int expected = i >= 0 && i < n && j >= 0 && j < n ? kx[i] * ky[j] : 0;
                            ASSERT_EQ(d.at(x, y), expected) << n << " " << xo << " " << yo << " " << origin;
                            ASSERT_EQ(df.at(x, y), static_cast<float>(expected));
                        }
                }
}

// Size 3 with the orders of the fixed filters gives their results, borders
// included (replicated taps weigh once there too); integer sums of size 7
// wrap in 16 bits.
TEST(FilterValues, EqualsFixed3x3) {
    const int w = 37, h = 11;
    GuardedImage<Oru8u> u(w, h);
    GuardedImage<Oru8s> s(w, h);
    GuardedImage<Oru32f> f(w, h);
    u.fill_random(1), s.fill_random(2), f.fill_random(3, -50, 50);
    GuardedImage<Oru16s> fixed(w, h), general(w, h);
    GuardedImage<Oru32f> ffixed(w, h), fgeneral(w, h);
    const OruSize roi{w, h};
    using Fixed8u = std::function<OruStatus(const Oru8u*, Oru16s*)>;
    using Fixed8s = std::function<OruStatus(const Oru8s*, Oru16s*)>;
    const int ss = w, ds = 2 * w;
    const struct {
        int xo, yo, origin;
        Fixed8u fu;
        Fixed8s fs;
    } cases[] = {
        {1, 0, 0, [&](auto a, auto b) { return oruiSobel3x3_Dx_8u16s_C1R(a, ss, b, ds, roi); },
         [&](auto a, auto b) { return oruiSobel3x3_Dx_8s16s_C1R(a, ss, b, ds, roi); }},
        {0, 1, 1, [&](auto a, auto b) { return oruiSobel3x3_Dy_8u16s_C1R(a, ss, b, ds, 1, roi); },
         [&](auto a, auto b) { return oruiSobel3x3_Dy_8s16s_C1R(a, ss, b, ds, 1, roi); }},
        {2, 0, 0, [&](auto a, auto b) { return oruiSobel3x3_D2x_8u16s_C1R(a, ss, b, ds, roi); },
         [&](auto a, auto b) { return oruiSobel3x3_D2x_8s16s_C1R(a, ss, b, ds, roi); }},
        {0, 2, 0, [&](auto a, auto b) { return oruiSobel3x3_D2y_8u16s_C1R(a, ss, b, ds, roi); },
         [&](auto a, auto b) { return oruiSobel3x3_D2y_8s16s_C1R(a, ss, b, ds, roi); }},
        {1, 1, 0, [&](auto a, auto b) { return oruiSobel3x3_DxDy_8u16s_C1R(a, ss, b, ds, 0, roi); },
         [&](auto a, auto b) { return oruiSobel3x3_DxDy_8s16s_C1R(a, ss, b, ds, 0, roi); }},
    };
    for (const auto& c : cases) {
        const Config cfg{kSobel, 3, c.xo, c.yo, c.origin};
        ASSERT_EQ(c.fu(u.data(), fixed.data()), oruStsOk);
        run_strips(cfg, u, general, {4, 5, 2});
        EXPECT_EQ(general.region_bytes(), fixed.region_bytes()) << c.xo << c.yo;
        ASSERT_EQ(c.fs(s.data(), fixed.data()), oruStsOk);
        run_strips(cfg, s, general, {h});
        EXPECT_EQ(general.region_bytes(), fixed.region_bytes()) << c.xo << c.yo;
    }
    for (int origin : {0, 1}) {
        ASSERT_EQ(oruiSobel3x3_Dy_32f_C1R(f.data(), 4 * w, ffixed.data(), 4 * w, origin, roi), oruStsOk);
        run_strips({kSobel, 3, 0, 1, origin}, f, fgeneral, {1, 9, 1});
        EXPECT_EQ(fgeneral.region_bytes(), ffixed.region_bytes());
    }
    ASSERT_EQ(oruiSobel3x3_Dx_32f_C1R(f.data(), 4 * w, ffixed.data(), 4 * w, roi), oruStsOk);
    run_strips({kSobel, 3, 1, 0}, f, fgeneral, {h});
    EXPECT_EQ(fgeneral.region_bytes(), ffixed.region_bytes());

    u.fill(255);
    run_strips({kSobel, 7, 0, 0}, u, general, {h});
    EXPECT_EQ(general.at(5, 5), static_cast<Oru16s>(static_cast<uint16_t>(255 * 64 * 64)));
}

TEST(FilterValues, BlurOfConstantImage) {
    for (int n : {3, 5, 7})
        for_each_type([&](auto s, auto d) {
            using S = decltype(s);
            using D = decltype(d);
            const S v = static_cast<S>(sizeof(S) == 4 ? 2.5 : std::is_signed<S>::value ? -77 : 201);
            GuardedImage<S> src(13, 6);
            GuardedImage<D> dst(13, 6);
            src.fill(v);
            run_strips({kBlur, n}, src, dst, {2, 1, 3});
            for (int y = 0; y < 6; ++y)
                for (int x = 0; x < 13; ++x) ASSERT_EQ(dst.at(x, y), static_cast<D>(n * n * v));
        });
}

// Infinities at zero cells do not reach the result; NaN results are the one
// quiet NaN whatever their payloads.
TEST(FilterValues, FloatSpecials) {
    GuardedImage<Oru32f> src(9, 5), dst(9, 5);
    src.fill_random(4, -1, 1);
    src.at(4, 2) = INFINITY;
    uint32_t payload = 0xFFC01234u;
    std::memcpy(&src.at(7, 0), &payload, 4);
    expect_same_on_every_path([&] {
        run_strips({kSobel, 3, 1, 0}, src, dst, {5});
        EXPECT_TRUE(std::isfinite(dst.at(4, 2)));
        EXPECT_TRUE(std::isinf(dst.at(3, 2)));
        uint32_t bits;
        std::memcpy(&bits, &dst.at(6, 0), 4);
        EXPECT_EQ(bits, 0x7FC00000u);
        return dst.region_bytes();
    });
}

// Flags 1, 4, ..., 4, 2 over every split of heights 1..8 give the rows of
// one flag-0 call, which are the model's.
TEST(FilterStrips, EverySplitOfSmallImages) {
    for (const Config& c : kConfigs)
        for_each_type([&](auto s, auto d) {
            using S = decltype(s);
            using D = decltype(d);
            for (int h = 1; h <= 8; ++h) {
                GuardedImage<S> src(6, h);
                fill_source(src, h);
                GuardedImage<D> whole(6, h);
                run_strips(c, src, whole, {h});
                expect_equal(model<S, D>(c, plain_of(src)), whole);
                for (unsigned cuts = 1; cuts < (1u << (h - 1)); ++cuts) {
                    std::vector<int> strips{1};
                    for (int i = 1; i < h; ++i)
                        if (cuts >> (i - 1) & 1) strips.push_back(1);
                        else ++strips.back();
                    GuardedImage<D> split(6, h);
                    run_strips(c, src, split, strips);
                    ASSERT_EQ(split.region_bytes(), whole.region_bytes()) << "height " << h << " cuts " << cuts;
                }
            }
        });
}

TEST(FilterStrips, RandomSplitsOfLargerImages) {
    Rng rng(7);
    for (const Config& c : kConfigs)
        for_each_type([&](auto s, auto d) {
            using S = decltype(s);
            using D = decltype(d);
            const int w = rng.uniform(1, 40), h = rng.uniform(20, 90);
            GuardedImage<S> src(w, h);
            fill_source(src, w * h);
            GuardedImage<D> whole(w, h), split(w, h);
            run_strips(c, src, whole, {h});
            std::vector<int> strips;
            for (int left = h; left > 0;) strips.push_back(std::min(left, rng.uniform(1, 16))), left -= strips.back();
            run_strips(c, src, split, strips);
            EXPECT_EQ(split.region_bytes(), whole.region_bytes()) << w << "x" << h;
        });
}

// Every function and size on every path: widths 1..70, heights 1..9, padded
// rows and regions off alignment; the scalar twin's bytes, the model's
// values, nothing written outside the region.
TEST(FilterPaths, EveryFunctionAgainstModel) {
    for (const Config& c : kConfigs)
        for_each_type([&](auto s, auto d) {
            using S = decltype(s);
            using D = decltype(d);
            for (int w = 1; w <= 70; ++w)
                for (const Layout& layout : layouts_for(sizeof(D))) {
                    const int h = 1 + (w + layout.pad_bytes) % 9;
                    GuardedImage<S> src(w, h, 1, layout.pad_bytes / sizeof(D) * sizeof(S), layout.misalign_bytes);
                    fill_source(src, w);
                    const Plain<D> expected = model<S, D>(c, plain_of(src));
                    expect_same_on_every_path([&] {
                        GuardedImage<D> dst(w, h, 1, layout.pad_bytes, layout.misalign_bytes);
                        run_strips(c, src, dst, h > 2 ? std::vector<int>{2, h - 2} : std::vector<int>{h});
                        EXPECT_TRUE(dst.guards_intact());
                        expect_equal(expected, dst);
                        return dst.region_bytes();
                    });
                }
        });
}

// The float blur accepts steps that are 2 mod 4, and the destination may be
// the source itself.
TEST(FilterPaths, UnalignedFloatRowsAndInPlace) {
    const int w = 21, h = 7, step = 4 * w + 2;
    GuardedImage<Oru8u> bytes(step, h);
    GuardedImage<Oru32f> aligned(w, h), expected(w, h);
    aligned.fill_random(9, -3, 3);
    for (int y = 0; y < h; ++y) std::memcpy(bytes.row(y) + 2, aligned.row(y), 4 * w);
    run_strips({kBlur, 5}, aligned, expected, {h});
    expect_same_on_every_path([&] {
        GuardedImage<Oru8u> work = bytes;
        FilterHandle fspec({kBlur, 5}, oruDataType32f, w);
        OruSize roi{w, h};
        auto* p = reinterpret_cast<Oru32f*>(work.data() + 2);  // rows at 2 mod 4
        EXPECT_EQ(oruiBlur_32f_C1R(p, step, p, step, &roi, fspec.p, 0), oruStsOk);
        for (int y = 0; y < h; ++y) EXPECT_EQ(std::memcmp(work.row(y) + 2, expected.row(y), 4 * w), 0) << y;
        return work.region_bytes();
    });
}
