// Image statistics: every function of the list on every path against the
// scalar twin and a model written from the formulas, the check orders, the
// 32-bit limits and the cases the contract singles out.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "orcvstats.h"
#include "orucv.h"
#include "stats_list.h"
#include "support/image.h"
#include "support/simd.h"

using namespace orutest;

namespace {

enum class Kind { Mean, MeanStdDev, SumSq, MinMaxIndx, Norm, NormDiff, NormRel };
enum class NormOf { None, Inf, L1, L2 };
enum class Order { C, CoiFirst, D, N, Kernel };

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
uint64_t bits(double d) {
    uint64_t b;
    std::memcpy(&b, &d, 8);
    return b;
}
const float kInf = std::numeric_limits<float>::infinity();

// ---- One call of any function of the list.
struct Args {
    const void* a;
    int aStep;
    const void* b;
    int bStep;
    const Oru8u* mask;
    int maskStep;
    OruSize roi;
    int coi;
};

// Every output a function may write, set to markers before the call.
struct Outcome {
    OruStatus status = 99;
    double d[2] = {-12345.0, -12345.0};
    float f[2] = {-777.0f, -777.0f};
    OruPoint p[2] = {{-9, -9}, {-9, -9}};
    Oru32s sum = -5;
    long long sumsq = -5;
    bool operator==(const Outcome& o) const {
        return status == o.status && bits(d[0]) == bits(o.d[0]) && bits(d[1]) == bits(o.d[1]) &&
               bits(f[0]) == bits(o.f[0]) && bits(f[1]) == bits(o.f[1]) && p[0].x == o.p[0].x &&
               p[0].y == o.p[0].y && p[1].x == o.p[1].x && p[1].y == o.p[1].y && sum == o.sum && sumsq == o.sumsq;
    }
};
std::ostream& operator<<(std::ostream& os, const Outcome& o) {
    return os << "status " << o.status << " d " << o.d[0] << ", " << o.d[1] << " f " << o.f[0] << ", " << o.f[1]
              << " p (" << o.p[0].x << "," << o.p[0].y << ") (" << o.p[1].x << "," << o.p[1].y << ") sum " << o.sum
              << " sumsq " << o.sumsq;
}

// Which outputs a call passes (the others null).
struct Wanted {
    bool d0 = true, d1 = true, f0 = true, f1 = true, p0 = true, p1 = true;
};

template <class T, auto F, Kind K, bool kC3, bool kMasked>
OruStatus invoke(const Args& c, Outcome& o, const Wanted& w) {
    const T* a = static_cast<const T*>(c.a);
    const T* b = static_cast<const T*>(c.b);
    Oru64f* d0 = w.d0 ? &o.d[0] : nullptr;
    Oru64f* d1 = w.d1 ? &o.d[1] : nullptr;
    if constexpr (K == Kind::Mean) {
        if constexpr (kC3) return F(a, c.aStep, c.mask, c.maskStep, c.roi, c.coi, d0);
        else return F(a, c.aStep, c.mask, c.maskStep, c.roi, d0);
    } else if constexpr (K == Kind::MeanStdDev && kMasked) {
        if constexpr (kC3) return F(a, c.aStep, c.mask, c.maskStep, c.roi, c.coi, d0, d1);
        else return F(a, c.aStep, c.mask, c.maskStep, c.roi, d0, d1);
    } else if constexpr (K == Kind::MeanStdDev) {
        if constexpr (kC3) return F(a, c.aStep, c.roi, c.coi, d0, d1);
        else return F(a, c.aStep, c.roi, d0, d1);
    } else if constexpr (K == Kind::SumSq) {
        return F(a, c.aStep, c.roi.width, c.roi.height, &o.sum, &o.sumsq);
    } else if constexpr (K == Kind::MinMaxIndx) {
        Oru32f* f0 = w.f0 ? &o.f[0] : nullptr;
        Oru32f* f1 = w.f1 ? &o.f[1] : nullptr;
        OruPoint* p0 = w.p0 ? &o.p[0] : nullptr;
        OruPoint* p1 = w.p1 ? &o.p[1] : nullptr;
        if constexpr (kC3 && kMasked) return F(a, c.aStep, c.mask, c.maskStep, c.roi, c.coi, f0, f1, p0, p1);
        else if constexpr (kC3) return F(a, c.aStep, c.roi, c.coi, f0, f1, p0, p1);
        else if constexpr (kMasked) return F(a, c.aStep, c.mask, c.maskStep, c.roi, f0, f1, p0, p1);
        else return F(a, c.aStep, c.roi, f0, f1, p0, p1);
    } else if constexpr (K == Kind::Norm) {
        if constexpr (kC3) return F(a, c.aStep, c.mask, c.maskStep, c.roi, c.coi, d0);
        else return F(a, c.aStep, c.mask, c.maskStep, c.roi, d0);
    } else {
        if constexpr (kC3) return F(a, c.aStep, b, c.bStep, c.mask, c.maskStep, c.roi, c.coi, d0);
        else return F(a, c.aStep, b, c.bStep, c.mask, c.maskStep, c.roi, d0);
    }
}

enum Type { k8u, k8s, k32f };
template <class T>
constexpr Type type_of() {
    return std::is_same<T, Oru8u>::value ? k8u : std::is_same<T, Oru8s>::value ? k8s : k32f;
}

struct Function {
    const char* name;
    Kind kind;
    NormOf norm;
    Type type;
    bool c3;
    bool masked;
    Order order;
    OruStatus (*call)(const Args&, Outcome&, const Wanted&);

