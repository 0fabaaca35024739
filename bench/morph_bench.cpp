// Morphology: the erosion of every type and channel count of the list, each
// with the elements measured for it, on the scene, as one call and in
// strips of 16 rows. Bytes read plus written per pixel: twice the pixel's.
#include <memory>
#include <string>
#include <vector>

#include "bench_util.h"
#include "morph_list.h"
#include "orucv.h"

namespace {

// An element and the images it is measured on.
struct Element {
    const char* name;
    int shape, w, h;
    std::vector<int> forms;  // channels * 10 + (1 for float), e.g. 10 is 8u C1, 31 is 32f C3
    bool strips;             // also in strips of 16 rows
};
const Element kElements[] = {
    {"rect3x3", 0, 3, 3, {10, 30, 11}, true},
    {"rect5x5", 0, 5, 5, {10, 30, 11}, true},
    {"rect15x15", 0, 15, 15, {10, 30, 11}, true},
    {"rect5x3", 0, 5, 3, {10, 30, 40, 11, 31, 41}, false},
    {"cross5x5", 1, 5, 5, {10, 30, 11}, true},
    {"ellipse7x7", 2, 7, 7, {10, 30, 11}, true},
    {"mask5x5", 100, 5, 5, {10, 30, 11, 31}, false},
};

template <class T>
struct Frame {
    std::vector<T> src, dst;
    OruMorphState* state = nullptr;
    ~Frame() { oruiMorphologyFree(&state); }
};

using Strip = OruStatus (*)(const void*, int, void*, int, OruSize*, OruMorphState*, int);
template <class T, auto F>
OruStatus strip(const void* s, int ss, void* d, int ds, OruSize* roi, OruMorphState* st, int flag) {
    return F(static_cast<const T*>(s), ss, static_cast<T*>(d), ds, roi, st, flag);
}

template <class T>
void add(const std::string& function, const Element& e, int channels, bool in_strips, Strip call) {
    const std::string name = function + "/" + e.name + (in_strips ? "/strips16" : "/whole");
    orubench::add(name, 2.0 * sizeof(T) * channels, [=](int w, int h) {
        auto f = std::make_shared<Frame<T>>();
        const auto& gray = orubench::scene(w, h, 0).pixels;
        f->src.resize(static_cast<size_t>(w) * h * channels);
        for (size_t i = 0; i < f->src.size(); ++i) f->src[i] = static_cast<T>(gray[i / channels] ^ (i % channels * 37));
        f->dst.resize(f->src.size());
        const std::vector<Oru8u> all(static_cast<size_t>(e.w) * e.h, 1);
        oruiMorphologyInitAlloc(w, sizeof(T) == 4 ? oruDataType32f : oruDataType8u, channels, {e.w, e.h},
                                {e.w / 2, e.h / 2}, e.shape, all.data(), &f->state);
        const int step = w * channels * static_cast<int>(sizeof(T));
        return [f, w, h, step, in_strips, call] {
            if (!in_strips) {
                OruSize roi{w, h};
                call(f->src.data(), step, f->dst.data(), step, &roi, f->state, 0);
                return;
            }
            int written = 0;
            for (int y = 0; y < h; y += 16) {
                OruSize roi{w, y + 16 < h ? 16 : h - y};
                const int flag = y == 0 ? 1 : y + 16 < h ? 4 : 2;
                call(reinterpret_cast<const uint8_t*>(f->src.data()) + static_cast<size_t>(y) * step, step,
                     reinterpret_cast<uint8_t*>(f->dst.data()) + static_cast<size_t>(written) * step, step, &roi,
                     f->state, flag);
                written += roi.height;
            }
        };
    });
}

constexpr int shape_of(const char* s) { return s[0] == 'R' ? 0 : s[0] == 'C' ? 1 : 100; }

// The erosions of the list, each with the elements measured in its form.
template <class T>
bool register_erosion(const char* name, const char* operation, const char* shape, int channels, Strip call) {
    if (operation[0] != 'E') return false;
    for (const Element& e : kElements) {
        const int stored = e.shape == 2 ? 100 : e.shape;
        bool measured = false;
        for (int form : e.forms) measured = measured || form == channels * 10 + (sizeof(T) == 4 ? 1 : 0);
        if (stored != shape_of(shape) || !measured) continue;
        add<T>(name, e, channels, false, call);
        if (e.strips) add<T>(name, e, channels, true, call);
    }
    return true;
}

#define BENCH_State(name, operation, shape, T, C)
#define BENCH_Strip(name, operation, shape, T, C) \
    [[maybe_unused]] const bool bench_##name = register_erosion<T>(#name, #operation, #shape, C, strip<T, name>);
#define BENCH(name, kind, operation, shape, T, C) BENCH_##kind(name, operation, shape, T, C)
ORUCV_MORPH_FUNCTIONS(BENCH)

}  // namespace
