// Template matching, every match function of the list, on the scene with a
// template cut from a later frame: 8x8, 16x16 and 32x32 templates at
// 640x480 and 1920x1080. Compute bound (no memcpy reference): the work
// grows with the template area.
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "bench_util.h"
#include "matchtemplate_list.h"
#include "orucv.h"

namespace {

template <class T>
using MatchFn = OruStatus (*)(const T*, int, OruSize, const T*, int, OruSize, Oru32f*, int, Oru8u*);
using SizeFn = OruStatus (*)(OruSize, OruSize, int, int*);

template <class T>
constexpr int type_code() {
    return std::is_same<T, Oru8u>::value ? oruDataType8u : std::is_same<T, Oru8s>::value ? oruDataType8s : oruDataType32f;
}

// Signed bytes are the gray values minus 128.
template <class T>
T convert(uint8_t v) {
    return std::is_same<T, Oru8s>::value ? static_cast<T>(v - 128) : static_cast<T>(v);
}

// The scene's frame 0, and a template cut from frame 3 around the moving
// disc, in the pixel type.
template <class T>
struct Case {
    std::vector<T> src, tpl;
    std::vector<float> dst;
    std::vector<Oru8u> buffer;
};

template <class T>
orubench::Maker match(MatchFn<T> fn, SizeFn size_fn, int side) {
    return [=](int width, int height) {
        auto c = std::make_shared<Case<T>>();
        const auto& scene = orubench::scene(width, height, 0).pixels;
        const auto& later = orubench::scene(width, height, 3).pixels;
        for (uint8_t v : scene) c->src.push_back(convert<T>(v));
        // The disc of frame 3 sits near (234, 258) on the 640x480 canvas.
        const int cx = 234 * width / 640 - side / 2, cy = 258 * height / 480 - side / 2;
        for (int y = 0; y < side; ++y)
            for (int x = 0; x < side; ++x) c->tpl.push_back(convert<T>(later[(cy + y) * width + cx + x]));
        const int w = width - side + 1, h = height - side + 1;
        c->dst.resize(static_cast<size_t>(w) * h);
        int size = 0;
        size_fn({width, height}, {side, side}, type_code<T>(), &size);
        c->buffer.resize(size);
        const int src_step = width * static_cast<int>(sizeof(T)), tpl_step = side * static_cast<int>(sizeof(T));
        return [=] {
            fn(c->src.data(), src_step, {width, height}, c->tpl.data(), tpl_step, {side, side}, c->dst.data(), 4 * w,
               c->buffer.data());
        };
    };
}

template <class T>
bool add(const char* name, MatchFn<T> fn, SizeFn size_fn) {
    orubench::add(std::string(name) + "/8x8", 0, match<T>(fn, size_fn, 8));
    orubench::add(std::string(name) + "/16x16", 0, match<T>(fn, size_fn, 16));
    return orubench::add(std::string(name) + "/32x32", 0, match<T>(fn, size_fn, 32));
}

}  // namespace

#define BENCH_BufSize(name, T, method)
#define BENCH_Match(name, T, method) \
    static const bool ORUBENCH_CAT(orubench_, __COUNTER__) = add<T>(#name, name, oruiMatchTemplateGetBufSize_##method);
#define BENCH(name, shape, T, method) BENCH_##shape(name, T, method)
ORUCV_MATCHTEMPLATE_FUNCTIONS(BENCH)