    bool two_images() const { return kind == Kind::NormDiff || kind == Kind::NormRel; }
    int channels() const { return c3 ? 3 : 1; }
    int sample_bytes() const { return type == k32f ? 4 : 1; }
    Outcome run(const Args& c, const Wanted& w = {}) const {
        Outcome o;
        o.status = call(c, o, w);
        return o;
    }
};
#define STATS_C3_C1 false
#define STATS_C3_C3C true
#define STATS_MASKED_Masked true
#define STATS_MASKED_Unmasked false
#define STATS_FUNCTION(name, kind, norm, T, layout, mask, order)                                                \
    Function{#name,           Kind::kind,           NormOf::norm,  type_of<T>(), STATS_C3_##layout,               \
             STATS_MASKED_##mask, Order::order,                                                                  \
             invoke<T, name, Kind::kind, STATS_C3_##layout, STATS_MASKED_##mask>},
const Function kFunctions[] = {ORUCV_STATS_FUNCTIONS(STATS_FUNCTION)};

const Function& function(const std::string& name) {
    for (const Function& f : kFunctions)
        if (name == f.name) return f;
    std::abort();
}

// ---- Images of one case: the source(s) as bytes of the function's type and
// the mask, in one layout.
struct Images {
    std::unique_ptr<GuardedImage<uint8_t>> a, b, m;
    OruSize roi;
    int coi;
    Images(const Function& fn, OruSize roi_, int pad, int gap, int coi_) : roi(roi_), coi(coi_) {
        const int row_bytes = fn.sample_bytes() * fn.channels();
        a = std::make_unique<GuardedImage<uint8_t>>(roi.width * row_bytes, roi.height, 1, pad * fn.sample_bytes(), gap);
        if (fn.two_images())
            b = std::make_unique<GuardedImage<uint8_t>>(roi.width * row_bytes, roi.height, 1, pad * fn.sample_bytes(), 0);
        m = std::make_unique<GuardedImage<uint8_t>>(roi.width, roi.height, 1, pad + 1, gap ? 0 : 1);
    }
    Args args(const Function& fn) const {
        return Args{a->data(), a->step(), b ? b->data() : nullptr, b ? b->step() : 0,
                    fn.masked ? m->data() : nullptr, fn.masked ? m->step() : 0, roi, fn.c3 ? coi : 0};
    }
    template <class T>
    T at(const GuardedImage<uint8_t>& img, int x, int y, int channels, int c) const {
        T v;
        std::memcpy(&v, img.row(y) + (x * channels + c) * sizeof(T), sizeof(T));
        return v;
    }
    template <class T>
    void set(GuardedImage<uint8_t>& img, int x, int y, int channels, int c, T v) {
        std::memcpy(img.row(y) + (x * channels + c) * sizeof(T), &v, sizeof(T));
    }
    bool intact() const { return a->guards_intact() && (!b || b->guards_intact()) && m->guards_intact(); }
};

// Random pixels: bytes over their whole range, floats either "nice" (k/16,
// whose sums are exact in extended precision) or any in -100..100 with ties.
void fill(const Function& fn, Images& im, uint64_t seed, bool nice_floats, int mask_kind) {
    Rng rng(seed);
    for (GuardedImage<uint8_t>* img : {im.a.get(), im.b.get()}) {
        if (!img) continue;
        for (int y = 0; y < im.roi.height; ++y)
            for (int x = 0; x < im.roi.width * fn.channels(); ++x) {
                if (fn.type != k32f) {
                    img->row(y)[x] = static_cast<uint8_t>(rng.next());
                    continue;
                }
                float v = nice_floats ? static_cast<float>(rng.uniform(-4000, 4000)) / 16.0f
                                      : rng.uniform(-100.0f, 100.0f);
                if (!nice_floats && rng.uniform(0, 7) == 0) v = static_cast<float>(rng.uniform(-3, 3));  // ties
                std::memcpy(img->row(y) + 4 * x, &v, 4);
            }
    }
    // Mask kinds: 0 none selected, 1 all (varied nonzero bytes), else random.
    for (int y = 0; y < im.roi.height; ++y)
        for (int x = 0; x < im.roi.width; ++x)
            im.m->at(x, y) = mask_kind == 0   ? 0
                             : mask_kind == 1 ? static_cast<uint8_t>(rng.uniform(1, 255))
                             : rng.uniform(0, 2) ? static_cast<uint8_t>(rng.uniform(0, 255))
                                                 : 0;
}

// ---- The model: the formulas, pixel by pixel.
long double wrap32(long long v) { return static_cast<int32_t>(static_cast<uint32_t>(v)); }
double to_double(long double v) { return v != v ? std::numeric_limits<double>::quiet_NaN() : static_cast<double>(v); }
int32_t key(float f) {
    const int32_t b = static_cast<int32_t>(bits(f));
    return b < 0 ? ~(b & 0x7FFFFFFF) : b;
}

template <class T>
Outcome model(const Function& fn, const Images& im) {
    Outcome o;
    o.status = oruStsOk;
    const int w = im.roi.width, h = im.roi.height, nch = fn.channels(), c = fn.c3 ? im.coi - 1 : 0;
    const auto v = [&](int x, int y) { return im.at<T>(*im.a, x, y, nch, c); };
    const auto r = [&](int x, int y) { return im.at<T>(*im.b, x, y, nch, c); };
    const auto selected = [&](int x, int y) { return !fn.masked || im.m->at(x, y) != 0; };
    const long double two52 = 4503599627370496.0L;

    if (fn.kind == Kind::Mean || fn.kind == Kind::MeanStdDev || fn.kind == Kind::SumSq) {
        long long n = 0, isum = 0, isq = 0;
        long double S = 0, Q = 0;
        float lane[4] = {};
        for (int y = 0; y < h; ++y) {
            for (int x = 0; x < w; ++x) {
                if (!selected(x, y)) continue;
                ++n;
                isum += static_cast<long long>(v(x, y));
                isq += static_cast<long long>(v(x, y) * v(x, y));
                S += static_cast<long double>(v(x, y));
                Q += static_cast<long double>(v(x, y)) * v(x, y);
            }
            // The masked float mean's lanes: j takes pixel j then j + 4 of
            // each group of eight; the rest of the row goes to lane 0.
            int x = 0;
            const auto term = [&](int xx) { return selected(xx, y) ? static_cast<float>(v(xx, y)) : 0.0f; };
            for (; x + 8 <= w; x += 8)
                for (int j = 0; j < 4; ++j) lane[j] = (lane[j] + term(x + j)) + term(x + j + 4);
            for (; x < w; ++x) lane[0] += term(x);
        }
        if (fn.type != k32f) S = wrap32(isum), Q = static_cast<long double>(isq);
        if (fn.kind == Kind::SumSq) {
            o.sum = static_cast<int32_t>(wrap32(isum));
            o.sumsq = isq;
            return o;
        }
        if (fn.kind == Kind::Mean && fn.type == k32f && !fn.c3)
            S = static_cast<double>(((static_cast<long double>(lane[0]) + lane[1]) + lane[2]) + lane[3]);
        const long double count = fn.masked ? n : static_cast<long double>(w) * h;
        const long double mean = count == 0 ? 0.0L : S / count;
        o.d[0] = to_double(mean);
        if (fn.kind == Kind::MeanStdDev)
            o.d[1] = count == 0 ? 0.0 : to_double(std::sqrt(std::fabs(Q / count - mean * mean)));
        return o;
    }

    if (fn.kind == Kind::MinMaxIndx) {
        // First occurrence in raster order; floats by order keys, starting
        // from the keys of the infinities.
        long long lo_i = -1, hi_i = -1;
        int32_t lo = fn.type == k32f ? key(kInf) : 256, hi = fn.type == k32f ? key(-kInf) : -256;
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                if (!selected(x, y)) continue;
                const int32_t k = fn.type == k32f ? key(static_cast<float>(v(x, y))) : static_cast<int32_t>(v(x, y));
                if (k < lo) lo = k, lo_i = static_cast<long long>(y) * w + x;
                if (k > hi) hi = k, hi_i = static_cast<long long>(y) * w + x;
            }
        const auto value = [&](int32_t k) {
            return fn.type == k32f ? from_bits(static_cast<uint32_t>(k < 0 ? ~k | INT32_MIN : k)) : static_cast<float>(k);
        };
        if (lo_i < 0 || hi_i < 0) {
            o.f[0] = o.f[1] = 0.0f;
            o.p[0] = o.p[1] = OruPoint{0, 0};
        } else {
            o.f[0] = value(lo), o.f[1] = value(hi);
            o.p[0] = OruPoint{static_cast<int>(lo_i % w), static_cast<int>(lo_i / w)};
            o.p[1] = OruPoint{static_cast<int>(hi_i % w), static_cast<int>(hi_i / w)};
        }
        return o;
    }

    // Norms. d is v, or v - w in the pixel type's arithmetic.
    long double result;
    if (fn.type != k32f) {
        long long peak[2] = {0, 0}, sum[2] = {0, 0}, sq[2] = {0, 0};
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                if (!selected(x, y)) continue;
                const long long d = std::llabs(fn.kind == Kind::Norm ? v(x, y) : v(x, y) - r(x, y));
                const long long ref = fn.kind == Kind::NormRel ? std::llabs(r(x, y)) : 0;
                peak[0] = std::max(peak[0], d), peak[1] = std::max(peak[1], ref);
                sum[0] += d, sum[1] += ref, sq[0] += d * d, sq[1] += ref * ref;
            }
        const long double D = fn.norm == NormOf::Inf ? peak[0] : fn.norm == NormOf::L1 ? wrap32(sum[0]) : sq[0];
        const long double R = fn.norm == NormOf::Inf ? peak[1] : fn.norm == NormOf::L1 ? wrap32(sum[1]) : sq[1];
        result = fn.kind != Kind::NormRel ? D : R == 0 ? D * two52 : D / R;
    } else {
        float peak[2] = {0, 0}, lanes[2][4] = {};
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                const bool s = selected(x, y);
                const float vv = static_cast<float>(v(x, y));
                const float ww = fn.kind == Kind::Norm ? 0.0f : static_cast<float>(r(x, y));
                const float d = s ? (fn.kind == Kind::Norm ? vv : vv - ww) : 0.0f, ref = s ? ww : 0.0f;
                // A NaN magnitude beats every number.
                if (std::isnan(d) || std::fabs(d) > peak[0]) peak[0] = std::isnan(peak[0]) ? peak[0] : std::fabs(d);
                if (std::isnan(ref) || std::fabs(ref) > peak[1]) peak[1] = std::isnan(peak[1]) ? peak[1] : std::fabs(ref);
                lanes[0][x & 3] += fn.norm == NormOf::L1 ? std::fabs(d) : d * d;
                lanes[1][x & 3] += fn.norm == NormOf::L1 ? std::fabs(ref) : ref * ref;
            }
        const auto fold = [](const float* l) { return (l[0] + l[2]) + (l[1] + l[3]); };
        const float D = fn.norm == NormOf::Inf ? peak[0] : fold(lanes[0]);
        const float R = fn.norm == NormOf::Inf ? peak[1] : fold(lanes[1]);
        result = fn.kind != Kind::NormRel ? D : static_cast<long double>(D) / (R == 0.0f ? 1.0L / two52 : R);
    }
    o.d[0] = to_double(fn.norm == NormOf::L2 ? std::sqrt(result) : result);
    return o;
}

