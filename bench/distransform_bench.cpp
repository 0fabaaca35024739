// Chamfer distance transforms, every transform of the list, on frames with
// about 5% feature pixels scattered at random. The passes are serial, so the
// figure of merit is the time per frame rather than a memory bandwidth (no
// memcpy beside them).
#include <memory>
#include <vector>

#include "bench_util.h"
#include "distransform_list.h"
#include "orucv.h"

namespace {

struct Frame {
    std::vector<uint8_t> src;
    std::vector<float> dst;
    float metrics[3];
};

// The Euclidean mask of each side: code 32 (3x3) or 52 (5x5).
orubench::Maker transform(OruStatus (*fn)(const Oru8u*, int, Oru32f*, int, OruSize, const Oru32f*), int side) {
    return [fn, side](int w, int h) {
        auto f = std::make_shared<Frame>();
        f->src = orubench::random_bytes(static_cast<size_t>(w) * h, 11);
        for (auto& p : f->src) p = p < 13 ? 0 : 255;  // 13 / 256: about 5% features
        f->dst.resize(static_cast<size_t>(w) * h);
        oruiGetDistanceTransformMask(10 * side + 2, f->metrics);
        return [f, fn, w, h] { fn(f->src.data(), w, f->dst.data(), 4 * w, {w, h}, f->metrics); };
    };
}

}  // namespace

#define BENCH_Mask(name, side)
#define BENCH_Transform(name, side) ORUBENCH(#name, 0, transform(name, side));
#define BENCH(name, shape, side) BENCH_##shape(name, side)
ORUCV_DISTRANSFORM_FUNCTIONS(BENCH)
