// Template matching: check orders, the scratch size, exact byte sums, the
// normalised scores against a double-precision model, degenerate patches and
// templates, and every path against the scalar twin.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

#include "matchtemplate_list.h"
#include "orucv.h"
#include "support/image.h"
#include "support/simd.h"

using namespace orutest;

namespace {

// The methods and their size queries, in the order of the list's queries.
#define METHOD_BufSize(name, method) method,
#define METHOD_Match(name, method)
#define METHOD(name, shape, T, method) METHOD_##shape(name, method)
enum Method { ORUCV_MATCHTEMPLATE_FUNCTIONS(METHOD) kMethods };
#define NAME_BufSize(name, method) #method,
#define NAME_Match(name, method)
#define NAME(name, shape, T, method) NAME_##shape(name, method)
const char* const kNames[kMethods] = {ORUCV_MATCHTEMPLATE_FUNCTIONS(NAME)};

using SizeFn = OruStatus (*)(OruSize, OruSize, int, int*);
#define SIZE_FN_BufSize(name) name,
#define SIZE_FN_Match(name)
#define SIZE_FN(name, shape, T, method) SIZE_FN_##shape(name)
const SizeFn kSize[kMethods] = {ORUCV_MATCHTEMPLATE_FUNCTIONS(SIZE_FN)};
#define SIZE_NAME_BufSize(name) #name,
#define SIZE_NAME_Match(name)
#define SIZE_NAME(name, shape, T, method) SIZE_NAME_##shape(name)
const char* const kSizeNames[kMethods] = {ORUCV_MATCHTEMPLATE_FUNCTIONS(SIZE_NAME)};

template <class T>
using MatchFn = OruStatus (*)(const T*, int, OruSize, const T*, int, OruSize, Oru32f*, int, Oru8u*);

template <class T>
constexpr int type_code() {
    return std::is_same<T, Oru8u>::value ? oruDataType8u : std::is_same<T, Oru8s>::value ? oruDataType8s : oruDataType32f;
}

// The match functions of the list on one pixel type, by method, and their
// names.
template <class Pixel>
struct MatchNames {
    static const char* name[kMethods];
};
template <class Pixel>
const char* MatchNames<Pixel>::name[kMethods] = {};
template <class Pixel, class T, auto F>
void set_match(MatchFn<Pixel>& slot, int method, const char* name) {
    if constexpr (std::is_same<T, Pixel>::value) slot = F, MatchNames<Pixel>::name[method] = name;
}
#define MATCH_FN_BufSize(name, T, method)
#define MATCH_FN_Match(name, T, method) set_match<Pixel, T, name>(fns[method], method, #name);
#define MATCH_FN(name, shape, T, method) MATCH_FN_##shape(name, T, method)
template <class Pixel>
std::array<MatchFn<Pixel>, kMethods> match_fns() {
    std::array<MatchFn<Pixel>, kMethods> fns{};
    ORUCV_MATCHTEMPLATE_FUNCTIONS(MATCH_FN)
    for (int m = 0; m < kMethods; ++m) EXPECT_TRUE(fns[m]) << kNames[m] << " has no function of this type";
    return fns;
}
template <class T>
MatchFn<T> match_fn(int method) {
    static const std::array<MatchFn<T>, kMethods> fns = match_fns<T>();
    return fns[method];
}

// Caller scratch of exactly the reported size, starting `misalign` bytes
// after a 64-byte boundary and ending against an inaccessible page.
class Scratch {
public:
    Scratch(int size, int misalign) : bytes_(size, 1, 1, 0, gap(size, misalign)) {}
    Oru8u* data() { return bytes_.data(); }
    bool guards_intact() const { return bytes_.guards_intact(); }

private:
    static int gap(int size, int misalign) { return ((-size - misalign) % 64 + 64) % 64; }
    GuardedImage<uint8_t> bytes_;
};

int buffer_size(int method, OruSize src, OruSize tpl, int type) {
    int size = -1;
    EXPECT_EQ(kSize[method](src, tpl, type, &size), oruStsOk);
    return size;
}

// Runs one match function with exactly the scratch it asks for and checks
// that nothing outside the W' x H' destination region and the scratch moved.
template <class T>
std::vector<float> run_match(int method, const GuardedImage<T>& src, const GuardedImage<T>& tpl, int misalign = 5,
                             int dst_pad = 12) {
    const OruSize ss{src.width(), src.height()}, ts{tpl.width(), tpl.height()};
    const int w = ss.width - ts.width + 1, h = ss.height - ts.height + 1;
    Scratch scratch(buffer_size(method, ss, ts, type_code<T>()), misalign);
    GuardedImage<Oru32f> dst(w, h, 1, dst_pad, 0);
    EXPECT_EQ(match_fn<T>(method)(src.data(), src.step(), ss, tpl.data(), tpl.step(), ts, dst.data(), dst.step(),
                                 scratch.data()),
              oruStsOk)
        << kNames[method];
    EXPECT_TRUE(dst.guards_intact()) << kNames[method];
    EXPECT_TRUE(scratch.guards_intact()) << kNames[method];
    std::vector<float> out;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) out.push_back(dst.at(x, y));
    return out;
}