Outcome model_of(const Function& fn, const Images& im) {
    switch (fn.type) {
    case k8u: return model<Oru8u>(fn, im);
    case k8s: return model<Oru8s>(fn, im);
    default: return model<Oru32f>(fn, im);
    }
}

// The float means and deviations sum exactly only for nice pixels; others
// are compared within a bound far below single precision.
bool model_is_exact(const Function& fn, bool nice_floats) {
    return nice_floats || fn.type != k32f || !(fn.kind == Kind::MeanStdDev || (fn.kind == Kind::Mean && fn.c3));
}

void expect_near(const Outcome& got, const Outcome& want) {
    for (int i = 0; i < 2; ++i) EXPECT_NEAR(got.d[i], want.d[i], 1e-12 * (1.0 + std::fabs(want.d[i])));
}

}  // namespace

// ---- Every function, every path, widths 1..70 and heights 1..9, tight and
// padded rows, regions off alignment, every channel of interest, masks
// empty, full and random.
TEST(StatsPaths, EveryFunctionAgainstTwinAndModel) {
    for (const Function& fn : kFunctions) {
        for (int width = 1; width <= 70; ++width)
            for (int height = 1; height <= 9; ++height) {
                const int variant = width * 9 + height;
                const Layout layout = layouts_for(fn.sample_bytes())[variant % 4];
                const int coi = 1 + variant % 3;
                const int mask_kind = variant % 7 == 0 ? 0 : variant % 7 == 1 ? 1 : 2;
                const bool nice = variant % 2 == 0;
                SCOPED_TRACE(testing::Message() << fn.name << " " << width << "x" << height << " pad "
                                                << layout.pad_bytes << " coi " << coi << " mask " << mask_kind);
                Images im(fn, {width, height}, layout.pad_bytes / fn.sample_bytes(), layout.misalign_bytes, coi);
                fill(fn, im, static_cast<uint64_t>(variant) * 131 + static_cast<int>(fn.kind), nice, mask_kind);
                const Outcome want = model_of(fn, im);
                expect_same_on_every_path([&] {
                    const Outcome got = fn.run(im.args(fn));
                    if (model_is_exact(fn, nice)) EXPECT_EQ(got, want);
                    else expect_near(got, want);
                    return got;
                });
                EXPECT_TRUE(im.intact());
            }
        if (HasFailure()) return;  // one function's report is enough
    }
}

