// Gaussian pyramids: check orders, scratch sizes, exact values against
// references built from the mirror rule and from the 32f formulas, scratch
// confined to the queried size, and every path against the scalar twin.
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "a6/pyr.h"
#include "orucv.h"
#include "pyramid_list.h"
#include "support/image.h"
#include "support/simd.h"

using namespace orutest;

namespace {

template <class T>
using PyrFn = OruStatus (*)(const T*, int, T*, int, OruSize, Oru8u*);

template <class T>
struct Filter {
    PyrFn<T> fn;
    int ch;
    bool down;
    const char* name;
};

template <class T>
constexpr int type_code() {
    return std::is_same<T, Oru8u>::value ? oruDataType8u : std::is_same<T, Oru8s>::value ? oruDataType8s : oruDataType32f;
}

// The filters of the list on one pixel type.
template <class Pixel, class T, int kChannels, bool kDown, auto F>
void add_filter(std::vector<Filter<Pixel>>& filters, const char* name) {
    if constexpr (std::is_same<T, Pixel>::value) filters.push_back({F, kChannels, kDown, name});
}
#define FILTER_Down(name, T, CH) add_filter<Pixel, T, CH, true, name>(all, #name);
#define FILTER_Up(name, T, CH) add_filter<Pixel, T, CH, false, name>(all, #name);
#define FILTER_DownSize(name, T, CH)
#define FILTER_UpSize(name, T, CH)
#define FILTER(name, shape, T, CH) FILTER_##shape(name, T, CH)
template <class Pixel>
std::vector<Filter<Pixel>> filters() {
    std::vector<Filter<Pixel>> all;
    ORUCV_PYRAMID_FUNCTIONS(FILTER)
    EXPECT_EQ(all.size(), 4u) << "filters of one type: down and up, one and three channels";
    return all;
}
template <class T>
Filter<T> filter(bool down, int ch) {
    for (const Filter<T>& f : filters<T>())
        if (f.down == down && f.ch == ch) return f;
    ADD_FAILURE() << "no such filter in the list";
    return filters<T>()[0];
}

int buffer_size(bool down, int width, int type, int ch) {
    int size = -1;
    const OruStatus s = down ? oruiPyrDownGetBufSize_Gauss5x5(width, type, ch, &size)
                             : oruiPyrUpGetBufSize_Gauss5x5(width, type, ch, &size);
    EXPECT_EQ(s, oruStsOk);
    return size;
}

OruSize out_size(OruSize in, bool down) {
    return down ? OruSize{in.width / 2, in.height / 2} : OruSize{in.width * 2, in.height * 2};
}

// Runs a filter with scratch of exactly the queried size (shifted by
// misalign bytes) and checks that nothing outside the destination region and
// the scratch changed.
template <class T>
void run(const Filter<T>& f, const GuardedImage<T>& src, GuardedImage<T>& dst, int misalign = 0) {
    GuardedImage<uint8_t> buffer(buffer_size(f.down, src.width(), type_code<T>(), f.ch), 1, 1, 0, misalign);
    ASSERT_EQ(f.fn(src.data(), src.step(), dst.data(), dst.step(), {src.width(), src.height()}, buffer.data()),
              oruStsOk);
    EXPECT_TRUE(dst.guards_intact());
    EXPECT_TRUE(buffer.guards_intact()) << "scratch used beyond the queried size";
}

// --- References.

int mirror(int i, int n) {
    while (i < 0 || i >= n) i = i < 0 ? -i : 2 * n - 2 - i;
    return i;
}
const int kRow[5] = {1, 4, 6, 4, 1};

// Integer sums straight from the mirror rule: PyrDown on the source,
// PyrUp on the zero-inserted grid (2w x 2h, source at even positions).
template <class T>
std::vector<long> integer_sums(const GuardedImage<T>& src, bool down) {
    const int w = src.width(), h = src.height(), ch = src.channels();
    const OruSize o = out_size({w, h}, down);
    std::vector<long> out;
    for (int y = 0; y < o.height; ++y)
        for (int x = 0; x < o.width; ++x)
            for (int c = 0; c < ch; ++c) {
                long sum = 0;
                for (int dy = -2; dy <= 2; ++dy)
                    for (int dx = -2; dx <= 2; ++dx) {
                        long v;
                        if (down) {
                            v = src.at(mirror(2 * x + dx, w), mirror(2 * y + dy, h), c);
                        } else {
                            const int gx = mirror(x + dx, 2 * w), gy = mirror(y + dy, 2 * h);
                            v = gx % 2 || gy % 2 ? 0 : src.at(gx / 2, gy / 2, c);
                        }
                        sum += kRow[dx + 2] * kRow[dy + 2] * v;
                    }
                out.push_back(sum);
            }
    return out;
}

long floor_div(long a, long b) { return a >= 0 ? a / b : -((-a + b - 1) / b); }

// The 32f passes, each sum written left to right as the filters define it.
std::vector<float> down_1d(const std::vector<float>& r) {
    const int n = static_cast<int>(r.size());
    std::vector<float> out(n / 2);
    for (int x = 0; x < n / 2; ++x) {
        const int i = 2 * x;
        if (n == 2) out[x] = 8.0f * (r[0] + r[1]);
        else if (x == 0) out[x] = 2.0f * (3.0f * r[0] + 4.0f * r[1] + r[2]);
        else if (x == n / 2 - 1) out[x] = 7.0f * r[n - 2] + 4.0f * (r[n - 3] + r[n - 1]) + r[n - 4];
        else out[x] = 6.0f * r[i] + 4.0f * (r[i - 1] + r[i + 1]) + r[i - 2] + r[i + 2];
    }
    return out;
}
std::vector<float> up_1d(const std::vector<float>& r) {
    const int n = static_cast<int>(r.size());
    std::vector<float> out(2 * n);
    if (n == 1) {
        out[0] = out[1] = 8.0f * r[0];
        return out;
    }
    out[0] = 2.0f * (3.0f * r[0] + r[1]);
    for (int j = 1; j < n - 1; ++j) out[2 * j] = r[j - 1] + 6.0f * r[j] + r[j + 1];
    for (int j = 0; j < n - 1; ++j) out[2 * j + 1] = 4.0f * (r[j] + r[j + 1]);
    out[2 * n - 2] = r[n - 2] + 7.0f * r[n - 1];
    out[2 * n - 1] = 8.0f * r[n - 1];
    return out;
}

float from_bits(uint32_t b) {
    float f;
    std::memcpy(&f, &b, 4);
    return f;
}

// Rows first, then columns of the filtered rows, then the scale; every NaN
// result is stored as the quiet NaN 0x7FC00000.
std::vector<float> float_reference(const GuardedImage<float>& src, bool down) {
    const int w = src.width(), h = src.height(), ch = src.channels();
    auto pass = down ? down_1d : up_1d;
    const OruSize o = out_size({w, h}, down);
    std::vector<float> out(static_cast<size_t>(o.width) * o.height * ch);
    for (int c = 0; c < ch; ++c) {
        std::vector<std::vector<float>> rows;
        for (int y = 0; y < h; ++y) {
            std::vector<float> r(w);
            for (int x = 0; x < w; ++x) r[x] = src.at(x, y, c);
            rows.push_back(pass(r));
        }
        for (int x = 0; x < o.width; ++x) {
            std::vector<float> column(h);
            for (int y = 0; y < h; ++y) column[y] = rows[y][x];
            const std::vector<float> v = pass(column);
            for (int y = 0; y < o.height; ++y) {
                const float scaled = v[y] * (down ? 0.00390625f : 0.015625f);
                out[(static_cast<size_t>(y) * o.width + x) * ch + c] = scaled == scaled ? scaled : from_bits(0x7FC00000u);
            }
        }
    }
    return out;
}

template <class T>
std::vector<T> reference(const GuardedImage<T>& src, bool down) {
    if constexpr (std::is_same<T, float>::value) {
        return float_reference(src, down);
    } else {
        std::vector<T> out;
        for (long sum : integer_sums(src, down))
            out.push_back(static_cast<T>(down ? floor_div(sum + 128, 256) : floor_div(sum + 32, 64)));
        return out;
    }
}

template <class T>
void expect_reference(const GuardedImage<T>& src, const GuardedImage<T>& dst, bool down) {
    const std::vector<T> ref = reference(src, down);
    const OruSize o = out_size({src.width(), src.height()}, down);
    const int ch = src.channels();
    for (int y = 0; y < o.height; ++y)
        for (int x = 0; x < o.width; ++x)
            for (int c = 0; c < ch; ++c) {
                const T expected = ref[(static_cast<size_t>(y) * o.width + x) * ch + c];
                ASSERT_EQ(0, std::memcmp(&dst.at(x, y, c), &expected, sizeof(T)))
                    << (down ? "down " : "up ") << ch << "ch " << src.width() << "x" << src.height() << " at " << x
                    << "," << y << "," << c << ": " << +dst.at(x, y, c) << " != " << +expected;
            }
}

template <class T>
void fill_source(GuardedImage<T>& img, uint64_t seed) {
    if (std::is_floating_point<T>::value) img.fill_random(seed, -1000.0, 1000.0);
    else img.fill_random(seed);
}

}  // namespace

