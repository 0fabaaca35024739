// Accumulators: check order B, exact single-precision values against a
// model, the two masking styles, and every path against the scalar twin.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "accum_list.h"
#include "orucv.h"
#include "support/bits.h"
#include "support/image.h"
#include "support/simd.h"

using namespace orutest;

namespace {

enum class Op { Add, Square, Product, Weighted };

// One call of any function of the family; unused members are ignored.
struct Call {
    const void* s1;
    int s1Step;
    const void* s2;
    int s2Step;
    const Oru8u* mask;
    int maskStep;
    Oru32f* acc;
    int accStep;
    OruSize roi;
    Oru32f alpha;
};

// Call adapters by argument list: operation and masking.
template <class S, auto F>
OruStatus call_Add_false(const Call& c) { return F(static_cast<const S*>(c.s1), c.s1Step, c.acc, c.accStep, c.roi); }
template <class S, auto F>
OruStatus call_Add_true(const Call& c) {
    return F(static_cast<const S*>(c.s1), c.s1Step, c.mask, c.maskStep, c.acc, c.accStep, c.roi);
}
template <class S, auto F>
OruStatus call_Product_false(const Call& c) {
    return F(static_cast<const S*>(c.s1), c.s1Step, static_cast<const S*>(c.s2), c.s2Step, c.acc, c.accStep, c.roi);
}
template <class S, auto F>
OruStatus call_Product_true(const Call& c) {
    return F(static_cast<const S*>(c.s1), c.s1Step, static_cast<const S*>(c.s2), c.s2Step, c.mask, c.maskStep,
             c.acc, c.accStep, c.roi);
}
template <class S, auto F>
OruStatus call_Weighted_false(const Call& c) {
    return F(static_cast<const S*>(c.s1), c.s1Step, c.acc, c.accStep, c.roi, c.alpha);
}
template <class S, auto F>
OruStatus call_Weighted_true(const Call& c) {
    return F(static_cast<const S*>(c.s1), c.s1Step, c.mask, c.maskStep, c.acc, c.accStep, c.roi, c.alpha);
}
#define call_Square_false call_Add_false
#define call_Square_true call_Add_true

struct Function {
    const char* name;
    Op op;
    int bytes;  // source element size
    bool is_signed;
    bool masked;
    OruStatus (*call)(const Call&);
};

#define ACCUM_FUNCTION(name, op, S, masked) \
    Function{#name, Op::op, sizeof(S), std::is_same<S, Oru8s>::value, masked, call_##op##_##masked<S, name>},
const Function kFunctions[] = {ORUCV_ACCUM_FUNCTIONS(ACCUM_FUNCTION)};

const float kInf = std::numeric_limits<float>::infinity();
const float kNaN = std::numeric_limits<float>::quiet_NaN();

// Each single-precision operation modelled in double and rounded once: the
// double result of one operation on floats is exact or rounds to the same
// float, so this reproduces the required evaluation order independently.
// 8-bit squares and products are integers: their zero is +0.0.
float model(Op op, bool integer, double s1, double s2, bool selected, float acc, float alpha) {
    auto f = [](double v) { return static_cast<float>(v); };
    if (op == Op::Weighted) {
        const float diff = f(s1 - acc);
        return f(acc + static_cast<double>(f(static_cast<double>(diff) * (selected ? alpha : 0.0f))));
    }
    float addend = op == Op::Add ? f(s1) : op == Op::Square ? f(s1 * s1) : f(s1 * s2);
    if (integer && addend == 0.0f) addend = 0.0f;
    return f(static_cast<double>(acc) + (selected ? addend : 0.0f));
}

// Sources as raw bytes (width * element size per row), with their values.
struct Source {
    GuardedImage<Oru8u> image;
    int bytes;
    bool is_signed;
    Source(const Function& fn, int width, int height, int pad, int misalign)
        : image(width * fn.bytes, height, 1, pad, misalign), bytes(fn.bytes), is_signed(fn.is_signed) {}
    double value(int x, int y) const {
        const Oru8u* p = &image.at(x * bytes, y);
        if (bytes == 1) return is_signed ? static_cast<Oru8s>(*p) : *p;
        float v;
        std::memcpy(&v, p, 4);
        return v;
    }
    void set(int x, int y, float v) { std::memcpy(&image.at(x * bytes, y), &v, 4); }
    // Bytes over their range; floats mostly ordinary, some special.
    void fill(Rng& rng) {
        image.fill_random(rng.next());
        const float special[] = {kInf, -kInf, kNaN, -kNaN, 0.0f, -0.0f, 1e-40f, 3e38f, -3e38f};
        if (bytes == 4)
            for (int y = 0; y < image.height(); ++y)
                for (int x = 0; x < image.width() / 4; ++x)
                    set(x, y, rng.uniform(0, 15) ? rng.uniform(-300.0f, 300.0f) : special[rng.uniform(0, 8)]);
    }
};

}  // namespace

// The list makes both the wrappers and this test's table, so its columns
// are checked against what each name says.
TEST(AccumList, ColumnsFollowTheNames) {
    for (const Function& fn : kFunctions) {
        const std::string name = fn.name;
        SCOPED_TRACE(name);
        auto has = [&](const char* part) { return name.find(part) != std::string::npos; };
        EXPECT_EQ(fn.op, has("AddSquare_")    ? Op::Square
                         : has("AddProduct_") ? Op::Product
                         : has("AddWeighted_") ? Op::Weighted
                                               : Op::Add);
        EXPECT_EQ(fn.masked, has("_C1IMR"));
        EXPECT_EQ(fn.bytes, has("_32f_") ? 4 : 1);
        EXPECT_EQ(fn.is_signed, has("_8s32f_"));
    }
}

// Order B: pointers, then sizes and every step (short or misaligned float
// steps) as oruStsSize; a failed call writes nothing; empty regions succeed.
TEST(AccumChecks, OrderB) {
    for (const Function& fn : kFunctions) {
        SCOPED_TRACE(fn.name);
        const int w = 8, es = fn.bytes;
        Source s1(fn, w, 4, 0, 0), s2(fn, w, 4, 0, 0);
        GuardedImage<Oru8u> mask(w, 4);
        GuardedImage<Oru32f> acc(w, 4);
        mask.fill(1);
        acc.fill(1.0f);
        const Call ok{s1.image.data(), w * es, s2.image.data(), w * es, mask.data(), w, acc.data(), 4 * w, {w, 4}, 0.5f};
        const auto before = acc.snapshot();
        auto with = [&](auto change) {
            Call c = ok;
            change(c);
            return fn.call(c);
        };
        EXPECT_EQ(with([](Call& c) { c.s1 = nullptr, c.roi = {-1, -1}; }), oruStsNullPointer);
        EXPECT_EQ(with([](Call& c) { c.acc = nullptr, c.accStep = 3; }), oruStsNullPointer);
        if (fn.op == Op::Product) { EXPECT_EQ(with([](Call& c) { c.s2 = nullptr; }), oruStsNullPointer); }
        if (fn.masked) { EXPECT_EQ(with([](Call& c) { c.mask = nullptr, c.maskStep = 0; }), oruStsNullPointer); }
        EXPECT_EQ(with([](Call& c) { c.roi = {-1, 4}; }), oruStsSize);
        EXPECT_EQ(with([](Call& c) { c.roi = {8, -1}; }), oruStsSize);
        EXPECT_EQ(with([&](Call& c) { c.s1Step = w * es - 1; }), oruStsSize);
        if (es == 4) { EXPECT_EQ(with([&](Call& c) { c.s1Step = 4 * w + 1; }), oruStsSize); }
        if (fn.op == Op::Product) { EXPECT_EQ(with([&](Call& c) { c.s2Step = w * es - es; }), oruStsSize); }
        if (fn.op == Op::Product && es == 4) { EXPECT_EQ(with([&](Call& c) { c.s2Step = 4 * w + 2; }), oruStsSize); }
        if (fn.masked) { EXPECT_EQ(with([&](Call& c) { c.maskStep = w - 1; }), oruStsSize); }
        EXPECT_EQ(with([&](Call& c) { c.accStep = 4 * w - 4; }), oruStsSize);
        EXPECT_EQ(with([&](Call& c) { c.accStep = 4 * w + 2; }), oruStsSize);  // not oruStsNotEvenStep
        EXPECT_EQ(with([&](Call& c) { c.accStep = 0, c.roi = {1, 1}; }), oruStsSize);
        // Empty regions: nothing is touched, whatever the steps allow.
        EXPECT_EQ(with([](Call& c) { c.roi = {0, 4}, c.s1Step = c.s2Step = c.maskStep = c.accStep = 0; }), oruStsOk);
        EXPECT_EQ(with([](Call& c) { c.roi = {8, 0}; }), oruStsOk);
        EXPECT_EQ(acc.snapshot(), before);
        // A mask step needs no divisibility, an 8-bit source step neither.
        EXPECT_EQ(with([&](Call& c) { c.roi = {w - 1, 4}, c.maskStep = w - 1, c.s1Step = es == 1 ? w - 1 : 4 * w; }),
                  oruStsOk);
        EXPECT_TRUE(acc.guards_intact());
    }
}

// The values the family's users rely on, through the public functions.
TEST(AccumValues, DocumentedCases) {
    Oru32f acc[2] = {1.0f, 2.0f};
    const Oru8s s8[2] = {-128, 127};
    EXPECT_EQ(oruiAddSquare_8s32f_C1IR(s8, 2, acc, 8, {1, 1}), oruStsOk);
    EXPECT_EQ(acc[0], 16385.0f);
    EXPECT_EQ(oruiAddProduct_8s32f_C1IR(s8, 1, s8 + 1, 1, acc + 1, 4, {1, 1}), oruStsOk);
    EXPECT_EQ(acc[1], -16254.0f);
    const Oru8u u8[2] = {255, 255}, off[2] = {0, 0};
    acc[0] = 0.0f, acc[1] = -0.0f;
    EXPECT_EQ(oruiAddProduct_8u32f_C1IR(u8, 2, u8, 2, acc, 8, {1, 1}), oruStsOk);
    EXPECT_EQ(acc[0], 65025.0f);
    // Unselected: the addend +0.0 turns -0.0 into +0.0.
    EXPECT_EQ(oruiAdd_8u32f_C1IMR(u8, 2, off, 2, acc + 1, 4, {1, 1}), oruStsOk);
    EXPECT_EQ(bits(acc[1]), 0u);
    // Unselected weighted average: weight 0, so an infinite difference is NaN.
    const Oru32f inf_src[2] = {kInf, 3.0f};
    acc[0] = 1.0f, acc[1] = 1.0f;
    EXPECT_EQ(oruiAddWeighted_32f_C1IMR(inf_src, 8, off, 2, acc, 8, {2, 1}, 0.5f), oruStsOk);
    EXPECT_TRUE(std::isnan(acc[0]));
    EXPECT_EQ(acc[1], 1.0f);
    // alpha is used unchanged: acc 1, source 3, alpha 2 gives 5.
    EXPECT_EQ(oruiAddWeighted_32f_C1IR(inf_src + 1, 4, acc + 1, 4, {1, 1}, 2.0f), oruStsOk);
    EXPECT_EQ(acc[1], 5.0f);
}

// Of two NaN operands the accumulator's comes out, quieted, on every path and
// in vector bodies and tails alike: acc + s * s and acc + s1 * s2.
TEST(AccumValues, AccumulatorNaNWinsOverSourceNaN) {
    if (const char* name = emulator())
        GTEST_SKIP() << "running under " << name << ", which picks between two NaNs by significand";
    const float acc_nan = from_bits(0x7F800123u), src_nan = from_bits(0xFFC45678u);
    for (int width : {1, 7, 16, 37})
        expect_same_on_every_path([&] {
            std::vector<Oru32f> acc(2 * width, acc_nan), src(width, src_nan);
            EXPECT_EQ(oruiAddSquare_32f_C1IR(src.data(), 4 * width, acc.data(), 4 * width, {width, 1}), oruStsOk);
            EXPECT_EQ(oruiAddProduct_32f_C1IR(src.data(), 4 * width, src.data(), 4 * width, acc.data() + width,
                                              4 * width, {width, 1}),
                      oruStsOk);
            std::vector<uint32_t> out;
            for (float a : acc) out.push_back(bits(a));
            for (uint32_t b : out) EXPECT_EQ(b, 0x7FC00123u) << "width " << width;
            return out;
        });
}

// Every function on every path: widths around the vector sizes, tight rows
// (recast into one long row) and padded rows (row by row), misaligned
// pointers, random masks and special floats, against the model and the
// scalar twin.
TEST(AccumPaths, EveryFunctionAgainstModel) {
    const float alphas[] = {0.25f, 0.0f, 1.0f, 2.0f, -0.5f, kNaN, kInf};
    for (const Function& fn : kFunctions)
        for (int width = 1; width <= 70; ++width)
            for (const Layout& layout : layouts_for(4)) {
                SCOPED_TRACE(testing::Message() << fn.name << " width " << width << " pad " << layout.pad_bytes);
                const int height = 3, pad = layout.pad_bytes, mis = layout.misalign_bytes;
                Rng rng(width * 131 + pad + mis);
                Source s1(fn, width, height, pad / 4 * fn.bytes, mis / 4 * fn.bytes + (fn.bytes == 1) * (width & 1));
                Source s2(fn, width, height, pad / 4 * fn.bytes, 0);
                GuardedImage<Oru8u> mask(width, height, 1, pad / 4, mis / 2);
                GuardedImage<Oru32f> start(width, height, 1, pad, mis);
                s1.fill(rng);
                s2.fill(rng);
                const float special[] = {-0.0f, 0.0f, kInf, -kNaN, 1e30f};
                for (int y = 0; y < height; ++y)
                    for (int x = 0; x < width; ++x) {
                        mask.at(x, y) = rng.uniform(0, 1) ? 0 : static_cast<Oru8u>(rng.uniform(1, 255));
                        start.at(x, y) = rng.uniform(0, 7) ? rng.uniform(-1000.0f, 1000.0f) : special[rng.uniform(0, 4)];
                    }
                const float alpha = alphas[width % 7];
                expect_same_on_every_path([&] {
                    GuardedImage<Oru32f> acc = start;
                    const Call c{s1.image.data(), s1.image.step(), s2.image.data(), s2.image.step(), mask.data(),
                                 mask.step(), acc.data(), acc.step(), {width, height}, alpha};
                    EXPECT_EQ(fn.call(c), oruStsOk);
                    EXPECT_TRUE(acc.guards_intact());
                    for (int y = 0; y < height; ++y)
                        for (int x = 0; x < width; ++x) {
                            const float want = model(fn.op, fn.bytes == 1, s1.value(x, y), s2.value(x, y),
                                                     !fn.masked || mask.at(x, y), start.at(x, y), alpha);
                            const float got = acc.at(x, y);
                            if (std::isnan(want)) EXPECT_TRUE(std::isnan(got)) << x << "," << y;
                            else EXPECT_EQ(bits(got), bits(want)) << x << "," << y << " want " << want << " got " << got;
                        }
                    return acc.region_bytes();
                });
            }
}
