// Flood fills, fixed range and gradient: check orders, regions and records
// against breadth-first references, ramps and tolerance limits, tiny and
// adversarial images with exactly the queried buffer, every path against
// the scalar twin.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <deque>
#include <limits>
#include <memory>
#include <vector>

#include "a6/floodfill.h"
#include "orucv.h"
#include "support/image.h"
#include "support/simd.h"

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
#define POISON(p, n) ASAN_POISON_MEMORY_REGION(p, n)
#define UNPOISON(p, n) ASAN_UNPOISON_MEMORY_REGION(p, n)
#else
#define POISON(p, n) ((void)(p), (void)(n))
#define UNPOISON(p, n) ((void)(p), (void)(n))
#endif

using namespace orutest;

namespace {

const float kNaN = std::numeric_limits<float>::quiet_NaN();
const float kInf = std::numeric_limits<float>::infinity();

// Exactly the queried work buffer, misaligned by `offset`, followed by guard
// bytes (poisoned under AddressSanitizer, so reads past the end fail too).
class WorkBuffer {
public:
    WorkBuffer(OruSize roi, bool grad, int offset = 0) {
        int bytes = -1;
        EXPECT_EQ((grad ? oruiFloodFillGetSize_Grad : oruiFloodFillGetSize)(roi, &bytes), oruStsOk);
        size_ = static_cast<size_t>(bytes);
        storage_.assign(offset + size_ + kGuard, kGuardByte);
        begin_ = storage_.data() + offset;
        POISON(begin_ + size_, kGuard);
    }
    ~WorkBuffer() { UNPOISON(begin_ + size_, kGuard); }
    Oru8u* data() { return begin_; }
    bool guards_intact() {
        UNPOISON(begin_ + size_, kGuard);
        bool ok = true;
        for (size_t i = 0; i < kGuard; ++i) ok = ok && begin_[size_ + i] == kGuardByte;
        POISON(begin_ + size_, kGuard);
        return ok;
    }

private:
    static constexpr size_t kGuard = 64;
    std::vector<uint8_t> storage_;
    uint8_t* begin_;
    size_t size_;
};

// A plain row-major image for the references.
template <class T>
struct Plain {
    int w, h;
    std::vector<T> v;
    T& at(int x, int y) { return v[static_cast<size_t>(y) * w + x]; }
};
template <class T>
Plain<T> plain(const GuardedImage<T>& img) {
    Plain<T> p{img.width(), img.height(), {}};
    for (int y = 0; y < p.h; ++y)
        for (int x = 0; x < p.w; ++x) p.v.push_back(img.at(x, y));
    return p;
}

bool same(Oru8u a, Oru8u b) { return a == b; }
bool same(Oru32f a, Oru32f b) { return a == b || (std::isnan(a) && std::isnan(b)); }
bool near(Oru8u n, Oru8u c, int lo, int hi) { return c - lo <= n && n <= c + hi; }
bool near(Oru32f n, Oru32f c, float lo, float hi) {
    const float d = (n + (lo - hi) * 0.5f) - c;
    return !(std::fabs(d) > (lo + hi) * 0.5f) && std::isnan(n) == std::isnan(c);
}

struct Expected {
    OruStatus status;
    OruConnectedComp region;
};

// Breadth-first reference: fixed fills take neighbours equal to the seed,
// gradient fills neighbours in range of the region pixel they are reached
// from. Fills `img` and returns the record.
template <class T, class Tol>
OruConnectedComp reference(Plain<T>& img, OruPoint seed, bool eight, bool grad, T fill, Tol lo, Tol hi) {
    std::vector<char> in(img.v.size(), 0);
    const T seed_value = img.at(seed.x, seed.y);
    std::deque<OruPoint> queue{seed};
    in[static_cast<size_t>(seed.y) * img.w + seed.x] = 1;
    int x0 = seed.x, x1 = seed.x, y0 = seed.y, y1 = seed.y;
    double area = 0;
    while (!queue.empty()) {
        const OruPoint p = queue.front();
        queue.pop_front();
        ++area;
        x0 = std::min(x0, p.x), x1 = std::max(x1, p.x), y0 = std::min(y0, p.y), y1 = std::max(y1, p.y);
        for (int dy = -1; dy <= 1; ++dy)
            for (int dx = -1; dx <= 1; ++dx) {
                const int x = p.x + dx, y = p.y + dy;
                if ((!dx && !dy) || (!eight && dx && dy) || x < 0 || y < 0 || x >= img.w || y >= img.h) continue;
                char& seen = in[static_cast<size_t>(y) * img.w + x];
                const bool joins = grad ? near(img.at(x, y), img.at(p.x, p.y), lo, hi) : same(img.at(x, y), seed_value);
                if (!seen && joins) seen = 1, queue.push_back({x, y});
            }
    }
    for (size_t i = 0; i < in.size(); ++i)
        if (in[i]) img.v[i] = fill;
    return {area, static_cast<double>(fill), {x0, y0, x1 - x0 + 1, y1 - y0 + 1}};
}

// The eight fill functions behind one signature; fixed fills ignore lo, hi.
template <class T>
using Tol = typename std::conditional<sizeof(T) == 1, int, float>::type;

template <class T>
OruStatus run_fill(bool grad, bool eight, T* p, int step, OruSize roi, OruPoint seed, Tol<T> v, Tol<T> lo,
                   Tol<T> hi, OruConnectedComp* r, Oru8u* buf) {
    if constexpr (sizeof(T) == 1) {
        if (grad)
            return (eight ? oruiFloodFill_Grad8Con_8u_C1IR : oruiFloodFill_Grad4Con_8u_C1IR)(p, step, roi, seed, v, lo,
                                                                                           hi, r, buf);
        return (eight ? oruiFloodFill_8Con_8u_C1IR : oruiFloodFill_4Con_8u_C1IR)(p, step, roi, seed, v, r, buf);
    } else {
        if (grad)
            return (eight ? oruiFloodFill_Grad8Con_32f_C1IR : oruiFloodFill_Grad4Con_32f_C1IR)(p, step, roi, seed, v,
                                                                                             lo, hi, r, buf);
        return (eight ? oruiFloodFill_8Con_32f_C1IR : oruiFloodFill_4Con_32f_C1IR)(p, step, roi, seed, v, r, buf);
    }
}

void expect_region(const OruConnectedComp& a, const OruConnectedComp& b) {
    EXPECT_EQ(a.area, b.area);
    EXPECT_TRUE(same(static_cast<float>(a.value), static_cast<float>(b.value)));
    EXPECT_EQ(a.rect.x, b.rect.x);
    EXPECT_EQ(a.rect.y, b.rect.y);
    EXPECT_EQ(a.rect.width, b.rect.width);
    EXPECT_EQ(a.rect.height, b.rect.height);
}

// Fills a copy of `src` on every path with exactly the queried buffer and
// compares image, record, guards with the reference.
template <class T>
void check_fill(const GuardedImage<T>& src, OruPoint seed, bool eight, bool grad, Tol<T> fill, Tol<T> lo = 0,
                Tol<T> hi = 0, int buffer_offset = 0) {
    const OruSize roi{src.width(), src.height()};
    Plain<T> want = plain(src);
    const OruConnectedComp want_region = reference<T, Tol<T>>(want, seed, eight, grad, static_cast<T>(fill), lo, hi);
    expect_same_on_every_path([&] {
        GuardedImage<T> img(src);
        WorkBuffer buf(roi, grad, buffer_offset);
        OruConnectedComp region{};
        EXPECT_EQ(run_fill<T>(grad, eight, img.data(), img.step(), roi, seed, fill, lo, hi, &region, buf.data()),
                  oruStsOk);
        EXPECT_TRUE(img.guards_intact());
        EXPECT_TRUE(buf.guards_intact());
        const std::vector<T> got = plain(img).v;
        EXPECT_EQ(std::memcmp(got.data(), want.v.data(), got.size() * sizeof(T)), 0)
            << "seed " << seed.x << "," << seed.y << (eight ? " 8" : " 4") << (grad ? " grad" : " fixed");
        expect_region(region, want_region);
        return img.region_bytes();
    });
}

template <class T>
GuardedImage<T> random_image(int w, int h, uint64_t seed, int levels, int pad = 0, int misalign = 0) {
    GuardedImage<T> img(w, h, 1, pad, misalign);
    Rng rng(seed);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) img.at(x, y) = static_cast<T>(rng.uniform(0, levels - 1));
    return img;
}

}  // namespace

