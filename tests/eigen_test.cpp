// Corner eigenvalues: check orders, the scratch size, the window asymmetry
// of the 8-bit MinEigenVal functions, the branches on constructed images,
// and every function on every path against a model from the formulas.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "eigen_list.h"
#include "orucv.h"
#include "support/filter_model.h"
#include "support/image.h"
#include "support/simd.h"

using namespace orutest;

namespace {

using Call = OruStatus (*)(const void* src, int srcStep, Oru32f* dst, int dstStep, OruSize roi, int aperture,
                           int window, Oru8u* buffer);
struct Function {
    const char* name;
    bool vectors;
    int source_bytes;
    bool is_signed;
    Call call;
};
#define EIGEN_GetSize(name, S)
#define EIGEN_CALL(name, S, vectors)                                                                        \
    Function{#name, vectors, sizeof(S) == 4 ? 4 : 1, std::is_signed<S>::value,                              \
             [](const void* s, int ss, Oru32f* d, int ds, OruSize r, int a, int w, Oru8u* b) {             \
                 return name(static_cast<const S*>(s), ss, d, ds, r, a, w, b);                             \
             }},
#define EIGEN_EigenValsVecs(name, S) EIGEN_CALL(name, S, true)
#define EIGEN_MinEigenVal(name, S) EIGEN_CALL(name, S, false)
#define EIGEN_ENTRY(name, shape, S) EIGEN_##shape(name, S)
const Function kFunctions[] = {ORUCV_EIGEN_FUNCTIONS(EIGEN_ENTRY)};

int buffer_size(int width) {
    int size = 0;
    EXPECT_EQ(oruiMinEigenValGetSize(width, 3, 3, &size), oruStsOk);
    return size;
}

// The model: Sobel derivatives as floats, their products, box sums, then
// the per-pixel formulas.
template <class S>
std::vector<Plain<float>> window_sums(const Plain<S>& src, int aperture, int box_size) {
    const std::vector<int> d1 = kernel_model(aperture, 1), d0 = kernel_model(aperture, 0);
    Plain<float> ix(src.w, src.h), iy(src.w, src.h);
    if constexpr (sizeof(S) == 4) {
        ix = separable_32f(src, d1, d0), iy = separable_32f(src, d0, d1);
    } else {
        const Plain<int16_t> gx = separable_16s(src, d1, d0), gy = separable_16s(src, d0, d1);
        for (size_t i = 0; i < ix.px.size(); ++i) ix.px[i] = gx.px[i], iy.px[i] = gy.px[i];
    }
    std::vector<Plain<float>> products(3, Plain<float>(src.w, src.h));
    for (size_t i = 0; i < ix.px.size(); ++i) {
        products[0].px[i] = ix.px[i] * ix.px[i];
        products[1].px[i] = ix.px[i] * iy.px[i];
        products[2].px[i] = iy.px[i] * iy.px[i];
    }
    std::vector<Plain<float>> sums;
    for (const auto& p : products) sums.push_back(box<float, float>(p, box_size));
    return sums;
}

float scale(int aperture, int window) {
    const float p = std::ldexp(1.0f, aperture - 1);
    return 1.0f / (255.0f * p * p * window * window);
}

// l1, l2, x1, y1, x2, y2 from the window sums.
std::vector<float> eigen_model(float sxx, float sxy, float syy, float k) {
    const float a = k * sxx, c = k * syy, b = k * sxy;
    const float t = 0.01f * (a > c ? a : c);
    if ((a < c ? a : c) < t) return std::vector<float>(6, 0.0f);
    if (std::fabs(b) < t) return {a, c, 1, 0, 0, 1};
    const float det = a * c - b * b;
    if (det < t) return std::vector<float>(6, 0.0f);
    const float s = a + c, d = std::sqrt(s * s - 4.0f * det);
    std::vector<float> out{(s + d) * 0.5f, (s - d) * 0.5f};
    for (int i = 0; i < 2; ++i) {
        const float u = out[i] - a;
        float m = std::sqrt(u * u + b * b);
        if (m == 0.0f) m = std::ldexp(1.0f, -23);
        out.push_back(b / m);
        out.push_back(u / m);
    }
    return out;
}

float min_eigen_model(float sxx, float sxy, float syy, float k) {
    const float p = 0.5f * sxx, q = 0.5f * syy, t = p - q;
    return ((p + q) - std::sqrt(sxy * sxy + t * t)) * k;
}

template <class S>
std::vector<float> model(const Function& fn, const Plain<S>& src, int aperture, int window) {
    const int box_size = !fn.vectors && fn.source_bytes == 1 ? aperture : window;
    const auto sums = window_sums(src, aperture, box_size);
    const float k = scale(aperture, window);
    std::vector<float> out;
    for (size_t i = 0; i < sums[0].px.size(); ++i) {
        const float sxx = sums[0].px[i], sxy = sums[1].px[i], syy = sums[2].px[i];
        if (fn.vectors)
            for (float v : eigen_model(sxx, sxy, syy, k)) out.push_back(model_nan(v));
        else
            out.push_back(model_nan(min_eigen_model(sxx, sxy, syy, k)));
    }
    return out;
}

// Runs fn on a source of type S with the exact scratch size (ending against
// an inaccessible page) and returns the output values, row by row.
template <class S>
std::vector<float> run(const Function& fn, const GuardedImage<S>& src, int aperture, int window, int pad = 0,
                       int misalign = 0) {
    const int w = src.width(), h = src.height(), per = fn.vectors ? 6 : 1;
    GuardedImage<Oru32f> dst(w * per, h, 1, pad, misalign);
    GuardedImage<Oru8u> buffer(buffer_size(w), 1, 1, 0, misalign);
    EXPECT_EQ(fn.call(src.data(), src.step(), dst.data(), dst.step(), {w, h}, aperture, window, buffer.data()),
              oruStsOk);
    EXPECT_TRUE(dst.guards_intact());
    EXPECT_TRUE(buffer.guards_intact());
    std::vector<float> out;
    for (int y = 0; y < h; ++y) out.insert(out.end(), dst.row(y), dst.row(y) + w * per);
    return out;
}

const Function& named(const char* name) {
    for (const Function& f : kFunctions)
        if (std::string(f.name) == name) return f;
    std::abort();
}

bool same_bits(const std::vector<float>& a, const std::vector<float>& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * 4) == 0;
}

