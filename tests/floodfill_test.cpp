// Flood fills, fixed range and gradient: check orders, regions and records
// against a breadth-first reference, ramps and tolerance limits, tiny and
// adversarial images with exactly the queried buffer, every path against
// the scalar twin. Images and buffers sit in fenced memory: guard bytes,
// poisoned under AddressSanitizer, so reads outside them fail there too.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <deque>
#include <limits>
#include <string>
#include <vector>

#include "a6/floodfill.h"
#include "floodfill_list.h"
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

// Bytes of which only the opened ranges may be touched.
class Fence {
public:
    explicit Fence(size_t bytes) : bytes_(bytes + 128, kGuardByte) {}
    ~Fence() { UNPOISON(bytes_.data(), bytes_.size()); }
    uint8_t* at(size_t offset) { return bytes_.data() + 64 + offset; }
    void open(size_t offset, size_t n) { open_.push_back({64 + offset, n}); }
    void close() {
        POISON(bytes_.data(), bytes_.size());
        for (auto r : open_) UNPOISON(bytes_.data() + r.first, r.second);
    }
    bool intact() {
        UNPOISON(bytes_.data(), bytes_.size());
        std::vector<char> open(bytes_.size(), 0);
        for (auto r : open_) std::memset(&open[r.first], 1, r.second);
        bool ok = true;
        for (size_t i = 0; i < bytes_.size(); ++i) ok = ok && (open[i] || bytes_[i] == kGuardByte);
        close();
        return ok;
    }

private:
    std::vector<uint8_t> bytes_;
    std::vector<std::pair<size_t, size_t>> open_;
};

// Exactly the queried work buffer, misaligned by `offset`.
struct WorkBuffer : Fence {
    WorkBuffer(OruSize roi, bool grad, int offset = 0) : Fence(query(roi, grad) + 8), offset_(offset) {
        open(offset, query(roi, grad));
        close();
    }
    static size_t query(OruSize roi, bool grad) {
        int bytes = -1;
        EXPECT_EQ((grad ? oruiFloodFillGetSize_Grad : oruiFloodFillGetSize)(roi, &bytes), oruStsOk);
        return static_cast<size_t>(bytes);
    }
    Oru8u* data() { return at(offset_); }
    int offset_;
};

// A row-major image; the references work on these.
template <class T>
struct Plain {
    int w, h;
    std::vector<T> v;
    T& at(int x, int y) { return v[static_cast<size_t>(y) * w + x]; }
};

// A copy of a plain image with padded rows and a misaligned first pixel.
template <class T>
struct FencedImage : Fence {
    FencedImage(const Plain<T>& src, Layout l = {8, 0})
        : Fence(static_cast<size_t>(src.w * sizeof(T) + l.pad_bytes) * src.h + l.misalign_bytes), w_(src.w),
          h_(src.h), step_(static_cast<int>(src.w * sizeof(T)) + l.pad_bytes), misalign_(l.misalign_bytes) {
        for (int y = 0; y < src.h; ++y) {
            std::memcpy(row(y), &src.v[static_cast<size_t>(y) * src.w], src.w * sizeof(T));
            open(misalign_ + static_cast<size_t>(step_) * y, src.w * sizeof(T));
        }
        close();
    }
    uint8_t* row(int y) { return at(misalign_ + static_cast<size_t>(step_) * y); }
    T* data() { return reinterpret_cast<T*>(row(0)); }
    std::vector<T> pixels() {
        std::vector<T> out(static_cast<size_t>(w_) * h_);
        for (int y = 0; y < h_; ++y) std::memcpy(&out[static_cast<size_t>(y) * w_], row(y), w_ * sizeof(T));
        return out;
    }
    int w_, h_, step_, misalign_;
};

template <class T>
using Tol = typename std::conditional<sizeof(T) == 1, int, float>::type;

