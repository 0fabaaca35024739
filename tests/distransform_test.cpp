// Chamfer distance transforms: check orders, mask codes, worked values,
// shortest paths, wrapping weights, and every path against the scalar twin.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <functional>
#include <queue>
#include <string>
#include <vector>

#include "a6/distransform.h"
#include "distransform_list.h"
#include "orucv.h"
#include "support/image.h"
#include "support/simd.h"

using namespace orutest;

namespace {

using Transform = OruStatus (*)(const Oru8u*, int, Oru32f*, int, OruSize, const Oru32f*);

// The transforms of the list, each with the side of its mask.
struct TransformFn {
    const char* name;
    Transform fn;
    int side;
};
#define TRANSFORM_Mask(name, side)
#define TRANSFORM_Transform(name, side) TransformFn{#name, name, side},
#define TRANSFORM(name, shape, side) TRANSFORM_##shape(name, side)
const TransformFn kTransforms[] = {ORUCV_DISTRANSFORM_FUNCTIONS(TRANSFORM)};

Transform with_side(int side) {
    for (const TransformFn& t : kTransforms)
        if (t.side == side) return t.fn;
    ADD_FAILURE() << "no transform with a " << side << "x" << side << " mask";
    return nullptr;
}
constexpr int32_t kFar = 0x3FFFFFFF;

uint32_t bits(float f) {
    uint32_t b;
    std::memcpy(&b, &f, 4);
    return b;
}
float unit_float(int32_t d) { return static_cast<float>(d) * (1.0f / 262144.0f); }
int32_t wrap(int64_t v) { return static_cast<int32_t>(static_cast<uint32_t>(v)); }
int32_t units(float w) { return wrap(static_cast<int64_t>(std::nearbyint(static_cast<double>(w) * 262144.0))); }

struct Step {
    int dy, dx, weight;  // weight: 0 = a, 1 = b, 2 = c, 3 = 2a, 4 = 2b
};
// The half of the mask that the forward pass looks at; the backward pass
// uses the mirror. `extras` adds the offsets of the candidate-list path.
std::vector<Step> forward_half(bool five, bool extras) {
    std::vector<Step> s = {{0, -1, 0}, {-1, 0, 0}, {-1, -1, 1}, {-1, 1, 1}};
    if (five) s.insert(s.end(), {{-1, -2, 2}, {-1, 2, 2}, {-2, -1, 2}, {-2, 1, 2}});
    if (extras) s.insert(s.end(), {{0, -2, 3}, {-2, 0, 3}, {-2, -2, 4}});
    return s;
}

// The two passes as defined, pixel by pixel, with wrapping sums.
std::vector<int32_t> pass_model(const GuardedImage<Oru8u>& src, const int32_t w3[3], bool five, bool extras) {
    const int w = src.width(), h = src.height();
    const int32_t wt[5] = {w3[0], w3[1], w3[2], wrap(int64_t(w3[0]) * 2), wrap(int64_t(w3[1]) * 2)};
    std::vector<int32_t> d(size_t(w) * h);
    for (int i = 0; i < w * h; ++i) d[i] = src.at(i % w, i / w) ? kFar : 0;
    for (int dir : {1, -1})
        for (int i = 0; i < w * h; ++i) {
            const int p = dir > 0 ? i : w * h - 1 - i, y = p / w, x = p % w;
            for (const Step& s : forward_half(five, extras)) {
                const int ny = y + dir * s.dy, nx = x + dir * s.dx;
                if (ny >= 0 && ny < h && nx >= 0 && nx < w) d[p] = std::min(d[p], wrap(int64_t(d[ny * w + nx]) + wt[s.weight]));
            }
        }
    return d;
}

// Multi-source shortest paths over the whole mask (the reference for weights
// under which the optimal paths are monotone).
std::vector<int32_t> dijkstra(const GuardedImage<Oru8u>& src, const int32_t w3[3], bool five) {
    const int w = src.width(), h = src.height();
    std::vector<int64_t> dist(size_t(w) * h, INT64_MAX);
    using Item = std::pair<int64_t, int>;
    std::priority_queue<Item, std::vector<Item>, std::greater<Item>> queue;
    for (int i = 0; i < w * h; ++i)
        if (!src.at(i % w, i / w)) queue.push({dist[i] = 0, i});
    std::vector<Step> steps;
    for (const Step& s : forward_half(five, false)) steps.push_back(s), steps.push_back({-s.dy, -s.dx, s.weight});
    while (!queue.empty()) {
        const auto [d, p] = queue.top();
        queue.pop();
        if (d > dist[p]) continue;
        for (const Step& s : steps) {
            const int ny = p / w + s.dy, nx = p % w + s.dx;
            if (ny < 0 || ny >= h || nx < 0 || nx >= w || d + w3[s.weight] >= dist[ny * w + nx]) continue;
            queue.push({dist[ny * w + nx] = d + w3[s.weight], ny * w + nx});
        }
    }
    std::vector<int32_t> out(dist.size());
    for (size_t i = 0; i < dist.size(); ++i) out[i] = static_cast<int32_t>(std::min<int64_t>(dist[i], kFar));
    return out;
}

GuardedImage<Oru8u> random_features(int w, int h, uint64_t seed, int percent_zero, int pad = 0, int misalign = 0) {
    GuardedImage<Oru8u> src(w, h, 1, pad, misalign);
    Rng rng(seed);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) src.at(x, y) = rng.uniform(0, 99) < percent_zero ? 0 : rng.uniform(1, 255);
    return src;
}

