// Template matching: every method and type on the scene at 640x480 with
// 8x8, 16x16 and 32x32 templates and at 1920x1080 with an 8x8 template, on
// the best SIMD path and on the scalar twin. Compute bound (no memcpy
// reference): the work grows with the template area.
#include <memory>
#include <string>
#include <vector>

#include "bench_util.h"
#include "core/cpu.h"
#include "orucv.h"

namespace {

const char* const kMethods[] = {"SqDiff", "SqDiffNormed", "Corr", "CorrNormed", "Coeff", "CoeffNormed"};

template <class T>
using MatchFn = OruStatus (*)(const T*, int, OruSize, const T*, int, OruSize, Oru32f*, int, Oru8u*);
using SizeFn = OruStatus (*)(OruSize, OruSize, int, int*);

const SizeFn kSize[] = {oruiMatchTemplateGetBufSize_SqDiff, oruiMatchTemplateGetBufSize_SqDiffNormed,
                        oruiMatchTemplateGetBufSize_Corr,   oruiMatchTemplateGetBufSize_CorrNormed,
                        oruiMatchTemplateGetBufSize_Coeff,  oruiMatchTemplateGetBufSize_CoeffNormed};
const MatchFn<Oru8u> k8u[] = {oruiMatchTemplate_SqDiff_8u32f_C1R, oruiMatchTemplate_SqDiffNormed_8u32f_C1R,
                              oruiMatchTemplate_Corr_8u32f_C1R,   oruiMatchTemplate_CorrNormed_8u32f_C1R,
                              oruiMatchTemplate_Coeff_8u32f_C1R,  oruiMatchTemplate_CoeffNormed_8u32f_C1R};
const MatchFn<Oru8s> k8s[] = {oruiMatchTemplate_SqDiff_8s32f_C1R, oruiMatchTemplate_SqDiffNormed_8s32f_C1R,
                              oruiMatchTemplate_Corr_8s32f_C1R,   oruiMatchTemplate_CorrNormed_8s32f_C1R,
                              oruiMatchTemplate_Coeff_8s32f_C1R,  oruiMatchTemplate_CoeffNormed_8s32f_C1R};
const MatchFn<Oru32f> k32f[] = {oruiMatchTemplate_SqDiff_32f_C1R, oruiMatchTemplate_SqDiffNormed_32f_C1R,
                                oruiMatchTemplate_Corr_32f_C1R,   oruiMatchTemplate_CorrNormed_32f_C1R,
                                oruiMatchTemplate_Coeff_32f_C1R,  oruiMatchTemplate_CoeffNormed_32f_C1R};

// The scene's frame 0, and a template cut from frame 3 around the moving
// disc, in the pixel type (signed bytes are the gray values minus 128).
template <class T>
struct Case {
    std::vector<T> src, tpl;
    std::vector<float> dst;
    std::vector<Oru8u> buffer;
    OruSize src_size, tpl_size;
};

template <class T>
T convert(uint8_t v) {
    return std::is_same<T, Oru8s>::value ? static_cast<T>(v - 128) : static_cast<T>(v);
}

template <class T>
std::shared_ptr<Case<T>> make_case(int method, int width, int height, int tpl_side, int type) {
    auto c = std::make_shared<Case<T>>();
    const auto& scene = orubench::scene(width, height, 0).pixels;
    const auto& later = orubench::scene(width, height, 3).pixels;
    c->src_size = {width, height};
    c->tpl_size = {tpl_side, tpl_side};
    for (uint8_t v : scene) c->src.push_back(convert<T>(v));
    // The disc of frame 3 sits near (234, 258) on the 640x480 canvas.
    const int cx = 234 * width / 640 - tpl_side / 2, cy = 258 * height / 480 - tpl_side / 2;
    for (int y = 0; y < tpl_side; ++y)
        for (int x = 0; x < tpl_side; ++x) c->tpl.push_back(convert<T>(later[(cy + y) * width + cx + x]));
    const int w = width - tpl_side + 1, h = height - tpl_side + 1;
    c->dst.resize(static_cast<size_t>(w) * h);
    int size = 0;
    kSize[method](c->src_size, c->tpl_size, type, &size);
    c->buffer.resize(size);
    return c;
}

template <class T>
void add(const MatchFn<T>* fns, const char* type_name, int type, int method, int width, int height, int side) {
    for (bool simd : {true, false}) {
        const std::string name = std::string("MatchTemplate_") + kMethods[method] + "_" + type_name + "/" +
                                 std::to_string(width) + "x" + std::to_string(height) + "/" + std::to_string(side) +
                                 "x" + std::to_string(side) + (simd ? "/simd" : "/scalar");
        const MatchFn<T> fn = fns[method];
        benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
            const orucv::SimdLevel level = simd ? orucv::detected_simd_level() : orucv::SimdLevel::Scalar;
            const orucv::SimdLevel previous = orucv::force_simd_level(level);
            auto c = make_case<T>(method, width, height, side, type);
            const int w = width - side + 1;
            const int dst_step = 4 * w, src_step = width * static_cast<int>(sizeof(T)),
                      tpl_step = side * static_cast<int>(sizeof(T));
            for (auto _ : state) {
                const OruStatus s = fn(c->src.data(), src_step, c->src_size, c->tpl.data(), tpl_step, c->tpl_size,
                                       c->dst.data(), dst_step, c->buffer.data());
                if (s != oruStsOk) state.SkipWithError("match failed");
                benchmark::ClobberMemory();
            }
            orucv::force_simd_level(previous);
            state.counters["pix/s"] = benchmark::Counter(static_cast<double>(width) * height * state.iterations(),
                                                         benchmark::Counter::kIsRate);
        })->Unit(benchmark::kMillisecond);
    }
}

bool register_all() {
    struct Geometry {
        int width, height, side;
    };
    const Geometry geometries[] = {{640, 480, 8}, {640, 480, 16}, {640, 480, 32}, {1920, 1080, 8}};
    for (const Geometry& g : geometries)
        for (int m = 0; m < 6; ++m) {
            add(k8u, "8u32f", oruDataType8u, m, g.width, g.height, g.side);
            add(k8s, "8s32f", oruDataType8s, m, g.width, g.height, g.side);
            add(k32f, "32f", oruDataType32f, m, g.width, g.height, g.side);
        }
    return true;
}
const bool registered = register_all();

}  // namespace