bool same(Oru8u a, Oru8u b) { return a == b; }
bool same(Oru32f a, Oru32f b) { return a == b || (std::isnan(a) && std::isnan(b)); }
bool near(Oru8u n, Oru8u c, int lo, int hi) { return c - lo <= n && n <= c + hi; }
bool near(Oru32f n, Oru32f c, float lo, float hi) {
    const float d = (n + (lo - hi) * 0.5f) - c;
    return !(std::fabs(d) > (lo + hi) * 0.5f) && std::isnan(n) == std::isnan(c);
}

// Breadth-first reference: fixed fills take neighbours equal to the seed,
// gradient fills neighbours in range of the region pixel they are reached
// from. Fills `img` and returns the record.
template <class T>
OruConnectedComp reference(Plain<T>& img, OruPoint seed, bool eight, bool grad, T fill, Tol<T> lo, Tol<T> hi) {
    std::vector<char> in(img.v.size(), 0);
    const T seed_value = img.at(seed.x, seed.y);
    std::deque<OruPoint> queue{seed};
    in[static_cast<size_t>(seed.y) * img.w + seed.x] = 1;
    OruRect r{seed.x, seed.y, seed.x, seed.y};  // corners while searching
    double area = 0;
    for (; !queue.empty(); queue.pop_front(), ++area) {
        const OruPoint p = queue.front();
        r = {std::min(r.x, p.x), std::min(r.y, p.y), std::max(r.width, p.x), std::max(r.height, p.y)};
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
    return {area, static_cast<double>(fill), {r.x, r.y, r.width - r.x + 1, r.height - r.y + 1}};
}

// One call of any fill function of the list; fixed fills ignore lo, hi.
template <class T>
struct FillCall {
    T* image;
    int step;
    OruSize roi;
    OruPoint seed;
    Tol<T> value, lo, hi;
    OruConnectedComp* region;
    Oru8u* buffer;
};

template <class T, auto F>
OruStatus call_Fixed(const FillCall<T>& c) {
    return F(c.image, c.step, c.roi, c.seed, c.value, c.region, c.buffer);
}
template <class T, auto F>
OruStatus call_Grad(const FillCall<T>& c) {
    return F(c.image, c.step, c.roi, c.seed, c.value, c.lo, c.hi, c.region, c.buffer);
}

template <class T>
struct Fill {
    const char* name;
    bool grad, eight;
    OruStatus (*call)(const FillCall<T>&);
};
template <class T>
struct Fills {
    static const std::vector<Fill<T>> all;
};
template <class Pixel, class T, bool kGrad, int kNeighbours, auto F>
void add_fill(std::vector<Fill<Pixel>>& fills, const char* name) {
    if constexpr (std::is_same<T, Pixel>::value) {
        if constexpr (kGrad) fills.push_back({name, true, kNeighbours == 8, call_Grad<Pixel, F>});
        else fills.push_back({name, false, kNeighbours == 8, call_Fixed<Pixel, F>});
    }
}
#define FILL_FixedSize(name, T, neighbours)
#define FILL_GradSize(name, T, neighbours)
#define FILL_Fixed(name, T, neighbours) add_fill<Pixel, T, false, neighbours, name>(fills, #name);
#define FILL_Grad(name, T, neighbours) add_fill<Pixel, T, true, neighbours, name>(fills, #name);
#define FILL(name, shape, T, neighbours) FILL_##shape(name, T, neighbours)

// The fills of the list on one pixel type.
template <class Pixel>
std::vector<Fill<Pixel>> fills_of() {
    std::vector<Fill<Pixel>> fills;
    ORUCV_FLOODFILL_FUNCTIONS(FILL)
    return fills;
}
template <class T>
const std::vector<Fill<T>> Fills<T>::all = fills_of<T>();

// The fill of the list with that admission and connectivity.
template <class T>
OruStatus run_fill(bool grad, bool eight, T* p, int step, OruSize roi, OruPoint seed, Tol<T> v, Tol<T> lo,
                   Tol<T> hi, OruConnectedComp* r, Oru8u* buf) {
    for (const Fill<T>& f : Fills<T>::all)
        if (f.grad == grad && f.eight == eight) return f.call({p, step, roi, seed, v, lo, hi, r, buf});
    ADD_FAILURE() << "no such fill in the list";
    return oruStsError;
}

void expect_region(const OruConnectedComp& a, const OruConnectedComp& b) {
    EXPECT_EQ(a.area, b.area);
    EXPECT_TRUE(same(static_cast<float>(a.value), static_cast<float>(b.value)));
    EXPECT_EQ(std::memcmp(&a.rect, &b.rect, sizeof a.rect), 0)
        << a.rect.x << "," << a.rect.y << " " << a.rect.width << "x" << a.rect.height;
}

// Fills a copy of `src` on every path with exactly the queried buffer and
// compares image, record and fences with the reference.
template <class T>
void check_fill(const Plain<T>& src, OruPoint seed, bool eight, bool grad, Tol<T> fill, Tol<T> lo = 0,
                Tol<T> hi = 0, Layout layout = {8, 0}) {
    const OruSize roi{src.w, src.h};
    Plain<T> want = src;
    const OruConnectedComp want_region = reference(want, seed, eight, grad, static_cast<T>(fill), lo, hi);
    expect_same_on_every_path([&] {
        FencedImage<T> img(src, layout);
        WorkBuffer buf(roi, grad, layout.misalign_bytes);
        OruConnectedComp region{};
        EXPECT_EQ(run_fill<T>(grad, eight, img.data(), img.step_, roi, seed, fill, lo, hi, &region, buf.data()),
                  oruStsOk);
        EXPECT_TRUE(img.intact() && buf.intact());
        const std::vector<T> got = img.pixels();
        EXPECT_EQ(std::memcmp(got.data(), want.v.data(), got.size() * sizeof(T)), 0)
            << src.w << "x" << src.h << " seed " << seed.x << "," << seed.y << (eight ? " 8" : " 4")
            << (grad ? " grad" : " fixed");
        expect_region(region, want_region);
        return std::vector<uint8_t>(reinterpret_cast<const uint8_t*>(got.data()),
                                    reinterpret_cast<const uint8_t*>(got.data() + got.size()));
    });
}

template <class T>
Plain<T> random_image(int w, int h, uint64_t seed, int levels) {
    Plain<T> img{w, h, std::vector<T>(static_cast<size_t>(w) * h)};
    Rng rng(seed);
    for (T& p : img.v) p = static_cast<T>(rng.uniform(0, levels - 1));
    return img;
}

// Images that keep many segments pending: combs (kind 0), checkerboards,
// a spiral corridor with one-pixel walls, a serpentine.
template <class T>
Plain<T> adversarial(int kind, int w, int h) {
    Plain<T> img{w, h, std::vector<T>(static_cast<size_t>(w) * h, T(200))};
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const bool on = kind == 0   ? y % 2 == 1 || x % 2 == 0
                            : kind == 1 ? (x + y) % 2 == 0
                                        : kind == 3 && (x % 4 != 1 || y == 0) && (x % 4 != 3 || y == h - 1);
            if (on) img.at(x, y) = T(10);
        }
    if (kind == 2) {  // carved two steps at a time, turning clockwise
        const int dx[] = {1, 0, -1, 0}, dy[] = {0, 1, 0, -1};
        int x = 0, y = 0, d = 0, turns = 0;
        for (img.at(0, 0) = T(10); turns < 2;) {
            const int x2 = x + 2 * dx[d], y2 = y + 2 * dy[d];
            if (x2 >= 0 && y2 >= 0 && x2 < w && y2 < h && img.at(x2, y2) != T(10))
                img.at(x + dx[d], y + dy[d]) = img.at(x2, y2) = T(10), x = x2, y = y2, turns = 0;
            else
                d = (d + 1) % 4, ++turns;
        }
    }
    return img;
}

}  // namespace