// --- The list.

// The list makes both the wrappers and this test's table, so its directions
// and channel counts are checked against the names.
template <class T>
void check_filter_columns() {
    for (const Filter<T>& f : filters<T>()) {
        const std::string name = f.name;
        EXPECT_EQ(f.down, name.find("PyrDown_") != std::string::npos) << name;
        EXPECT_NE(name.find(f.ch == 3 ? "_C3R" : "_C1R"), std::string::npos) << name;
    }
}
TEST(PyramidList, ColumnsFollowTheNames) {
    check_filter_columns<Oru8u>();
    check_filter_columns<Oru8s>();
    check_filter_columns<Oru32f>();
}

// --- Check orders.

template <class T>
void check_filter_order(const Filter<T>& f) {
    const int e = sizeof(T) == 4 ? 4 : 1, ch = f.ch, w = 8, h = 4;
    GuardedImage<T> src(w, h, ch), dst(2 * w, 2 * h, ch);
    GuardedImage<uint8_t> buffer(4096, 1);
    const auto before = dst.snapshot(), scratch = buffer.snapshot();
    const int ss = w * ch * e, ds = (f.down ? w / 2 : 2 * w) * ch * e;
    auto call = [&](const T* s, int sstep, T* d, int dstep, OruSize roi, Oru8u* b) {
        return f.fn(s, sstep, d, dstep, roi, b);
    };
    T* d = dst.data();
    const T* s = src.data();
    Oru8u* b = buffer.data();
    EXPECT_EQ(call(nullptr, ss, d, ds, {-2, -2}, b), oruStsNullPointer);
    EXPECT_EQ(call(s, -1, nullptr, ds, {w, h}, b), oruStsNullPointer);
    EXPECT_EQ(call(s, ss, d, ds, {w, h}, nullptr), oruStsNullPointer);
    // Every size and step fault is a size fault.
    EXPECT_EQ(call(s, ss, d, ds, {-2, h}, b), oruStsSize);
    EXPECT_EQ(call(s, ss, d, ds, {w, -2}, b), oruStsSize);
    EXPECT_EQ(call(s, ss - 1, d, ds, {w, h}, b), oruStsSize);
    EXPECT_EQ(call(s, -ss, d, ds, {w, h}, b), oruStsSize);
    EXPECT_EQ(call(s, ss, d, ds - 1, {w, h}, b), oruStsSize);
    if (f.down) {
        EXPECT_EQ(call(s, ss, d, ds, {w - 1, h}, b), oruStsSize);
        EXPECT_EQ(call(s, ss, d, ds, {w, h - 1}, b), oruStsSize);
        EXPECT_EQ(call(s, ss, d, ds, {5, h}, b), oruStsSize);
    } else {
        EXPECT_EQ(call(s, ss, d, w * ch * e, {w, h}, b), oruStsSize);  // room for w, not 2w
    }
    if (e == 4) {
        EXPECT_EQ(call(s, ss + 2, d, ds, {w, h}, b), oruStsSize);  // not oruStsNotEvenStep
        EXPECT_EQ(call(s, ss, d, ds + 6, {w, h}, b), oruStsSize);
    }
    // Empty regions succeed and touch nothing, whatever the (non-negative) steps.
    EXPECT_EQ(call(s, 0, d, 0, {0, h}, b), oruStsOk);
    EXPECT_EQ(call(s, ss, d, ds, {w, 0}, b), oruStsOk);
    EXPECT_EQ(call(s, 0, d, 0, {0, 0}, b), oruStsOk);
    EXPECT_EQ(dst.snapshot(), before);
    EXPECT_EQ(buffer.snapshot(), scratch);
    // Exact minimum steps pass.
    if (!f.down) {
        EXPECT_EQ(call(s, ss, d, ds, {w - 1, h - 1}, b), oruStsOk);  // odd sizes are fine upwards
    }
    EXPECT_EQ(call(s, ss, d, ds, {w, h}, b), oruStsOk);
}