// Double-precision model: sums over the patch at (x, y), then the formulas
// with an exact reciprocal square root.
struct Sums {
    double d = 0, c = 0, s = 0, s2 = 0, t = 0, t2 = 0;
    int64_t d_exact = 0, c_exact = 0;
};

template <class T>
Sums sums_at(const GuardedImage<T>& src, const GuardedImage<T>& tpl, int x, int y) {
    Sums r;
    for (int j = 0; j < tpl.height(); ++j)
        for (int i = 0; i < tpl.width(); ++i) {
            const double s = src.at(x + i, y + j), t = tpl.at(i, j);
            r.d += (s - t) * (s - t), r.c += s * t, r.s += s, r.s2 += s * s, r.t += t, r.t2 += t * t;
            if (sizeof(T) == 1) {
                const int64_t si = src.at(x + i, y + j), ti = tpl.at(i, j);
                r.d_exact += (si - ti) * (si - ti), r.c_exact += si * ti;
            }
        }
    return r;
}

double model_score(int method, const Sums& m, int n) {
    const double k = 1.0 / (n + 2.220446049250313e-16);
    auto r = [](double v) { return 1.0 / std::sqrt(std::fabs(v) + 1.1920928955078125e-07); };
    switch (method) {
    case SqDiff: return m.d;
    case SqDiffNormed: return m.d * r(m.t2) * r(m.s2);
    case Corr: return m.c;
    case CorrNormed: return m.c * r(m.t2) * r(m.s2);
    case Coeff: return m.c - m.s * m.t * k;
    default: return (m.c - m.s * m.t * k) * r(m.t2 - m.t * m.t * k) * r(m.s2 - m.s * m.s * k);
    }
}

// Tolerance: normalised scores 1e-5 absolute; the others 1e-6 of the
// magnitudes that meet in them (their float rounding is 6e-8).
double tolerance(int method, const Sums& m) {
    if (method == SqDiffNormed || method == CorrNormed || method == CoeffNormed) return 1e-5;
    return 1e-6 * (std::fabs(model_score(method, m, 1)) + std::sqrt(m.s2 * m.t2) + 1.0);
}

template <class T>
void expect_model(const GuardedImage<T>& src, const GuardedImage<T>& tpl, int method, const std::vector<float>& got) {
    const int w = src.width() - tpl.width() + 1, h = src.height() - tpl.height() + 1, n = tpl.width() * tpl.height();
    ASSERT_EQ(got.size(), static_cast<size_t>(w * h));
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const Sums m = sums_at(src, tpl, x, y);
            const float g = got[y * w + x];
            ASSERT_TRUE(std::isfinite(g)) << kNames[method] << " at " << x << "," << y;
            if (sizeof(T) == 1 && method == SqDiff) {
                ASSERT_EQ(g, static_cast<float>(m.d_exact)) << x << "," << y;
            }
            if (sizeof(T) == 1 && method == Corr) {
                ASSERT_EQ(g, static_cast<float>(m.c_exact)) << x << "," << y;
            }
            // One pixel has no variance: the coefficient is rounding noise.
            if (method == CoeffNormed && n == 1) {
                ASSERT_NEAR(g, 0.0f, 1e-3);
                continue;
            }
            ASSERT_NEAR(g, model_score(method, m, n), tolerance(method, m))
                << kNames[method] << " at " << x << "," << y << " template " << tpl.width() << "x" << tpl.height();
        }
}

