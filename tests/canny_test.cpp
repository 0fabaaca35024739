// Canny edge detector: check orders, hand-checked cases, a model of the four
// passes on random derivatives over every path and layout, and a seed stack
// that runs short.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
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

// The four passes as designed: a framed map cut at the low threshold (the
// steps exchanged), cells negated in scan order unless strictly above
// max(|earlier neighbour|, later neighbour), seeds above the high threshold,
// and a stack that marks cells when popped; *peak gets its largest size.
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
            const int d = 1697 * a > 4096 * b ? 1 : 9889 * a > 4096 * b ? ((gx < 0) == (gy < 0) ? p + 1 : p - 1) : p;
            if (c > 0 && c <= std::max(std::abs(map[i - d]), map[i + d])) map[i] = -c;
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
    for (int i = 0; i < w * h; ++i) e[i] = map[(i / w + 1) * p + i % w + 1] == kAccepted ? 255 : 0;
    return e;
}

// The public function, into an output with an odd step and a scratch buffer
// of exactly the queried size, both guarded.
Edges detect(const int16_t* dx, int dxs, const int16_t* dy, int dys, int w, int h, float low, float high,
             Layout out = {0, 0}) {
    int size = 0;
    EXPECT_EQ(oruiCannyGetSize({w, h}, &size), oruStsOk);
    std::vector<uint8_t> storage(size + 128, kGuardByte);
    uint8_t *buffer = storage.data() + 1 + out.misalign_bytes, *end = storage.data() + storage.size();
    GuardedImage<Oru8u> dst(w, h, 1, out.pad_bytes + 1, out.misalign_bytes);
    EXPECT_EQ(oruiCanny_16s8u_C1R(dx, dxs, dy, dys, dst.data(), dst.step(), {w, h}, low, high, buffer), oruStsOk);
    auto guard = [](uint8_t v) { return v == kGuardByte; };
    EXPECT_TRUE(dst.guards_intact() && std::all_of(storage.data(), buffer, guard) &&
                std::all_of(buffer + size, end, guard));
    return dst.region_bytes();
}

// Derivative images of one layout; dy_step may be set below the layout's
// step, so that the two images are passed with different steps.
struct Gradients {
    GuardedImage<int16_t> dx, dy;
    int dy_step;
    Gradients(int w, int h, Layout l = {0, 0})
        : dx(w, h, 1, l.pad_bytes, l.misalign_bytes), dy(dx), dy_step(dy.step()) {
        dx.fill(0), dy.fill(0);
    }
    void set(int x, int y, int gx, int gy) {
        dx.at(x, y) = static_cast<int16_t>(gx), dy.at(x, y) = static_cast<int16_t>(gy);
    }
    Edges detect(float low, float high, Layout out = {0, 0}) {
        return ::detect(dx.data(), dx.step(), dy.data(), dy_step, dx.width(), dx.height(), low, high, out);
    }
    Edges model(float low, float high, size_t* peak = nullptr) {
        return ::model(dx.data(), dx.step(), dy.data(), dy_step, dx.width(), dx.height(), low, high, peak);
    }
};

}  // namespace