TEST(PyramidChecks, FilterOrder) {
    for (const auto& f : filters<Oru8u>()) check_filter_order(f);
    for (const auto& f : filters<Oru8s>()) check_filter_order(f);
    for (const auto& f : filters<Oru32f>()) check_filter_order(f);
}

TEST(PyramidChecks, BufferSizes) {
    auto down = [](int w, int type, int ch, int* size) { return oruiPyrDownGetBufSize_Gauss5x5(w, type, ch, size); };
    auto up = [](int w, int type, int ch, int* size) { return oruiPyrUpGetBufSize_Gauss5x5(w, type, ch, size); };
    EXPECT_EQ(down(640, 1, 1, nullptr), oruStsNullPointer);
    EXPECT_EQ(up(-1, 0, 0, nullptr), oruStsNullPointer);
    struct Case {
        bool is_down;
        int width, type, ch;
        OruStatus status;
        int size;
    } cases[] = {
        {true, 640, 1, 1, oruStsOk, 6 * 688},     // rows of 320 * 2 + 48 bytes
        {true, 640, 2, 1, oruStsOk, 6 * 688},     //
        {true, 10, 9, 3, oruStsOk, 6 * 352},      // 3 * (5 * 4 + 96) = 348, rounded up
        {true, 0, 2, 3, oruStsOk, 6 * 144},       //
        {false, 5, 1, 1, oruStsOk, 3 * 144},      // 5 * 8 + 96 = 136, rounded up
        {false, 5, 9, 3, oruStsOk, 3 * 416},      // 3 * 136 = 408
        {false, 0, 2, 1, oruStsOk, 3 * 96},       //
        {true, 7, 1, 1, oruStsSize, 0},           // odd width
        {true, -2, 1, 1, oruStsSize, 0},          //
        {false, -1, 1, 1, oruStsSize, 0},         //
        {true, 7, 1, 2, oruStsSize, 0},           // width before channels
        {true, 8, 3, 2, oruStsNumChannels, 0},    // channels before type
        {false, 8, 1, 0, oruStsNumChannels, 0},   //
        {false, 8, 3, 3, oruStsDataType, 0},      //
        {true, 8, 0, 1, oruStsDataType, 0},       //
        {true, INT_MAX - 1, 9, 3, oruStsSize, 0}, // beyond an int
        {false, INT_MAX / 8, 1, 1, oruStsSize, 0},
    };
    for (const Case& c : cases) {
        int size = 12345;
        EXPECT_EQ((c.is_down ? down : up)(c.width, c.type, c.ch, &size), c.status) << c.width << " " << c.type;
        EXPECT_EQ(size, c.size) << c.width << " " << c.type << " " << c.ch;
    }
}