template <class T>
void fill(GuardedImage<T>& image, uint64_t seed) {
    if (sizeof(T) == 4) image.fill_random(seed, -100.0, 100.0);
    else image.fill_random(seed);
}

}  // namespace

// The list makes both the wrappers and this test's tables, so its methods
// are checked against the names.
template <class T>
void check_match_columns() {
    match_fn<T>(SqDiff);
    for (int m = 0; m < kMethods; ++m) {
        const std::string name = MatchNames<T>::name[m] ? MatchNames<T>::name[m] : "";
        EXPECT_EQ(name.find(std::string("_") + kNames[m] + "_"), name.find('_')) << name;
    }
}
TEST(MatchTemplateList, ColumnsFollowTheNames) {
    for (int m = 0; m < kMethods; ++m) {
        const std::string name = kSizeNames[m];
        EXPECT_EQ(name.substr(name.rfind('_') + 1), kNames[m]);
    }
    check_match_columns<Oru8u>();
    check_match_columns<Oru8s>();
    check_match_columns<Oru32f>();
}

TEST(MatchTemplateChecks, OrderOfChecks) {
    GuardedImage<Oru8u> src(9, 7), tpl(3, 2);
    GuardedImage<Oru32f> fsrc(9, 7), ftpl(3, 2), dst(7, 6);
    std::vector<Oru8u> buf(4096, 0x5A);
    const auto before = dst.snapshot();
    const auto buf_before = buf;
    const OruSize ss{9, 7}, ts{3, 2};
    auto m8 = [&](const Oru8u* s, int sst, OruSize sz, const Oru8u* t, int tst, OruSize tz, Oru32f* d, int dst_step,
                  Oru8u* b) { return oruiMatchTemplate_SqDiff_8u32f_C1R(s, sst, sz, t, tst, tz, d, dst_step, b); };
    auto m32 = [&](int sst, int tst, int dst_step) {
        return oruiMatchTemplate_CoeffNormed_32f_C1R(fsrc.data(), sst, ss, ftpl.data(), tst, ts, dst.data(), dst_step,
                                                     buf.data());
    };
    // Pointers first, then sizes (width before the rest), then each step.
    EXPECT_EQ(m8(nullptr, 0, {-1, -1}, tpl.data(), 0, {0, 0}, dst.data(), 0, buf.data()), oruStsNullPointer);
    EXPECT_EQ(m8(src.data(), 9, ss, tpl.data(), 3, ts, dst.data(), 28, nullptr), oruStsNullPointer);
    EXPECT_EQ(m8(src.data(), 9, ss, nullptr, 3, ts, dst.data(), 28, buf.data()), oruStsNullPointer);
    EXPECT_EQ(m8(src.data(), 0, ss, tpl.data(), 0, {0, 2}, dst.data(), 0, buf.data()), oruStsSize);
    EXPECT_EQ(m8(src.data(), 0, ss, tpl.data(), 0, {3, 0}, dst.data(), 0, buf.data()), oruStsSize);
    EXPECT_EQ(m8(src.data(), 0, {2, 7}, tpl.data(), 0, ts, dst.data(), 0, buf.data()), oruStsSize);
    EXPECT_EQ(m8(src.data(), 0, {9, 1}, tpl.data(), 0, ts, dst.data(), 0, buf.data()), oruStsSize);
    EXPECT_EQ(m8(src.data(), 0, ss, tpl.data(), 2, ts, dst.data(), 0, buf.data()), oruStsStep);
    EXPECT_EQ(m8(src.data(), 8, ss, tpl.data(), 3, ts, dst.data(), 0, buf.data()), oruStsStep);
    EXPECT_EQ(m8(src.data(), 9, ss, tpl.data(), 3, ts, dst.data(), 27, buf.data()), oruStsStep);  // W' * 4 - 1
    EXPECT_EQ(m8(src.data(), 9, ss, tpl.data(), 3, ts, dst.data(), 30, buf.data()), oruStsStep);  // not a multiple of 4
    EXPECT_EQ(m32(36, 12, 28), oruStsOk);
    EXPECT_EQ(m32(36, 14, 28), oruStsStep);  // float step not a multiple of 4
    EXPECT_EQ(m32(38, 12, 28), oruStsStep);
    EXPECT_EQ(m32(36, 11, 27), oruStsStep);  // short template step before anything else
    EXPECT_EQ(m32(35, 12, 28), oruStsStep);
    EXPECT_NE(dst.snapshot(), before);  // the valid call above wrote its result
    const auto after_ok = dst.snapshot();
    EXPECT_EQ(m32(36, 12, 26), oruStsStep);
    EXPECT_EQ(dst.snapshot(), after_ok);
    // Odd 8-bit steps are fine; the scratch is never examined.
    GuardedImage<Oru32f> dst8(7, 6);
    const auto dst8_before = dst8.snapshot();
    buf = buf_before;
    EXPECT_EQ(m8(src.data(), 9, ss, tpl.data(), 3, ts, dst8.data(), 27, buf.data()), oruStsStep);
    EXPECT_EQ(dst8.snapshot(), dst8_before);
    EXPECT_EQ(buf, buf_before);
    EXPECT_EQ(m8(src.data(), 9, ss, tpl.data(), 3, ts, dst8.data(), 28, buf.data()), oruStsOk);
}