template <class F>
void for_each_function(F f) {
    for (const Function& fn : kFunctions) {
        if (fn.source_bytes == 4) f(fn, Oru32f{});
        else if (fn.is_signed) f(fn, Oru8s{});
        else f(fn, Oru8u{});
    }
}

}  // namespace

TEST(EigenChecks, SizeQueries) {
    for (auto query : {oruiEigenValsVecsGetSize, oruiMinEigenValGetSize}) {
        int size = -1;
        EXPECT_EQ(query(0, 3, 3, nullptr), oruStsSize);  // sizes before the pointer
        EXPECT_EQ(query(10, 9, 3, nullptr), oruStsSize);
        EXPECT_EQ(query(10, 3, 2, &size), oruStsSize);
        EXPECT_EQ(query(10, 1, 3, &size), oruStsSize);
        EXPECT_EQ(query(INT32_MAX / 90, 3, 3, &size), oruStsSize);
        EXPECT_EQ(size, -1);
        EXPECT_EQ(query(10, 3, 3, nullptr), oruStsNullPointer);
        EXPECT_EQ(query(10, 7, 5, &size), oruStsOk);
        EXPECT_EQ(size, 12 * 10 + 7 * 12 * 10);
    }
}

TEST(EigenChecks, OrderOfChecks) {
    GuardedImage<Oru8u> src(8, 4), buffer(buffer_size(8), 1);
    GuardedImage<Oru32f> dst(48, 4);
    const auto before = dst.snapshot();
    for (const Function& fn : kFunctions) {
        if (fn.source_bytes == 4 || fn.is_signed) continue;
        const int out = fn.vectors ? 24 : 4;
        auto call = [&](const void* s, int ss, Oru32f* d, int ds, OruSize r, int a, int w, Oru8u* b) {
            return fn.call(s, ss, d, ds, r, a, w, b);
        };
        SCOPED_TRACE(fn.name);
        EXPECT_EQ(call(nullptr, 0, dst.data(), 0, {0, 0}, 1, 1, buffer.data()), oruStsNullPointer);
        EXPECT_EQ(call(src.data(), 8, dst.data(), 8 * out, {8, 4}, 3, 3, nullptr), oruStsNullPointer);
        // Every size and step fault is a size fault.
        EXPECT_EQ(call(src.data(), 8, dst.data(), 8 * out, {0, 4}, 3, 3, buffer.data()), oruStsSize);
        EXPECT_EQ(call(src.data(), 8, dst.data(), 8 * out, {8, 0}, 3, 3, buffer.data()), oruStsSize);
        EXPECT_EQ(call(src.data(), 7, dst.data(), 8 * out, {8, 4}, 3, 3, buffer.data()), oruStsSize);
        EXPECT_EQ(call(src.data(), 8, dst.data(), 8 * out - 4, {8, 4}, 3, 3, buffer.data()), oruStsSize);
        EXPECT_EQ(call(src.data(), 8, dst.data(), 8 * out + 2, {8, 4}, 3, 3, buffer.data()), oruStsSize);
        EXPECT_EQ(call(src.data(), 8, dst.data(), 8 * out, {8, 4}, 1, 3, buffer.data()), oruStsSize);
        EXPECT_EQ(call(src.data(), 8, dst.data(), 8 * out, {8, 4}, 3, 9, buffer.data()), oruStsSize);
        EXPECT_EQ(call(src.data(), 8, dst.data(), 8 * out, {8, 4}, 4, 3, buffer.data()), oruStsSize);
    }
    EXPECT_EQ(dst.snapshot(), before);
    // The float source step must cover a row of floats; it need not be a multiple of 4.
    GuardedImage<Oru32f> fsrc(8, 4);
    EXPECT_EQ(oruiMinEigenVal_32f_C1R(fsrc.data(), 31, dst.data(), 32, {8, 4}, 3, 3, buffer.data()), oruStsSize);
}

