// Chamfer distance transforms on frames with about 5% feature pixels
// scattered at random. The passes are serial, so the figure of merit is the
// time per frame rather than a memory bandwidth (no memcpy beside them).
#include <memory>
#include <vector>

#include "bench_util.h"
#include "orucv.h"

namespace {

struct Frame {
    std::vector<uint8_t> src;
    std::vector<float> dst;
    float metrics[3];
};

orubench::Maker transform(OruStatus (*fn)(const Oru8u*, int, Oru32f*, int, OruSize, const Oru32f*), int mask) {
    return [fn, mask](int w, int h) {
        auto f = std::make_shared<Frame>();
        f->src = orubench::random_bytes(static_cast<size_t>(w) * h, 11);
        for (auto& p : f->src) p = p < 13 ? 0 : 255;  // 13 / 256: about 5% features
        f->dst.resize(static_cast<size_t>(w) * h);
        oruiGetDistanceTransformMask(mask, f->metrics);
        return [f, fn, w, h] { fn(f->src.data(), w, f->dst.data(), 4 * w, {w, h}, f->metrics); };
    };
}

ORUBENCH("DistanceTransform_3x3_8u32f", 0, transform(oruiDistanceTransform_3x3_8u32f_C1R, 32));
ORUBENCH("DistanceTransform_5x5_8u32f", 0, transform(oruiDistanceTransform_5x5_8u32f_C1R, 52));

}  // namespace