// --- Exact values.

TEST(PyramidValues, TwoByTwoDownIsRoundedMean) {
    const int quads[][4] = {{0, 0, 0, 0}, {1, 1, 0, 0}, {1, 0, 0, 0}, {3, 0, 0, 0}, {255, 255, 255, 254},
                            {10, 20, 30, 41}, {255, 0, 255, 0}};
    for (const auto& q : quads) {
        GuardedImage<Oru8u> src(2, 2), dst(1, 1);
        GuardedImage<Oru8s> ssrc(2, 2), sdst(1, 1);
        for (int i = 0; i < 4; ++i) src.at(i % 2, i / 2) = static_cast<Oru8u>(q[i]);
        for (int i = 0; i < 4; ++i) ssrc.at(i % 2, i / 2) = static_cast<Oru8s>(q[i] - 128);
        run(filter<Oru8u>(true, 1), src, dst);
        run(filter<Oru8s>(true, 1), ssrc, sdst);
        const int sum = q[0] + q[1] + q[2] + q[3];
        EXPECT_EQ(dst.at(0, 0), (64 * sum + 128) >> 8);
        EXPECT_EQ(sdst.at(0, 0), floor_div(64 * (sum - 512) + 128, 256));  // half rounds up: -0.5 -> 0
    }
}