// ---- The same bits in every build: 32- and 64-bit, portable, sanitized. The
// outputs of every function on one fixed case (float sums inexact, which
// the model checks only within a bound) fold into one fingerprint.
TEST(StatsPaths, SameBitsInEveryBuild) {
    uint64_t all = 1469598103934665603ull;
    std::string each;
    for (const Function& fn : kFunctions) {
        Images im(fn, {37, 5}, 3, fn.sample_bytes(), 2);
        fill(fn, im, 2024, false, 2);
        const Outcome o = fn.run(im.args(fn));
        const uint64_t words[] = {bits(o.d[0]), bits(o.d[1]), bits(o.f[0]), bits(o.f[1]),
                                  static_cast<uint64_t>(static_cast<uint32_t>(o.p[0].x)) << 32 | static_cast<uint32_t>(o.p[0].y),
                                  static_cast<uint64_t>(static_cast<uint32_t>(o.p[1].x)) << 32 | static_cast<uint32_t>(o.p[1].y),
                                  static_cast<uint32_t>(o.sum), static_cast<uint64_t>(o.sumsq)};
        uint64_t h = 1469598103934665603ull;
        for (uint64_t w : words)
            for (int byte = 0; byte < 8; ++byte) h = (h ^ ((w >> (8 * byte)) & 0xFF)) * 1099511628211ull;
        all = (all ^ h) * 1099511628211ull;
        each += std::string(fn.name) + " " + std::to_string(h) + "\n";
    }
    EXPECT_EQ(all, 12483181562712218986ull) << each;
}

// ---- Check orders: every function of an order, each bad argument alone and
// together with a later one; nothing is written on failure.
namespace {
struct Probe {
    const Function& fn;
    std::unique_ptr<Images> im;
    explicit Probe(const Function& f) : fn(f), im(std::make_unique<Images>(f, OruSize{8, 3}, 4, 0, 2)) {
        fill(fn, *im, 5, true, 2);
        // Some probes address the images with other steps than their own.
        for (GuardedImage<uint8_t>* img : {im->a.get(), im->b.get(), im->m.get()})
            if (img) img->expose_padding();
    }
    Args good() const { return im->args(fn); }
    OruStatus status(const Args& a, const Wanted& w = {}) const {
        const auto before = im->a->snapshot();
        const Outcome o = fn.run(a, w);
        if (o.status != oruStsOk) {
            EXPECT_EQ(o.d[0], Outcome().d[0]) << fn.name << " wrote on failure";
            EXPECT_EQ(o.f[0], Outcome().f[0]) << fn.name << " wrote on failure";
            EXPECT_EQ(o.p[1].x, Outcome().p[1].x) << fn.name << " wrote on failure";
        }
        EXPECT_EQ(im->a->snapshot(), before);
        return o.status;
    }
};
}  // namespace