// The list makes both the wrappers and this test's table, so its shapes and
// connectivities are checked against the names.
template <class T>
void check_fill_columns() {
    EXPECT_EQ(Fills<T>::all.size(), 4u);
    for (const Fill<T>& f : Fills<T>::all) {
        const std::string name = f.name;
        EXPECT_EQ(f.grad, name.find("_Grad") != std::string::npos) << name;
        EXPECT_EQ(f.eight, name.find("8Con_") != std::string::npos) << name;
    }
}
TEST(FloodFillList, ColumnsFollowTheNames) {
    check_fill_columns<Oru8u>();
    check_fill_columns<Oru32f>();
}

TEST(FloodFillSize, ValuesAndChecks) {
    int n = -1;
    EXPECT_EQ(oruiFloodFillGetSize({0, 5}, nullptr), oruStsSize);  // size before pointer
    EXPECT_EQ(oruiFloodFillGetSize_Grad({5, -1}, &n), oruStsSize);
    EXPECT_EQ(oruiFloodFillGetSize({5, 5}, nullptr), oruStsNullPointer);
    EXPECT_EQ(oruiFloodFillGetSize_Grad({5, 5}, nullptr), oruStsNullPointer);
    EXPECT_EQ(n, -1);
    const unsigned big = (46341u * (24u * 46341u)) >> 2;
    const struct {
        OruSize roi;
        unsigned fixed, grad;
    } cases[] = {{{1, 1}, 6, 15},
                 {{1, 3}, 18, 33},
                 {{640, 480}, 1843200, 1843200 + 642 * 482},
                 {{32768, 16384}, 0, 32770u * 16386u},  // 6 bytes per pixel wraps to 0
                 {{46341, 46341}, big, 46343u * 46343u + big}};
    for (const auto& c : cases) {
        EXPECT_EQ(oruiFloodFillGetSize(c.roi, &n), oruStsOk);
        EXPECT_EQ(static_cast<unsigned>(n), c.fixed);
        EXPECT_EQ(oruiFloodFillGetSize_Grad(c.roi, &n), oruStsOk);
        EXPECT_EQ(static_cast<unsigned>(n), c.grad);
    }
}