// Constant images keep their value at both scales, in every channel; 255
// stays 255 (no overflow in the rounding), 8s keeps both extremes.
template <class T>
void check_constants(std::initializer_list<T> values) {
    for (const auto& f : filters<T>())
        for (T v : values)
            for (OruSize size : {OruSize{1, 1}, OruSize{2, 2}, OruSize{6, 4}, OruSize{38, 10}, OruSize{9, 3}}) {
                if (f.down && (size.width % 2 || size.height % 2)) continue;
                const OruSize o = out_size(size, f.down);
                GuardedImage<T> src(size.width, size.height, f.ch), dst(o.width, o.height, f.ch);
                for (int y = 0; y < size.height; ++y)
                    for (int x = 0; x < size.width; ++x)
                        for (int c = 0; c < f.ch; ++c) src.at(x, y, c) = static_cast<T>(v - (c == 1 ? 1 : 0));
                run(f, src, dst);
                for (int y = 0; y < o.height; ++y)
                    for (int x = 0; x < o.width; ++x)
                        for (int c = 0; c < f.ch; ++c) ASSERT_EQ(dst.at(x, y, c), static_cast<T>(v - (c == 1 ? 1 : 0)));
            }
}
TEST(PyramidValues, ConstantImages) {
    check_constants<Oru8u>({255, 1, 128});
    check_constants<Oru8s>({127, -127, 0});
    check_constants<Oru32f>({100.25f, -3.5f, 0.75f});
}

// Odd and small sizes, random contents, every filter, against the references.
template <class T>
void check_against_reference() {
    const OruSize sizes[] = {{1, 1}, {2, 2}, {1, 5}, {3, 2}, {2, 6}, {4, 4}, {6, 2}, {5, 7}, {10, 8}, {26, 6}, {34, 12}};
    for (const auto& f : filters<T>())
        for (const OruSize size : sizes) {
            if (f.down && (size.width % 2 || size.height % 2)) continue;
            const OruSize o = out_size(size, f.down);
            GuardedImage<T> src(size.width, size.height, f.ch, 8 * sizeof(T), 3 * sizeof(T));
            GuardedImage<T> dst(o.width, o.height, f.ch, 4 * sizeof(T), sizeof(T));
            fill_source(src, size.width * 100 + size.height);
            run(f, src, dst, 5);
            expect_reference(src, dst, f.down);
        }
}
TEST(PyramidValues, AgainstReference8u) { check_against_reference<Oru8u>(); }
TEST(PyramidValues, AgainstReference8s) { check_against_reference<Oru8s>(); }
TEST(PyramidValues, AgainstReference32f) { check_against_reference<Oru32f>(); }

