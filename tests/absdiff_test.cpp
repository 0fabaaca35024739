// Absolute difference and motion history: check orders, exact values,
// special floats, and every path against the scalar twin.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>

#include "absdiff_list.h"
#include "orucv.h"
#include "support/bits.h"
#include "support/image.h"
#include "support/simd.h"

using namespace orutest;

namespace {

// Reference model of the history update: order-preserving keys of the bit
// patterns (a negative pattern becomes the complement of its magnitude).
int32_t key(float f) {
    const int32_t b = static_cast<int32_t>(bits(f));
    return b < 0 ? ~(b & 0x7FFFFFFF) : b;
}
float updated(uint8_t silhouette, float mhi, float timestamp, float duration) {
    if (silhouette) return timestamp;
    return key(mhi) < key(timestamp - duration) ? 0.0f : mhi;
}

// One call of any function of the family: a and b are the sources (the
// silhouette and nothing for the motion history), dst the destination.
struct Call {
    const void* a;
    int aStep;
    const void* b;
    int bStep;
    void* dst;
    int dstStep;
    OruSize roi;
};
constexpr int kConstant = 7;  // the constant operand, the history's time stamp

template <class T, auto F>
OruStatus call_Images(const Call& c) {
    return F(static_cast<const T*>(c.a), c.aStep, static_cast<const T*>(c.b), c.bStep, static_cast<T*>(c.dst),
             c.dstStep, c.roi);
}
template <class T, auto F>
OruStatus call_Constant(const Call& c) {
    return F(static_cast<const T*>(c.a), c.aStep, static_cast<T*>(c.dst), c.dstStep, c.roi, kConstant);
}
template <class T, auto F>
OruStatus call_Motion(const Call& c) {
    return F(static_cast<const T*>(c.a), c.aStep, static_cast<Oru32f*>(c.dst), c.dstStep, c.roi, kConstant, 2.0f);
}

struct Function {
    const char* name;
    bool two_sources;
    bool is_float;  // float sources (the history is float whatever its silhouette)
    bool float_dst;
    OruStatus (*call)(const Call&);
};
#define ABSDIFF_FUNCTION(name, shape, T)                                                                  \
    Function{#name, std::string(#shape) == "Images", sizeof(T) == 4,                                  \
             sizeof(T) == 4 || std::string(#shape) == "Motion", call_##shape<T, name>},
const Function kFunctions[] = {ORUCV_ABSDIFF_FUNCTIONS(ABSDIFF_FUNCTION)};

// |a - b| in the pixel type, of images or against the constant.
template <class T>
T model(T a, T b) {
    if constexpr (sizeof(T) == 1) return static_cast<T>(std::abs(a - b));
    else return std::fabs(a - b);
}

}  // namespace

// Order A: pointers, steps, sizes, then float step divisibility; a failed
// call leaves the destination as it was.
TEST(AbsDiffChecks, OrderOfChecks) {
    GuardedImage<Oru8u> a(8, 4), b(8, 4), d(8, 4);
    GuardedImage<Oru32f> fa(8, 4), fb(8, 4), fd(8, 4);
    const auto before = d.snapshot();
    const auto fbefore = fd.snapshot();
    const OruSize roi{8, 4};

    EXPECT_EQ(oruiAbsDiff_8u_C1R(nullptr, 8, b.data(), 8, d.data(), 8, {-1, -1}), oruStsNullPointer);
    EXPECT_EQ(oruiAbsDiff_8u_C1R(a.data(), 8, b.data(), 8, nullptr, 8, roi), oruStsNullPointer);
    EXPECT_EQ(oruiAbsDiff_8u_C1R(a.data(), 0, b.data(), 8, d.data(), 8, {0, 4}), oruStsStep);
    EXPECT_EQ(oruiAbsDiff_8u_C1R(a.data(), 8, b.data(), -8, d.data(), 8, roi), oruStsStep);
    EXPECT_EQ(oruiAbsDiff_8u_C1R(a.data(), 8, b.data(), 8, d.data(), 8, {8, 0}), oruStsSize);
    // Short steps are the caller's business in this family: only steps < 1 fail.
    EXPECT_EQ(oruiAbsDiffC_8u_C1R(a.data(), 8, d.data(), 0, roi, 3), oruStsStep);
    EXPECT_EQ(oruiAbsDiffC_8u_C1R(nullptr, 0, d.data(), 0, {0, 0}, 3), oruStsNullPointer);
    EXPECT_EQ(oruiAbsDiffC_8u_C1R(a.data(), 8, d.data(), 8, {0, 1}, 3), oruStsSize);
    EXPECT_EQ(d.snapshot(), before);

    EXPECT_EQ(oruiAbsDiff_32f_C1R(fa.data(), 32, fb.data(), 32, nullptr, 32, roi), oruStsNullPointer);
    EXPECT_EQ(oruiAbsDiff_32f_C1R(fa.data(), 0, fb.data(), 32, fd.data(), 32, {0, 4}), oruStsStep);
    EXPECT_EQ(oruiAbsDiff_32f_C1R(fa.data(), 6, fb.data(), 32, fd.data(), 32, {0, 4}), oruStsSize);
    EXPECT_EQ(oruiAbsDiff_32f_C1R(fa.data(), 32, fb.data(), 6, fd.data(), 32, roi), oruStsNotEvenStep);
    EXPECT_EQ(oruiAbsDiff_32f_C1R(fa.data(), 32, fb.data(), 32, fd.data(), 30, roi), oruStsNotEvenStep);
    EXPECT_EQ(oruiAbsDiffC_32f_C1R(fa.data(), 6, fd.data(), 32, roi, 1.0f), oruStsNotEvenStep);
    EXPECT_EQ(oruiAbsDiffC_32f_C1R(fa.data(), 32, fd.data(), 32, {-3, 4}, 1.0f), oruStsSize);
    EXPECT_EQ(oruiAbsDiffC_32f_C1R(fa.data(), 32, nullptr, 32, roi, 1.0f), oruStsNullPointer);
    EXPECT_EQ(fd.snapshot(), fbefore);
}

TEST(AbsDiffValues, EveryPairOfBytes) {
    GuardedImage<Oru8u> a(256, 256), b(256, 256), d(256, 256);
    for (int y = 0; y < 256; ++y)
        for (int x = 0; x < 256; ++x) a.at(x, y) = static_cast<Oru8u>(x), b.at(x, y) = static_cast<Oru8u>(y);
    expect_same_on_every_path([&] {
        EXPECT_EQ(oruiAbsDiff_8u_C1R(a.data(), a.step(), b.data(), b.step(), d.data(), d.step(), {256, 256}), oruStsOk);
        for (int y = 0; y < 256; ++y)
            for (int x = 0; x < 256; ++x) EXPECT_EQ(d.at(x, y), std::abs(x - y));
        return d.region_bytes();
    });
}

TEST(AbsDiffValues, ConstantIsClamped) {
    GuardedImage<Oru8u> a(40, 1), d(40, 1);
    for (int x = 0; x < 40; ++x) a.at(x, 0) = static_cast<Oru8u>(x * 6 + 10);
    for (int value : {-7, 0, 77, 255, 300, 1 << 30}) {
        const int v = value < 0 ? 0 : value > 255 ? 255 : value;
        expect_same_on_every_path([&] {
            EXPECT_EQ(oruiAbsDiffC_8u_C1R(a.data(), 40, d.data(), 40, {40, 1}, value), oruStsOk);
            for (int x = 0; x < 40; ++x) EXPECT_EQ(d.at(x, 0), std::abs(a.at(x, 0) - v)) << value;
            return d.region_bytes();
        });
    }
    EXPECT_EQ(d.at(0, 0), 245);  // |10 - 255| from the last value
}

// The sign bit of the difference is cleared: NaN payloads pass with their
// sign cleared, infinite differences give +infinity, -0.0 becomes +0.0.
TEST(AbsDiffValues, SpecialFloats) {
    const float inf = std::numeric_limits<float>::infinity();
    const float nan_neg_payload = from_bits(0xFFC12345u);
    struct Case {
        float a, b;
        uint32_t expected;
    } cases[] = {
        {1.5f, 4.0f, bits(2.5f)},         {-0.0f, 0.0f, 0u},           {0.0f, -0.0f, 0u},
        {inf, 1.0f, bits(inf)},           {-inf, 1.0f, bits(inf)},     {1.0f, inf, bits(inf)},
        {nan_neg_payload, 1.0f, 0x7FC12345u}, {1.0f, nan_neg_payload, 0x7FC12345u},
        {inf, inf, 0x7FC00000u},          {3.0f, 3.0f, 0u},
    };
    const int n = sizeof(cases) / sizeof(cases[0]);
    // Repeat the cases across a row long enough for every vector width.
    const int width = 67;
    GuardedImage<Oru32f> a(width, 1), b(width, 1), d(width, 1), dc(width, 1);
    for (int x = 0; x < width; ++x) a.at(x, 0) = cases[x % n].a, b.at(x, 0) = cases[x % n].b;
    expect_same_on_every_path([&] {
        EXPECT_EQ(oruiAbsDiff_32f_C1R(a.data(), a.step(), b.data(), b.step(), d.data(), d.step(), {width, 1}),
                  oruStsOk);
        for (int x = 0; x < width; ++x) EXPECT_EQ(bits(d.at(x, 0)), cases[x % n].expected) << x;
        EXPECT_EQ(oruiAbsDiffC_32f_C1R(a.data(), a.step(), dc.data(), dc.step(), {width, 1}, nan_neg_payload),
                  oruStsOk);
        for (int x = 0; x < width; ++x) {
            // src - NaN: the source's own NaN wins over the constant's.
            const uint32_t src_bits = bits(a.at(x, 0));
            const bool src_nan = std::isnan(a.at(x, 0));
            EXPECT_EQ(bits(dc.at(x, 0)), (src_nan ? src_bits : 0xFFC12345u) & 0x7FFFFFFFu) << x;
        }
        return std::make_pair(d.region_bytes(), dc.region_bytes());
    });
}

// Every function of the list on every path: widths around the vector sizes,
// tight and padded rows, regions off alignment; the same bytes as the scalar
// twin, nothing written outside the region, and the model's values.
template <class S, class D>
void check_paths(const Function& fn) {
    for (int width = 1; width <= 70; ++width)
        for (const Layout& layout : layouts_for(sizeof(D))) {
            SCOPED_TRACE(testing::Message() << fn.name << " width " << width << " pad " << layout.pad_bytes);
            const int height = 3;
            GuardedImage<S> a(width, height, 1, layout.pad_bytes / sizeof(D) * sizeof(S), layout.misalign_bytes);
            GuardedImage<S> b(width, height, 1, layout.pad_bytes / sizeof(D) * sizeof(S), 0);
            GuardedImage<D> start(width, height, 1, layout.pad_bytes, layout.misalign_bytes);
            a.fill_random(width, -300, 300);
            b.fill_random(width + 1000, -300, 300);
            start.fill_random(width + 2000, 0, 20);
            expect_same_on_every_path([&] {
                GuardedImage<D> d = start;
                const Call c{a.data(), a.step(), b.data(), b.step(), d.data(), d.step(), {width, height}};
                EXPECT_EQ(fn.call(c), oruStsOk);
                EXPECT_TRUE(d.guards_intact());
                for (int y = 0; y < height; ++y)
                    for (int x = 0; x < width; ++x) {
                        if constexpr (sizeof(S) == sizeof(D)) {
                            const S other = fn.two_sources ? b.at(x, y) : static_cast<S>(kConstant);
                            EXPECT_EQ(d.at(x, y), model(a.at(x, y), other)) << x << "," << y;
                        } else {
                            EXPECT_EQ(d.at(x, y), updated(a.at(x, y), start.at(x, y), kConstant, 2.0f));
                        }
                    }
                return d.region_bytes();
            });
        }
}

TEST(AbsDiffPaths, EveryFunctionAgainstModel) {
    for (const Function& fn : kFunctions) {
        if (fn.is_float) check_paths<Oru32f, Oru32f>(fn);
        else if (fn.float_dst) check_paths<Oru8u, Oru32f>(fn);
        else check_paths<Oru8u, Oru8u>(fn);
    }
}

TEST(AbsDiffPaths, InPlace) {
    GuardedImage<Oru8u> a(50, 4), b(50, 4);
    a.fill_random(1);
    b.fill_random(2);
    const auto expected_first = std::abs(a.at(0, 0) - b.at(0, 0));
    EXPECT_EQ(oruiAbsDiff_8u_C1R(a.data(), a.step(), b.data(), b.step(), a.data(), a.step(), {50, 4}), oruStsOk);
    EXPECT_EQ(a.at(0, 0), expected_first);
}

TEST(MotionHistoryChecks, OrderOfChecks) {
    GuardedImage<Oru8u> s(8, 4);
    GuardedImage<Oru32f> m(8, 4);
    const auto before = m.snapshot();
    const OruSize roi{8, 4};
    auto call = [&](const Oru8u* sp, int ss, Oru32f* mp, int ms, OruSize r, float dur) {
        return oruiUpdateMotionHistory_8u32f_C1IR(sp, ss, mp, ms, r, 10.0f, dur);
    };
    EXPECT_EQ(call(nullptr, 8, m.data(), 32, {-1, 4}, -1.0f), oruStsNullPointer);
    EXPECT_EQ(call(s.data(), 8, nullptr, 32, roi, 1.0f), oruStsNullPointer);
    EXPECT_EQ(call(s.data(), 8, m.data(), 32, {-1, 4}, 1.0f), oruStsSize);
    EXPECT_EQ(call(s.data(), 8, m.data(), 32, {8, -1}, 1.0f), oruStsSize);
    EXPECT_EQ(call(s.data(), 7, m.data(), 32, roi, -1.0f), oruStsSize);  // size before duration
    EXPECT_EQ(call(s.data(), 8, m.data(), 28, roi, 1.0f), oruStsSize);
    EXPECT_EQ(call(s.data(), 8, m.data(), 34, roi, 1.0f), oruStsSize);  // misaligned: size, not even-step
    EXPECT_EQ(call(s.data(), 8, m.data(), 32, roi, -0.5f), oruStsOutOfRange);
    EXPECT_EQ(call(s.data(), 8, m.data(), 32, roi, std::nanf("")), oruStsOutOfRange);
    EXPECT_EQ(m.snapshot(), before);
    // Zero-sized regions succeed without touching memory, even with zero steps.
    EXPECT_EQ(call(s.data(), 0, m.data(), 0, {0, 4}, 1.0f), oruStsOk);
    EXPECT_EQ(call(s.data(), 8, m.data(), 32, {8, 0}, 1.0f), oruStsOk);
    EXPECT_EQ(m.snapshot(), before);
}

TEST(MotionHistoryValues, ThresholdBoundaryAndSilhouette) {
    GuardedImage<Oru8u> s(6, 1);
    GuardedImage<Oru32f> m(6, 1);
    const float ts = 10.0f, dur = 2.5f, thr = ts - dur;
    const Oru8u sil[6] = {0, 0, 1, 255, 0, 0};
    const float mhi[6] = {thr, std::nextafter(thr, 0.0f), 3.0f, 3.0f, 9.0f, -1.0f};
    const float expected[6] = {thr, 0.0f, ts, ts, 9.0f, 0.0f};
    for (int x = 0; x < 6; ++x) s.at(x, 0) = sil[x], m.at(x, 0) = mhi[x];
    EXPECT_EQ(oruiUpdateMotionHistory_8u32f_C1IR(s.data(), 6, m.data(), 24, {6, 1}, ts, dur), oruStsOk);
    for (int x = 0; x < 6; ++x) EXPECT_EQ(m.at(x, 0), expected[x]) << x;
    // Duration 0: everything older than the time stamp is cleared.
    m.at(4, 0) = 9.999f;
    EXPECT_EQ(oruiUpdateMotionHistory_8u32f_C1IR(s.data(), 6, m.data(), 24, {6, 1}, ts, 0.0f), oruStsOk);
    EXPECT_EQ(m.at(4, 0), 0.0f);
}

// Thresholds of every sign (both comparison loops) and special history
// values, on every path and width, against the model.
TEST(MotionHistoryPaths, AllThresholdsAgainstModel) {
    const float nan_pos = from_bits(0x7FC00001u), nan_neg = from_bits(0xFFC00001u);
    const float specials[] = {0.0f, -0.0f, -1.5f, -0.5f, 1.0f, 5.0f, nan_pos, nan_neg,
                              std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity(),
                              from_bits(1), from_bits(0x80000001u)};
    const struct {
        float ts, dur;
    } stamps[] = {{10.0f, 2.0f}, {1.0f, 2.0f}, {1.0f, 1.0f}, {0.0f, 0.0f}, {-3.0f, 0.0f}, {5.0f, 0.0f}};
    for (const auto& st : stamps)
        for (int width : {1, 3, 7, 8, 9, 15, 16, 17, 31, 33, 70})
            for (const Layout& layout : layouts_for(4)) {
                const int height = 3;
                GuardedImage<Oru8u> s(width, height, 1, layout.pad_bytes, layout.misalign_bytes);
                GuardedImage<Oru32f> start(width, height, 1, layout.pad_bytes, layout.misalign_bytes);
                Rng rng(width * 31 + layout.pad_bytes);
                for (int y = 0; y < height; ++y)
                    for (int x = 0; x < width; ++x) {
                        s.at(x, y) = rng.uniform(0, 3) == 0 ? static_cast<Oru8u>(rng.uniform(1, 255)) : 0;
                        start.at(x, y) = rng.uniform(0, 1) ? specials[rng.uniform(0, 11)] : rng.uniform(-12.0f, 12.0f);
                    }
                expect_same_on_every_path([&] {
                    GuardedImage<Oru32f> m = start;
                    EXPECT_EQ(oruiUpdateMotionHistory_8u32f_C1IR(s.data(), s.step(), m.data(), m.step(),
                                                                 {width, height}, st.ts, st.dur),
                              oruStsOk);
                    EXPECT_TRUE(m.guards_intact());
                    for (int y = 0; y < height; ++y)
                        for (int x = 0; x < width; ++x)
                            EXPECT_EQ(bits(m.at(x, y)), bits(updated(s.at(x, y), start.at(x, y), st.ts, st.dur)))
                                << "ts " << st.ts << " dur " << st.dur << " at " << x << "," << y;
                    return m.region_bytes();
                });
            }
}

TEST(MotionHistoryValues, NegativeThresholdLoop) {
    // threshold -1.0: -1.5 is cleared, -0.5 kept; NaN patterns compare as patterns.
    GuardedImage<Oru8u> s(4, 1);
    GuardedImage<Oru32f> m(4, 1);
    s.fill(0);
    const float mhi[4] = {-1.5f, -0.5f, from_bits(0x7FC00000u), from_bits(0xFFC00000u)};
    for (int x = 0; x < 4; ++x) m.at(x, 0) = mhi[x];
    EXPECT_EQ(oruiUpdateMotionHistory_8u32f_C1IR(s.data(), 4, m.data(), 16, {4, 1}, 1.0f, 2.0f), oruStsOk);
    EXPECT_EQ(m.at(0, 0), 0.0f);
    EXPECT_EQ(m.at(1, 0), -0.5f);
    EXPECT_EQ(bits(m.at(2, 0)), 0x7FC00000u);
    EXPECT_EQ(bits(m.at(3, 0)), 0u);
}