// Every fill: pointers, step, size, float step, seed, 8u value, tolerances;
// a failed call leaves image, record and buffer as they were.
template <class T>
void check_order(bool grad, bool eight) {
    FencedImage<T> img(Plain<T>{8, 4, std::vector<T>(32, T(3))});
    WorkBuffer buf({8, 4}, grad);
    OruConnectedComp region, untouched;
    std::memset(&region, 0x5A, sizeof region);
    std::memcpy(&untouched, &region, sizeof region);
    const int s = img.step_;
    T* p = img.data();
    Oru8u* b = buf.data();
    const bool f = sizeof(T) == 4;
    auto call = [&](T* pp, int step, OruSize roi, OruPoint seed, Tol<T> v, Tol<T> lo, Tol<T> hi,
                    OruConnectedComp* r = nullptr, Oru8u* bb = nullptr) {
        return run_fill<T>(grad, eight, pp, step, roi, seed, v, lo, hi, r ? r : &region, bb ? bb : b);
    };
    const OruSize roi{8, 4};
    EXPECT_EQ(call(nullptr, s, {-1, -1}, {9, 9}, 300, -1, -1), oruStsNullPointer);
    EXPECT_EQ(run_fill<T>(grad, eight, p, s, roi, {0, 0}, 1, 0, 0, nullptr, b), oruStsNullPointer);
    EXPECT_EQ(run_fill<T>(grad, eight, p, s, roi, {0, 0}, 1, 0, 0, &region, nullptr), oruStsNullPointer);
    EXPECT_EQ(call(p, 0, {0, 4}, {9, 9}, 300, 0, 0), oruStsStep);
    EXPECT_EQ(call(p, -s, roi, {0, 0}, 1, 0, 0), oruStsStep);
    EXPECT_EQ(call(p, s + 2, {8, 0}, {9, 9}, 300, -1, 0), oruStsSize);
    EXPECT_EQ(call(p, s + 2, roi, {9, 9}, 300, -1, 0), f ? oruStsNotEvenStep : oruStsOutOfRange);
    for (OruPoint out : {OruPoint{-1, 0}, OruPoint{8, 0}, OruPoint{0, -1}, OruPoint{0, 4}})
        EXPECT_EQ(call(p, s, roi, out, 300, -1, 0), oruStsOutOfRange);
    if (!f) {
        EXPECT_EQ(call(p, s, roi, {7, 3}, 256, -1, 0), oruStsBadArg);
        EXPECT_EQ(call(p, s, roi, {7, 3}, -1, -1, 0), oruStsBadArg);
    }
    if (grad) {
        EXPECT_EQ(call(p, s, roi, {7, 3}, 1, -1, 0), oruStsOutOfRange);
        EXPECT_EQ(call(p, s, roi, {7, 3}, 1, 0, -1), oruStsOutOfRange);
        EXPECT_EQ(call(p, s, roi, {7, 3}, 1, f ? -kNaN : 200, f ? 0 : 56), oruStsOutOfRange);
        EXPECT_EQ(call(p, s, roi, {7, 3}, 1, 0, f ? kNaN : 256), oruStsOutOfRange);
        if (!f) {  // the sum is taken without wrapping around
            for (int lo : {1, INT_MAX}) EXPECT_EQ(call(p, s, roi, {7, 3}, 1, lo, INT_MAX - lo + 1), oruStsOutOfRange);
        }
    }
    EXPECT_EQ(img.pixels(), std::vector<T>(32, T(3)));
    EXPECT_TRUE(img.intact() && buf.intact());
    EXPECT_EQ(std::memcmp(&region, &untouched, sizeof region), 0);
    // The limits themselves pass.
    EXPECT_EQ(call(p, s, roi, {7, 3}, f ? 1 : 255, grad ? 200 : 0, grad ? 55 : 0), oruStsOk);
    if (f && grad) {
        EXPECT_EQ(call(p, s, roi, {7, 3}, 2, -0.0f, kInf), oruStsOk);
    }
}