TEST(MatchTemplateChecks, BufferSizeQueries) {
    for (int m = 0; m < kMethods; ++m) {
        EXPECT_EQ(kSize[m]({8, 8}, {2, 2}, 1, nullptr), oruStsNullPointer);
        int size = 77;
        EXPECT_EQ(kSize[m]({8, 8}, {0, 2}, 1, &size), oruStsSize);
        EXPECT_EQ(size, 0);
        size = 77;
        EXPECT_EQ(kSize[m]({8, 8}, {2, -1}, 3, &size), oruStsSize);  // size before type
        EXPECT_EQ(size, 0);
        size = 77;
        EXPECT_EQ(kSize[m]({8, 8}, {9, 2}, 1, &size), oruStsSize);
        EXPECT_EQ(kSize[m]({8, 8}, {2, 9}, 1, &size), oruStsSize);
        size = 77;
        EXPECT_EQ(kSize[m]({8, 8}, {2, 2}, 3, &size), oruStsDataType);
        EXPECT_EQ(size, 0);
        EXPECT_EQ(kSize[m]({8, 8}, {8, 8}, 9, &size), oruStsOk);
        EXPECT_GT(size, 0);
        EXPECT_EQ(kSize[m]({1 << 16, 1 << 16}, {1 << 15, 1 << 15}, 9, &size), oruStsSize);
        EXPECT_EQ(size, 0);
    }
}

// A(n) = n + 16 rounded up to 32; template, strip (srcH * tplW + srcW),
// block column (H' * 8), 32 for the start, and for the coefficient or
// normalised methods two row-sum blocks and the patch sums.
TEST(MatchTemplateChecks, BufferSizeFormula) {
    auto a = [](long long n) { return (n + 47) / 32 * 32; };
    const OruSize srcs[] = {{10, 8}, {1, 1}, {640, 480}, {33, 7}};
    const OruSize tpls[] = {{3, 2}, {1, 1}, {16, 16}, {33, 7}};
    for (int i = 0; i < 4; ++i)
        for (int type : {1, 2, 9})
            for (int m = 0; m < kMethods; ++m) {
                const OruSize s = srcs[i], t = tpls[i];
                const int e = type == 9 ? 4 : 1, rows = s.height - t.height + 1;
                const bool coeff = m == Coeff || m == CoeffNormed;
                const bool normed = m == SqDiffNormed || m == CorrNormed || m == CoeffNormed;
                long long expected = a(1ll * t.width * t.height * e) + a((1ll * s.height * t.width + s.width) * e) +
                                     32 + a(rows * 8ll);
                if (coeff || normed) expected += 2 * a(s.height * 8ll) + a((coeff + normed) * rows * 8ll);
                EXPECT_EQ(buffer_size(m, s, t, type), expected) << kNames[m] << " type " << type << " case " << i;
            }
    EXPECT_EQ(buffer_size(SqDiff, {10, 8}, {3, 2}, 1), 224);
    EXPECT_EQ(buffer_size(CoeffNormed, {10, 8}, {3, 2}, 1), 544);
}