// The 8-bit MinEigenVal functions sum over the aperture and scale by the
// window: with aperture 3 and window 7 they give the window-3 result times
// 9 / 49. The float one sums over the window.
TEST(EigenValues, WindowAsymmetry) {
    GuardedImage<Oru8u> src(30, 20);
    GuardedImage<Oru32f> fsrc(30, 20);
    src.fill_random(5, 0, 255);
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 30; ++x) fsrc.at(x, y) = src.at(x, y);
    const Function& u8 = named("oruiMinEigenVal_8u32f_C1R");
    const Function& f32 = named("oruiMinEigenVal_32f_C1R");
    const auto w7 = run(u8, src, 3, 7), w3 = run(u8, src, 3, 3);
    const auto f7 = run(f32, fsrc, 3, 7), f3 = run(f32, fsrc, 3, 3);
    EXPECT_TRUE(same_bits(f3, w3));  // integer-valued floats: the same derivatives
    int differ = 0;
    for (size_t i = 0; i < w7.size(); ++i) {
        EXPECT_NEAR(w7[i], w3[i] * 9.0f / 49.0f, 1e-6f + 1e-5f * std::fabs(w3[i]));
        differ += std::fabs(f7[i] - f3[i] * 9.0f / 49.0f) > 1e-3f;
    }
    EXPECT_GT(differ, 100);
}