TEST(FloodFillChecks, OrderOfChecks) {
    for (bool grad : {false, true})
        for (bool eight : {false, true}) check_order<Oru8u>(grad, eight), check_order<Oru32f>(grad, eight);
}

// Regions so large that the buffer size wrapped around 32 bits and left no
// room for the fill's bookkeeping are refused before anything is written.
// (The pointers stand in for huge images: only the seed pixel is read.)
TEST(FloodFillChecks, WrappedBufferSizes) {
    Oru8u pixel = 7, buffer[16] = {};
    OruConnectedComp region{};
    EXPECT_EQ(oruiFloodFill_4Con_8u_C1IR(&pixel, 32768, {32768, 16384}, {0, 0}, 1, &region, buffer), oruStsError);
    EXPECT_EQ(oruiFloodFill_Grad8Con_8u_C1IR(&pixel, 65534, {65534, 65534}, {0, 0}, 1, 1, 1, &region, buffer),
              oruStsError);
    EXPECT_EQ(pixel, 7);
    EXPECT_EQ(region.area, 0.0);
}

// Fixed fills return at once when the seed already holds the new value
// (floats: -0 is +0, NaN is NaN) or the new value is a NaN, writing
// nothing; gradient fills fill.
TEST(FloodFillValues, SeedAlreadyHoldsNewValue) {
    Plain<Oru32f> src{6, 3, std::vector<Oru32f>(18, -0.0f)};
    src.at(4, 2) = kNaN;
    FencedImage<Oru32f> img(src);
    WorkBuffer buf({6, 3}, false);
    OruConnectedComp region, untouched;
    std::memset(&region, 0x5A, sizeof region);
    std::memcpy(&untouched, &region, sizeof region);
    for (bool eight : {false, true}) {
        EXPECT_EQ(run_fill<Oru32f>(false, eight, img.data(), img.step_, {6, 3}, {2, 1}, 0.0f, 0, 0, &region, buf.data()), 0);
        EXPECT_EQ(run_fill<Oru32f>(false, eight, img.data(), img.step_, {6, 3}, {4, 2}, -kNaN, 0, 0, &region, buf.data()), 0);
        EXPECT_EQ(run_fill<Oru32f>(false, eight, img.data(), img.step_, {6, 3}, {2, 1}, kNaN, 0, 0, &region, buf.data()), 0);
        check_fill(Plain<Oru8u>{6, 3, std::vector<Oru8u>(18, 9)}, {2, 1}, eight, true, 9);
    }
    EXPECT_EQ(std::memcmp(img.pixels().data(), src.v.data(), 18 * 4), 0);
    EXPECT_TRUE(buf.intact());
    EXPECT_EQ(std::memcmp(&region, &untouched, sizeof region), 0);
}