TEST(FloodFillSize, ValuesAndChecks) {
    int n = -1;
    EXPECT_EQ(oruiFloodFillGetSize({0, 5}, nullptr), oruStsSize);  // size before pointer
    EXPECT_EQ(oruiFloodFillGetSize_Grad({5, -1}, &n), oruStsSize);
    EXPECT_EQ(oruiFloodFillGetSize({5, 5}, nullptr), oruStsNullPointer);
    EXPECT_EQ(oruiFloodFillGetSize_Grad({5, 5}, nullptr), oruStsNullPointer);
    EXPECT_EQ(n, -1);
    const struct {
        OruSize roi;
        int fixed, grad;
    } cases[] = {{{1, 1}, 6, 15},
                 {{1, 3}, 18, 33},
                 {{640, 480}, 1843200, 1843200 + 642 * 482},
                 {{32768, 16384}, 0, static_cast<int>(32770u * 16386u)},  // 6 bytes per pixel wraps to 0
                 {{46341, 46341}, static_cast<int>((46341u * (24u * 46341u)) >> 2),
                  static_cast<int>(46343u * 46343u + ((46341u * (24u * 46341u)) >> 2))}};
    for (const auto& c : cases) {
        EXPECT_EQ(oruiFloodFillGetSize(c.roi, &n), oruStsOk);
        EXPECT_EQ(n, c.fixed);
        EXPECT_EQ(oruiFloodFillGetSize_Grad(c.roi, &n), oruStsOk);
        EXPECT_EQ(n, c.grad);
    }
}

