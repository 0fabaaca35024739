// Image statistics, every function of the list on the scene (gray for C1,
// colour for C3C) with a mask selecting about half of the pixels. Bytes read
// per pixel: the source's samples (all channels of C3C, two images for the
// difference and relative norms) plus the mask byte.
#include <memory>
#include <type_traits>
#include <vector>

#include "bench_util.h"
#include "orucv.h"
#include "scene.h"
#include "stats_list.h"

namespace {

enum class Kind { Mean, MeanStdDev, SumSq, MinMaxIndx, Norm, NormDiff, NormRel };

template <class T>
struct Data {
    std::vector<T> a, b;
    std::vector<Oru8u> mask;
    int step = 0;
};

template <class T>
T pixel(uint8_t v) {
    if constexpr (std::is_same<T, Oru32f>::value) return static_cast<T>(v) * (1.0f / 255.0f);
    else return static_cast<T>(v - (std::is_same<T, Oru8s>::value ? 128 : 0));
}

// Frames 0 and 3 of the scene as T, and a mask from random bytes.
template <class T>
std::shared_ptr<Data<T>> data(int w, int h, int channels) {
    auto d = std::make_shared<Data<T>>();
    for (int frame : {0, 3}) {
        const orucv_tool::Image img =
            channels == 3 ? orucv_tool::render_scene_rgb(w, h, frame) : orubench::scene(w, h, frame);
        std::vector<T>& out = frame == 0 ? d->a : d->b;
        out.reserve(img.pixels.size());
        for (uint8_t v : img.pixels) out.push_back(pixel<T>(v));
    }
    d->mask = orubench::random_bytes(static_cast<size_t>(w) * h, 7);
    for (Oru8u& m : d->mask) m = m < 128 ? 255 : 0;
    d->step = w * channels * static_cast<int>(sizeof(T));
    return d;
}

struct Outputs {
    Oru64f d0, d1;
    Oru32f f0, f1;
    OruPoint p0, p1;
    Oru32s sum;
    long long sumsq;
};

template <class T, auto F, Kind K, bool kC3, bool kMasked>
void call(const Data<T>& d, OruSize roi, Outputs& o) {
    const T* a = d.a.data();
    const T* b = d.b.data();
    const Oru8u* m = d.mask.data();
    const int s = d.step, ms = roi.width, coi = 2;
    if constexpr (K == Kind::Mean) {
        if constexpr (kC3) F(a, s, m, ms, roi, coi, &o.d0);
        else F(a, s, m, ms, roi, &o.d0);
    } else if constexpr (K == Kind::MeanStdDev && kMasked) {
        if constexpr (kC3) F(a, s, m, ms, roi, coi, &o.d0, &o.d1);
        else F(a, s, m, ms, roi, &o.d0, &o.d1);
    } else if constexpr (K == Kind::MeanStdDev) {
        if constexpr (kC3) F(a, s, roi, coi, &o.d0, &o.d1);
        else F(a, s, roi, &o.d0, &o.d1);
    } else if constexpr (K == Kind::SumSq) {
        F(a, s, roi.width, roi.height, &o.sum, &o.sumsq);
    } else if constexpr (K == Kind::MinMaxIndx) {
        if constexpr (kC3 && kMasked) F(a, s, m, ms, roi, coi, &o.f0, &o.f1, &o.p0, &o.p1);
        else if constexpr (kC3) F(a, s, roi, coi, &o.f0, &o.f1, &o.p0, &o.p1);
        else if constexpr (kMasked) F(a, s, m, ms, roi, &o.f0, &o.f1, &o.p0, &o.p1);
        else F(a, s, roi, &o.f0, &o.f1, &o.p0, &o.p1);
    } else if constexpr (K == Kind::Norm) {
        if constexpr (kC3) F(a, s, m, ms, roi, coi, &o.d0);
        else F(a, s, m, ms, roi, &o.d0);
    } else {
        if constexpr (kC3) F(a, s, b, s, m, ms, roi, coi, &o.d0);
        else F(a, s, b, s, m, ms, roi, &o.d0);
    }
}

template <class T, auto F, Kind K, bool kC3, bool kMasked>
bool add(const char* name) {
    const int channels = kC3 ? 3 : 1;
    const bool two = K == Kind::NormDiff || K == Kind::NormRel;
    const double bytes = static_cast<double>(sizeof(T)) * channels * (two ? 2 : 1) + (kMasked ? 1 : 0);
    return orubench::add(name, bytes, [](int w, int h) {
        auto d = data<T>(w, h, channels);
        auto o = std::make_shared<Outputs>();
        return [d, o, w, h] { call<T, F, K, kC3, kMasked>(*d, {w, h}, *o); };
    });
}

}  // namespace

#define BENCH_C3_C1 false
#define BENCH_C3_C3C true
#define BENCH_MASKED_Masked true
#define BENCH_MASKED_Unmasked false
#define BENCH(name, kind, norm, T, layout, mask, order)                                                       \
    static const bool ORUBENCH_CAT(registered_, name) =                                                       \
        add<T, name, Kind::kind, BENCH_C3_##layout, BENCH_MASKED_##mask>(#name);
ORUCV_STATS_FUNCTIONS(BENCH)
