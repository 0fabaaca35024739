// Running accumulators: the row kernels, one per function of accum_list.h,
// their scalar twins and the engine that drives them over an image.
#pragma once

#include <cstdint>
#include <type_traits>

#include "accum_list.h"
#include "core/floats.h"
#include "core/rows.h"
#include "orucv.h"

namespace orucv {
namespace a6 {

enum class AccumOp : int {
    Add,       // acc + s
    Square,    // acc + s * s
    Product,   // acc + s1 * s2
    Weighted,  // acc + (s - acc) * alpha
};

// The kernels, named after the functions of the list.
enum class AccumKernel : int {
#define ORUCV_ACCUM_ID(name, ...) name,
    ORUCV_ACCUM_FUNCTIONS(ORUCV_ACCUM_ID)
#undef ORUCV_ACCUM_ID
};
#define ORUCV_ACCUM_ONE(...) +1
constexpr int kAccumKernelCount = 0 ORUCV_ACCUM_FUNCTIONS(ORUCV_ACCUM_ONE);
#undef ORUCV_ACCUM_ONE

// One row of n pixels. src2 is used by the products only, mask by the
// masked kernels only, alpha by the weighted averages only.
using AccumRow = void (*)(const void* src1, const void* src2, const uint8_t* mask, float* acc, int n, float alpha);

struct AccumKernels {
    AccumRow rows[kAccumKernelCount];  // indexed by AccumKernel
};

// The table whose entry for each function of the list is
// Rows::row<operation, source type, masked>, set by the function's name.
template <class Rows>
static constexpr AccumKernels accum_table() {
    AccumKernels k{};
#define ORUCV_ACCUM_ENTRY(name, op, S, masked) \
    k.rows[static_cast<int>(AccumKernel::name)] = &Rows::template row<AccumOp::op, S, masked>;
    ORUCV_ACCUM_FUNCTIONS(ORUCV_ACCUM_ENTRY)
#undef ORUCV_ACCUM_ENTRY
    return k;
}

extern const AccumKernels accum_kernels_scalar;
extern const AccumKernels accum_kernels_sse2;
extern const AccumKernels accum_kernels_avx2;
const AccumKernels& accum_kernels();

// Runs kernel `id` over the region; arguments are trusted. Sources are byte
// planes whose pixels are `channels` bytes; the images a kernel does not
// take may repeat the first source. Contiguous rows are walked as one.
void accumulate(AccumKernel id, Plane<const uint8_t> src1, Plane<const uint8_t> src2, Plane<const uint8_t> mask,
                Plane<float> acc, OruSize roi, float alpha);

namespace scalar {

// 8-bit values are widened to int (zero- or sign-extended) and converted
// exactly; float values pass unchanged.
static inline float to_float(uint8_t v) { return static_cast<float>(static_cast<int32_t>(v)); }
static inline float to_float(int8_t v) { return static_cast<float>(static_cast<int32_t>(v)); }
static inline float to_float(float v) { return v; }

// The addend of one pixel. Squares and products of 8-bit values are exact
// integers (at most 65025 in magnitude) and so exact as floats. Of two NaN
// operands the accumulator's comes out in acc + addend, and the
// difference's in difference * weight: the operations are pinned.
template <AccumOp op, class S>
static inline float addend(S a, S b) {
    if constexpr (op == AccumOp::Add) {
        return to_float(a);
    } else if constexpr (std::is_same<S, float>::value) {
        return op == AccumOp::Square ? a * a : mul_pinned(a, b);
    } else {
        const int32_t p = op == AccumOp::Square ? int32_t(a) * int32_t(a) : int32_t(a) * int32_t(b);
        return static_cast<float>(p);
    }
}

// v where the pixel is selected, +0.0 where not: a bitwise selection, so
// that random masks cost no mispredicted branches.
static inline float keep_if(bool selected, float v) {
    return bits_float(float_bits(v) & (0u - static_cast<uint32_t>(selected)));
}

// Pixels [from, to) of one row. An unselected pixel gets the addend +0.0
// (so -0.0 becomes +0.0), or the weight 0.0 in the weighted average (so an
// infinite or NaN difference makes it NaN): the masked kernels select, they
// never skip.
template <AccumOp op, class S, bool kMasked>
static inline void accum_span(const void* src1, const void* src2, const uint8_t* mask, float* acc, int from, int to,
                              float alpha) {
    const S* s1 = static_cast<const S*>(src1);
    const S* s2 = static_cast<const S*>(src2);
    for (int i = from; i < to; ++i) {
        const bool selected = !kMasked || mask[i] != 0;
        const float a = acc[i];
        if constexpr (op == AccumOp::Weighted) {
            acc[i] = add_pinned(a, mul_pinned(to_float(s1[i]) - a, keep_if(selected, alpha)));
        } else {
            const float add = addend<op>(s1[i], op == AccumOp::Product ? s2[i] : s1[i]);
            acc[i] = add_pinned(a, keep_if(selected, add));
        }
    }
}

}  // namespace scalar
}  // namespace a6
}  // namespace orucv