// Every fill: pointers, step, size, float step, seed, 8u value, tolerances;
// a failed call leaves image, record and buffer as they were.
template <class T>
void check_order(bool grad, bool eight) {
    GuardedImage<T> img(8, 4);
    img.fill(T(3));
    WorkBuffer buf({8, 4}, grad);
    OruConnectedComp region;
    std::memset(&region, 0x5A, sizeof region);
    const auto before = img.snapshot();
    const int s = img.step();
    auto call = [&](T* p, int step, OruSize roi, OruPoint seed, Tol<T> v, Tol<T> lo, Tol<T> hi,
                    OruConnectedComp* r, Oru8u* b) { return run_fill<T>(grad, eight, p, step, roi, seed, v, lo, hi, r, b); };
    T* p = img.data();
    Oru8u* b = buf.data();
    const OruSize roi{8, 4};
    const bool f = sizeof(T) == 4;
    EXPECT_EQ(call(nullptr, s, {-1, -1}, {9, 9}, 300, -1, -1, &region, b), oruStsNullPointer);
    EXPECT_EQ(call(p, s, roi, {0, 0}, 1, 0, 0, nullptr, b), oruStsNullPointer);
    EXPECT_EQ(call(p, s, roi, {0, 0}, 1, 0, 0, &region, nullptr), oruStsNullPointer);
    EXPECT_EQ(call(p, 0, {0, 4}, {9, 9}, 300, 0, 0, &region, b), oruStsStep);
    EXPECT_EQ(call(p, -s, roi, {0, 0}, 1, 0, 0, &region, b), oruStsStep);
    EXPECT_EQ(call(p, s + 2, {8, 0}, {9, 9}, 300, -1, 0, &region, b), oruStsSize);
    EXPECT_EQ(call(p, s + 2, roi, {9, 9}, 300, -1, 0, &region, b), f ? oruStsNotEvenStep : oruStsOutOfRange);
    for (OruPoint out : {OruPoint{-1, 0}, OruPoint{8, 0}, OruPoint{0, -1}, OruPoint{0, 4}})
        EXPECT_EQ(call(p, s, roi, out, 300, -1, 0, &region, b), oruStsOutOfRange);
    if (!f) {
        EXPECT_EQ(call(p, s, roi, {7, 3}, 256, -1, 0, &region, b), oruStsBadArg);
        EXPECT_EQ(call(p, s, roi, {7, 3}, -1, -1, 0, &region, b), oruStsBadArg);
    }
    if (grad) {
        EXPECT_EQ(call(p, s, roi, {7, 3}, 1, -1, 0, &region, b), oruStsOutOfRange);
        EXPECT_EQ(call(p, s, roi, {7, 3}, 1, 0, -1, &region, b), oruStsOutOfRange);
        if (f) {
            EXPECT_EQ(call(p, s, roi, {7, 3}, 1, 0, kNaN, &region, b), oruStsOutOfRange);
            EXPECT_EQ(call(p, s, roi, {7, 3}, 1, -kNaN, 0, &region, b), oruStsOutOfRange);
        } else {
            EXPECT_EQ(call(p, s, roi, {7, 3}, 1, 200, 56, &region, b), oruStsOutOfRange);
        }
    }
    EXPECT_EQ(img.snapshot(), before);
    EXPECT_TRUE(buf.guards_intact());
    OruConnectedComp untouched;
    std::memset(&untouched, 0x5A, sizeof untouched);
    EXPECT_EQ(std::memcmp(&region, &untouched, sizeof region), 0);
    // The limits themselves pass.
    EXPECT_EQ(call(p, s, roi, {7, 3}, f ? 1 : 255, grad ? 200 : 0, grad ? 55 : 0, &region, b), oruStsOk);
    if (f && grad) {
        EXPECT_EQ(call(p, s, roi, {7, 3}, 1, -0.0f, kInf, &region, b), oruStsOk);
    }
}