TEST(StatsChecks, OrderC) {
    for (const Function& fn : kFunctions) {
        if (fn.order != Order::C && fn.order != Order::CoiFirst) continue;
        SCOPED_TRACE(fn.name);
        Probe p(fn);
        Args a = p.good();
        EXPECT_EQ(p.status(a), oruStsOk);
        a.a = nullptr, a.roi = {0, -1}, a.aStep = 0;
        EXPECT_EQ(p.status(a), oruStsNullPointer);
        EXPECT_EQ(p.status(p.good(), Wanted{false}), oruStsNullPointer);
        if (fn.kind == Kind::MeanStdDev) {
            EXPECT_EQ(p.status(p.good(), Wanted{true, false}), oruStsNullPointer);
        }
        a = p.good(), a.roi = {0, 3}, a.aStep = 0;  // size before steps
        EXPECT_EQ(p.status(a), oruStsSize);
        a = p.good(), a.roi.height = 0;
        EXPECT_EQ(p.status(a), oruStsSize);
        a = p.good(), a.aStep = 0, a.coi = 7;
        EXPECT_EQ(p.status(a), oruStsStep);
        if (fn.masked) {
            a = p.good(), a.mask = nullptr;
            EXPECT_EQ(p.status(a), oruStsNullPointer);
            a = p.good(), a.maskStep = 0;
            EXPECT_EQ(p.status(a), oruStsStep);
            // The mask step is never tested for divisibility.
            a = p.good(), a.maskStep = 3, a.roi.width = 2;
            EXPECT_EQ(p.status(a), oruStsOk);
        }
        if (fn.type == k32f) {
            a = p.good(), a.aStep = 6, a.roi.width = 1;
            EXPECT_EQ(p.status(a), oruStsNotEvenStep);
        }
        if (fn.c3) {
            for (int coi : {0, 4, -1}) {
                a = p.good(), a.coi = coi;
                EXPECT_EQ(p.status(a), oruStsCoi);
            }
            // coi 5 with a float step of 6: the step first, but for one mean.
            a = p.good(), a.coi = 5, a.aStep = fn.type == k32f ? 6 : a.aStep, a.roi.width = 1;
            EXPECT_EQ(p.status(a), fn.type != k32f || fn.order == Order::CoiFirst ? oruStsCoi : oruStsNotEvenStep);
        }
    }
    EXPECT_EQ(function("oruiMean_32f_C3CMR").order, Order::CoiFirst);
}

TEST(StatsChecks, OrderD) {
    for (const Function& fn : kFunctions) {
        if (fn.order != Order::D) continue;
        SCOPED_TRACE(fn.name);
        Probe p(fn);
        const int row_bytes = 8 * fn.channels() * fn.sample_bytes();
        Args a = p.good();
        a.a = nullptr, a.coi = 0, a.roi = {-1, -1};
        EXPECT_EQ(p.status(a), oruStsNullPointer);
        // Outputs are optional: none wanted is no error.
        EXPECT_EQ(p.status(p.good(), Wanted{false, false, false, false, false, false}), oruStsOk);
        a = p.good(), a.roi.width = -1, a.aStep = 0;
        EXPECT_EQ(p.status(a), oruStsSize);
        a = p.good(), a.aStep = row_bytes - 1, a.coi = 9;
        EXPECT_EQ(p.status(a), oruStsStep);
        a = p.good(), a.aStep = row_bytes;
        EXPECT_EQ(p.status(a), oruStsOk);
        if (fn.type == k32f) {
            a = p.good(), a.aStep = row_bytes + 2;
            EXPECT_EQ(p.status(a), oruStsStep);
        }
        if (fn.masked) {
            a = p.good(), a.mask = nullptr;
            EXPECT_EQ(p.status(a), oruStsNullPointer);
            a = p.good(), a.maskStep = 7;
            EXPECT_EQ(p.status(a), oruStsStep);
        }
        if (fn.c3) {
            for (int coi : {0, 4}) {
                a = p.good(), a.coi = coi;
                EXPECT_EQ(p.status(a), oruStsCoi);
            }
        }
        // Zero sizes pass: no pixel, so zeros everywhere, also for a zero
        // width whose locations the writer cannot divide out.
        for (OruSize roi : {OruSize{3, 0}, OruSize{0, 3}, OruSize{0, 0}}) {
            a = p.good(), a.roi = roi;
            const Outcome o = fn.run(a);
            EXPECT_EQ(o.status, oruStsOk);
            EXPECT_EQ(bits(o.f[0]), 0u);
            EXPECT_EQ(bits(o.f[1]), 0u);
            EXPECT_EQ(o.p[0].x | o.p[0].y | o.p[1].x | o.p[1].y, 0);
        }
    }
}

