// Morphology: the state's checks, size and ellipse; the strip checks and
// row counts; every function on every path against a model (the minimum or
// maximum over the members with clamped coordinates) and the scalar twin;
// strips of every split against one call; the float orders.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "a6/morph.h"
#include "morph_list.h"
#include "orucv.h"
#include "support/image.h"
#include "support/simd.h"

using namespace orutest;

namespace {

uint32_t bits(float f) {
    uint32_t b;
    std::memcpy(&b, &f, 4);
    return b;
}
float from_bits(uint32_t b) {
    float f;
    std::memcpy(&f, &b, 4);
    return f;
}
bool is_nan(uint32_t b) { return (b & 0x7FFFFFFFu) > 0x7F800000u; }
int32_t key(uint32_t b) { return static_cast<int32_t>(b) < 0 ? static_cast<int32_t>(b ^ 0x7FFFFFFFu) : static_cast<int32_t>(b); }

using Call = OruStatus (*)(const void*, int, void*, int, OruSize*, OruMorphState*, int);
template <class T, auto F>
OruStatus call(const void* s, int ss, void* d, int ds, OruSize* roi, OruMorphState* st, int flag) {
    return F(static_cast<const T*>(s), ss, static_cast<T*>(d), ds, roi, st, flag);
}

constexpr int kRect = 0, kCross = 1, kMask = 100;
struct Function {
    const char* name;
    bool dilate;
    int shape;
    bool is_float;
    int channels;
    Call call;
};
constexpr int shape_code(const char* s) { return s[0] == 'R' ? kRect : s[0] == 'C' ? kCross : kMask; }
#define MORPH_FUNCTION_State(name, op, shape, T, C)
#define MORPH_FUNCTION_Strip(name, op, shape, T, C) \
    Function{#name, #op[0] == 'D', shape_code(#shape), sizeof(T) == 4, C, call<T, name>},
#define MORPH_FUNCTION(name, kind, op, shape, T, C) MORPH_FUNCTION_##kind(name, op, shape, T, C)
const Function kFunctions[] = {ORUCV_MORPH_FUNCTIONS(MORPH_FUNCTION)};

const Function& function(int shape, bool is_float, bool dilate, int channels) {
    for (const Function& f : kFunctions)
        if (f.shape == shape && f.is_float == is_float && f.dilate == dilate && f.channels == channels) return f;
    std::abort();
}

// A structuring element: its size, anchor, shape code (2 is the ellipse)
// and, for masks and ellipses, its members.
struct Element {
    int w, h, ax, ay, shape;
    std::vector<uint8_t> mask;
    bool member(int i, int j) const {
        if (shape == kRect) return true;
        if (shape == kCross) return i == ay || j == ax;
        return mask[i * w + j] != 0;
    }
    int stored_shape() const { return shape == 2 ? kMask : shape; }
};

// The ellipse as the header defines it.
std::vector<uint8_t> ellipse(int w, int h) {
    std::vector<uint8_t> m(w * h, 0);
    const int r = h / 2, c = w / 2;
    for (int i = 0; i < r; ++i) {
        const int dy = r - i;
        const int dx = static_cast<int>(std::nearbyint((w / 2) * std::sqrt(double(r * r - dy * dy) / (r * r))));
        for (int x = std::max(c - dx, 0); x <= std::min(c + dx, w - 1); ++x) m[i * w + x] = m[(h - 1 - i) * w + x] = 1;
    }
    return m;
}

Element rect(int w, int h, int ax, int ay) { return {w, h, ax, ay, kRect, {}}; }
Element cross(int w, int h, int ax, int ay) { return {w, h, ax, ay, kCross, {}}; }
Element ellipse_element(int w, int h) { return {w, h, w / 2, h / 2, 2, ellipse(w, h)}; }
Element random_mask(int w, int h, int ax, int ay, uint64_t seed) {
    Rng rng(seed);
    Element e{w, h, ax, ay, kMask, std::vector<uint8_t>(w * h)};
    for (auto& m : e.mask) m = rng.uniform(0, 2) ? static_cast<uint8_t>(rng.uniform(1, 255)) : 0;
    return e;
}
Element element_for(int shape, int w, int h, int ax, int ay, uint64_t seed = 1) {
    return shape == kRect ? rect(w, h, ax, ay) : shape == kCross ? cross(w, h, ax, ay) : random_mask(w, h, ax, ay, seed);
}

struct State {
    OruMorphState* s = nullptr;
    State(int width, bool is_float, int channels, const Element& e) {
        const OruStatus st = oruiMorphologyInitAlloc(width, is_float ? oruDataType32f : oruDataType8u, channels,
                                                     {e.w, e.h}, {e.ax, e.ay}, e.shape, e.mask.data(), &s);
        EXPECT_EQ(st, oruStsOk);
    }
    ~State() { oruiMorphologyFree(&s); }
};

// The model: the minimum or maximum over the members, coordinates clamped.
// Floats: the direct forms give the last of the equal extremes in row-major
// member order and the quiet NaN for any NaN member; the mask forms order
// bit patterns by their keys.
template <class T>
T model(const Function& fn, const Element& e, const GuardedImage<T>& src, int x, int y, int c) {
    const int W = src.width(), H = src.height();
    bool any = false, nan = false;
    T best{};
    for (int i = 0; i < e.h; ++i)
        for (int j = 0; j < e.w; ++j) {
            if (!e.member(i, j)) continue;
            const int sx = std::min(std::max(x + j - e.ax, 0), W - 1), sy = std::min(std::max(y + i - e.ay, 0), H - 1);
            const T v = src.at(sx, sy, c);
            if constexpr (sizeof(T) == 1) {
                if (!any || (fn.dilate ? v > best : v < best)) best = v;
            } else if (e.stored_shape() == kMask) {
                if (!any || (fn.dilate ? key(bits(v)) > key(bits(best)) : key(bits(v)) < key(bits(best)))) best = v;
            } else {
                nan = nan || std::isnan(v);
                if (!any || (fn.dilate ? v >= best : v <= best)) best = v;
            }
            any = true;
        }
    if (!any) {
        if constexpr (sizeof(T) == 1) return fn.dilate ? 0 : 255;
        else return fn.dilate ? -INFINITY : INFINITY;
    }
    if constexpr (sizeof(T) == 4)
        if (nan) return from_bits(0x7FC00000u);
    return best;
}

// Runs fn over src in strips of the given heights (flags 1, 4, ..., 2), or
// in one call with flag 0 when heights is empty, into dst; checks the rows
// each call writes.
template <class T>
void run(const Function& fn, OruMorphState* st, const Element& e, const GuardedImage<T>& src, GuardedImage<T>& dst,
         const std::vector<int>& heights) {
    const int W = src.width(), H = src.height(), held = e.h - 1 - e.ay;
    if (heights.empty()) {
        OruSize roi{W, H};
        ASSERT_EQ(fn.call(src.data(), src.step(), dst.data(), dst.step(), &roi, st, 0), oruStsOk);
        EXPECT_EQ(roi.height, H);
        return;
    }
    int taken = 0, written = 0;
    for (size_t k = 0; k < heights.size(); ++k) {
        const bool last = k + 1 == heights.size();
        const int flag = k == 0 ? 1 : last ? 2 : 4;
        OruSize roi{W, heights[k]};
        const OruStatus s = fn.call(src.row(taken), src.step(), dst.row(std::min(written, H - 1)), dst.step(), &roi, st, flag);
        taken += heights[k];
        const int total = last ? H : std::max(0, taken - held);
        if (heights[k] == 0 && !last) {
            EXPECT_EQ(s, oruStsNoOperation);
        } else {
            ASSERT_EQ(s, oruStsOk) << "strip " << k;
        }
        EXPECT_EQ(roi.height, total - written) << "strip " << k;
        written = total;
    }
}

// Bytes over their range; floats either a mix of values and specials, or
// (odd seeds) zeros of both signs beside one value that never wins, so that
// most extremes are ties of -0.0 and +0.0, with a rare NaN.
template <class T>
void fill_test_data(GuardedImage<T>& img, uint64_t seed, bool dilate = false) {
    Rng rng(seed);
    static const uint32_t specials[] = {0x00000000u, 0x80000000u, 0x7F800000u, 0xFF800000u, 0x7FC00000u,
                                        0xFFC00001u, 0x7F800001u, 0x00000001u, 0x80000001u, 0x3F800000u};
    for (int y = 0; y < img.height(); ++y)
        for (int i = 0; i < img.width() * img.channels(); ++i) {
            if constexpr (sizeof(T) == 1) {
                img.row(y)[i] = static_cast<T>(rng.next());
            } else if (seed % 2) {
                const int kind = rng.uniform(0, 199);
                img.row(y)[i] = kind == 0 ? from_bits(0x7FC00000u)
                                : kind < 40 ? (dilate ? -1.0f : 1.0f)
                                            : from_bits(kind % 2 ? 0x80000000u : 0u);
            } else {
                const int kind = rng.uniform(0, 9);
                img.row(y)[i] = kind < 2 ? from_bits(specials[rng.uniform(0, 9)])
                                : kind < 4 ? static_cast<float>(rng.uniform(-2, 2)) * 0.5f
                                           : rng.uniform(-100.0f, 100.0f);
            }
        }
}

// fn with element e over a width x height image on every path, against the
// model and the scalar twin; nothing written outside the destination.
template <class T>
void check_function(const Function& fn, const Element& e, int width, int height, const Layout& layout,
                    const std::vector<int>& heights = {}) {
    SCOPED_TRACE(testing::Message() << fn.name << " element " << e.w << "x" << e.h << " anchor " << e.ax << ","
                                    << e.ay << " shape " << e.shape << " size " << width << "x" << height << " pad "
                                    << layout.pad_bytes << " misalign " << layout.misalign_bytes);
    const int pad = layout.pad_bytes, gap = layout.misalign_bytes;
    GuardedImage<T> src(width, height, fn.channels, pad, gap);
    fill_test_data(src, width * 131 + height * 7 + e.w * 3 + e.h, fn.dilate);
    State st(width + 3, fn.is_float, fn.channels, e);
    expect_same_on_every_path([&] {
        GuardedImage<T> dst(width, height, fn.channels, pad, gap);
        run(fn, st.s, e, src, dst, heights);
        EXPECT_TRUE(dst.guards_intact());
        int wrong = 0;
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                for (int c = 0; c < fn.channels; ++c) {
                    const T want = model(fn, e, src, x, y, c), got = dst.at(x, y, c);
                    const bool same = sizeof(T) == 1 ? want == got : bits(float(want)) == bits(float(got));
                    if (!same && ++wrong <= 3) ADD_FAILURE() << "at " << x << "," << y << " channel " << c;
                }
        return dst.region_bytes();
    });
}

void check_any(const Function& fn, const Element& e, int width, int height, const Layout& layout,
               const std::vector<int>& heights = {}) {
    if (fn.is_float) check_function<Oru32f>(fn, e, width, height, layout, heights);
    else check_function<Oru8u>(fn, e, width, height, layout, heights);
}

}  // namespace

TEST(MorphState, OrderOfChecks) {
    OruMorphState* const sentinel = reinterpret_cast<OruMorphState*>(uintptr_t{64});
    OruMorphState* s = sentinel;
    const Oru8u mask[9] = {1};
    auto init = [&](int w, int type, int ch, OruSize m, OruPoint a, int shape, const Oru8u* pm) {
        return oruiMorphologyInitAlloc(w, type, ch, m, a, shape, pm, &s);
    };
    EXPECT_EQ(oruiMorphologyInitAlloc(0, 5, 2, {0, 0}, {-1, -1}, 7, nullptr, nullptr), oruStsNullPointer);
    EXPECT_EQ(init(0, 5, 2, {3, 3}, {1, 1}, 0, nullptr), oruStsSize);
    EXPECT_EQ(init(8, 1, 1, {0, 3}, {1, 1}, 0, nullptr), oruStsSize);
    EXPECT_EQ(init(8, 1, 1, {3, -1}, {1, 1}, 0, nullptr), oruStsSize);
    EXPECT_EQ(init(8, oruDataType8s, 2, {3, 3}, {5, 5}, 7, nullptr), oruStsDataType);
    EXPECT_EQ(init(8, 1, 2, {3, 3}, {5, 5}, 7, nullptr), oruStsDataType);
    EXPECT_EQ(init(8, 9, 0, {3, 3}, {1, 1}, 0, nullptr), oruStsDataType);
    EXPECT_EQ(init(8, 1, 1, {3, 3}, {-1, 0}, 7, nullptr), oruStsOutOfRange);  // unsigned: not a size error
    EXPECT_EQ(init(8, 1, 1, {3, 3}, {3, 0}, 0, nullptr), oruStsOutOfRange);
    EXPECT_EQ(init(8, 1, 1, {3, 3}, {0, 3}, 100, nullptr), oruStsOutOfRange);  // anchor before the mask
    EXPECT_EQ(init(8, 1, 1, {3, 3}, {1, 1}, 3, mask), oruStsOutOfRange);
    EXPECT_EQ(init(8, 1, 1, {3, 3}, {1, 1}, 100, nullptr), oruStsNullPointer);
    EXPECT_EQ(s, sentinel) << "a failed check leaves the state variable alone";
    // The size does not fit an unsigned int: nothing allocated, the variable cleared.
    EXPECT_EQ(init(0x7FFFFFFF, 9, 4, {3, 3}, {1, 1}, 0, nullptr), oruStsMemAlloc);
    EXPECT_EQ(s, nullptr);
    for (int shape : {0, 1, 2}) {
        EXPECT_EQ(init(8, 1, 1, {3, 3}, {2, 2}, shape, nullptr), oruStsOk);  // the mask is read only for 100
        EXPECT_EQ(oruiMorphologyFree(&s), oruStsOk);
        EXPECT_EQ(s, nullptr);
    }
    EXPECT_EQ(oruiMorphologyFree(&s), oruStsOk);  // a variable holding null
    EXPECT_EQ(oruiMorphologyFree(nullptr), oruStsNullPointer);
}

// The state stays within the size of a ring of maskHeight + spare rows with
// borders and slack, plus the mask tables, for every kind of state.
TEST(MorphState, SizeBoundedByWidthAndElement) {
    for (int type : {1, 9})
        for (int ch : {1, 3, 4})
            for (int shape : {0, 1, 2, 100})
                for (int width : {1, 2, 7, 33, 640, 1920})
                    for (int mw = 1; mw <= 17; mw += 4)
                        for (int mh = 1; mh <= 17; mh += 3) {
                            const long long ps = (type == 9 ? 4 : 1) * ch, align = type == 9 ? 32 : 8;
                            const long long row = ((width + mw + 17) * ps - 1) / align * align;
                            const long long mask = shape >= 2 ? 16LL * mw * mh : 0;
                            const long long bound = ((row + 4) * (mh + (type == 9 ? 2 : 1)) + mask + mw * ps + 79) / 8 * 8;
                            const auto l = orucv::a6::morph_layout(width, type, ch, {mw, mh}, shape >= 2 ? 100 : shape);
                            EXPECT_LE(static_cast<long long>(l.total), bound)
                                << type << " " << ch << " " << shape << " " << width << " " << mw << "x" << mh;
                        }
}

// Ellipses read back through a dilation of one bright pixel, which draws
// the element turned by half a turn around its anchor.
TEST(MorphState, EllipseTables) {
    struct Case {
        int w, h;
        std::vector<const char*> rows;
    } cases[] = {
        {5, 5, {"..#..", "#####", ".....", "#####", "..#.."}},
        {4, 4, {"..#.", "####", "####", "..#."}},
        {6, 4, {"...#..", "######", "######", "...#.."}},
        {4, 5, {"..#.", "####", "....", "####", "..#."}},  // the centre row stays empty
        {8, 6, {"....#...", ".#######", "########", "########", ".#######", "....#..."}},
        {3, 3, {".#.", "...", ".#."}},
        {5, 2, {"..#..", "..#.."}},
        {7, 1, {"......."}},
    };
    for (const Case& c : cases) {
        const Element e = ellipse_element(c.w, c.h);
        for (int i = 0; i < c.h; ++i)
            for (int j = 0; j < c.w; ++j) EXPECT_EQ(e.mask[i * c.w + j] != 0, c.rows[i][j] == '#') << c.w << "x" << c.h;
        const int W = 2 * c.w + 1, H = 2 * c.h + 1;
        GuardedImage<Oru8u> src(W, H), dst(W, H);
        src.fill(0);
        src.at(c.w, c.h) = 200;
        State st(W, false, 1, e);
        OruSize roi{W, H};
        ASSERT_EQ(oruiDilateStrip_8u_C1R(src.data(), src.step(), dst.data(), dst.step(), &roi, st.s, 0), oruStsOk);
        for (int y = 0; y < H; ++y)
            for (int x = 0; x < W; ++x) {
                const int i = c.h - y + e.ay, j = c.w - x + e.ax;
                const bool on = i >= 0 && i < c.h && j >= 0 && j < c.w && c.rows[i][j] == '#';
                EXPECT_EQ(dst.at(x, y), on ? 200 : 0) << c.w << "x" << c.h << " at " << x << "," << y;
            }
    }
}

TEST(MorphStrip, OrderOfChecks) {
    GuardedImage<Oru8u> src(8, 4), dst(8, 4);
    GuardedImage<Oru32f> fdst(8, 4);
    const auto before = dst.snapshot();
    State rect8(8, false, 1, rect(3, 3, 1, 1)), cross32(8, true, 3, cross(3, 3, 1, 1));
    State ell(8, false, 1, ellipse_element(5, 5));
    auto erode = [&](const Oru8u* s, int ss, Oru8u* d, int ds, OruSize* r, OruMorphState* st, int flag) {
        return oruiErodeStrip_Rect_8u_C1R(s, ss, d, ds, r, st, flag);
    };
    OruSize roi{8, 4};
    EXPECT_EQ(erode(nullptr, 8, dst.data(), 8, nullptr, nullptr, 9), oruStsNullPointer);
    EXPECT_EQ(erode(src.data(), 8, dst.data(), 8, &roi, nullptr, 0), oruStsNullPointer);
    EXPECT_EQ(erode(src.data(), 8, dst.data(), 8, nullptr, rect8.s, 0), oruStsNullPointer);
    EXPECT_EQ(erode(src.data(), 8, nullptr, 8, &roi, rect8.s, 0), oruStsNullPointer);
    for (OruSize bad : {OruSize{0, 4}, OruSize{9, 4}, OruSize{8, -1}}) {
        roi = bad;
        EXPECT_EQ(erode(src.data(), 0, dst.data(), 8, &roi, cross32.s, 9), oruStsSize);  // size before the state's kind
    }
    roi = {8, 4};
    EXPECT_EQ(oruiErodeStrip_Cross_8u_C1R(src.data(), 8, dst.data(), 8, &roi, rect8.s, 0), oruStsContextMismatch);
    EXPECT_EQ(oruiErodeStrip_8u_C1R(src.data(), 8, dst.data(), 8, &roi, rect8.s, 0), oruStsContextMismatch);
    EXPECT_EQ(oruiErodeStrip_Cross_32f_C1R(nullptr, 0, fdst.data(), 32, &roi, cross32.s, 0), oruStsNullPointer);
    EXPECT_EQ(oruiErodeStrip_Cross_32f_C1R(reinterpret_cast<const Oru32f*>(src.data()), 0, fdst.data(), 0, &roi,
                                           cross32.s, 9),
              oruStsContextMismatch);  // channels, before the steps
    EXPECT_EQ(oruiErodeStrip_Cross_8u_C3R(src.data(), 0, dst.data(), 0, &roi, cross32.s, 9), oruStsContextMismatch);
    EXPECT_EQ(erode(src.data(), 7, dst.data(), 8, &roi, rect8.s, 9), oruStsStep);
    EXPECT_EQ(erode(src.data(), 8, dst.data(), -8, &roi, rect8.s, 9), oruStsStep);
    for (int flag : {-1, 3, 5, 8}) EXPECT_EQ(erode(src.data(), 8, dst.data(), 8, &roi, rect8.s, flag), oruStsOutOfRange);
    EXPECT_EQ(roi.height, 4);
    EXPECT_EQ(dst.snapshot(), before);

    // Nothing to do: the warning, the height cleared, nothing written.
    for (int flag : {2, 4}) {
        roi = {8, 4};
        EXPECT_EQ(erode(src.data(), 8, dst.data(), 8, &roi, rect8.s, flag), oruStsNoOperation);
        EXPECT_EQ(roi.height, 0);
    }
    for (int flag : {0, 1}) {
        roi = {8, 0};
        EXPECT_EQ(erode(src.data(), 8, dst.data(), 8, &roi, rect8.s, flag), oruStsNoOperation);
    }
    EXPECT_EQ(dst.snapshot(), before);
    // The ellipse is a mask; a mask function takes it.
    roi = {8, 4};
    EXPECT_EQ(oruiDilateStrip_8u_C1R(src.data(), 8, dst.data(), 8, &roi, ell.s, 0), oruStsOk);
    EXPECT_EQ(roi.height, 4);
}

// Every function on every width 1..70, a 3x3 element off centre, with padded
// rows and regions off alignment.
TEST(MorphPaths, EveryFunctionEveryWidth) {
    const auto layouts = layouts_for(4);
    for (const Function& fn : kFunctions)
        for (int width = 1; width <= 70; ++width)
            check_any(fn, element_for(fn.shape, 3, 3, 2, 1, width), width, 4, layouts[width % layouts.size()]);
}

// Element sizes 1x1 to 7x7, every anchor of the small ones, and wide and
// tall elements (doubling windows across, running folds down).
TEST(MorphPaths, ElementSizesAndAnchors) {
    const auto layouts = layouts_for(4);
    int n = 0;
    for (int shape : {kRect, kCross, kMask})
        for (int mw = 1; mw <= 7; ++mw)
            for (int mh = 1; mh <= 7; ++mh)
                for (int ax = 0; ax < mw; ++ax)
                    for (int ay = 0; ay < mh; ++ay) {
                        if (mw * mh > 9 && (ax != mw / 2 || ay != mh / 2) && (ax != mw - 1 || ay != 0)) continue;
                        const Function& fn = function(shape, n % 2 == 1, n % 3 == 0, n % 4 == 3 ? 3 : n % 5 == 4 ? 4 : 1);
                        check_any(fn, element_for(shape, mw, mh, ax, ay, n), 3 + n % 37, 6, layouts[n % layouts.size()]);
                        ++n;
                    }
    const struct {
        int w, h, ax, ay;
    } large[] = {{15, 3, 7, 1}, {3, 15, 1, 7}, {15, 15, 3, 12}, {12, 1, 11, 0}, {1, 12, 0, 0}, {9, 9, 4, 4},
                 {33, 2, 5, 1}, {2, 40, 1, 39}, {64, 1, 0, 0}, {100, 3, 50, 2}, {3, 70, 1, 35}};
    for (const auto& l : large)
        for (int shape : {kRect, kCross, kMask})
            for (bool is_float : {false, true})
                for (int width : {1, 5, l.w - 1, l.w + 9, 70}) {
                    if (width < 1) continue;
                    const Function& fn = function(shape, is_float, width % 2 == 0, width % 3 == 0 ? 3 : 1);
                    check_any(fn, element_for(shape, l.w, l.h, l.ax, l.ay, width), width, l.h + 3,
                              layouts[width % layouts.size()]);
                }
    for (int size : {3, 4, 7, 8, 15})
        for (bool is_float : {false, true}) check_any(function(kMask, is_float, size % 2, 4), ellipse_element(size, size), 41, 9, layouts[1]);
}

// Every split of small images into strips (flags 1, 4, ..., 2, empty strips
// and a flush-only last strip included) writes the rows of one call.
TEST(MorphStrips, EverySplitEqualsOneCall) {
    const Element elements[] = {rect(3, 3, 1, 1), rect(2, 10, 1, 3), cross(3, 4, 2, 0), random_mask(4, 5, 0, 4, 9),
                                rect(1, 1, 0, 0)};
    const int H = 7;
    int n = 0;
    for (const Element& e : elements)
        for (int split = 0; split < (1 << (H - 1)); ++split) {
            std::vector<int> heights{1};
            for (int r = 1; r < H; ++r) {
                if (split >> (r - 1) & 1) heights.push_back(0);
                ++heights.back();
            }
            if (split % 5 == 1) heights.insert(heights.begin() + 1, 0);  // an empty middle strip
            if (split % 3 == 0) heights.push_back(0);                    // flush only
            const Function& fn = function(e.shape, n % 2 == 1, n % 3 == 1, 1);
            check_any(fn, e, 5 + n % 11, H, layouts_for(4)[0], heights);
            ++n;
        }
}

// A state serves image after image; starting again drops an unfinished one.
TEST(MorphStrips, ReuseAndRestart) {
    const Element e = rect(3, 5, 1, 2);
    GuardedImage<Oru8u> a(9, 6), b(9, 6), want(9, 6), got(9, 6);
    a.fill_random(1);
    b.fill_random(2);
    State st(9, false, 1, e), fresh(9, false, 1, e);
    OruSize roi{9, 6};
    ASSERT_EQ(oruiErodeStrip_Rect_8u_C1R(b.data(), b.step(), want.data(), want.step(), &roi, fresh.s, 0), oruStsOk);
    roi = {9, 4};
    ASSERT_EQ(oruiErodeStrip_Rect_8u_C1R(a.data(), a.step(), got.data(), got.step(), &roi, st.s, 1), oruStsOk);
    roi = {9, 0};  // nothing to do: the unfinished image stays as it was
    ASSERT_EQ(oruiErodeStrip_Rect_8u_C1R(a.data(), a.step(), got.data(), got.step(), &roi, st.s, 4), oruStsNoOperation);
    roi = {9, 2};
    ASSERT_EQ(oruiErodeStrip_Rect_8u_C1R(b.data(), b.step(), got.data(), got.step(), &roi, st.s, 1), oruStsOk);
    EXPECT_EQ(roi.height, 0);
    roi = {9, 4};
    ASSERT_EQ(oruiErodeStrip_Rect_8u_C1R(b.row(2), b.step(), got.data(), got.step(), &roi, st.s, 2), oruStsOk);
    EXPECT_EQ(roi.height, 6);
    EXPECT_EQ(got.region_bytes(), want.region_bytes());
    roi = {9, 1};  // the image is finished: a last strip has nothing to add to
    EXPECT_EQ(oruiErodeStrip_Rect_8u_C1R(b.data(), b.step(), got.data(), got.step(), &roi, st.s, 2), oruStsNoOperation);
}

// A constant image stays constant under every element, borders included;
// a 1x1 element copies (floats of the direct forms store NaNs as the one
// quiet NaN).
TEST(MorphValues, ConstantImageAndSinglePixelElement) {
    for (const Function& fn : kFunctions) {
        for (const Element& e : {rect(4, 3, 3, 0), cross(5, 5, 0, 4), random_mask(3, 6, 1, 5, 3), ellipse_element(6, 6)}) {
            if ((e.shape == kRect) != (fn.shape == kRect) || (e.shape == kCross) != (fn.shape == kCross)) continue;
            State st(13, fn.is_float, fn.channels, e);
            GuardedImage<uint8_t> src(13 * fn.channels * (fn.is_float ? 4 : 1), 7), dst = src;
            src.fill(fn.is_float ? 0x42 : 77);
            OruSize roi{13, 7};
            ASSERT_EQ(fn.call(src.data(), src.step(), dst.data(), dst.step(), &roi, st.s, 0), oruStsOk);
            EXPECT_EQ(dst.region_bytes(), src.region_bytes()) << fn.name;
        }
        const Element one = element_for(fn.shape, 1, 1, 0, 0);
        if (fn.shape == kMask) continue;  // covered below with an explicit member
        State st(11, fn.is_float, fn.channels, one);
        if (fn.is_float) {
            GuardedImage<Oru32f> src(11, 5, fn.channels), dst(11, 5, fn.channels);
            fill_test_data(src, 5);
            OruSize roi{11, 5};
            ASSERT_EQ(fn.call(src.data(), src.step(), dst.data(), dst.step(), &roi, st.s, 0), oruStsOk);
            for (int y = 0; y < 5; ++y)
                for (int i = 0; i < 11 * fn.channels; ++i) {
                    const uint32_t b = bits(src.row(y)[i]);
                    EXPECT_EQ(bits(dst.row(y)[i]), is_nan(b) ? 0x7FC00000u : b);
                }
        }
    }
    GuardedImage<Oru32f> src(11, 5), dst(11, 5);
    fill_test_data(src, 6);
    Element one{1, 1, 0, 0, kMask, {1}};
    State st(11, true, 1, one);
    OruSize roi{11, 5};
    ASSERT_EQ(oruiErodeStrip_32f_C1R(src.data(), src.step(), dst.data(), dst.step(), &roi, st.s, 0), oruStsOk);
    EXPECT_EQ(dst.region_bytes(), src.region_bytes()) << "the mask form keeps every bit pattern";
}

// The float orders: the direct forms give the later of -0.0 and +0.0 and
// the quiet NaN; the mask forms put -0.0 below +0.0 and NaNs beyond the
// infinities on their sign's side. Widths beyond the vectors, every path.
TEST(MorphValues, SignedZerosAndNaNs) {
    struct Case {
        uint32_t a, b;            // the row a, b (a 2x1 element, anchor 0: pixel 0 sees a then b)
        uint32_t erode, dilate;   // direct forms
        uint32_t erode_key, dilate_key;
    } cases[] = {
        {0x80000000u, 0x00000000u, 0x00000000u, 0x00000000u, 0x80000000u, 0x00000000u},
        {0x00000000u, 0x80000000u, 0x80000000u, 0x80000000u, 0x80000000u, 0x00000000u},
        {0x7FC12345u, 0x3F800000u, 0x7FC00000u, 0x7FC00000u, 0x3F800000u, 0x7FC12345u},
        {0x3F800000u, 0xFFC00001u, 0x7FC00000u, 0x7FC00000u, 0xFFC00001u, 0x3F800000u},
        {0x7F800000u, 0x7F800001u, 0x7FC00000u, 0x7FC00000u, 0x7F800000u, 0x7F800001u},
    };
    for (const Case& c : cases) {
        const int W = 70;
        GuardedImage<Oru32f> src(W, 2), dst(W, 2);
        for (int y = 0; y < 2; ++y)
            for (int x = 0; x < W; ++x) src.at(x, y) = from_bits(x % 2 ? c.b : c.a);
        for (int f = 0; f < 4; ++f) {
            const bool dilate = f & 1, keyed = f & 2;
            const Element e = keyed ? Element{2, 1, 0, 0, kMask, {1, 1}} : rect(2, 1, 0, 0);
            const uint32_t want = keyed ? (dilate ? c.dilate_key : c.erode_key) : (dilate ? c.dilate : c.erode);
            State st(W, true, 1, e);
            expect_same_on_every_path([&] {
                OruSize roi{W, 2};
                EXPECT_EQ(function(e.shape, true, dilate, 1).call(src.data(), src.step(), dst.data(), dst.step(), &roi,
                                                                    st.s, 0),
                          oruStsOk);
                for (int x = 0; x < W - 1; x += 2)
                    EXPECT_EQ(bits(dst.at(x, 1)), want) << std::hex << c.a << " " << c.b << " f " << f << " x " << x;
                return dst.region_bytes();
            });
        }
    }
}

// Calls writing 16 MiB and more store past the caches: the same rows as
// strips, from destinations on and off vector alignment.
TEST(MorphStrips, LargeOutputs) {
    struct Case {
        const Function& fn;
        Element e;
        int width, height, misalign;
    } cases[] = {{function(kRect, true, false, 3), rect(5, 3, 2, 1), 1400, 1000, 4},
                 {function(kMask, false, true, 4), random_mask(3, 3, 1, 1, 7), 4100, 1024, 1}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fn.name);
        const int px = c.fn.channels * (c.fn.is_float ? 4 : 1);
        GuardedImage<uint8_t> src(c.width * px, c.height, 1, 0, c.misalign);
        src.fill_random(3);
        if (c.fn.is_float)
            for (int y = 0; y < c.height; ++y)
                for (int x = 0; x < c.width * px; x += 4) src.row(y)[x + 3] &= 0x3F;  // finite floats
        State st(c.width, c.fn.is_float, c.fn.channels, c.e);
        expect_same_on_every_path([&] {
            GuardedImage<uint8_t> whole(c.width * px, c.height, 1, 0, c.misalign), strips = whole;
            OruSize roi{c.width, c.height};
            EXPECT_EQ(c.fn.call(src.data(), src.step(), whole.data(), whole.step(), &roi, st.s, 0), oruStsOk);
            int written = 0;
            for (int y = 0; y < c.height; y += 100) {
                roi = {c.width, std::min(100, c.height - y)};
                const int flag = y == 0 ? 1 : y + 100 < c.height ? 4 : 2;
                EXPECT_EQ(c.fn.call(src.row(y), src.step(), strips.row(written), strips.step(), &roi, st.s, flag), oruStsOk);
                written += roi.height;
            }
            EXPECT_TRUE(whole.region_bytes() == strips.region_bytes());
            EXPECT_TRUE(whole.guards_intact());
            return whole.region_bytes();
        });
    }
}