TEST(FloodFillRegions, UniformAndDiagonal) {
    for (bool grad : {false, true})
        for (bool eight : {false, true}) {
            Plain<Oru8u> img{13, 7, std::vector<Oru8u>(13 * 7, 4)};
            check_fill(img, {12, 6}, eight, grad, 200);
            for (int i = 0; i < 7; ++i) img.at(i + 3, i) = 100;  // a diagonal line
            check_fill(img, {3, 0}, eight, grad, 7);
            Plain<Oru8u> filled = img;
            EXPECT_EQ(reference(filled, {6, 3}, eight, grad, Oru8u(7), 0, 0).area, eight ? 7.0 : 1.0);
            check_fill(img, {6, 3}, eight, grad, 7);
        }
}

// Random images of few values: every function, both connectivities, every
// width to 70, padded and misaligned rows, one-row and one-column images
// (the rows around them are fenced: row -1 must not be read).
TEST(FloodFillRegions, RandomAgainstReference) {
    for (int w = 1; w <= 70; ++w)
        for (int h : {1, 2, 9, w == 1 ? 40 : 3})
            for (const Layout& l : layouts_for(1)) {
                const uint64_t s = w * 131 + h * 7 + l.pad_bytes;
                const Plain<Oru8u> a = random_image<Oru8u>(w, h, s, w > 16 ? 2 : 3);
                const Plain<Oru32f> f = random_image<Oru32f>(w, h, s + 1, 2);
                const Layout lf{4 * l.pad_bytes, 4 * l.misalign_bytes};
                const OruPoint seed{static_cast<int>(s % w), static_cast<int>(s / 3 % h)};
                for (bool eight : {false, true}) {
                    check_fill(a, seed, eight, false, 9, 0, 0, l);
                    check_fill(f, seed, eight, false, 9.0f, 0, 0, lf);
                    check_fill(a, seed, eight, true, 5, 0, 1, l);
                    check_fill(f, seed, eight, true, 5.0f, 0.5f, 0.0f, lf);
                }
            }
}

// Gradients: noisy slopes with several tolerances.
TEST(FloodFillGradient, SmoothSurfaces) {
    for (int trial = 0; trial < 12; ++trial) {
        const int w = 20 + trial * 7, h = 11 + trial;
        Plain<Oru8u> a{w, h, std::vector<Oru8u>(static_cast<size_t>(w) * h)};
        Plain<Oru32f> f{w, h, std::vector<Oru32f>(a.v.size())};
        Rng rng(trial);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                const int v = (x * (trial + 3) + y * 5) / 4 + rng.uniform(0, 3);
                a.at(x, y) = static_cast<Oru8u>(v & 255), f.at(x, y) = static_cast<float>(v) * 0.37f;
            }
        for (bool eight : {false, true}) {
            check_fill(a, {trial * 5 % w, trial % h}, eight, true, 1, trial % 4, 3 - trial % 4);
            check_fill(f, {trial * 5 % w, trial % h}, eight, true, -1.0f, 0.37f * (trial % 5), 0.74f);
        }
    }
}

