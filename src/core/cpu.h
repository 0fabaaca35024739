// CPU-feature choice: the one piece of global state of the library, the SIMD
// level, detected once (or fixed at build time where run-time detection is
// turned off) and lowered only by the test hook.
#pragma once

#if !defined(ORUCV_PORTABLE) && (defined(__x86_64__) || defined(__i386__) || defined(_M_X64))
#define ORUCV_X86_SIMD 1
#else
#define ORUCV_X86_SIMD 0
#endif

namespace orucv {

enum class SimdLevel : int { Scalar = 0, Sse2 = 1, Avx2 = 2 };

// Best level this CPU and build support: probed with cpuid on first use, or,
// with -DORUCV_RUNTIME_DISPATCH=OFF, the level of the compiler's target.
SimdLevel detected_simd_level();

// Level the kernels dispatch on: the detected level unless lowered for tests.
SimdLevel simd_level();

// Test and benchmark hook (not exported): lowers the dispatch level so every
// path can run on one machine. A level above the detected one is clamped.
// Returns the previous level.
SimdLevel force_simd_level(SimdLevel level);

// Picks a family's kernel table by the current level; a missing table (null)
// falls back to the next lower level. A family whose kernels gain nothing
// from AVX2 points its AVX2 table at the SSE2 rows.
template <class Table>
inline const Table& choose(const Table& scalar, const Table* sse2, const Table* avx2) {
    switch (simd_level()) {
    case SimdLevel::Avx2: return avx2 ? *avx2 : (sse2 ? *sse2 : scalar);
    case SimdLevel::Sse2: return sse2 ? *sse2 : scalar;
    default: return scalar;
    }
}

}  // namespace orucv

// Declares and chooses a family's tables named <base>_scalar, <base>_sse2 and
// <base>_avx2; SIMD tables exist only in x86 SIMD builds.
#if ORUCV_X86_SIMD
#define ORUCV_CHOOSE(base) ::orucv::choose(base##_scalar, &base##_sse2, &base##_avx2)
#else
#define ORUCV_CHOOSE(base) ::orucv::choose(base##_scalar, decltype(&base##_scalar)(nullptr), \
                                           decltype(&base##_scalar)(nullptr))
#endif
