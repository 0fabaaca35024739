#include "a6/samplers.h"

#include "core/assert.h"
#include "core/cpu.h"

namespace orucv {
namespace a6 {

namespace {
constexpr SamplerKernels scalar_table() {
    SamplerKernels k{};
#define ORUCV_SAMPLERS_KERNEL(name, shape, T, C) k.line[static_cast<int>(SampleLineFn::name)] = scalar::sample_line<T, C>;
    ORUCV_SAMPLERS_FUNCTIONS(ORUCV_SAMPLERS_KERNEL)
#undef ORUCV_SAMPLERS_KERNEL
    return k;
}
}  // namespace

const SamplerKernels sampler_kernels_scalar = scalar_table();

const SamplerKernels& sampler_kernels() { return ORUCV_CHOOSE(sampler_kernels); }

int init_line(const void* src, int step, OruSize roi, OruPoint p1, OruPoint p2, int bt_pix, LineState* line) {
    ORUCV_ASSERT(bt_pix == 1 || bt_pix == 3 || bt_pix == ((int)sizeof(Oru32f)) || bt_pix == 3*((int)sizeof(Oru32f)),
                 "src/orcvsamplers", "ownInitLine");
    if (step < static_cast<long long>(bt_pix) * roi.width) return 0;
    // Compared as unsigned values: a negative coordinate fails too.
    const unsigned width = static_cast<unsigned>(roi.width), height = static_cast<unsigned>(roi.height);
    if (static_cast<unsigned>(p1.x) >= width || static_cast<unsigned>(p2.x) >= width ||
        static_cast<unsigned>(p1.y) >= height || static_cast<unsigned>(p2.y) >= height)
        return 0;

    int dx = p2.x - p1.x, dy = p2.y - p1.y;
    const ptrdiff_t x_step = dx < 0 ? -bt_pix : bt_pix;
    const ptrdiff_t y_step = dy < 0 ? -static_cast<ptrdiff_t>(step) : step;
    dx = dx < 0 ? -dx : dx;
    dy = dy < 0 ? -dy : dy;
    ORUCV_ASSERT(dx >= 0 && dy >= 0, "src/orcvsamplers", "ownInitLine");

    const bool steep = dx <= dy;
    const int major = steep ? dy : dx, minor = steep ? dx : dy;
    // The first pixel's offset can exceed an int (and, on 32-bit, a
    // ptrdiff_t), though it lies inside the caller's image: add it in
    // address arithmetic.
    const unsigned long long offset = static_cast<unsigned long long>(p1.y) * static_cast<unsigned>(step) +
                                      static_cast<unsigned long long>(p1.x) * static_cast<unsigned>(bt_pix);
    line->at = reinterpret_cast<const uint8_t*>(reinterpret_cast<uintptr_t>(src) + static_cast<uintptr_t>(offset));
    line->error = static_cast<uint32_t>(major);
    line->two_major = 2u * static_cast<uint32_t>(major);
    line->two_minor = 2u * static_cast<uint32_t>(minor);
    line->major_step = steep ? y_step : x_step;
    line->minor_step = steep ? x_step : y_step;
    return major + 1;
}

OruStatus sample_line(SampleLineFn fn, const void* src, int step, OruSize roi, void* dst, OruPoint p1, OruPoint p2,
                      int bt_pix) {
    LineState line;
    const int n = init_line(src, step, roi, p1, p2, bt_pix, &line);
    if (n == 0) return oruStsBadLine;
    sampler_kernels().line[static_cast<int>(fn)](line, dst, n);
    return oruStsOk;
}

}  // namespace a6
}  // namespace orucv
