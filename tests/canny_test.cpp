// Canny edge detector: check orders, hand-checked cases, a model of the four
// passes on random derivatives over every path and layout, and a seed stack
// that runs short.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "a6/canny.h"
#include "orucv.h"
#include "support/image.h"
#include "support/simd.h"

using namespace orutest;

namespace {

using Edges = std::vector<uint8_t>;

int16_t at(const int16_t* base, int step, int x, int y) {
    return reinterpret_cast<const int16_t*>(reinterpret_cast<const char*>(base) + static_cast<ptrdiff_t>(step) * y)[x];
}
int abs16(int v) { return std::min(std::abs(v), 32767); }

// The four passes as designed: a framed map cut at the low threshold, cells
// negated in scan order when not strictly above max(|earlier neighbour|,
// later neighbour), seeds above the high threshold, and a stack that marks
// cells when popped. The steps are exchanged in the magnitude pass.
Edges model(const int16_t* dx, int dxs, const int16_t* dy, int dys, int w, int h, float lowf, float highf,
            size_t* peak = nullptr) {
    const int low = static_cast<int>(lowf), high = static_cast<int>(highf), p = w + 2, kAccepted = INT_MIN;
    std::vector<int> map((h + 2) * p, 0), stack;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const int m = std::min(32767, abs16(at(dx, dys, x, y)) + abs16(at(dy, dxs, x, y)));
            map[(y + 1) * p + x + 1] = m > low ? m : 0;
        }
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const int i = (y + 1) * p + x + 1, c = map[i], gx = at(dx, dxs, x, y), gy = at(dy, dys, x, y);
            const int a = abs16(gx), b = abs16(gy);
            if (c <= 0) continue;
            const int d = 1697 * a > 4096 * b ? 1 : 9889 * a > 4096 * b ? ((gx < 0) == (gy < 0) ? p + 1 : p - 1) : p;
            if (c <= std::max(std::abs(map[i - d]), map[i + d])) map[i] = -c;
            else if (c > high) stack.push_back(i);
        }
    size_t most = stack.size();
    while (!stack.empty()) {
        const int i = stack.back();
        stack.pop_back();
        if (map[i] == kAccepted) continue;
        map[i] = kAccepted;
        for (int d : {-p, -p - 1, -p + 1, 1, p + 1, p, p - 1, -1})
            if (map[i + d] > low) stack.push_back(i + d);
        most = std::max(most, stack.size());
    }
    if (peak) *peak = most;
    Edges e(w * h);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) e[y * w + x] = map[(y + 1) * p + x + 1] == kAccepted ? 255 : 0;
    return e;
}

// The detector through the public function, into an output with an odd
// step and a scratch buffer of exactly the queried size, both guarded.
Edges detect(const int16_t* dx, int dxs, const int16_t* dy, int dys, int w, int h, float low, float high,
             Layout out = {0, 0}) {
    int size = 0;
    EXPECT_EQ(oruiCannyGetSize({w, h}, &size), oruStsOk);
    std::vector<uint8_t> storage(size + 128, kGuardByte);
    uint8_t* buffer = storage.data() + 1 + out.misalign_bytes;
    GuardedImage<Oru8u> dst(w, h, 1, out.pad_bytes + 1, out.misalign_bytes);
    EXPECT_EQ(oruiCanny_16s8u_C1R(dx, dxs, dy, dys, dst.data(), dst.step(), {w, h}, low, high, buffer), oruStsOk);
    EXPECT_TRUE(dst.guards_intact());
    auto guard = [](uint8_t v) { return v == kGuardByte; };
    EXPECT_TRUE(std::all_of(storage.data(), buffer, guard) && std::all_of(buffer + size, storage.data() + storage.size(), guard));
    return dst.region_bytes();
}

struct Gradients {
    GuardedImage<int16_t> dx, dy;
    Gradients(int w, int h, Layout l = {0, 0}) : dx(w, h, 1, l.pad_bytes, l.misalign_bytes), dy(dx) {
        dx.fill(0), dy.fill(0);
    }
    void set(int x, int y, int gx, int gy) { dx.at(x, y) = static_cast<int16_t>(gx), dy.at(x, y) = static_cast<int16_t>(gy); }
    Edges detect(float low, float high, Layout out = {0, 0}) {
        return ::detect(dx.data(), dx.step(), dy.data(), dy.step(), dx.width(), dx.height(), low, high, out);
    }
    Edges model(float low, float high) {
        return ::model(dx.data(), dx.step(), dy.data(), dy.step(), dx.width(), dx.height(), low, high);
    }
};