TEST(FloodFillChecks, OrderOfChecks) {
    for (bool grad : {false, true})
        for (bool eight : {false, true}) {
            check_order<Oru8u>(grad, eight);
            check_order<Oru32f>(grad, eight);
        }
}

// Fixed fills return at once when the seed already holds the new value;
// gradient fills fill anyway.
TEST(FloodFillValues, SeedAlreadyHoldsNewValue) {
    for (bool eight : {false, true}) {
        GuardedImage<Oru32f> img(6, 3);
        img.fill(-0.0f);
        WorkBuffer buf({6, 3}, false);
        OruConnectedComp region;
        std::memset(&region, 0x5A, sizeof region);
        const OruConnectedComp untouched = region;
        const auto before = img.snapshot();
        EXPECT_EQ(run_fill<Oru32f>(false, eight, img.data(), img.step(), {6, 3}, {2, 1}, 0.0f, 0, 0, &region, buf.data()),
                  oruStsOk);
        img.at(4, 2) = kNaN;
        const auto with_nan = img.snapshot();
        EXPECT_EQ(run_fill<Oru32f>(false, eight, img.data(), img.step(), {6, 3}, {4, 2}, -kNaN, 0, 0, &region, buf.data()),
                  oruStsOk);
        EXPECT_EQ(img.snapshot(), with_nan);
        img.at(4, 2) = -0.0f;
        EXPECT_EQ(img.snapshot(), before);
        EXPECT_EQ(std::memcmp(&region, &untouched, sizeof region), 0);

        GuardedImage<Oru8u> g(6, 3);
        g.fill(9);
        WorkBuffer gbuf({6, 3}, true);
        EXPECT_EQ(run_fill<Oru8u>(true, eight, g.data(), g.step(), {6, 3}, {2, 1}, 9, 0, 0, &region, gbuf.data()),
                  oruStsOk);
        expect_region(region, {18.0, 9.0, {0, 0, 6, 3}});
    }
}

TEST(FloodFillRegions, UniformAndDiagonal) {
    for (bool grad : {false, true})
        for (bool eight : {false, true}) {
            GuardedImage<Oru8u> img(13, 7);
            img.fill(4);
            check_fill(img, {12, 6}, eight, grad, 200);
            check_fill(img, {0, 0}, eight, grad, 200);
            for (int i = 0; i < 7; ++i) img.at(i + 3, i) = 100;  // a diagonal in a different value
            check_fill(img, {3, 0}, eight, grad, 7, 0, 0);
            GuardedImage<Oru8u> copy(img);
            WorkBuffer buf({13, 7}, grad);
            OruConnectedComp r;
            run_fill<Oru8u>(grad, eight, copy.data(), copy.step(), {13, 7}, {6, 3}, 7, 0, 0, &r, buf.data());
            EXPECT_EQ(r.area, eight ? 7.0 : 1.0);
        }
}