// Ramps, tolerance limits and the float classes (NaN, infinities, -0).
TEST(FloodFillGradient, RampsAndTolerances) {
    Plain<Oru8u> ramp{256, 3, std::vector<Oru8u>(768)};
    for (int i = 0; i < 768; ++i) ramp.v[i] = static_cast<Oru8u>(i % 256);
    Plain<Oru32f> f{40, 2, std::vector<Oru32f>(80)};
    for (int x = 0; x < 40; ++x) f.at(x, 0) = f.at(x, 1) = 0.1f * (x & ~1);
    f.at(0, 1) = -0.0f;
    f.at(20, 0) = f.at(21, 0) = kNaN, f.at(30, 1) = f.at(31, 1) = kInf, f.at(31, 0) = -kInf;
    for (bool eight : {false, true}) {
        for (int sx : {0, 77, 255}) check_fill(ramp, {sx, 1}, eight, true, 0, 1, 1);  // everything
        check_fill(ramp, {77, 1}, eight, true, 0, 0, 0);                              // the seed's column
        check_fill(ramp, {77, 1}, eight, true, 0, 0, 1);                              // rightwards only
        check_fill(ramp, {77, 1}, eight, true, 0, 1, 0);                              // leftwards only
        check_fill(ramp, {77, 1}, eight, true, 0, 200, 55);
        check_fill(f, {0, 0}, eight, true, 7.0f, 0.1f, 0.1f);
        check_fill(f, {20, 0}, eight, true, 7.0f, 1.0f, 1.0f);  // NaNs reach NaNs only
        check_fill(f, {30, 1}, eight, true, 7.0f, 0.0f, 0.0f);  // inf - inf does not fail
        check_fill(f, {5, 1}, eight, true, 7.0f, kInf, kInf);
        // Fixed fills: -0 joins 0, NaNs do not; a NaN seed takes NaNs.
        check_fill(f, {1, 0}, eight, false, 1.0f);
        check_fill(f, {20, 0}, eight, false, 0.0f);
    }
}

// Rows that overlap (a step below the row's bytes) are the caller's choice:
// the fills stay inside the memory the rows span and agree on every path.
TEST(FloodFillRegions, OverlappingRows) {
    for (bool grad : {false, true})
        for (bool eight : {false, true})
            expect_same_on_every_path([&] {
                FencedImage<Oru8u> img(random_image<Oru8u>(39, 1, eight + 2 * grad, 2));
                WorkBuffer buf({12, 10}, grad);
                OruConnectedComp r;
                EXPECT_EQ(run_fill<Oru8u>(grad, eight, img.data(), 3, {12, 10}, {4, 5}, 9, 1, 1, &r, buf.data()), 0);
                EXPECT_TRUE(img.intact() && buf.intact());
                return img.pixels();
            });
}