// Exact integer sums: a 300x250 template of 255s over 255s correlates to
// 75000 * 255^2 > 2^32, and a random one gives exact squared differences.
TEST(MatchTemplateValues, ExactByteSumsPastTwoToThe32) {
    GuardedImage<Oru8u> src(302, 251), tpl(300, 250);
    src.fill(255);
    tpl.fill(255);
    src.at(301, 250) = 0;
    const double big = 75000.0 * 255 * 255;
    ASSERT_GT(big, 4294967296.0);
    expect_same_on_every_path([&] {
        const auto corr = run_match(Corr, src, tpl);
        EXPECT_EQ(corr[0], static_cast<float>(big));
        EXPECT_EQ(corr[5], static_cast<float>(big - 255 * 255));
        const auto sq = run_match(SqDiff, src, tpl);
        EXPECT_EQ(sq[5], 255.0f * 255.0f);
        EXPECT_EQ(sq[0], 0.0f);
        return corr;
    });
    GuardedImage<Oru8s> s8(521, 512), t8(520, 512);
    s8.fill(-128);
    t8.fill(-128);
    ASSERT_GT(520.0 * 512 * 16384, 4294967296.0);
    expect_same_on_every_path([&] {
        const auto corr = run_match(Corr, s8, t8);
        EXPECT_EQ(corr[0], static_cast<float>(520.0 * 512 * 16384));
        const auto sq = run_match(SqDiff, s8, t8);
        EXPECT_EQ(sq[1], 0.0f);
        return corr;
    });
    GuardedImage<Oru8u> rs(260, 140), rt(256, 136);
    rs.fill_random(3);
    rt.fill_random(4);
    expect_same_on_every_path([&] {
        for (int m : {SqDiff, Corr}) expect_model(rs, rt, m, run_match(m, rs, rt));
        return run_match(SqDiff, rs, rt);
    });
}

// Every method and type against the model, over template shapes that reach
// each kernel branch: tiny runs, 8..15 bytes, tails, widths that are and
// are not multiples of 8.
template <class T>
void check_against_model() {
    const OruSize shapes[] = {{1, 1}, {3, 3}, {2, 5}, {5, 3}, {16, 16}, {8, 4}, {7, 9}, {24, 3}, {17, 2}, {13, 11}};
    for (const OruSize& ts : shapes) {
        GuardedImage<T> src(ts.width + 13, ts.height + 6, 1, 3 * sizeof(T), sizeof(T)), tpl(ts.width, ts.height);
        fill(src, ts.width * 100 + ts.height);
        fill(tpl, ts.width * 100 + ts.height + 1);
        for (int m = 0; m < kMethods; ++m) expect_model(src, tpl, m, run_match(m, src, tpl));
    }
}
TEST(MatchTemplateValues, ModelUnsigned) { check_against_model<Oru8u>(); }
TEST(MatchTemplateValues, ModelSigned) { check_against_model<Oru8s>(); }
TEST(MatchTemplateValues, ModelFloat) { check_against_model<Oru32f>(); }

// Tall sources: byte images, and float images under the methods without
// patch sums, are swept in bands of rows, with several columns of scores
// held back and row sums taken eight columns at a time (the last group
// short); every method still matches the model on every path (416 rows, 78
// columns under the 6x5 template; the 16x3 one takes the row-by-row float
// kernel).
template <class T>
void check_tall() {
    for (const OruSize ts : {OruSize{6, 5}, OruSize{16, 3}}) {
        GuardedImage<T> src(83, 420, 1, 5 * sizeof(T), 0), tpl(ts.width, ts.height);
        fill(src, 77);
        fill(tpl, 78);
        for (int m = 0; m < kMethods; ++m)
            expect_same_on_every_path([&] {
                const auto score = run_match(m, src, tpl, 9, 8);
                expect_model(src, tpl, m, score);
                return score;
            });
    }
}
TEST(MatchTemplateValues, TallUnsigned) { check_tall<Oru8u>(); }
TEST(MatchTemplateValues, TallSigned) { check_tall<Oru8s>(); }
TEST(MatchTemplateValues, TallFloat) { check_tall<Oru32f>(); }

