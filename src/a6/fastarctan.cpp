#include "a6/fastarctan.h"

#include "core/cpu.h"

namespace orucv {
namespace a6 {

namespace {
constexpr FastArctanKernels scalar_table() {
    FastArctanKernels k{};
    k.angles = scalar::angles;
    return k;
}
}  // namespace

const FastArctanKernels fastarctan_kernels_scalar = scalar_table();

const FastArctanKernels& fastarctan_kernels() { return ORUCV_CHOOSE(fastarctan_kernels); }

void fast_arctan(const Oru32f* y, const Oru32f* x, Oru32f* dst, int n) { fastarctan_kernels().angles(y, x, dst, n); }

}  // namespace a6
}  // namespace orucv
