// Deterministic pseudo-random numbers for test images.
#pragma once

#include <cstdint>

namespace orutest {

class Rng {
public:
    explicit Rng(uint64_t seed) : state_(seed * 0x9E3779B97F4A7C15ull + 1) {}

    uint32_t next() {  // xorshift64*
        state_ ^= state_ >> 12;
        state_ ^= state_ << 25;
        state_ ^= state_ >> 27;
        return static_cast<uint32_t>((state_ * 0x2545F4914F6CDD1Dull) >> 32);
    }
    // Uniform in lo..hi, both included.
    int uniform(int lo, int hi) {
        return lo + static_cast<int>(next() % static_cast<uint32_t>(hi - lo + 1));
    }
    float uniform(float lo, float hi) { return lo + (hi - lo) * static_cast<float>(next() >> 8) * (1.0f / 16777216.0f); }

private:
    uint64_t state_;
};

}  // namespace orutest