// The scores of byte images follow their formulas to the bit: exact sums,
// k = 1 / (N + 2^-52), the Coeff numerator C + (S k)(-T), the variance
// terms T2 - (T T) k and S2 - (S S) k, and r(v) as the
// estimate from the single-precision bits (0xBE6F0000 - b) >> 1 refined by
// four Newton steps y (1.5 - ((a / 2) y) y) in double, a = |v| + 2^-23.
double newton_rsqrt(double v) {
    const double a = std::fabs(v) + 1.1920928955078125e-07;
    const float af = static_cast<float>(a);
    uint32_t b;
    std::memcpy(&b, &af, 4);
    const uint32_t yb = (0xBE6F0000u - b) >> 1;
    float y0;
    std::memcpy(&y0, &yb, 4);
    double y = y0;
    for (int i = 0; i < 4; ++i) y = y * (1.5 - 0.5 * a * y * y);
    return y;
}

// A flat source gives constant patches, whose variance terms are rounding
// noise, as are those of 1x1 templates: there the order of the products
// shows in the scores.
template <class Pixel>
void check_formulas(int tw, int th, int rows, bool flat = false, Pixel level = 0) {
    GuardedImage<Pixel> src(tw + 40, th + rows - 1), tpl(tw, th);
    fill(src, 500 + tw);
    fill(tpl, 600 + th);
    if (flat) src.fill(level);
    const int w = src.width() - tw + 1, h = src.height() - th + 1, n = tw * th;
    const double k = 1.0 / (n + 2.220446049250313e-16);
    for (int m = 0; m < kMethods; ++m)
        expect_same_on_every_path([&] {
            const auto got = run_match(m, src, tpl);
            int wrong = 0;
            for (int y = 0; y < h; ++y)
                for (int x = 0; x < w; ++x) {
                    int64_t d = 0, c = 0, s = 0, s2 = 0, t = 0, t2 = 0;
                    for (int j = 0; j < th; ++j)
                        for (int i = 0; i < tw; ++i) {
                            const int64_t a = src.at(x + i, y + j), b = tpl.at(i, j);
                            d += (a - b) * (a - b), c += a * b, s += a, s2 += a * a, t += b, t2 += b * b;
                        }
                    const double S = double(s), T_ = double(t), sk = S * k;
                    const double num = double(c) + sk * -T_;
                    const double want[kMethods] = {
                        double(d),
                        double(d) * newton_rsqrt(double(t2)) * newton_rsqrt(double(s2)),
                        double(c),
                        double(c) * newton_rsqrt(double(t2)) * newton_rsqrt(double(s2)),
                        num,
                        num * newton_rsqrt(double(t2) - T_ * T_ * k) * newton_rsqrt(double(s2) - S * S * k)};
                    if (got[y * w + x] != static_cast<float>(want[m]) && wrong++ == 0)
                        ADD_FAILURE() << kNames[m] << " at " << x << "," << y << ": " << got[y * w + x] << " for "
                                      << static_cast<float>(want[m]);
                }
            EXPECT_EQ(wrong, 0) << kNames[m];
            return got;
        });
}
// 71 rows: two bands; 420 rows: row sums eight columns at a time.
TEST(MatchTemplateValues, FormulasUnsigned) {
    check_formulas<Oru8u>(3, 2, 71);
    check_formulas<Oru8u>(8, 8, 420);
    check_formulas<Oru8u>(1, 1, 30);
    check_formulas<Oru8u>(7, 7, 20, true, 242);
}
TEST(MatchTemplateValues, FormulasSigned) {
    check_formulas<Oru8s>(5, 4, 420);
    check_formulas<Oru8s>(1, 1, 30);
    check_formulas<Oru8s>(15, 7, 20, true, -100);
}

