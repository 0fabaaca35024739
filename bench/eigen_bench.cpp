// Corner eigenvalues, every function of the list on the scene with
// aperture 3 and window 3. Bytes read plus written per pixel: the source
// plus 4 (MinEigenVal) or 24 (EigenValsVecs).
#include <memory>
#include <vector>

#include "bench_util.h"
#include "eigen_list.h"
#include "orucv.h"

namespace {

template <class S>
struct Frame {
    std::vector<S> src;
    std::vector<Oru32f> dst;
    std::vector<Oru8u> buffer;
};

template <class S, int kPer, class Call>
void add(const char* name, Call call) {
    orubench::add(std::string(name) + "/a3w3", sizeof(S) + 4.0 * kPer, [=](int w, int h) {
        auto f = std::make_shared<Frame<S>>();
        const auto& scene = orubench::scene(w, h).pixels;
        f->src.assign(scene.begin(), scene.end());
        f->dst.resize(static_cast<size_t>(w) * h * kPer);
        int size = 0;
        oruiMinEigenValGetSize(w, 3, 3, &size);
        f->buffer.resize(static_cast<size_t>(size));
        return [f, w, h, call] {
            call(f->src.data(), w * static_cast<int>(sizeof(S)), f->dst.data(), 4 * kPer * w, OruSize{w, h}, 3, 3,
                 f->buffer.data());
        };
    });
}

#define BENCH_GetSize(name, S)
#define BENCH_EigenValsVecs(name, S) add<S, 6>(#name, name);
#define BENCH_MinEigenVal(name, S) add<S, 1>(#name, name);
#define BENCH(name, shape, S) BENCH_##shape(name, S)

const bool registered = [] {
    ORUCV_EIGEN_FUNCTIONS(BENCH)
    return true;
}();

}  // namespace