namespace {

// Runs a kernel directly with `bytes` of buffer and checks it against the
// reference (fill value 5, never the seed's, as the wrappers make sure);
// returns how often the pending marks had to be collected. bytes 0: the
// queried size; -1: only the room for the pending marks.
template <class T>
int run_kernel(const Plain<T>& src, OruPoint seed, bool eight, bool grad, int bytes) {
    const OruSize roi{src.w, src.h};
    if (bytes == 0) bytes = static_cast<int>(WorkBuffer::query(roi, grad));
    if (bytes < 0) bytes = grad ? (src.w + 2) * (src.h + 2) : (src.w + 7) / 8 * src.h;
    FencedImage<T> img(src);
    Fence buf(bytes);
    buf.open(0, bytes);
    buf.close();
    const auto& k = orucv::a6::floodfill_kernels();
    const auto c = eight ? orucv::a6::kEightConnected : orucv::a6::kFourConnected;
    orucv::a6::FillResult r;
    if (grad) {
        orucv::a6::GradJob<T, Tol<T>> job{img.data(), img.step_, src.w, src.h, seed.x, seed.y, T(5),
                                          0,          0,         buf.at(0), static_cast<uint32_t>(bytes), {}};
        if constexpr (sizeof(T) == 1) k.grad_8u[c](job), r = job.result;
        else k.grad_32f[c](job), r = job.result;
    } else {
        orucv::a6::FillJob<T> job{img.data(), img.step_, src.w, src.h, seed.x, seed.y, T(5),
                                  buf.at(0), static_cast<uint32_t>(bytes), {}};
        if constexpr (sizeof(T) == 1) k.fill_8u[c](job), r = job.result;
        else k.fill_32f[c](job), r = job.result;
    }
    Plain<T> want = src;
    expect_region({static_cast<double>(r.area), 5.0, {r.min_x, r.min_y, r.max_x - r.min_x + 1, r.max_y - r.min_y + 1}},
                  reference(want, seed, eight, grad, T(5), 0, 0));
    EXPECT_TRUE(img.pixels() == want.v);
    EXPECT_TRUE(img.intact() && buf.intact());
    return r.collections;
}

}  // namespace

// Inputs that need more segment records than fit: the fill falls back to
// its pending marks and still finds the reference's region.
TEST(FloodFillOverflow, AdversarialImages) {
    for (int kind = 0; kind < 4; ++kind)
        for (OruSize roi : {OruSize{3, 1}, OruSize{5, 3}, OruSize{64, 3}, OruSize{70, 41}, OruSize{301, 97}})
            for (bool grad : {false, true})
                for (bool eight : {false, true}) {
                    check_fill(adversarial<Oru8u>(kind, roi.width, roi.height), {0, 0}, eight, grad, 1, 0, 0, {0, 1});
                    check_fill(adversarial<Oru32f>(kind, roi.width, roi.height), {0, 0}, eight, grad, 1.0f, 0.0f, 0.0f,
                               {4, 4});
                }
    // Wide, short combs need one record per tooth, more than the queried
    // buffer holds.
    for (bool grad : {false, true})
        for (bool eight : {false, true}) {
            EXPECT_GT(run_kernel(adversarial<Oru8u>(0, 301, 3), {0, 1}, eight, grad, 0), 0);
            EXPECT_GT(run_kernel(adversarial<Oru32f>(0, 64, 3), {0, 0}, eight, grad, 0), 0);
        }
}

// With no room for records beyond the fill's own few, the pending marks
// carry the fill, on every path.
TEST(FloodFillOverflow, StarvedBuffer) {
    for (auto level : available_levels()) {
        ScopedSimdLevel scoped(level);
        for (bool grad : {false, true})
            for (bool eight : {false, true}) {
                EXPECT_GT(run_kernel(adversarial<Oru8u>(0, 97, 41), {0, 0}, eight, grad, -1), 0);
                EXPECT_GT(run_kernel(adversarial<Oru32f>(0, 45, 40), {0, 0}, eight, grad, -1), 0);
                for (int kind = 1; kind < 4; ++kind) {
                    run_kernel(adversarial<Oru8u>(kind, 97, 41), {0, 0}, eight, grad, -1);
                    run_kernel(adversarial<Oru32f>(kind, 45, 40), {0, 0}, eight, grad, -1);
                }
                for (int trial = 0; trial < 6; ++trial) {
                    const int w = 1 + trial * 13, h = 1 + trial * 9;
                    run_kernel(random_image<Oru8u>(w, h, trial, 2), {w / 2, h / 2}, eight, grad, -1);
                    run_kernel(random_image<Oru32f>(w, h, trial + 9, 2), {0, h - 1}, eight, grad, -1);
                }
            }
    }
}