// A template cut from the source: squared difference exactly 0 there,
// normalised correlation and coefficient 1, and the best of the
// difference and normalised scores there.
template <class T>
void check_cut_template() {
    GuardedImage<T> src(61, 47);
    fill(src, 11);
    const int cx = 23, cy = 17;
    GuardedImage<T> tpl(16, 12);
    for (int j = 0; j < 12; ++j)
        for (int i = 0; i < 16; ++i) tpl.at(i, j) = src.at(cx + i, cy + j);
    const int w = 61 - 16 + 1;
    for (int m = 0; m < kMethods; ++m) {
        const auto score = run_match(m, src, tpl);
        const float at = score[cy * w + cx];
        if (m == SqDiff || m == SqDiffNormed) {
            EXPECT_EQ(at, 0.0f) << kNames[m];
        } else if (m == CorrNormed || m == CoeffNormed) {
            EXPECT_NEAR(at, 1.0f, 1e-5) << kNames[m];
        }
        size_t best = 0;
        for (size_t i = 1; i < score.size(); ++i)
            if ((m == SqDiff || m == SqDiffNormed) ? score[i] < score[best] : score[i] > score[best]) best = i;
        if (m != Corr && m != Coeff) {
            EXPECT_EQ(best, static_cast<size_t>(cy * w + cx)) << kNames[m];
        }
    }
}
TEST(MatchTemplateValues, CutTemplateUnsigned) { check_cut_template<Oru8u>(); }
TEST(MatchTemplateValues, CutTemplateSigned) { check_cut_template<Oru8s>(); }
TEST(MatchTemplateValues, CutTemplateFloat) { check_cut_template<Oru32f>(); }

// Constant patches and templates: no division fault, finite scores near 0.
TEST(MatchTemplateValues, ConstantPatchesAndTemplates) {
    GuardedImage<Oru8u> zeros(20, 10), zero_tpl(8, 8), flat(20, 10), flat_tpl(8, 8), tex_tpl(8, 8);
    zeros.fill(0);
    zero_tpl.fill(0);
    flat.fill(200);
    flat_tpl.fill(90);
    tex_tpl.fill_random(9);
    for (int m : {SqDiffNormed, CorrNormed, CoeffNormed})
        for (float v : run_match(m, zeros, zero_tpl)) EXPECT_EQ(v, 0.0f) << kNames[m];
    for (const auto* t : {&flat_tpl, &tex_tpl})
        for (float v : run_match(CoeffNormed, flat, *t)) EXPECT_NEAR(v, 0.0f, 1e-6);
    for (float v : run_match(Coeff, flat, tex_tpl)) EXPECT_NEAR(v, 0.0f, 1e-6);
    GuardedImage<Oru32f> fflat(20, 10), ftex(9, 7), fconst(9, 7);
    fflat.fill(3.25f);
    fconst.fill(-0.75f);
    ftex.fill_random(5, -1, 1);
    for (float v : run_match(CoeffNormed, fflat, ftex)) EXPECT_NEAR(v, 0.0f, 1e-4);
    for (float v : run_match(CoeffNormed, ftex, fconst)) EXPECT_NEAR(v, 0.0f, 1e-4);  // as large as the source
    for (float v : run_match(CorrNormed, fflat, fflat)) EXPECT_NEAR(v, 1.0f, 1e-6);
}

// 1x1 templates give (s - t)^2 and s * t; a template as large as the source
// gives one score.
TEST(MatchTemplateValues, SmallestAndLargestTemplates) {
    GuardedImage<Oru8s> src(37, 5), one(1, 1);
    src.fill_random(2);
    one.at(0, 0) = -77;
    const auto sq = run_match(SqDiff, src, one), corr = run_match(Corr, src, one);
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 37; ++x) {
            const int s = src.at(x, y);
            EXPECT_EQ(sq[y * 37 + x], static_cast<float>((s + 77) * (s + 77)));
            EXPECT_EQ(corr[y * 37 + x], static_cast<float>(s * -77));
        }
    GuardedImage<Oru32f> fsrc(13, 11), ftpl(13, 11);
    fsrc.fill_random(7, -5, 5);
    ftpl.fill_random(8, -5, 5);
    for (int m = 0; m < kMethods; ++m) {
        const auto score = run_match(m, fsrc, ftpl, 31, 0);
        ASSERT_EQ(score.size(), 1u);
        expect_model(fsrc, ftpl, m, score);
    }
}

