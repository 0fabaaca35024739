// Absolute difference and motion history: bytes read plus written per pixel
// are 3 (8u), 12 (32f), 2 and 8 (constant forms), 1 + 4 + 4 (history).
#include <memory>
#include <vector>

#include "bench_util.h"
#include "orucv.h"

namespace {

struct Frames8u {
    std::vector<uint8_t> a, b, dst;
    int width;
};

ORUBENCH("AbsDiff_8u", 3, [](int w, int h) {
    auto f = std::make_shared<Frames8u>(
        Frames8u{orubench::scene(w, h, 0).pixels, orubench::scene(w, h, 3).pixels, std::vector<uint8_t>(w * h), w});
    return [f, w, h] { oruiAbsDiff_8u_C1R(f->a.data(), w, f->b.data(), w, f->dst.data(), w, {w, h}); };
});

ORUBENCH("AbsDiffC_8u", 2, [](int w, int h) {
    auto f = std::make_shared<Frames8u>(
        Frames8u{orubench::scene(w, h, 0).pixels, {}, std::vector<uint8_t>(w * h), w});
    return [f, w, h] { oruiAbsDiffC_8u_C1R(f->a.data(), w, f->dst.data(), w, {w, h}, 100); };
});

struct Frames32f {
    std::vector<float> a, b, dst;
};

std::shared_ptr<Frames32f> float_frames(int w, int h) {
    auto f = std::make_shared<Frames32f>();
    const auto& s0 = orubench::scene(w, h, 0).pixels;
    const auto& s3 = orubench::scene(w, h, 3).pixels;
    f->a.assign(s0.begin(), s0.end());
    f->b.assign(s3.begin(), s3.end());
    f->dst.resize(static_cast<size_t>(w) * h);
    return f;
}

ORUBENCH("AbsDiff_32f", 12, [](int w, int h) {
    auto f = float_frames(w, h);
    return [f, w, h] {
        oruiAbsDiff_32f_C1R(f->a.data(), 4 * w, f->b.data(), 4 * w, f->dst.data(), 4 * w, {w, h});
    };
});

ORUBENCH("AbsDiffC_32f", 8, [](int w, int h) {
    auto f = float_frames(w, h);
    return [f, w, h] { oruiAbsDiffC_32f_C1R(f->a.data(), 4 * w, f->dst.data(), 4 * w, {w, h}, 100.0f); };
});

ORUBENCH("UpdateMotionHistory_8u32f", 9, [](int w, int h) {
    auto silhouette = std::make_shared<std::vector<uint8_t>>(orubench::random_bytes(static_cast<size_t>(w) * h, 5));
    for (auto& p : *silhouette) p = p < 20 ? 255 : 0;
    auto mhi = std::make_shared<std::vector<float>>(static_cast<size_t>(w) * h, 3.0f);
    return [silhouette, mhi, w, h] {
        oruiUpdateMotionHistory_8u32f_C1IR(silhouette->data(), w, mhi->data(), 4 * w, {w, h}, 10.0f, 5.0f);
    };
});

}  // namespace