// Runs one transform into a fresh guarded destination and returns its bits.
std::vector<uint32_t> run(Transform t, const GuardedImage<Oru8u>& src, const float* m, int pad = 0, int misalign = 0) {
    GuardedImage<Oru32f> dst(src.width(), src.height(), 1, pad, misalign);
    EXPECT_EQ(t(src.data(), src.step(), dst.data(), dst.step(), {src.width(), src.height()}, m), oruStsOk);
    EXPECT_TRUE(dst.guards_intact());
    std::vector<uint32_t> out;
    for (int y = 0; y < src.height(); ++y)
        for (int x = 0; x < src.width(); ++x) out.push_back(bits(dst.at(x, y)));
    return out;
}
std::vector<uint32_t> as_floats(const std::vector<int32_t>& d) {
    std::vector<uint32_t> out;
    for (int32_t v : d) out.push_back(bits(unit_float(v)));
    return out;
}

}  // namespace

// The list makes both the wrappers and this test's table, so its mask sides
// are checked against the names.
TEST(DistanceList, ColumnsFollowTheNames) {
    for (const TransformFn& t : kTransforms) {
        const std::string side = std::to_string(t.side);
        EXPECT_NE(std::string(t.name).find("_" + side + "x" + side + "_"), std::string::npos) << t.name;
    }
}

TEST(DistanceMask, CodesAndBits) {
    const struct {
        int code;
        int count;
        uint32_t expected[3];
    } masks[] = {{30, 2, {0x3F800000, 0x3F800000}}, {31, 2, {0x3F800000, 0x40000000}},
                 {32, 2, {0x3F747AE1, 0x3FAF4539}}, {52, 3, {0x3F800000, 0x3FB33333, 0x400C9A02}}};
    for (const auto& m : masks) {
        float out[4] = {-7, -7, -7, -7};
        EXPECT_EQ(oruiGetDistanceTransformMask(m.code, out), oruStsOk);
        for (int i = 0; i < 4; ++i) EXPECT_EQ(bits(out[i]), i < m.count ? m.expected[i] : bits(-7.0f)) << m.code;
    }
    for (int code : {50, 51, 0, 3, 5, 33, 53, -30, 320}) {
        float out[3] = {-7, -7, -7};
        EXPECT_EQ(oruiGetDistanceTransformMask(code, out), oruStsOutOfRange) << code;
        EXPECT_TRUE(out[0] == -7 && out[1] == -7 && out[2] == -7) << code;
    }
    EXPECT_EQ(oruiGetDistanceTransformMask(99, nullptr), oruStsNullPointer);
}

