// Limits, constants and pieces shared by the SIMD kernels of template
// matching. Everything here has internal linkage: each instruction set's
// file compiles its own copy.
#pragma once

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "a6/matchtemplate.h"

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

inline __m128i load(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
inline __m128i load8(const void* p) { return _mm_loadl_epi64(static_cast<const __m128i*>(p)); }

// The last piece of a run of n >= 8 bytes, as 16 bytes of which only those
// set in tail_mask count: the 16 bytes ending at the run's end when n >= 16
// (after the whole 16-byte pieces), else the first 8 and the last 8 bytes.
template <class T>
inline __m128i tail_piece(const T* p, int n) {
    if (n >= 16) return load(p + n - 16);
    return _mm_unpacklo_epi64(load8(p), load8(p + n - 8));
}
inline __m128i tail_mask(int n) {
    if (n >= 16) return load(kTailMask16 + (n & 15));
    return _mm_or_si128(load(kTailMask16 + n - 8), _mm_set_epi32(0, 0, -1, -1));
}

// The column kernels of one instruction set, from its pieces:
//  - ByteBlocks<T, kSq> and FloatBlocks<kSq>: block sums of a column
//    (squared differences or products), a batch at a time;
//  - Batch::kAlign: the alignment of the batch's totals;
//  - Batch::from_products(totals, m, sum_sq, t2): turns the first k of m
//    product totals into squared differences (S2 - 2 C + T2), returns k;
//  - Batch::scores<M>: the scores of a batch from its totals.
template <template <class, bool> class ByteBlocks, template <bool> class FloatBlocks, class Batch>
struct SimdColumns {
    template <class T, bool kSq>
    using Blocks =
        typename std::conditional<std::is_same<T, float>::value, FloatBlocks<kSq>, ByteBlocks<T, kSq>>::type;

    template <class T, int M>
    static void column_scores(const T* runs, int width, int height, int count, const T* tpl,
                              const typename MatchAcc<T>::type* sum, const typename MatchAcc<T>::type* sum_sq,
                              const ScoreConstants& c, float* out, int out_step) {
        // Byte sums are exact integers, so the squared differences of a
        // normalised match follow from the products and the sums of squares
        // already at hand: D = S2 - 2 C + T2, every term exact in double.
        constexpr bool kFromProducts = sizeof(T) == 1 && M == kSqDiffNormed;
        const Blocks<T, method_sqdiff(M) && !kFromProducts> blocks(width, height, tpl);
        alignas(Batch::kAlign) double totals[kBatch];
        for (int y = 0; y < count; y += kBatch) {
            const int m = count - y < kBatch ? count - y : kBatch;
            blocks.sums(runs + static_cast<ptrdiff_t>(y) * width, m, totals);
            if constexpr (kFromProducts) {
                int k = Batch::from_products(totals, m, sum_sq + y, c.t2);
                for (; k < m; ++k) totals[k] = (scalar::to_double(sum_sq[y + k]) - 2.0 * totals[k]) + c.t2;
            }
            Batch::template scores<M>(totals, y, m, sum, sum_sq, c, out + static_cast<ptrdiff_t>(y) * out_step,
                                      out_step);
        }
    }
};

}  // namespace
}  // namespace a6
}  // namespace orucv
