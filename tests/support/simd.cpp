#include "support/simd.h"

#include <cstdlib>

#include <gtest/gtest.h>

namespace orutest {

std::vector<orucv::SimdLevel> available_levels() {
    std::vector<orucv::SimdLevel> levels{orucv::SimdLevel::Scalar};
    const int best = static_cast<int>(orucv::detected_simd_level());
    for (int l = 1; l <= best; ++l) levels.push_back(static_cast<orucv::SimdLevel>(l));
    return levels;
}

const char* emulator() {
    const char* name = std::getenv("ORUCV_TEST_EMULATED");
    return name && *name ? name : nullptr;
}

const char* level_name(orucv::SimdLevel level) {
    switch (level) {
    case orucv::SimdLevel::Avx2: return "avx2";
    case orucv::SimdLevel::Sse2: return "sse2";
    default: return "scalar";
    }
}

}  // namespace orutest

// Every test program reports the levels whose paths it could not compare
// with the scalar twin, as skipped tests, instead of dropping them silently.
namespace {

void require_level(orucv::SimdLevel level) {
#if ORUCV_X86_SIMD
    if (orucv::detected_simd_level() < level)
        GTEST_SKIP() << "this processor has no " << orutest::level_name(level)
                     << ": its paths are not compared with the scalar twin here";
#else
    (void)level;
    GTEST_SKIP() << "portable build: only the scalar kernels exist";
#endif
}

}  // namespace

TEST(SimdLevels, Sse2PathsCompared) { require_level(orucv::SimdLevel::Sse2); }
TEST(SimdLevels, Avx2PathsCompared) { require_level(orucv::SimdLevel::Avx2); }