// Pointers, then sizes and steps, all step faults as oruStsSize; zero-sized
// regions succeed without touching memory, failed calls write nothing.
TEST(DistanceChecks, OrderOfChecks) {
    GuardedImage<Oru8u> src(8, 4);
    GuardedImage<Oru32f> dst(8, 4);
    const float m[3] = {1, 1.4f, 2.2f};
    const auto before = dst.snapshot();
    for (const TransformFn& f : kTransforms) {
        const Transform t = f.fn;
        EXPECT_EQ(t(nullptr, 8, dst.data(), 32, {-1, -1}, m), oruStsNullPointer);
        EXPECT_EQ(t(src.data(), 8, nullptr, 32, {8, 4}, m), oruStsNullPointer);
        EXPECT_EQ(t(src.data(), -1, dst.data(), 1, {8, 4}, nullptr), oruStsNullPointer);
        EXPECT_EQ(t(src.data(), 8, dst.data(), 32, {-1, 4}, m), oruStsSize);
        EXPECT_EQ(t(src.data(), 8, dst.data(), 32, {8, -1}, m), oruStsSize);
        EXPECT_EQ(t(src.data(), 7, dst.data(), 32, {8, 4}, m), oruStsSize);
        EXPECT_EQ(t(src.data(), 0, dst.data(), 32, {8, 4}, m), oruStsSize);
        EXPECT_EQ(t(src.data(), 8, dst.data(), 28, {8, 4}, m), oruStsSize);
        EXPECT_EQ(t(src.data(), 8, dst.data(), 34, {8, 4}, m), oruStsSize);  // 4 * width + 2
        EXPECT_EQ(t(src.data(), 8, dst.data(), 30, {7, 4}, m), oruStsSize);
        EXPECT_EQ(t(src.data(), 8, dst.data(), -4, {0, 4}, m), oruStsSize);
        EXPECT_EQ(dst.snapshot(), before);
        EXPECT_EQ(t(src.data(), 0, dst.data(), 0, {0, 4}, m), oruStsOk);
        EXPECT_EQ(t(src.data(), 8, dst.data(), 32, {8, 0}, m), oruStsOk);
        EXPECT_EQ(dst.snapshot(), before);
    }
    EXPECT_EQ(oruiDistanceTransform_5x5_8u32f_C1R(src.data(), 9, dst.data(), 36, {8, 3}, m), oruStsOk);
}

TEST(DistanceValues, WorkedExamples) {
    GuardedImage<Oru8u> src(7, 6);
    src.fill(9);
    src.at(2, 2) = 0;
    GuardedImage<Oru32f> dst(7, 6);
    float m[3];
    const struct {
        int code, x, y;
        float expected;
    } cases[] = {{30, 4, 3, 2.0f}, {31, 4, 3, 3.0f}, {32, 4, 3, 2.3243027f}, {32, 0, 1, 2.3243027f},
                 {52, 4, 3, unit_float(units(2.1969f))}, {52, 5, 4, unit_float(units(1.4f) + units(2.1969f))}};
    for (const auto& c : cases) {
        ASSERT_EQ(oruiGetDistanceTransformMask(c.code, m), oruStsOk);
        EXPECT_EQ(with_side(c.code / 10)(src.data(), src.step(), dst.data(), dst.step(), {7, 6}, m), oruStsOk);
        EXPECT_EQ(bits(dst.at(c.x, c.y)), bits(c.expected)) << c.code;
        EXPECT_EQ(dst.at(2, 2), 0.0f);
    }
    EXPECT_EQ(bits(2.3243027f), bits(unit_float(250348 + 358954)));
    // No feature: every pixel keeps the far value, on every path and size.
    for (OruSize s : {OruSize{1, 1}, OruSize{1, 9}, OruSize{9, 1}, OruSize{3, 3}, OruSize{40, 5}}) {
        GuardedImage<Oru8u> none(s.width, s.height);
        none.fill(1);
        for (const TransformFn& t : kTransforms)
            for (uint32_t v : run(t.fn, none, m)) EXPECT_EQ(v, bits(4096.0f));
    }
}

// Weights are rounded to 2^-18 with ties to even; negative ones wrap.
TEST(DistanceValues, FixedPointRounding) {
    GuardedImage<Oru8u> src(2, 1);
    src.at(0, 0) = 0, src.at(1, 0) = 1;
    const double u = 1.0 / 262144.0;
    const struct {
        double weight;
        float expected;
    } cases[] = {{0.5 * u, 0.0f}, {1.5 * u, 2 * u}, {2.5 * u, 2 * u}, {2.5000003 * u, 3 * u}, {-1.5 * u, -2 * u}, {-2.5 * u, -2 * u}};
    for (const auto& c : cases) {
        const float m[3] = {static_cast<float>(c.weight), 1, 1};
        for (const TransformFn& t : kTransforms) EXPECT_EQ(run(t.fn, src, m)[1], bits(c.expected)) << c.weight;
    }
}