// Flat: six zeros through the last case; a vertical or a diagonal edge: six
// zeros (the first and the third case); a cross: Sxy cancels, the axes
// unsorted; a corner: two positive eigenvalues with unit vectors.
TEST(EigenValues, ConstructedImages) {
    const int n = 21, c = 10;
    auto center = [&](const std::function<int(int, int)>& pixel) {
        GuardedImage<Oru8u> src(n, n);
        for (int y = 0; y < n; ++y)
            for (int x = 0; x < n; ++x) src.at(x, y) = static_cast<Oru8u>(pixel(x, y));
        const auto out = run(named("oruiEigenValsVecs_8u32f_C1R"), src, 3, 3);
        return std::vector<float>(out.begin() + 6 * (c * n + c), out.begin() + 6 * (c * n + c) + 6);
    };
    const std::vector<float> zeros(6, 0.0f);
    EXPECT_EQ(center([](int, int) { return 90; }), zeros);
    EXPECT_EQ(center([&](int x, int) { return x > c ? 200 : 0; }), zeros);
    EXPECT_EQ(center([&](int x, int y) { return x + y > 2 * c ? 200 : 0; }), zeros);
    const auto cross = center([&](int x, int y) { return x == c || y == c ? 200 : 0; });
    EXPECT_GT(cross[0], 0.0f);
    EXPECT_EQ(cross[0], cross[1]);
    EXPECT_EQ(std::vector<float>(cross.begin() + 2, cross.end()), (std::vector<float>{1, 0, 0, 1}));
    const auto corner = center([&](int x, int y) { return x >= c && y >= c ? 200 : 0; });
    EXPECT_GT(corner[1], 0.0f);
    EXPECT_GT(corner[0], corner[1]);
    EXPECT_NEAR(corner[2] * corner[2] + corner[3] * corner[3], 1.0f, 1e-5f);
    EXPECT_NEAR(corner[2] * corner[4] + corner[3] * corner[5], 0.0f, 1e-5f);
}

// Every height from 1 to 26 (one strip up to several, every length of the
// last strip) with every aperture and window, against the model.
TEST(EigenStrips, EveryHeightApertureAndWindow) {
    for (int a : {3, 5, 7})
        for (int w : {3, 5, 7})
            for (int h = 1; h <= 26; ++h) {
                SCOPED_TRACE(testing::Message() << "aperture " << a << " window " << w << " height " << h);
                GuardedImage<Oru32f> fsrc(4, h);
                GuardedImage<Oru8s> ssrc(5, h);
                fsrc.fill_random(h, -50, 50);
                ssrc.fill_random(h);
                const Function& f32 = named("oruiMinEigenVal_32f_C1R");
                const Function& s8 = named("oruiEigenValsVecs_8s32f_C1R");
                EXPECT_TRUE(same_bits(run(f32, fsrc, a, w), model(f32, plain_of(fsrc), a, w)));
                EXPECT_TRUE(same_bits(run(s8, ssrc, a, w), model(s8, plain_of(ssrc), a, w)));
            }
}

// Every function on every path: odd widths, padded and misaligned rows, a
// misaligned scratch buffer; the scalar twin's bits and the model's.
TEST(EigenPaths, EveryFunctionAgainstModel) {
    const int sizes[][2] = {{3, 3}, {5, 7}, {7, 5}, {3, 7}};
    for_each_function([&](const Function& fn, auto sample) {
        using S = decltype(sample);
        int i = 0;
        for (int width : {1, 2, 3, 4, 5, 6, 7, 8, 9, 15, 16, 17, 31, 33, 64, 70})
            for (const Layout& layout : layouts_for(4)) {
                const int h = 1 + (width * 5 + layout.pad_bytes) % 23;
                const int a = sizes[i % 4][0], w = sizes[i % 4][1];
                ++i;
                SCOPED_TRACE(testing::Message() << fn.name << " " << width << "x" << h << " pad " << layout.pad_bytes);
                GuardedImage<S> src(width, h, 1, layout.pad_bytes, layout.misalign_bytes);
                if constexpr (sizeof(S) == 4) src.fill_random(width, -300, 300);
                else src.fill_random(width);
                const std::vector<float> expected = model(fn, plain_of(src), a, w);
                expect_same_on_every_path([&] {
                    const auto out = run(fn, src, a, w, layout.pad_bytes, layout.misalign_bytes + 1);
                    EXPECT_TRUE(same_bits(out, expected));
                    return out;
                });
            }
    });
}
