#include "support/simd.h"

#include <cstdlib>

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