// A row of vertical gradients: each pixel meets only the zero frame above
// and below, so every pixel above the low threshold is a candidate.
Edges row_of(std::vector<int> magnitudes, float low, float high) {
    Gradients g(static_cast<int>(magnitudes.size()), 1);
    for (size_t x = 0; x < magnitudes.size(); ++x) g.set(static_cast<int>(x), 0, 0, magnitudes[x]);
    return g.detect(low, high);
}

}  // namespace

TEST(CannyChecks, BufferSize) {
    int size = -7;
    EXPECT_EQ(oruiCannyGetSize({0, 5}, nullptr), oruStsSize);  // size before the pointer
    EXPECT_EQ(oruiCannyGetSize({5, -1}, &size), oruStsSize);
    EXPECT_EQ(oruiCannyGetSize({5, 5}, nullptr), oruStsNullPointer);
    EXPECT_EQ(oruiCannyGetSize({40000, 40000}, &size), oruStsSize);  // beyond an int
    EXPECT_EQ(size, -7);
    EXPECT_EQ(oruiCannyGetSize({1, 1}, &size), oruStsOk);
    EXPECT_EQ(size, 108);
    EXPECT_EQ(oruiCannyGetSize({640, 480}, &size), oruStsOk);
    EXPECT_EQ(size, 12 * 642 * 482);
}

TEST(CannyChecks, OrderOfChecks) {
    Gradients g(8, 4);
    GuardedImage<Oru8u> dst(8, 4);
    std::vector<uint8_t> buffer(12 * 10 * 6, 7);
    const auto before = dst.snapshot();
    const int16_t *dx = g.dx.data(), *dy = g.dy.data();
    auto call = [&](const int16_t* x, int xs, const int16_t* y, int ys, Oru8u* d, int ds, OruSize r, float lo,
                    float hi, Oru8u* b) { return oruiCanny_16s8u_C1R(x, xs, y, ys, d, ds, r, lo, hi, b); };
    EXPECT_EQ(call(nullptr, 0, dy, 16, dst.data(), 8, {0, 0}, -1, -2, buffer.data()), oruStsNullPointer);
    EXPECT_EQ(call(dx, 16, nullptr, 16, dst.data(), 8, {8, 4}, 1, 2, buffer.data()), oruStsNullPointer);
    EXPECT_EQ(call(dx, 16, dy, 16, nullptr, 8, {8, 4}, 1, 2, buffer.data()), oruStsNullPointer);
    EXPECT_EQ(call(dx, 16, dy, 16, dst.data(), 8, {8, 4}, 1, 2, nullptr), oruStsNullPointer);
    EXPECT_EQ(call(dx, 0, dy, 16, dst.data(), 8, {0, 4}, 1, 2, buffer.data()), oruStsStep);
    EXPECT_EQ(call(dx, 16, dy, -16, dst.data(), 8, {8, 4}, 1, 2, buffer.data()), oruStsStep);
    EXPECT_EQ(call(dx, 16, dy, 16, dst.data(), 0, {8, 4}, 1, 2, buffer.data()), oruStsStep);
    EXPECT_EQ(call(dx, 15, dy, 16, dst.data(), 8, {8, 0}, 1, 2, buffer.data()), oruStsSize);
    EXPECT_EQ(call(dx, 15, dy, 16, dst.data(), 8, {8, 4}, -1, 2, buffer.data()), oruStsNotEvenStep);
    EXPECT_EQ(call(dx, 16, dy, 17, dst.data(), 8, {8, 4}, 1, 2, buffer.data()), oruStsNotEvenStep);
    EXPECT_EQ(call(dx, 16, dy, 16, dst.data(), 8, {8, 4}, -0.5f, 2, buffer.data()), oruStsBadArg);
    EXPECT_EQ(call(dx, 16, dy, 16, dst.data(), 8, {8, 4}, 3, 2.9f, buffer.data()), oruStsBadArg);
    EXPECT_EQ(call(dx, 16, dy, 16, dst.data(), 8, {8, 4}, NAN, 2, buffer.data()), oruStsBadArg);
    EXPECT_EQ(call(dx, 16, dy, 16, dst.data(), 8, {8, 4}, 1, NAN, buffer.data()), oruStsBadArg);
    EXPECT_EQ(dst.snapshot(), before);
    EXPECT_TRUE(std::all_of(buffer.begin(), buffer.end(), [](uint8_t v) { return v == 7; }));
    // Equal thresholds and an odd output step are fine.
    GuardedImage<Oru8u> odd(8, 4, 1, 1);
    EXPECT_EQ(call(dx, 16, dy, 16, odd.data(), odd.step(), {8, 4}, 2, 2, buffer.data()), oruStsOk);
}