TEST(StatsChecks, OrderOfNorms) {
    for (const Function& fn : kFunctions) {
        if (fn.order != Order::N) continue;
        SCOPED_TRACE(fn.name);
        Probe p(fn);
        Args a = p.good();
        a.mask = nullptr, a.maskStep = 0, a.roi = {0, 0};
        EXPECT_EQ(p.status(a), oruStsNullPointer);
        EXPECT_EQ(p.status(p.good(), Wanted{false}), oruStsNullPointer);
        if (fn.two_images()) {
            a = p.good(), a.b = nullptr;
            EXPECT_EQ(p.status(a), oruStsNullPointer);
            a = p.good(), a.bStep = 0, a.roi.width = 0;
            EXPECT_EQ(p.status(a), oruStsStep);  // steps before sizes
        }
        a = p.good(), a.maskStep = 0;
        EXPECT_EQ(p.status(a), oruStsStep);
        a = p.good(), a.roi.height = 0, a.coi = 0;
        EXPECT_EQ(p.status(a), oruStsSize);
        if (fn.c3) {
            for (int coi : {0, 4}) {
                a = p.good(), a.coi = coi, a.aStep = 6, a.roi.width = 1;
                EXPECT_EQ(p.status(a), oruStsCoi);  // coi before the float step
            }
        }
        // A step of 6: misaligned for floats, fine for bytes; the mask step never matters.
        a = p.good(), a.aStep = 6, a.maskStep = 3, a.roi.width = fn.type == k32f ? 1 : 2;
        EXPECT_EQ(p.status(a), fn.type == k32f ? oruStsNotEvenStep : oruStsOk);
        if (fn.two_images() && fn.type == k32f) {
            a = p.good(), a.bStep = 10, a.roi.width = 2;
            EXPECT_EQ(p.status(a), oruStsNotEvenStep);
        }
    }
}

// ---- The 32-bit sums: regions whose 8-bit sum passes 2^31 wrap; sums of
// squares and counts do not.
TEST(StatsLimits, ByteSumsWrapAtThirtyTwoBits) {
    const int w = 4096, h = 2057;  // 8425472 pixels of 255: a sum of 2148495360
    const long long n = static_cast<long long>(w) * h;
    const double wrapped = static_cast<double>(static_cast<int32_t>(static_cast<uint32_t>(n * 255)));
    ASSERT_LT(wrapped, 0.0);
    GuardedImage<Oru8u> img(w, h), ones(w, h);
    img.fill(255);
    ones.fill(1);
    expect_same_on_every_path([&] {
        Oru64f mean = 0, sd = 0, l1 = 0, l2 = 0, masked_mean = 0;
        EXPECT_EQ(oruiMean_StdDev_8u_C1R(img.data(), w, {w, h}, &mean, &sd), oruStsOk);
        EXPECT_EQ(mean, static_cast<double>(static_cast<long double>(wrapped) / n));
        EXPECT_EQ(oruiMean_8u_C1MR(img.data(), w, ones.data(), w, {w, h}, &masked_mean), oruStsOk);
        EXPECT_EQ(masked_mean, mean);
        EXPECT_EQ(oruiNorm_L1_8u_C1MR(img.data(), w, ones.data(), w, {w, h}, &l1), oruStsOk);
        EXPECT_EQ(l1, wrapped);
        EXPECT_EQ(oruiNorm_L2_8u_C1MR(img.data(), w, ones.data(), w, {w, h}, &l2), oruStsOk);
        EXPECT_EQ(l2, static_cast<double>(std::sqrt(static_cast<long double>(n) * 65025)));
        return std::vector<double>{mean, sd, l1, l2, masked_mean};
    });
    // The channel of interest too: 255 in channel 3 only, a padded step.
    GuardedImage<Oru8u> rgb(w, h, 3, 5);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) rgb.at(x, y, 0) = 1, rgb.at(x, y, 1) = 0, rgb.at(x, y, 2) = 255;
    expect_same_on_every_path([&] {
        Oru64f mean = 0, sd = 0;
        Oru32s sum = 0;
        long long sumsq = 0;
        EXPECT_EQ(oruiMean_StdDev_8u_C3CR(rgb.data(), rgb.step(), {w, h}, 3, &mean, &sd), oruStsOk);
        EXPECT_EQ(mean, static_cast<double>(static_cast<long double>(wrapped) / n));
        EXPECT_EQ(a6_orcvSumSq_8s_C1R(reinterpret_cast<const Oru8s*>(img.data()), w, w, h, &sum, &sumsq), oruStsOk);
        EXPECT_EQ(sum, static_cast<int32_t>(static_cast<uint32_t>(-n)));
        EXPECT_EQ(sumsq, n);
        return std::vector<double>{mean, sd, static_cast<double>(sum)};
    });
}

// ---- Means and deviations.
TEST(StatsMeans, FinisherCases) {
    GuardedImage<Oru8u> two(2, 1), mask(5, 3), seven(5, 3);
    two.at(0, 0) = 0, two.at(1, 0) = 255;
    Oru64f mean = -1, sd = -1;
    EXPECT_EQ(oruiMean_StdDev_8u_C1R(two.data(), 2, {2, 1}, &mean, &sd), oruStsOk);
    EXPECT_EQ(mean, 127.5);
    EXPECT_EQ(sd, 127.5);

    // A constant region has deviation 0 exactly at any size (5 x 3 included,
    // where a reciprocal 1/15 would leave a residue).
    seven.fill(7);
    GuardedImage<Oru32f> fseven(5, 3);
    fseven.fill(7.0f);
    mask.fill(1);
    for (int w = 1; w <= 5; ++w)
        for (int h = 1; h <= 3; ++h) {
            EXPECT_EQ(oruiMean_StdDev_8u_C1R(seven.data(), seven.step(), {w, h}, &mean, &sd), oruStsOk);
            EXPECT_EQ(mean, 7.0);
            EXPECT_EQ(sd, 0.0);
            EXPECT_EQ(oruiMean_StdDev_32f_C1MR(fseven.data(), fseven.step(), mask.data(), 5, {w, h}, &mean, &sd),
                      oruStsOk);
            EXPECT_EQ(mean, 7.0);
            EXPECT_EQ(sd, 0.0);
        }

    // -128 and 127, both selected: -0.5.
    GuardedImage<Oru8s> s(2, 1);
    s.at(0, 0) = -128, s.at(1, 0) = 127;
    EXPECT_EQ(oruiMean_8s_C1MR(s.data(), 2, mask.data(), 2, {2, 1}, &mean), oruStsOk);
    EXPECT_EQ(mean, -0.5);

    // An empty mask: zeros, status Ok.
    GuardedImage<Oru8u> none(5, 3);
    none.fill(0);
    mean = sd = -1;
    EXPECT_EQ(oruiMean_StdDev_32f_C3CMR(fseven.data(), 20, none.data(), 5, {1, 3}, 2, &mean, &sd), oruStsOk);
    EXPECT_EQ(bits(mean) | bits(sd), 0u);
    mean = -1;
    EXPECT_EQ(oruiMean_32f_C1MR(fseven.data(), 20, none.data(), 5, {5, 1}, &mean), oruStsOk);
    EXPECT_EQ(bits(mean), 0u);
}