// On integer samples every 32f sum is exact, so the float formulas must
// give the mirror rule's sums, scaled.
TEST(PyramidValues, FloatFormulasFollowTheMirrorRule) {
    for (bool down : {true, false})
        for (OruSize size : {OruSize{2, 2}, OruSize{4, 6}, OruSize{1, 3}, OruSize{12, 10}, OruSize{7, 5}}) {
            if (down && (size.width % 2 || size.height % 2)) continue;
            GuardedImage<float> src(size.width, size.height);
            src.fill_random(size.width * 7 + size.height, -255, 255);
            for (int y = 0; y < size.height; ++y)
                for (int x = 0; x < size.width; ++x) src.at(x, y) = static_cast<float>(static_cast<int>(src.at(x, y)));
            const std::vector<float> f = float_reference(src, down);
            const std::vector<long> sums = integer_sums(src, down);
            for (size_t i = 0; i < sums.size(); ++i) ASSERT_EQ(f[i], sums[i] / (down ? 256.0f : 64.0f)) << i;
        }
}

// The first output of either pass is twice a half-weight sum: values whose
// sixfold or eightfold would overflow still give a finite result there.
TEST(PyramidValues, FirstEdgeIsTwiceTheHalfSum) {
    expect_same_on_every_path([] {
        std::vector<uint8_t> out;
        // Across: 8 * 5e37 overflows, 2 * (4 * 5e37 - 4e37) does not; the
        // second row is the first negated, so the output is 0.
        GuardedImage<float> a(4, 2), a_dst(2, 1);
        const float row[4] = {0.0f, 5e37f, -4e37f, 0.0f};
        for (int x = 0; x < 4; ++x) a.at(x, 0) = row[x], a.at(x, 1) = -row[x];
        run(filter<Oru32f>(true, 1), a, a_dst);
        EXPECT_EQ(a_dst.at(0, 0), 0.0f);
        // Across, upwards: 6 * 1e38 overflows, 2 * (3e38 - 2.9e38) does not.
        GuardedImage<float> b(2, 2), b_dst(4, 4);
        b.at(0, 0) = 1e38f, b.at(1, 0) = -2.9e38f, b.at(0, 1) = b.at(1, 1) = 0.0f;
        run(filter<Oru32f>(false, 1), b, b_dst);
        EXPECT_FLOAT_EQ(b_dst.at(0, 0), 6 * 2e37f / 64);
        // Down the columns, wide enough for every vector loop: rows of
        // (v, 0) pairs filter to 8v, the top output is
        // 2 * (4 * 5e37 - 4e37) / 256 while 8 * 5e37 overflows.
        const float col[4] = {0.0f, 5e37f / 8, -4e37f / 8, 0.0f};
        GuardedImage<float> c(80, 4), c_dst(40, 2);
        for (int y = 0; y < 4; ++y)
            for (int x = 0; x < 80; ++x) c.at(x, y) = x % 2 ? 0.0f : col[y];
        run(filter<Oru32f>(true, 1), c, c_dst);
        for (int x = 0; x < 40; ++x) EXPECT_FLOAT_EQ(c_dst.at(x, 0), 3.2e38f / 256) << x;
        // Down the columns upwards: constant rows filter to 8v, the top
        // output is 2 * (3e38 - 2.9e38) / 64 while 6 * 1e38 overflows.
        GuardedImage<float> d(20, 2), d_dst(40, 4);
        for (int x = 0; x < 20; ++x) d.at(x, 0) = 1e38f / 8, d.at(x, 1) = -2.9e38f / 8;
        run(filter<Oru32f>(false, 1), d, d_dst);
        for (int x = 0; x < 40; ++x) EXPECT_FLOAT_EQ(d_dst.at(x, 0), 2e37f / 64) << x;
        for (const GuardedImage<float>* img : {&a_dst, &b_dst, &c_dst, &d_dst}) {
            const auto bytes = img->region_bytes();
            out.insert(out.end(), bytes.begin(), bytes.end());
        }
        return out;
    });
}

