// General strip filters, every filter function of the list at kernel sizes
// 3, 5 and 7 (Sobel: the first x derivative), on the scene: the whole image
// in one call and in strips of 16 rows. Bytes read plus written per pixel:
// 3 (8-bit to 16-bit), 8 (float).
#include <memory>
#include <string>
#include <vector>

#include "bench_util.h"
#include "filter_list.h"
#include "orucv.h"

namespace {

enum Kind { kSobel, kBlur, kLaplace };

template <class S>
constexpr int type_of() {
    return sizeof(S) == 4 ? oruDataType32f : std::is_signed<S>::value ? oruDataType8s : oruDataType8u;
}

template <class S, class D>
struct Frame {
    std::vector<S> src;
    std::vector<D> dst;
    OruFilterSpec* fspec = nullptr;
    ~Frame() { oruiConvolFree(&fspec); }
};

using Filter = OruStatus (*)(const void*, int, void*, int, OruSize*, OruFilterSpec*, int);

template <class S, class D>
void add(const char* name, Kind kind, Filter filter) {
    for (int size : {3, 5, 7})
        for (int strip : {0, 16}) {
            const std::string label =
                std::string(name) + "/k" + std::to_string(size) + (strip ? "_strips" + std::to_string(strip) : "");
            orubench::add(label, sizeof(S) + sizeof(D), [=](int w, int h) {
                auto f = std::make_shared<Frame<S, D>>();
                const auto& scene = orubench::scene(w, h).pixels;
                f->src.assign(scene.begin(), scene.end());
                f->dst.resize(static_cast<size_t>(w) * h);
                const int type = type_of<S>();
                if (kind == kSobel) oruiSobelInitAlloc(w, type, size, 0, 1, 0, &f->fspec);
                else if (kind == kBlur) oruiBlurInitAlloc(w, type, size, &f->fspec);
                else oruiLaplaceInitAlloc(w, type, size, &f->fspec);
                return [f, w, h, strip, filter] {
                    const int ss = w * static_cast<int>(sizeof(S)), ds = w * static_cast<int>(sizeof(D));
                    if (!strip) {
                        OruSize roi{w, h};
                        filter(f->src.data(), ss, f->dst.data(), ds, &roi, f->fspec, 0);
                        return;
                    }
                    int out = 0;
                    for (int y = 0; y < h; y += strip) {
                        OruSize roi{w, y + strip < h ? strip : h - y};
                        const int flag = y == 0 ? 1 : y + strip < h ? 4 : 2;
                        filter(&f->src[static_cast<size_t>(y) * w], ss, &f->dst[static_cast<size_t>(out) * w], ds, &roi,
                               f->fspec, flag);
                        out += roi.height;
                    }
                };
            });
        }
}

#define BENCH_SobelInit(name, S, D)
#define BENCH_BlurInit(name, S, D)
#define BENCH_LaplaceInit(name, S, D)
#define BENCH_Free(name, S, D)
#define BENCH_CALL(name, kind, S, D)                                                                          \
    add<S, D>(#name, kind, [](const void* s, int ss, void* d, int ds, OruSize* r, OruFilterSpec* p, int flag) { \
        return name(static_cast<const S*>(s), ss, static_cast<D*>(d), ds, r, p, flag);                        \
    });
#define BENCH_Sobel(name, S, D) BENCH_CALL(name, kSobel, S, D)
#define BENCH_Blur(name, S, D) BENCH_CALL(name, kBlur, S, D)
#define BENCH_Laplace(name, S, D) BENCH_CALL(name, kLaplace, S, D)
#define BENCH(name, shape, S, D) BENCH_##shape(name, S, D)

const bool registered = [] {
    ORUCV_FILTER_FUNCTIONS(BENCH)
    return true;
}();

}  // namespace