// Random images of few values against the reference: every function, both
// connectivities, widths around the block sizes, padded and misaligned rows.
TEST(FloodFillRegions, RandomAgainstReference) {
    for (int w : {1, 2, 5, 15, 16, 17, 31, 33, 47, 64, 70})
        for (int h : {1, 2, 9})
            for (const Layout& l : layouts_for(1)) {
                const uint64_t s = w * 131 + h * 7 + l.pad_bytes;
                const GuardedImage<Oru8u> a = random_image<Oru8u>(w, h, s, w > 16 ? 2 : 3, l.pad_bytes, l.misalign_bytes);
                const GuardedImage<Oru32f> f = random_image<Oru32f>(w, h, s + 1, 2, 4 * l.pad_bytes, 4 * l.misalign_bytes);
                const OruPoint seed{static_cast<int>(s % w), static_cast<int>(s / 3 % h)};
                for (bool eight : {false, true}) {
                    check_fill(a, seed, eight, false, 9, 0, 0, l.misalign_bytes);
                    check_fill(f, seed, eight, false, 9.0f);
                    check_fill(a, seed, eight, true, 5, 0, 1, 3);
                    check_fill(f, seed, eight, true, 5.0f, 0.5f, 0.0f);
                }
            }
}

// Gradients: smooth random surfaces with several tolerances.
TEST(FloodFillGradient, SmoothSurfaces) {
    for (int trial = 0; trial < 12; ++trial) {
        const int w = 20 + trial * 7, h = 11 + trial;
        GuardedImage<Oru8u> a(w, h);
        GuardedImage<Oru32f> f(w, h);
        Rng rng(trial);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                const int v = (x * (trial + 3) + y * 5) / 4 + rng.uniform(0, 3);
                a.at(x, y) = static_cast<Oru8u>(v & 255);
                f.at(x, y) = static_cast<float>(v) * 0.37f;
            }
        const OruPoint seed{trial * 5 % w, trial % h};
        for (bool eight : {false, true}) {
            check_fill(a, seed, eight, true, 1, trial % 4, 3 - trial % 4);
            check_fill(f, seed, eight, true, -1.0f, 0.37f * (trial % 5), 0.74f);
        }
    }
}

TEST(FloodFillGradient, RampsAndTolerances) {
    GuardedImage<Oru8u> ramp(256, 3);
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 256; ++x) ramp.at(x, y) = static_cast<Oru8u>(x);
    for (bool eight : {false, true}) {
        for (int sx : {0, 77, 255}) check_fill(ramp, {sx, 1}, eight, true, 0, 1, 1);
        check_fill(ramp, {77, 1}, eight, true, 0, 0, 0);    // only the seed's column
        check_fill(ramp, {77, 1}, eight, true, 0, 0, 1);    // rising steps only: rightwards
        check_fill(ramp, {77, 1}, eight, true, 0, 1, 0);    // leftwards
        check_fill(ramp, {77, 1}, eight, true, 0, 200, 55);  // everything
    }
    GuardedImage<Oru32f> f(40, 2);
    for (int x = 0; x < 40; ++x) f.at(x, 0) = f.at(x, 1) = 0.1f * x;
    f.at(20, 0) = kNaN, f.at(21, 0) = kNaN, f.at(30, 1) = kInf, f.at(31, 1) = kInf, f.at(31, 0) = -kInf;
    for (bool eight : {false, true}) {
        check_fill(f, {0, 0}, eight, true, 7.0f, 0.1f, 0.1f);
        check_fill(f, {20, 0}, eight, true, 7.0f, 1.0f, 1.0f);  // NaNs reach NaNs only
        check_fill(f, {30, 1}, eight, true, 7.0f, 0.0f, 0.0f);  // inf - inf does not fail
        check_fill(f, {5, 1}, eight, true, 7.0f, kInf, kInf);
    }
}

TEST(FloodFillValues, FloatClasses) {
    GuardedImage<Oru32f> f(9, 3);
    f.fill(0.0f);
    f.at(4, 1) = -0.0f, f.at(2, 0) = kNaN, f.at(2, 1) = -kNaN, f.at(7, 2) = kNaN;
    for (bool eight : {false, true}) {
        check_fill(f, {0, 0}, eight, false, 1.0f);   // -0 joins, NaNs do not
        check_fill(f, {2, 0}, eight, false, 1.0f);   // a NaN seed takes NaNs
        check_fill(f, {0, 0}, eight, false, kNaN);
    }
}