// Every path against the scalar twin: every method and type over template
// widths 1..20 and 32 (row-by-row float kernel at multiples of 8), heights
// 1..5, a long run past the 32-bit block limit, padded and misaligned rows
// and scratch at every offset modulo 8.
template <class T>
void check_paths() {
    std::vector<OruSize> shapes;
    for (int w = 1; w <= 20; ++w) shapes.push_back({w, 1 + w % 5});
    shapes.push_back({32, 4});
    shapes.push_back({16, 9});
    shapes.push_back({13, 11});  // a long run with a tail
    shapes.push_back({37, 5});
    shapes.push_back({200, 170});  // 34000 elements
    int k = 0;
    for (const OruSize& ts : shapes) {
        const Layout layout = layouts_for(sizeof(T))[k % 4];
        GuardedImage<T> src(ts.width + 9 + k % 4, ts.height + 7, 1, layout.pad_bytes, layout.misalign_bytes);
        GuardedImage<T> tpl(ts.width, ts.height, 1, (k % 3) * sizeof(T), sizeof(T) * (k % 2));
        fill(src, 40 + k);
        fill(tpl, 90 + k);
        for (int m = 0; m < kMethods; ++m)
            expect_same_on_every_path([&] { return run_match(m, src, tpl, k % 8, 4 * (k % 3)); });
        ++k;
    }
}
TEST(MatchTemplatePaths, Unsigned) { check_paths<Oru8u>(); }
TEST(MatchTemplatePaths, Signed) { check_paths<Oru8s>(); }
TEST(MatchTemplatePaths, Float) { check_paths<Oru32f>(); }

// Float templates whose width is a multiple of 8 are summed several blocks
// of a column at a time: columns of 1..9 blocks (whole groups and every
// remainder) under templates shorter and taller than a group, each against
// the scalar twin.
TEST(MatchTemplatePaths, FloatColumnGroups) {
    int k = 0;
    for (int tw : {8, 16, 24, 32, 40})
        for (int th : {1, 2, 3, 6})
            for (int count = 1; count <= 9; ++count, ++k) {
                GuardedImage<Oru32f> src(tw + 2, th + count - 1, 1, 4 * (k % 3), 4 * (k % 2)), tpl(tw, th);
                fill(src, 300 + k);
                fill(tpl, 700 + k);
                for (int m = 0; m < kMethods; ++m)
                    expect_same_on_every_path([&] { return run_match(m, src, tpl, k % 8); });
            }
}

// NaN pixels of assorted signs and payloads, in the source and then in the
// template too: every NaN score is the one quiet NaN, on every path.
TEST(MatchTemplatePaths, NaNScoresAreCanonical) {
    GuardedImage<Oru32f> src(40, 30), tpl(9, 7);
    fill(src, 5);
    fill(tpl, 6);
    Rng rng(7);
    auto poison = [&](GuardedImage<Oru32f>& img, int count) {
        for (int i = 0; i < count; ++i) {
            const uint32_t bits = 0x7F800001u | (rng.next() & 0x803FFFFFu);
            std::memcpy(&img.at(rng.uniform(0, img.width() - 1), rng.uniform(0, img.height() - 1)), &bits, 4);
        }
    };
    for (int round = 0; round < 2; ++round) {
        poison(src, 12);
        if (round == 1) poison(tpl, 2);
        for (int m = 0; m < kMethods; ++m)
            expect_same_on_every_path([&] {
                const std::vector<float> scores = run_match(m, src, tpl);
                std::vector<uint32_t> bits(scores.size());
                std::memcpy(bits.data(), scores.data(), 4 * scores.size());
                int nans = 0;
                for (uint32_t b : bits) {
                    if ((b & 0x7FFFFFFFu) <= 0x7F800000u) continue;
                    EXPECT_EQ(b, 0x7FC00000u) << kNames[m];
                    ++nans;
                }
                EXPECT_GT(nans, 0) << kNames[m];
                return bits;
            });
    }
}
