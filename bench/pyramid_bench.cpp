// Gaussian pyramids: every filter of the list on the demo scene (gray for one
// channel, colour for three). Traffic per source pixel: the source read plus
// the destination written, a quarter of it for PyrDown and four times it
// for PyrUp (the scratch ring stays in cache).
#include <memory>
#include <vector>

#include "bench_util.h"
#include "orucv.h"
#include "pyramid_list.h"
#include "scene.h"

namespace {

template <class T>
using PyrFn = OruStatus (*)(const T*, int, T*, int, OruSize, Oru8u*);

template <class T>
struct Frames {
    std::vector<T> src, dst;
    std::vector<uint8_t> buffer;
};

template <class T>
T sample(uint8_t v) {
    if (sizeof(T) == 4) return static_cast<T>(v);
    return static_cast<T>(v ^ (static_cast<T>(-1) < 0 ? 0x80 : 0));  // 8s: the same picture, signed
}

template <class T, int CH, bool kDown>
orubench::Maker make(PyrFn<T> fn) {
    return [fn](int w, int h) {
        const orucv_tool::Image img =
            CH == 1 ? orubench::scene(w, h, 0) : orucv_tool::render_scene_rgb(w, h, 0);
        auto f = std::make_shared<Frames<T>>();
        for (uint8_t v : img.pixels) f->src.push_back(sample<T>(v));
        const int ow = kDown ? w / 2 : 2 * w, oh = kDown ? h / 2 : 2 * h;
        f->dst.resize(static_cast<size_t>(ow) * oh * CH);
        const int type = sizeof(T) == 4 ? oruDataType32f : static_cast<T>(-1) < 0 ? oruDataType8s : oruDataType8u;
        int size = 0;
        if (kDown) oruiPyrDownGetBufSize_Gauss5x5(w, type, CH, &size);
        else oruiPyrUpGetBufSize_Gauss5x5(w, type, CH, &size);
        f->buffer.resize(size);
        const int ss = w * CH * static_cast<int>(sizeof(T)), ds = ow * CH * static_cast<int>(sizeof(T));
        return [f, fn, w, h, ss, ds] { fn(f->src.data(), ss, f->dst.data(), ds, {w, h}, f->buffer.data()); };
    };
}

constexpr double down_traffic(double bytes) { return bytes * 1.25; }
constexpr double up_traffic(double bytes) { return bytes * 5.0; }

}  // namespace

#define BENCH_Down(name, T, CH) ORUBENCH(#name, down_traffic(CH * sizeof(T)), make<T, CH, true>(name));
#define BENCH_Up(name, T, CH) ORUBENCH(#name, up_traffic(CH * sizeof(T)), make<T, CH, false>(name));
#define BENCH_DownSize(name, T, CH)
#define BENCH_UpSize(name, T, CH)
#define BENCH(name, shape, T, CH) BENCH_##shape(name, T, CH)
ORUCV_PYRAMID_FUNCTIONS(BENCH)