// Tiny images: one pixel, one row (row -1 must not be read: the image is an
// exact heap block), one column.
TEST(FloodFillRegions, TinyImages) {
    for (OruSize roi : {OruSize{1, 1}, OruSize{3, 1}, OruSize{1, 3}, OruSize{40, 1}, OruSize{1, 40}, OruSize{2, 2}})
        for (bool grad : {false, true})
            for (bool eight : {false, true}) {
                const size_t n = static_cast<size_t>(roi.width) * roi.height;
                std::unique_ptr<Oru8u[]> a(new Oru8u[n]);
                std::unique_ptr<Oru32f[]> f(new Oru32f[n]);
                for (size_t i = 0; i < n; ++i) a[i] = i % 7 == 3 ? 1 : 0, f[i] = a[i];
                const OruPoint seed{roi.width - 1, roi.height / 2};
                WorkBuffer ba(roi, grad, 1), bf(roi, grad, 2);
                OruConnectedComp ra, rf;
                EXPECT_EQ(run_fill<Oru8u>(grad, eight, a.get(), roi.width, roi, seed, 2, 0, 0, &ra, ba.data()), oruStsOk);
                EXPECT_EQ(run_fill<Oru32f>(grad, eight, f.get(), roi.width * 4, roi, seed, 2, 0, 0, &rf, bf.data()),
                          oruStsOk);
                EXPECT_TRUE(ba.guards_intact() && bf.guards_intact());
                expect_region(ra, {rf.area, 2.0, rf.rect});
                GuardedImage<Oru8u> g(roi.width, roi.height);
                for (size_t i = 0; i < n; ++i) g.at(static_cast<int>(i % roi.width), static_cast<int>(i / roi.width)) = i % 7 == 3;
                check_fill(g, seed, eight, grad, 2);
            }
}

// Inputs that need more segment records than the buffer holds: combs,
// checkerboards, spirals. The kernels must report that they fell back to
// the pending marks, and the result must still be the reference's.
template <class T>
GuardedImage<T> adversarial(int kind, int w, int h) {
    std::vector<char> on(static_cast<size_t>(w) * h, 0);
    auto at = [&](int x, int y) -> char& { return on[static_cast<size_t>(y) * w + x]; };
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            if (kind == 0) at(x, y) = y % 2 == 1 || x % 2 == 0;                             // comb
            if (kind == 1) at(x, y) = (x + y) % 2 == 0;                                     // checkerboard
            if (kind == 3) at(x, y) = (x % 4 != 1 || y == 0) && (x % 4 != 3 || y == h - 1);  // serpentine
        }
    if (kind == 2) {  // spiral corridor with one-pixel walls, carved two steps at a time
        const int dx[] = {1, 0, -1, 0}, dy[] = {0, 1, 0, -1};
        int x = 0, y = 0, d = 0, turns = 0;
        at(0, 0) = 1;
        while (turns < 2) {
            const int x2 = x + 2 * dx[d], y2 = y + 2 * dy[d];
            if (x2 >= 0 && y2 >= 0 && x2 < w && y2 < h && !at(x2, y2)) {
                at(x + dx[d], y + dy[d]) = 1, at(x2, y2) = 1, x = x2, y = y2, turns = 0;
            } else {
                d = (d + 1) % 4, ++turns;
            }
        }
    }
    GuardedImage<T> img(w, h);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) img.at(x, y) = static_cast<T>(at(x, y) ? 10 : 200);
    return img;
}