TEST(CannyChecks, BufferSizeAndOrderOfChecks) {
    int size = -7;
    EXPECT_EQ(oruiCannyGetSize({0, 5}, nullptr), oruStsSize);  // size before the pointer
    EXPECT_EQ(oruiCannyGetSize({5, -1}, &size), oruStsSize);
    EXPECT_EQ(oruiCannyGetSize({5, 5}, nullptr), oruStsNullPointer);
    EXPECT_EQ(oruiCannyGetSize({40000, 40000}, &size), oruStsSize);  // beyond an int
    EXPECT_EQ(size, -7);
    EXPECT_EQ(oruiCannyGetSize({640, 480}, &size), oruStsOk);
    EXPECT_EQ(size, 12 * 642 * 482);

    Gradients g(8, 4);
    GuardedImage<Oru8u> dst(8, 4);
    std::vector<uint8_t> buffer(12 * 10 * 6, 7);
    const auto before = dst.snapshot();
    const int16_t *x = g.dx.data(), *y = g.dy.data();
    Oru8u *d = dst.data(), *b = buffer.data();
    const OruSize roi{8, 4};
    EXPECT_EQ(oruiCanny_16s8u_C1R(nullptr, 0, y, 16, d, 8, {0, 0}, -1, -2, b), oruStsNullPointer);
    EXPECT_EQ(oruiCanny_16s8u_C1R(x, 16, nullptr, 16, nullptr, 8, roi, 1, 2, b), oruStsNullPointer);
    EXPECT_EQ(oruiCanny_16s8u_C1R(x, 16, y, 16, d, 8, roi, 1, 2, nullptr), oruStsNullPointer);
    EXPECT_EQ(oruiCanny_16s8u_C1R(x, 0, y, 16, d, 8, {0, 4}, 1, 2, b), oruStsStep);
    EXPECT_EQ(oruiCanny_16s8u_C1R(x, 16, y, -16, d, 8, roi, 1, 2, b), oruStsStep);
    EXPECT_EQ(oruiCanny_16s8u_C1R(x, 16, y, 16, d, 0, roi, 1, 2, b), oruStsStep);
    EXPECT_EQ(oruiCanny_16s8u_C1R(x, 15, y, 16, d, 8, {8, 0}, 1, 2, b), oruStsSize);
    EXPECT_EQ(oruiCanny_16s8u_C1R(x, 15, y, 16, d, 8, roi, -1, 2, b), oruStsNotEvenStep);
    EXPECT_EQ(oruiCanny_16s8u_C1R(x, 16, y, 17, d, 8, roi, 1, 2, b), oruStsNotEvenStep);
    EXPECT_EQ(oruiCanny_16s8u_C1R(x, 16, y, 16, d, 8, roi, -0.5f, 2, b), oruStsBadArg);
    EXPECT_EQ(oruiCanny_16s8u_C1R(x, 16, y, 16, d, 8, roi, 3, 2.9f, b), oruStsBadArg);
    EXPECT_EQ(oruiCanny_16s8u_C1R(x, 16, y, 16, d, 8, roi, NAN, 2, b), oruStsBadArg);
    EXPECT_EQ(oruiCanny_16s8u_C1R(x, 16, y, 16, d, 8, roi, 1, NAN, b), oruStsBadArg);
    EXPECT_EQ(dst.snapshot(), before);
    EXPECT_EQ(buffer, std::vector<uint8_t>(buffer.size(), 7));
    GuardedImage<Oru8u> odd(8, 4, 1, 1);  // equal thresholds and an odd output step are fine
    EXPECT_EQ(oruiCanny_16s8u_C1R(x, 16, y, 16, odd.data(), odd.step(), roi, 2, 2, b), oruStsOk);
}

// One-row images: vertical gradients meet only the zero frame along their
// direction, horizontal ones meet their row neighbours.
TEST(CannyValues, HandChecked) {
    auto row = [](std::vector<std::array<int, 2>> gradients, float low, float high) {
        Gradients g(static_cast<int>(gradients.size()), 1);
        for (size_t x = 0; x < gradients.size(); ++x) g.set(static_cast<int>(x), 0, gradients[x][0], gradients[x][1]);
        return g.detect(low, high);
    };
    EXPECT_EQ(row({{0, 21}}, 10.9f, 20.9f), Edges{255});  // thresholds act as 10 and 20
    EXPECT_EQ(row({{0, 20}, {0, 11}, {0, 15}}, 10.9f, 20.9f), (Edges{0, 0, 0}));  // no seed
    EXPECT_EQ(row({{0, 21}, {0, 11}, {0, 15}, {0, 0}, {0, 15}}, 10.9f, 20.9f), (Edges{255, 255, 255, 0, 0}));
    EXPECT_EQ(row({{0, 25}, {0, 10}}, 10.9f, 20.9f), (Edges{255, 0}));
    EXPECT_EQ(row({{0, -32768}}, 0, 32766.5f), Edges{255});  // |-32768| saturates to 32767
    EXPECT_EQ(row({{0, -32768}}, 0, 1e30f), Edges{0});
    EXPECT_EQ(row({{5, 0}, {50, 0}, {50, 0}}, 1, 2), (Edges{0, 0, 0}));  // a plateau suppresses itself
    EXPECT_EQ(row({{5, 0}, {50, 0}, {-49, 0}}, 1, 2), (Edges{0, 255, 0}));
    EXPECT_EQ(row({{1, 0}, {1, 0}, {0, 0}}, 0, 0), (Edges{0, 0, 0}));  // suppressed magnitude 1 is no edge
}

// The centre of a 3x3 image against a neighbour of equal magnitude: it is
// suppressed exactly when that neighbour lies along its direction.
TEST(CannyValues, FourDirections) {
    const int cases[][4] = {{-4096, 1696, 3, 5}, {4096, 1697, 0, 8}, {-100, -100, 0, 8}, {4096, -9888, 2, 6},
                            {-100, 100, 2, 6},   {4096, 9889, 1, 7}, {0, -500, 1, 7}};
    for (const auto& c : cases)
        for (int k = 0; k < 9; ++k) {
            if (k == 4) continue;
            Gradients g(3, 3);
            g.set(1, 1, c[0], c[1]);
            g.set(k % 3, k / 3, 0, std::min(32767, abs16(c[0]) + abs16(c[1])));
            EXPECT_EQ(g.detect(10, 20)[4], k == c[2] || k == c[3] ? 0 : 255) << c[0] << "," << c[1] << " at " << k;
        }
}

