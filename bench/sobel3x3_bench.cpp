// Fixed 3x3 Sobel and Scharr filters on the demo scene. Bytes read plus
// written per pixel: 3 for 8-bit sources (16-bit results), 8 for floats.
#include <memory>
#include <type_traits>
#include <vector>

#include "bench_util.h"
#include "orucv.h"

namespace {

template <class S, class D>
struct Frame {
    std::vector<S> src;
    std::vector<D> dst;
    int w, h;
    int src_step() const { return w * static_cast<int>(sizeof(S)); }
    int dst_step() const { return w * static_cast<int>(sizeof(D)); }
};

// The gray scene as 8u, as 8s (shifted by -128) or as floats.
template <class S, class D>
std::shared_ptr<Frame<S, D>> frame(int w, int h) {
    auto f = std::make_shared<Frame<S, D>>();
    const auto& scene = orubench::scene(w, h, 0).pixels;
    f->src.resize(scene.size());
    for (size_t i = 0; i < scene.size(); ++i)
        f->src[i] = std::is_same<S, Oru8s>::value ? static_cast<S>(scene[i] - 128) : static_cast<S>(scene[i]);
    f->dst.resize(scene.size());
    f->w = w;
    f->h = h;
    return f;
}

#define SOBEL_PLAIN(name, fn, S, D, bpp)                                                          \
    ORUBENCH(name, bpp, [](int w, int h) {                                                        \
        auto f = frame<S, D>(w, h);                                                               \
        return [f] { fn(f->src.data(), f->src_step(), f->dst.data(), f->dst_step(), {f->w, f->h}); }; \
    })
#define SOBEL_ORIGIN(name, fn, S, D, bpp)                                                            \
    ORUBENCH(name, bpp, [](int w, int h) {                                                           \
        auto f = frame<S, D>(w, h);                                                                  \
        return [f] { fn(f->src.data(), f->src_step(), f->dst.data(), f->dst_step(), 0, {f->w, f->h}); }; \
    })
#define SCHARR_DX(name, fn, S, D, bpp)                                                               \
    ORUBENCH(name, bpp, [](int w, int h) {                                                           \
        auto f = frame<S, D>(w, h);                                                                  \
        return [f] { fn(f->src.data(), f->src_step(), f->dst.data(), f->dst_step(), {f->w, f->h}, 0); }; \
    })
#define SCHARR_DY(name, fn, S, D, bpp)                                                                  \
    ORUBENCH(name, bpp, [](int w, int h) {                                                              \
        auto f = frame<S, D>(w, h);                                                                     \
        return [f] { fn(f->src.data(), f->src_step(), f->dst.data(), f->dst_step(), 0, {f->w, f->h}, 0); }; \
    })

SOBEL_PLAIN("Sobel3x3_Dx_8u16s", oruiSobel3x3_Dx_8u16s_C1R, Oru8u, Oru16s, 3);
SOBEL_ORIGIN("Sobel3x3_Dy_8u16s", oruiSobel3x3_Dy_8u16s_C1R, Oru8u, Oru16s, 3);
SOBEL_PLAIN("Sobel3x3_D2x_8u16s", oruiSobel3x3_D2x_8u16s_C1R, Oru8u, Oru16s, 3);
SOBEL_PLAIN("Sobel3x3_D2y_8u16s", oruiSobel3x3_D2y_8u16s_C1R, Oru8u, Oru16s, 3);
SOBEL_ORIGIN("Sobel3x3_DxDy_8u16s", oruiSobel3x3_DxDy_8u16s_C1R, Oru8u, Oru16s, 3);
SCHARR_DX("Scharr_Dx_8u16s", oruiScharr_Dx_8u16s_C1R, Oru8u, Oru16s, 3);
SCHARR_DY("Scharr_Dy_8u16s", oruiScharr_Dy_8u16s_C1R, Oru8u, Oru16s, 3);

SOBEL_PLAIN("Sobel3x3_Dx_8s16s", oruiSobel3x3_Dx_8s16s_C1R, Oru8s, Oru16s, 3);
SOBEL_ORIGIN("Sobel3x3_Dy_8s16s", oruiSobel3x3_Dy_8s16s_C1R, Oru8s, Oru16s, 3);
SOBEL_PLAIN("Sobel3x3_D2x_8s16s", oruiSobel3x3_D2x_8s16s_C1R, Oru8s, Oru16s, 3);
SOBEL_PLAIN("Sobel3x3_D2y_8s16s", oruiSobel3x3_D2y_8s16s_C1R, Oru8s, Oru16s, 3);
SOBEL_ORIGIN("Sobel3x3_DxDy_8s16s", oruiSobel3x3_DxDy_8s16s_C1R, Oru8s, Oru16s, 3);
SCHARR_DX("Scharr_Dx_8s16s", oruiScharr_Dx_8s16s_C1R, Oru8s, Oru16s, 3);
SCHARR_DY("Scharr_Dy_8s16s", oruiScharr_Dy_8s16s_C1R, Oru8s, Oru16s, 3);

SOBEL_PLAIN("Sobel3x3_Dx_32f", oruiSobel3x3_Dx_32f_C1R, Oru32f, Oru32f, 8);
SOBEL_ORIGIN("Sobel3x3_Dy_32f", oruiSobel3x3_Dy_32f_C1R, Oru32f, Oru32f, 8);
SCHARR_DX("Scharr_Dx_32f", oruiScharr_Dx_32f_C1R, Oru32f, Oru32f, 8);
SCHARR_DY("Scharr_Dy_32f", oruiScharr_Dy_32f_C1R, Oru32f, Oru32f, 8);

}  // namespace
