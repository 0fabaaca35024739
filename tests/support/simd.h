// Running a call on every SIMD path and comparing against the scalar twin.
#pragma once

#include <gtest/gtest.h>

#include <vector>

#include "core/cpu.h"

namespace orutest {

// Scalar first, then every level this machine and build support.
std::vector<orucv::SimdLevel> available_levels();
const char* level_name(orucv::SimdLevel level);

class ScopedSimdLevel {
public:
    explicit ScopedSimdLevel(orucv::SimdLevel level) : previous_(orucv::force_simd_level(level)) {}
    ~ScopedSimdLevel() { orucv::force_simd_level(previous_); }
    ScopedSimdLevel(const ScopedSimdLevel&) = delete;
    ScopedSimdLevel& operator=(const ScopedSimdLevel&) = delete;

private:
    orucv::SimdLevel previous_;
};

// The emulator the tests run under (ORUCV_TEST_EMULATED, set by CI where
// the kernel cannot run 32-bit programs), or null on a real processor.
// qemu 7.2 returns the NaN with the larger significand when both operands of
// an SSE operation are NaNs, where the processor returns the first operand.
const char* emulator();

// Calls run() under each level; every result must equal the scalar one.
// run returns something comparable with ==, e.g. the output bytes.
template <class Run>
void expect_same_on_every_path(Run run) {
    const auto levels = available_levels();
    decltype(run()) reference;
    {
        ScopedSimdLevel scalar(orucv::SimdLevel::Scalar);
        reference = run();
    }
    for (size_t i = 1; i < levels.size(); ++i) {
        ScopedSimdLevel level(levels[i]);
        EXPECT_TRUE(run() == reference) << "path " << level_name(levels[i]) << " differs from the scalar twin";
    }
}

}  // namespace orutest