TEST(CannyValues, EdgesOnTheBorders) {
    Gradients g(6, 5);
    for (int x = 0; x < 6; ++x) g.set(x, 0, 0, 100);  // first row
    for (int y = 2; y < 5; ++y) g.set(5, y, 100, 0), g.set(0, y, -100, 0);  // last and first columns
    for (int x = 0; x < 3; ++x) g.set(x, 4, 0, -150);  // last row
    const Edges expected = {255, 255, 255, 255, 255, 255, 0, 0, 0, 0, 0, 0, 255, 0, 0, 0, 0, 255,
                            255, 0, 0, 0, 0, 255, 255, 255, 255, 0, 0, 255};
    expect_same_on_every_path([&] {
        EXPECT_EQ(g.detect(50, 90), expected);
        return g.detect(50, 90);
    });
}

// Random derivatives: narrow ranges make ties and plateaus common, the full
// range reaches the saturation; widths 1..70 cross every vector width. With
// padded layouts the y derivative is passed with the tight step, so the
// magnitude pass, which exchanges the steps, reads other rows than the
// direction tests.
TEST(CannyValues, MatchesTheFourPassesOnEveryPath) {
    const int ranges[] = {6, 60, 32768};
    for (int width = 1; width <= 70; ++width)
        for (int height = 2; height <= 9; height += (width % 4) + 1)
            for (const Layout& l : layouts_for(2)) {
                const int range = ranges[(width + height) % 3];
                Gradients g(width, height, l);
                // The magnitude pass reads each image with the other's step.
                g.dy_step -= l.pad_bytes;
                g.dx.expose_padding();
                g.dy.expose_padding();
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

// A tiling of strong, densely connected edges: a stack marking cells when
// popped would outgrow the queried buffer; cells marked when pushed never
// do, and when the stack is cut short anyway, sweeps give the same edges.
TEST(CannyStack, AdversarialInputAndShortStacks) {
    const int tile[16][2] = {{200, -200}, {0, 850}, {200, 200}, {0, 850},   {0, 650},  {300, -300},
                             {950, 0},    {0, 0},   {150, 150}, {0, 750},   {350, -350}, {0, 750},
                             {1000, 0},   {0, 0},   {500, -500}, {250, -250}};
    const int w = 240, h = 240;
    Gradients g(w, h), r(61, 47);  // r: random, with weak cells to promote
    for (int i = 0; i < w * h; ++i) {
        const int* t = tile[(i / w % 4) * 4 + i % 4];
        g.set(i % w, i / w, t[0], t[1]);
    }
    size_t peak = 0;
    const Edges expected = g.model(100, 200, &peak);
    EXPECT_GT(static_cast<long long>(peak) * 4, 12LL * (w + 2) * (h + 2) - (2 * ((w + 4) & ~3) + 2) * (h + 2LL));
    expect_same_on_every_path([&] {
        EXPECT_EQ(g.detect(100, 200), expected);
        return g.detect(100, 200);
    });

    r.dx.fill_random(1, -100, 100);
    r.dy.fill_random(2, -100, 100);
    const Edges full = r.model(20, 150);
    for (size_t capacity : {0, 1, 9, 61 * 47}) {
        std::vector<uint8_t> buffer(12 * 63 * 49);
        orucv::a6::CannyScratch s = orucv::a6::canny_scratch(buffer.data(), buffer.size(), 61, 47);
        s.stack.capacity = capacity;
        Edges e(61 * 47);
        EXPECT_EQ(orucv::a6::a6_orcvCanny_16s8u_C1R(r.dx.data(), r.dx.step(), r.dy.data(), r.dy.step(), e.data(), 61,
                                                    61, 47, 20, 150, s),
                  capacity < 61 * 47);  // true: the stack ran short and sweeps finished
        EXPECT_EQ(e, full) << capacity;
    }
}

// Output rows closer than a row width overlap: each byte keeps the last of
// the row-by-row writes, first the columns of whole groups of 8 in every
// row, then the remaining columns in every row.
TEST(CannyValues, OverlappingOutputRows) {
    for (int w : {13, 21, 40})
        for (int step : {1, 5, w - 1}) {
            Gradients g(w, 6);
            g.dx.fill_random(w + step, -60, 60);
            g.dy.fill_random(w * step, -60, 60);
            const Edges edges = g.model(12, 40);
            const int whole = w & ~7;
            Edges expected(5 * step + w, 0);
            for (int part = 0; part < 2; ++part)
                for (int y = 0; y < 6; ++y)
                    for (int x = part ? whole : 0; x < (part ? w : whole); ++x)
                        expected[y * step + x] = edges[y * w + x];
            int size = 0;
            ASSERT_EQ(oruiCannyGetSize({w, 6}, &size), oruStsOk);
            std::vector<uint8_t> buffer(size);
            expect_same_on_every_path([&] {
                Edges out(expected.size(), 7);
                EXPECT_EQ(oruiCanny_16s8u_C1R(g.dx.data(), g.dx.step(), g.dy.data(), g.dy.step(), out.data(), step,
                                              {w, 6}, 12, 40, buffer.data()),
                          oruStsOk);
                EXPECT_EQ(out, expected) << w << " step " << step;
                return out;
            });
        }
}
