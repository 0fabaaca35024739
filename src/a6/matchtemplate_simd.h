// Limits and constants shared by the SIMD kernels of template matching.
#pragma once

#include <cstdint>
#include <type_traits>

namespace orucv {
namespace a6 {
namespace {

// Bytes of a run summed in 32-bit lanes before they are widened to 64 bits:
// a lane gains at most 2 * 2 * 255^2 per 16 bytes, so 65536 bytes stay below
// 2^30.
constexpr int kByteGroup = 65536;

// Longest run whose total fits a signed 32-bit lane: 32768 * 255^2 < 2^31.
// The column kernels sum blocks up to this length in 32 bits throughout.
constexpr int kExactBlock = 32768;

// Longest template the float column kernels convert to double on the stack
// (8 KB); longer ones are summed run by run.
constexpr int kStackTemplate = 1024;

// Blocks summed before their scores are taken, so that the reciprocal
// square roots of a batch run side by side rather than behind the sums.
constexpr int kBatch = 64;

// 16 bytes read from offset k (k = 0..16) keep the last k bytes.
alignas(32) constexpr uint8_t kTailMask16[32] = {0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,
                                                 0,    0,    0,    0,    0,    0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
                                                 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};

// Bits of 1.5 * 2^52: an integer below 2^51 in magnitude added to them gives
// the bits of 1.5 * 2^52 plus that integer.
constexpr long long kInt64ToDoubleBits = 0x4338000000000000ll;

}  // namespace
}  // namespace a6
}  // namespace orucv