// NaNs of any sign and payload, infinities of both signs and negative
// zeros: one result on every path, NaNs stored as the quiet NaN.
TEST(PyramidValues, SpecialFloats) {
    const float specials[] = {from_bits(0x7FC12345u), from_bits(0xFFC00001u), from_bits(0x7F800001u),
                              std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity(),
                              -0.0f, 0.0f, 3.0e38f};
    for (const auto& f : filters<Oru32f>())
        for (int width : {2, 6, 24, 38, 41}) {
            if (f.down && width % 2) continue;
            const int height = 6;
            const OruSize o = out_size({width, height}, f.down);
            GuardedImage<float> src(width, height, f.ch);
            Rng rng(width);
            for (int y = 0; y < height; ++y)
                for (int i = 0; i < width * f.ch; ++i)
                    src.row(y)[i] = rng.uniform(0, 5) == 0 ? specials[rng.uniform(0, 7)] : rng.uniform(-4.0f, 4.0f);
            expect_same_on_every_path([&] {
                GuardedImage<float> dst(o.width, o.height, f.ch);
                run(f, src, dst);
                expect_reference(src, dst, f.down);
                return dst.region_bytes();
            });
        }
}

// --- Every path: widths around every vector step, padded and misaligned
// rows, misaligned scratch, all heights' vertical forms.

template <class T>
void check_paths() {
    for (const auto& f : filters<T>())
        for (int width = f.down ? 2 : 1; width <= (f.down ? 140 : 70); width += f.down ? 2 : 1)
            for (const Layout& layout : layouts_for(sizeof(T))) {
                const int height = f.down ? 2 + 2 * (width / 2 % 4) : 1 + width % 4;
                const OruSize o = out_size({width, height}, f.down);
                GuardedImage<T> src(width, height, f.ch, layout.pad_bytes, layout.misalign_bytes);
                fill_source(src, width * 13 + layout.pad_bytes);
                expect_same_on_every_path([&] {
                    GuardedImage<T> dst(o.width, o.height, f.ch, layout.pad_bytes, layout.misalign_bytes);
                    run(f, src, dst, (width + layout.pad_bytes) % 16);
                    expect_reference(src, dst, f.down);
                    return dst.region_bytes();
                });
            }
}
TEST(PyramidPaths, EightBitUnsigned) { check_paths<Oru8u>(); }
TEST(PyramidPaths, EightBitSigned) { check_paths<Oru8s>(); }
TEST(PyramidPaths, Float) { check_paths<Oru32f>(); }

// Tight images in allocations of their exact size, so that a sanitizer
// build sees any access before the first or after the last row.
template <class T>
void check_exact_allocations() {
    for (const auto& f : filters<T>())
        for (int width : {2, 4, 18, 20, 34, 36, 50, 66}) {
            const int height = 4;
            const OruSize o = out_size({width, height}, f.down);
            std::vector<T> src(static_cast<size_t>(width) * height * f.ch), dst(static_cast<size_t>(o.width) * o.height * f.ch);
            for (size_t i = 0; i < src.size(); ++i) src[i] = static_cast<T>(i * 37 % 101);
            std::vector<uint8_t> buffer(buffer_size(f.down, width, type_code<T>(), f.ch));
            expect_same_on_every_path([&] {
                EXPECT_EQ(f.fn(src.data(), width * f.ch * static_cast<int>(sizeof(T)), dst.data(),
                               o.width * f.ch * static_cast<int>(sizeof(T)), {width, height}, buffer.data()),
                          oruStsOk);
                return dst;
            });
        }
}
TEST(PyramidPaths, ExactAllocations) {
    check_exact_allocations<Oru8u>();
    check_exact_allocations<Oru8s>();
    check_exact_allocations<Oru32f>();
}