namespace {

// Runs a kernel directly with `bytes` of buffer (followed by guards) and
// checks the result against the reference (the fill value 5 is never
// the seed's, as the wrappers make sure); returns how often the pending
// marks had to be collected.
template <class T>
int run_kernel(const GuardedImage<T>& src, OruPoint seed, bool eight, bool grad, uint32_t bytes) {
    GuardedImage<T> img(src);
    const OruSize roi{img.width(), img.height()};
    std::vector<Oru8u> buf(bytes + 64, kGuardByte);
    const auto& k = orucv::a6::floodfill_kernels();
    orucv::a6::FillResult r;
    if (grad) {
        orucv::a6::GradJob<T, Tol<T>> job{img.data(), img.step(), roi.width, roi.height, seed.x, seed.y, T(5),
                                          0, 0, buf.data(), bytes, {}};
        if constexpr (sizeof(T) == 1) k.grad_8u[eight](job);
        else k.grad_32f[eight](job);
        r = job.result;
    } else {
        orucv::a6::FillJob<T> job{img.data(), img.step(), roi.width, roi.height, seed.x, seed.y, T(5),
                                  buf.data(), bytes, {}};
        if constexpr (sizeof(T) == 1) k.fill_8u[eight](job);
        else k.fill_32f[eight](job);
        r = job.result;
    }
    Plain<T> want = plain(src);
    const OruConnectedComp w = reference<T, Tol<T>>(want, seed, eight, grad, T(5), 0, 0);
    EXPECT_TRUE(plain(img).v == want.v);
    expect_region({static_cast<double>(r.area), 5.0, {r.min_x, r.min_y, r.max_x - r.min_x + 1, r.max_y - r.min_y + 1}},
                  w);
    for (size_t i = bytes; i < buf.size(); ++i) EXPECT_EQ(buf[i], kGuardByte);
    return r.collections;
}

template <class T>
int queried(const GuardedImage<T>& img, OruPoint seed, bool eight, bool grad) {
    int bytes = 0;
    (grad ? oruiFloodFillGetSize_Grad : oruiFloodFillGetSize)({img.width(), img.height()}, &bytes);
    return run_kernel(img, seed, eight, grad, static_cast<uint32_t>(bytes));
}

// Only the pending marks' room: the bitmap, or the gradient fill's mask.
template <class T>
int starved(const GuardedImage<T>& img, OruPoint seed, bool eight, bool grad) {
    const int w = img.width(), h = img.height();
    const uint32_t bytes = static_cast<uint32_t>(grad ? (w + 2) * (h + 2) : (w + 7) / 8 * h);
    return run_kernel(img, seed, eight, grad, bytes);
}

}  // namespace

TEST(FloodFillOverflow, AdversarialImages) {
    for (int kind = 0; kind < 4; ++kind)
        for (OruSize roi : {OruSize{3, 1}, OruSize{5, 3}, OruSize{64, 3}, OruSize{70, 41}, OruSize{301, 97}})
            for (bool grad : {false, true})
                for (bool eight : {false, true}) {
                    const GuardedImage<Oru8u> a = adversarial<Oru8u>(kind, roi.width, roi.height);
                    const GuardedImage<Oru32f> f = adversarial<Oru32f>(kind, roi.width, roi.height);
                    check_fill(a, {0, 0}, eight, grad, 1, 0, 0, 1);
                    check_fill(f, {0, 0}, eight, grad, 1.0f, 0.0f, 0.0f, 2);
                }
    // Wide, short combs need one record per tooth, more than the queried
    // buffer holds.
    for (bool grad : {false, true})
        for (bool eight : {false, true}) {
            EXPECT_GT(queried(adversarial<Oru8u>(0, 301, 3), {0, 1}, eight, grad), 0);
            EXPECT_GT(queried(adversarial<Oru32f>(0, 64, 3), {0, 0}, eight, grad), 0);
        }
}

// With no room for records beyond the fill's own few, the pending marks
// carry the fill; every path still finds the reference's region.
TEST(FloodFillOverflow, StarvedBuffer) {
    for (auto level : available_levels()) {
        ScopedSimdLevel scoped(level);
        for (bool grad : {false, true})
            for (bool eight : {false, true}) {
                EXPECT_GT(starved(adversarial<Oru8u>(0, 97, 41), {0, 0}, eight, grad), 0);
                EXPECT_GT(starved(adversarial<Oru32f>(0, 45, 40), {0, 0}, eight, grad), 0);
                for (int kind = 1; kind < 4; ++kind) {
                    starved(adversarial<Oru8u>(kind, 97, 41), {0, 0}, eight, grad);
                    starved(adversarial<Oru32f>(kind, 45, 40), {0, 0}, eight, grad);
                }
                for (int trial = 0; trial < 6; ++trial) {
                    const int w = 1 + trial * 13, h = 1 + trial * 9;
                    starved(random_image<Oru8u>(w, h, trial, 2), {w / 2, h / 2}, eight, grad);
                    starved(random_image<Oru32f>(w, h, trial + 9, 2), {0, h - 1}, eight, grad);
                }
            }
    }
}