// Standard and integer masks against shortest paths, sizes from one pixel up.
TEST(DistanceValues, ShortestPaths) {
    const float masks[][3] = {{1, 1, 0}, {1, 2, 0}, {0.955f, 1.3693f, 0}, {3, 4, 0}, {1, 1.4f, 2.1969f}, {5, 7, 11}};
    const int sizes[][2] = {{1, 1}, {1, 7}, {7, 1}, {2, 2}, {3, 9}, {9, 3}, {4, 4}, {5, 6}, {37, 23}, {70, 11}};
    int seed = 0;
    for (const auto& m : masks)
        for (const auto& sz : sizes)
            for (int percent : {1, 5, 40}) {
                const auto src = random_features(sz[0], sz[1], ++seed, percent);
                const int32_t w3[3] = {units(m[0]), units(m[1]), units(m[2])};
                const bool five = m[2] != 0;
                const auto expected = as_floats(dijkstra(src, w3, five));
                expect_same_on_every_path([&] {
                    const auto got = run(with_side(five ? 5 : 3), src, m);
                    EXPECT_EQ(got, expected) << sz[0] << "x" << sz[1] << " mask " << m[0] << "," << m[1];
                    return got;
                });
            }
}

// Huge and negative weights wrap; the passes still follow the definition
// (small 5x5 images include the extra candidate-list offsets).
TEST(DistanceValues, WrappingWeights) {
    const float masks[][3] = {{5000, 3000, 7000}, {-3, 2, 1}, {1, -2.5f, 4}, {256, 300, 400}, {256.01f, -1, 8191},
                              {-0.001f, 0.5f, 1e9f}, {3e4f, -2e4f, 1e4f}};
    int seed = 100;
    for (const auto& m : masks)
        for (const auto& sz : {std::make_pair(1, 9), std::make_pair(3, 3), std::make_pair(9, 2), std::make_pair(33, 17)})
            for (bool five : {false, true}) {
                const auto src = random_features(sz.first, sz.second, ++seed, 10);
                const int32_t w3[3] = {units(m[0]), units(m[1]), units(m[2])};
                const bool extras = five && (sz.first < 4 || sz.second < 4);
                const auto expected = as_floats(pass_model(src, w3, five, extras));
                expect_same_on_every_path([&] {
                    const auto got = run(with_side(five ? 5 : 3), src, m);
                    EXPECT_EQ(got, expected) << m[0] << "," << m[1] << "," << m[2];
                    return got;
                });
            }
}

// The unrolled 5x5 path and the candidate-list path agree on large images.
TEST(DistancePaths, FiveByFiveGeneralMatchesUnrolled) {
    const float masks[][3] = {{1, 1.4f, 2.1969f}, {1, 1, 1}, {2, 1, 3}, {0, 0, 0}, {7, 3, 4}};
    for (const auto& m : masks)
        for (int w : {4, 5, 19, 64}) {
            const auto src = random_features(w, 13, w, 6);
            GuardedImage<Oru32f> general(w, 13);
            orucv::a6::distance_5x5_general(src.data(), src.step(), general.data(), general.step(), w, 13,
                                            units(m[0]), units(m[1]), units(m[2]));
            const auto got = run(oruiDistanceTransform_5x5_8u32f_C1R, src, m);
            for (int i = 0; i < w * 13; ++i) EXPECT_EQ(got[i], bits(general.at(i % w, i / w))) << m[0] << " " << i;
        }
}

// Widths around every vector size, padded and misaligned rows, guards.
TEST(DistancePaths, EveryWidthAndLayout) {
    const float m[3] = {0.955f, 1.3693f, 2.1969f};
    for (int width = 1; width <= 70; ++width)
        for (size_t l = 0; l < layouts_for(4).size(); ++l) {
            const Layout src_layout = layouts_for(1)[l], dst_layout = layouts_for(4)[l];
            const auto src = random_features(width, 6, width * 7 + l, 8, src_layout.pad_bytes, src_layout.misalign_bytes);
            for (int five : {0, 1})
                expect_same_on_every_path([&] {
                    return run(with_side(five ? 5 : 3), src, m, dst_layout.pad_bytes, dst_layout.misalign_bytes);
                });
        }
}

TEST(DistanceDeath, BrokenRowWalkAborts) {
    GuardedImage<Oru32f> dst(4, 2);
    EXPECT_DEATH(orucv::a6::distance_finish(reinterpret_cast<const orucv::a6::dist_t*>(dst.row(1)), dst.data(),
                                            dst.step(), 4, 2),
                 "src/orcvdistransform.*588.*idist == \\(int\\*\\)pDst");
}