// Streaming stores: the vertical kernels called with the stream hint, rows
// at every alignment, the odd row of PyrUp on or off the even row's
// alignment; the results must equal the scalar twin's plain stores.
TEST(PyramidPaths, StreamedRows) {
    Rng rng(11);
    uint16_t r8[5][96];
    float r32[5][96];
    for (int k = 0; k < 5; ++k)
        for (int i = 0; i < 96; ++i) r8[k][i] = static_cast<uint16_t>(rng.uniform(0, 2040)), r32[k][i] = rng.uniform(-9.0f, 9.0f);
    const uint16_t* rows8[5] = {r8[0], r8[1], r8[2], r8[3], r8[4]};
    const float* rows32[5] = {r32[0], r32[1], r32[2], r32[3], r32[4]};
    for (int n = 1; n <= 90; n += 11)
        for (int shift = 0; shift < 10; ++shift) {
            const int odd_shift = shift + (n % 2) * 3;
            expect_same_on_every_path([&] {
                const orucv::a6::PyrKernels& k = orucv::a6::pyr_kernels();
                alignas(64) uint8_t down8[128] = {}, even8[128] = {}, odd8[128] = {};
                alignas(64) float down32[4][128] = {}, even32[4][128] = {}, odd32[4][128] = {};
                k.down_v8(rows8, n, down8 + shift, 0x80, true);
                k.up_v8(r8[0], r8[1], r8[2], n, even8 + shift, odd8 + odd_shift, 0, true);
                for (int f = 0; f < 4; ++f) {
                    k.down_v32(rows32, f, n, down32[f] + shift, true);
                    k.up_v32(r32[0], r32[1], r32[2], f, n, even32[f] + shift, odd32[f] + odd_shift, true);
                }
                std::vector<uint8_t> out(down8, down8 + 128);
                for (const void* p : {(const void*)even8, (const void*)odd8}) out.insert(out.end(), (const uint8_t*)p, (const uint8_t*)p + 128);
                for (const void* p : {(const void*)down32, (const void*)even32, (const void*)odd32})
                    out.insert(out.end(), (const uint8_t*)p, (const uint8_t*)p + sizeof(down32));
                return out;
            });
        }
}

// Images large enough to stream their destination rows, with padded and
// misaligned rows.
template <class T>
void check_large(const Filter<T>& f, int width, int height) {
    const OruSize o = out_size({width, height}, f.down);
    GuardedImage<T> src(width, height, f.ch, 4 * sizeof(T));
    fill_source(src, 5);
    expect_same_on_every_path([&] {
        GuardedImage<T> dst(o.width, o.height, f.ch, 8 * sizeof(T), sizeof(T));
        run(f, src, dst);
        return dst.region_bytes();
    });
}
TEST(PyramidPaths, StreamedImages) {
    check_large(filter<Oru32f>(false, 1), 1030, 820);   // PyrUp C1: 3.4 + 13.5 MB
    check_large(filter<Oru32f>(true, 3), 1200, 1000);  // PyrDown C3: 14.4 + 3.6 MB
    check_large(filter<Oru8u>(false, 3), 1024, 1100);   // PyrUp C3: 3.4 + 13.5 MB
}

// The row engines take the channel count as an argument; anything but 1 or
// 3 is an internal fault that aborts with the condition and the file.
TEST(PyramidDeathTest, ChannelCountInvariant) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    Oru8u src[16] = {}, dst[64] = {}, buffer[1024] = {};
    float fsrc[16] = {}, fdst[64] = {};
    EXPECT_DEATH(orucv::a6::ownPyrUpG5x5_8u(src, 4, dst, 16, {2, 2}, buffer, 2), "src/orcvpyr:.*Cs == 1 \\|\\| Cs == 3");
    EXPECT_DEATH(orucv::a6::ownPyrDownG5x5_32f(fsrc, 16, fdst, 16, {2, 2}, buffer, 4),
                 "src/orcvpyr32f:.*Cs == 1 \\|\\| Cs == 3");
    EXPECT_DEATH(orucv::a6::ownPyrUpG5x5_32f(fsrc, 16, fdst, 32, {2, 2}, buffer, 0), "src/orcvpyr32f:.*Cs == 1");
}