// Float sums keep every bit a sequential extended-precision sum would and
// more: values that cancel leave the small ones exact on every path.
TEST(StatsMeans, FloatSumsKeepCancellingTerms) {
    const int w = 67;
    GuardedImage<Oru32f> img(w, 2);
    GuardedImage<Oru8u> mask(w, 2);
    mask.fill(1);
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < w; ++x) img.at(x, y) = x % 9 == 0 ? 1e30f : x % 9 == 1 ? -1e30f : 0.25f;
    // 2 * (67 - 8 - 8) quarters remain: the sum is 25.5 exactly, over 134 pixels.
    expect_same_on_every_path([&] {
        Oru64f mean = 0, sd = 0, mean2 = 0;
        EXPECT_EQ(oruiMean_StdDev_32f_C1R(img.data(), img.step(), {w, 2}, &mean, &sd), oruStsOk);
        EXPECT_EQ(mean, static_cast<double>(25.5L / 134));
        EXPECT_EQ(oruiMean_StdDev_32f_C1MR(img.data(), img.step(), mask.data(), w, {w, 2}, &mean2, &sd), oruStsOk);
        EXPECT_EQ(mean2, mean);
        return std::vector<double>{mean, sd, mean2};
    });
    // Infinities and NaNs come out as a plain sum would give them.
    img.at(5, 1) = kInf;
    Oru64f mean = 0, sd = 0;
    EXPECT_EQ(oruiMean_StdDev_32f_C1R(img.data(), img.step(), {w, 2}, &mean, &sd), oruStsOk);
    EXPECT_EQ(mean, std::numeric_limits<double>::infinity());
    EXPECT_EQ(bits(sd), 0x7FF8000000000000ull);
    img.at(6, 1) = -kInf;
    EXPECT_EQ(oruiMean_StdDev_32f_C1R(img.data(), img.step(), {w, 2}, &mean, &sd), oruStsOk);
    EXPECT_EQ(bits(mean), 0x7FF8000000000000ull);
}

// ---- Extrema with locations.
TEST(StatsExtrema, FirstOccurrenceAndOptionalOutputs) {
    GuardedImage<Oru8u> img(40, 3);
    img.fill(100);
    img.at(5, 0) = 200, img.at(3, 1) = 200;      // max 200 first at (5, 0)
    img.at(33, 2) = 7, img.at(37, 2) = 7;        // two minima in one block
    expect_same_on_every_path([&] {
        Oru32f lo = 0, hi = 0;
        OruPoint plo{}, phi{};
        EXPECT_EQ(oruiMinMaxIndx_8u_C1R(img.data(), img.step(), {40, 3}, &lo, &hi, &plo, &phi), oruStsOk);
        EXPECT_EQ(hi, 200.0f);
        EXPECT_EQ(phi.x, 5);
        EXPECT_EQ(phi.y, 0);
        EXPECT_EQ(lo, 7.0f);
        EXPECT_EQ(plo.x, 33);
        EXPECT_EQ(plo.y, 2);
        // Only the wanted outputs are written.
        Oru32f hi2 = -1;
        OruPoint plo2{-3, -3};
        EXPECT_EQ(oruiMinMaxIndx_8u_C1R(img.data(), img.step(), {40, 3}, nullptr, &hi2, &plo2, nullptr), oruStsOk);
        EXPECT_EQ(hi2, 200.0f);
        EXPECT_EQ(plo2.x, 33);
        return std::vector<int>{plo.x, plo.y, phi.x, phi.y};
    });
}