TEST(CannyValues, ThresholdsAreTruncated) {
    // One pixel: an edge exactly when its magnitude exceeds the high
    // threshold truncated; |-32768| saturates.
    EXPECT_EQ(row_of({21}, 10.9f, 20.9f), Edges{255});
    EXPECT_EQ(row_of({20}, 10.9f, 20.9f), Edges{0});
    EXPECT_EQ(row_of({-32768}, 0, 32766.5f), Edges{255});
    EXPECT_EQ(row_of({-32768}, 0, 1e30f), Edges{0});
    // A weak pixel joins a strong neighbour when above the truncated low one.
    EXPECT_EQ(row_of({25, 11}, 10.9f, 20.9f), (Edges{255, 255}));
    EXPECT_EQ(row_of({25, 10}, 10.9f, 20.9f), (Edges{255, 0}));
    EXPECT_EQ(row_of({20, 11, 15}, 10.9f, 20.9f), (Edges{0, 0, 0}));
    EXPECT_EQ(row_of({21, 11, 15, 0, 15}, 10.9f, 20.9f), (Edges{255, 255, 255, 0, 0}));
}

TEST(CannyValues, PlateausGiveNoEdge) {
    Gradients g(3, 1);
    for (int x = 0; x < 3; ++x) g.set(x, 0, x ? 50 : 5, 0);  // horizontal: 5, 50, 50
    EXPECT_EQ(g.detect(1, 2), (Edges{0, 0, 0}));
    g.set(2, 0, -49, 0);
    EXPECT_EQ(g.detect(1, 2), (Edges{0, 255, 0}));
    // Magnitude 1 with a zero low threshold: suppressed cells stay non-edges.
    g.set(0, 0, 1, 0), g.set(1, 0, 1, 0), g.set(2, 0, 0, 0);
    EXPECT_EQ(g.detect(0, 0), (Edges{0, 0, 0}));
}

// The centre of a 3x3 image against a neighbour of equal magnitude: it is
// suppressed exactly when that neighbour lies along its direction.
TEST(CannyValues, FourDirections) {
    struct Case {
        int dx, dy, p, q;  // neighbours along the direction, as y * 3 + x
    } cases[] = {{100, 0, 3, 5},    {-4096, 1696, 3, 5}, {-32768, 0, 3, 5},    {4096, 1697, 0, 8},
                 {-100, -100, 0, 8}, {-32768, -32768, 0, 8}, {4096, -9888, 2, 6}, {-100, 100, 2, 6},
                 {4096, 9889, 1, 7}, {0, -500, 1, 7}, {-4096, -9889, 1, 7}};
    for (const Case& c : cases)
        for (int k = 0; k < 9; ++k) {
            if (k == 4) continue;
            Gradients g(3, 3);
            g.set(1, 1, c.dx, c.dy);
            g.set(k % 3, k / 3, 0, std::min(32767, abs16(c.dx) + abs16(c.dy)));
            const bool along = k == c.p || k == c.q;
            EXPECT_EQ(g.detect(10, 20)[4], along ? 0 : 255) << c.dx << "," << c.dy << " neighbour " << k;
        }
}

TEST(CannyValues, EdgesOnTheBorders) {
    Gradients g(6, 5);
    for (int x = 0; x < 6; ++x) g.set(x, 0, 0, 100);  // first row
    for (int y = 2; y < 5; ++y) g.set(5, y, 100, 0);  // last column
    for (int y = 2; y < 4; ++y) g.set(0, y, -100, 0); // first column
    for (int x = 0; x < 3; ++x) g.set(x, 4, 0, -150); // last row
    const Edges expected = {255, 255, 255, 255, 255, 255, 0, 0, 0, 0, 0, 0, 255, 0, 0, 0, 0, 255,
                            255, 0, 0, 0, 0, 255, 255, 255, 255, 0, 0, 255};
    expect_same_on_every_path([&] { EXPECT_EQ(g.detect(50, 90), expected); return g.detect(50, 90); });
}

