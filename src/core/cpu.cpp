#include "core/cpu.h"

#if ORUCV_X86_SIMD
#include <cpuid.h>
#endif

namespace orucv {
namespace {

#if ORUCV_X86_SIMD && defined(ORUCV_NO_RUNTIME_DISPATCH)
// The build targets one CPU: its level is the compiler's target.
SimdLevel probe() {
#if defined(__AVX2__)
    return SimdLevel::Avx2;
#else
    return SimdLevel::Sse2;
#endif
}
#elif ORUCV_X86_SIMD
unsigned long long read_xcr0() {
    unsigned eax, edx;
    __asm__ volatile("xgetbv" : "=a"(eax), "=d"(edx) : "c"(0));
    return (static_cast<unsigned long long>(edx) << 32) | eax;
}

SimdLevel probe() {
    unsigned a, b, c, d;
    if (!__get_cpuid(1, &a, &b, &c, &d) || !(d & bit_SSE2)) return SimdLevel::Scalar;
    // AVX2 needs the CPU bit and the OS saving the YMM state (OSXSAVE, XCR0).
    const bool osxsave = (c & bit_OSXSAVE) != 0;
    if (!osxsave || (read_xcr0() & 6) != 6) return SimdLevel::Sse2;
    if (__get_cpuid_max(0, nullptr) < 7) return SimdLevel::Sse2;
    __cpuid_count(7, 0, a, b, c, d);
    return (b & bit_AVX2) ? SimdLevel::Avx2 : SimdLevel::Sse2;
}
#else
SimdLevel probe() { return SimdLevel::Scalar; }
#endif

// -1 until first use; a racing first use stores the same value twice.
int g_detected = -1;
int g_level = -1;

}  // namespace

SimdLevel detected_simd_level() {
    int v = __atomic_load_n(&g_detected, __ATOMIC_RELAXED);
    if (v < 0) {
        v = static_cast<int>(probe());
        __atomic_store_n(&g_detected, v, __ATOMIC_RELAXED);
    }
    return static_cast<SimdLevel>(v);
}

SimdLevel simd_level() {
    int v = __atomic_load_n(&g_level, __ATOMIC_RELAXED);
    if (v < 0) {
        v = static_cast<int>(detected_simd_level());
        __atomic_store_n(&g_level, v, __ATOMIC_RELAXED);
    }
    return static_cast<SimdLevel>(v);
}

SimdLevel force_simd_level(SimdLevel level) {
    const SimdLevel previous = simd_level();
    int v = static_cast<int>(level);
    const int best = static_cast<int>(detected_simd_level());
    if (v > best) v = best;
    if (v < 0) v = 0;
    __atomic_store_n(&g_level, v, __ATOMIC_RELAXED);
    return previous;
}

}  // namespace orucv
