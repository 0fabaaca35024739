// Float bit patterns for tests that assert exact results, NaN payloads
// included.
#pragma once

#include <cstdint>
#include <cstring>

namespace orutest {

inline uint32_t bits(float f) {
    uint32_t b;
    std::memcpy(&b, &f, 4);
    return b;
}

inline float from_bits(uint32_t b) {
    float f;
    std::memcpy(&f, &b, 4);
    return f;
}

}  // namespace orutest