TEST(StatsExtrema, FloatOrderKeys) {
    const float nan_pos = from_bits(0x7FC00001u), nan_neg = from_bits(0xFFC00002u);
    struct Case {
        std::vector<float> row;
        uint32_t lo, hi;
        int lo_x, hi_x;
    } cases[] = {
        {{0.0f, -0.0f, 0.0f, -0.0f}, bits(-0.0f), bits(0.0f), 1, 0},    // -0.0 below +0.0
        {{1.0f, nan_pos, kInf, -kInf}, bits(-kInf), 0x7FC00001u, 3, 1},  // NaN beyond +infinity
        {{1.0f, nan_neg, -kInf, 2.0f}, 0xFFC00002u, bits(2.0f), 1, 3},
        {{kInf, kInf}, 0u, 0u, 0, 0},     // no minimum below +infinity: zeros
        {{-kInf, -kInf}, 0u, 0u, 0, 0},   // no maximum above -infinity: zeros
        {{-kInf, kInf}, bits(-kInf), bits(kInf), 0, 1},
    };
    for (const Case& c : cases) {
        // The row repeated across a width every vector path reaches.
        const int n = static_cast<int>(c.row.size()), w = 67;
        GuardedImage<Oru32f> img(w, 2, 3);
        GuardedImage<Oru8u> mask(w, 2);
        mask.fill(0);
        for (int x = 0; x < w; ++x) img.at(x, 1, 1) = c.row[std::min(x, n - 1)], mask.at(x, 1) = 1;
        for (int x = 0; x < w; ++x) img.at(x, 0, 1) = c.row[0];
        for (int x = 0; x < w; ++x) img.at(x, 0, 0) = img.at(x, 0, 2) = img.at(x, 1, 0) = img.at(x, 1, 2) = nan_pos;
        expect_same_on_every_path([&] {
            Oru32f lo = 1, hi = 1;
            OruPoint plo{}, phi{};
            EXPECT_EQ(oruiMinMaxIndx_32f_C3CMR(img.data(), img.step(), mask.data(), w, {w, 2}, 2, &lo, &hi, &plo, &phi),
                      oruStsOk);
            EXPECT_EQ(bits(lo), c.lo);
            EXPECT_EQ(bits(hi), c.hi);
            if (c.lo || c.hi) {
                EXPECT_EQ(plo.x, c.lo_x);
                EXPECT_EQ(phi.x, c.hi_x);
                EXPECT_EQ(plo.y, 1);
            }
            return std::vector<uint32_t>{bits(lo), bits(hi), static_cast<uint32_t>(plo.x), static_cast<uint32_t>(phi.x)};
        });
    }
}

TEST(StatsExtrema, EmptyMask) {
    GuardedImage<Oru8s> img(50, 2, 3);
    GuardedImage<Oru8u> mask(50, 2);
    img.fill(-5);
    mask.fill(0);
    Oru32f lo = 1, hi = 1;
    OruPoint plo{4, 4}, phi{4, 4};
    EXPECT_EQ(oruiMinMaxIndx_8s_C3CMR(img.data(), img.step(), mask.data(), 50, {50, 2}, 3, &lo, &hi, &plo, &phi),
              oruStsOk);
    EXPECT_EQ(bits(lo) | bits(hi), 0u);
    EXPECT_EQ(plo.x | plo.y | phi.x | phi.y, 0);
}

// A block that does not hold its value stops the locators, with the
// condition and the family's source name.
TEST(StatsExtremaDeathTest, LocatorsStayInsideTheirBlock) {
    GuardedImage<Oru8u> bytes(64, 1), ones(64, 1);
    bytes.fill(3);
    ones.fill(1);
    EXPECT_EQ(orucv::stats::min_max_locate_8u(bytes.data(), 64, 64, 1, 1, 32, 3), 32);
    EXPECT_DEATH(orucv::stats::min_max_locate_8u(bytes.data(), 64, 64, 1, 1, 0, 9),
                 "src/orcvminmaxindx.*j < \\(nch == 1 \\? 32 : 8\\)");
    EXPECT_DEATH(orucv::stats::min_max_locate_masked_8u(bytes.data(), 64, ones.data(), 64, 64, 1, 1, 0, 9),
                 "src/orcvminmaxindx.*k < 32");
}

// ---- Norms.
TEST(StatsNorms, ZeroReferencesAndMagnitudes) {
    GuardedImage<Oru8u> a(5, 2), b(5, 2), mask(5, 2);
    a.fill(0), b.fill(0), mask.fill(9);
    a.at(4, 1) = 1;
    Oru64f norm = 0;
    EXPECT_EQ(oruiNormRel_Inf_8u_C1MR(a.data(), 5, b.data(), 5, mask.data(), 5, {5, 2}, &norm), oruStsOk);
    EXPECT_EQ(norm, 4503599627370496.0);
    EXPECT_EQ(oruiNormRel_L2_8u_C1MR(a.data(), 5, b.data(), 5, mask.data(), 5, {5, 2}, &norm), oruStsOk);
    EXPECT_EQ(norm, 67108864.0);  // 2^26
    GuardedImage<Oru32f> fa(5, 2), fb(5, 2);
    fa.fill(0.0f), fb.fill(0.0f);
    fa.at(4, 1) = 0.5f;
    EXPECT_EQ(oruiNormRel_L1_32f_C1MR(fa.data(), 20, fb.data(), 20, mask.data(), 5, {5, 2}, &norm), oruStsOk);
    EXPECT_EQ(norm, 0.5 * 4503599627370496.0);
    fb.at(0, 0) = std::nanf("");
    EXPECT_EQ(oruiNormRel_Inf_32f_C1MR(fa.data(), 20, fb.data(), 20, mask.data(), 5, {5, 2}, &norm), oruStsOk);
    EXPECT_EQ(bits(norm), 0x7FF8000000000000ull);  // a NaN reference stays
    // An empty mask: every norm 0, relative ones 0 * 2^52.
    mask.fill(0);
    for (const Function& fn : kFunctions) {
        if (fn.order != Order::N) continue;
        Images im(fn, {9, 2}, 0, 0, 2);
        fill(fn, im, 3, false, 0);
        const Outcome o = fn.run(im.args(fn));
        EXPECT_EQ(bits(o.d[0]), 0u) << fn.name;
    }
    // |-128| is 128.
    GuardedImage<Oru8s> s(3, 1);
    s.at(0, 0) = 5, s.at(1, 0) = -128, s.at(2, 0) = 127;
    GuardedImage<Oru8u> all(3, 1);
    all.fill(1);
    EXPECT_EQ(oruiNorm_Inf_8s_C1MR(s.data(), 3, all.data(), 3, {3, 1}, &norm), oruStsOk);
    EXPECT_EQ(norm, 128.0);
}