// Random derivatives: narrow ranges make ties and plateaus common, wide ones
// reach the saturation; widths 1..70 cross every vector width.
TEST(CannyValues, MatchesTheFourPassesOnEveryPath) {
    const int ranges[] = {6, 60, 32768};
    for (int width = 1; width <= 70; ++width)
        for (int height = 2; height <= 9; height += (width % 4) + 1)
            for (const Layout& l : layouts_for(2)) {
                const int range = ranges[(width + height) % 3];
                Gradients g(width, height, l);
                g.dx.fill_random(width * 100 + height, -range, range - 1);
                g.dy.fill_random(width * 100 + height + 7, -range, range - 1);
                const float low = range / 5.0f + 0.7f, high = low + range / 3;
                const Edges expected = g.model(low, high);
                expect_same_on_every_path([&] {
                    const Edges e = g.detect(low, high, l);
                    EXPECT_EQ(e, expected) << width << "x" << height;
                    return e;
                });
            }
}

// The magnitude pass reads each derivative image with the other's step.
TEST(CannyValues, ExchangedStepsInTheMagnitudePass) {
    const int w = 37, h = 6, wide = 2 * w + 24;
    GuardedImage<int16_t> dx(w + 12, h), dy(w + 12, h);  // both addressable with both steps
    dx.fill_random(3, -80, 80);
    dy.fill_random(4, -80, 80);
    expect_same_on_every_path([&] {
        const Edges e = detect(dx.data(), wide, dy.data(), wide - 16, w, h, 30, 70);
        EXPECT_EQ(e, model(dx.data(), wide, dy.data(), wide - 16, w, h, 30, 70));
        EXPECT_NE(e, detect(dx.data(), wide, dy.data(), wide, w, h, 30, 70));
        return e;
    });
}

// A tiling whose edges are all strong and densely connected: the stack that
// marks cells when popped would need more entries than the queried buffer
// holds beyond the map; here cells are marked when pushed.
TEST(CannyStack, AdversarialInputStaysInTheBuffer) {
    const int tile[16][2] = {{200, -200}, {0, 850},  {200, 200},  {0, 850},  {0, 650},  {300, -300},
                             {950, 0},    {0, 0},    {150, 150},  {0, 750},  {350, -350}, {0, 750},
                             {1000, 0},   {0, 0},    {500, -500}, {250, -250}};
    const int w = 240, h = 240;
    Gradients g(w, h);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) g.set(x, y, tile[(y % 4) * 4 + x % 4][0], tile[(y % 4) * 4 + x % 4][1]);
    size_t peak = 0;
    const Edges expected = model(g.dx.data(), g.dx.step(), g.dy.data(), g.dy.step(), w, h, 100, 200, &peak);
    const long long map_bytes = (2 * ((w + 4) & ~3) + 2) * (h + 2LL);
    EXPECT_GT(static_cast<long long>(peak) * 4, 12LL * (w + 2) * (h + 2) - map_bytes);
    expect_same_on_every_path([&] {
        EXPECT_EQ(g.detect(100, 200), expected);
        return g.detect(100, 200);
    });
}

// Pushes that do not fit are dropped and sweeps finish the hysteresis.
TEST(CannyStack, ShortStackGivesTheSameEdges) {
    for (int seed = 0; seed < 6; ++seed) {
        const int w = 20 + 9 * seed, h = 17 + 5 * seed;
        Gradients g(w, h);
        g.dx.fill_random(seed, -100, 100);
        g.dy.fill_random(seed + 50, -100, 100);
        const Edges expected = g.model(20, 60);
        for (size_t capacity : {0, 1, 9, 100}) {
            std::vector<uint8_t> buffer(12 * (w + 2) * (h + 2));
            orucv::a6::CannyScratch s = orucv::a6::canny_scratch(buffer.data(), buffer.size(), w, h);
            s.stack.capacity = capacity;
            Edges e(w * h);
            const bool swept = orucv::a6::a6_orcvCanny_16s8u_C1R(g.dx.data(), g.dx.step(), g.dy.data(),
                                                                 g.dy.step(), e.data(), w, w, h, 20, 60, s);
            EXPECT_TRUE(swept || capacity > 0);
            EXPECT_EQ(e, expected) << seed << " " << capacity;
        }
    }
}
