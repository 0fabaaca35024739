// Row kernels of the running accumulators: sums, sums of squares, sums of
// products and weighted running averages of 8u, 8s and 32f sources into a
// float accumulator, unmasked and masked.
//
// One list names every kernel with its operation, source type and masking;
// the kernel tables, the image-level kernel and the public functions are all
// generated from it. The scalar twins are static inline so that every
// translation unit (each compiled for its own instruction set) keeps its own
// copy for row tails.
#pragma once

#include <cstdint>
#include <cstring>
#include <type_traits>

#include "orucv.h"

namespace orucv {
namespace a6 {

enum class AccumOp : int {
    Add,       // acc + s
    Square,    // acc + s * s
    Product,   // acc + s1 * s2
    Weighted,  // acc + (s - acc) * alpha
};

// X(name, operation, source type, masked), one line per public function.
#define ORUCV_ACCUM_KERNELS(X)                         \
    X(Add_8u32f_C1IR, Add, Oru8u, false)               \
    X(Add_8s32f_C1IR, Add, Oru8s, false)               \
    X(Add_32f_C1IMR, Add, Oru32f, true)                \
    X(Add_8u32f_C1IMR, Add, Oru8u, true)               \
    X(Add_8s32f_C1IMR, Add, Oru8s, true)               \
    X(AddSquare_8u32f_C1IR, Square, Oru8u, false)      \
    X(AddSquare_8s32f_C1IR, Square, Oru8s, false)      \
    X(AddSquare_32f_C1IR, Square, Oru32f, false)       \
    X(AddSquare_8u32f_C1IMR, Square, Oru8u, true)      \
    X(AddSquare_8s32f_C1IMR, Square, Oru8s, true)      \
    X(AddSquare_32f_C1IMR, Square, Oru32f, true)       \
    X(AddProduct_8u32f_C1IR, Product, Oru8u, false)    \
    X(AddProduct_8s32f_C1IR, Product, Oru8s, false)    \
    X(AddProduct_32f_C1IR, Product, Oru32f, false)     \
    X(AddProduct_8u32f_C1IMR, Product, Oru8u, true)    \
    X(AddProduct_8s32f_C1IMR, Product, Oru8s, true)    \
    X(AddProduct_32f_C1IMR, Product, Oru32f, true)     \
    X(AddWeighted_8u32f_C1IR, Weighted, Oru8u, false)  \
    X(AddWeighted_8s32f_C1IR, Weighted, Oru8s, false)  \
    X(AddWeighted_32f_C1IR, Weighted, Oru32f, false)   \
    X(AddWeighted_8u32f_C1IMR, Weighted, Oru8u, true)  \
    X(AddWeighted_8s32f_C1IMR, Weighted, Oru8s, true)  \
    X(AddWeighted_32f_C1IMR, Weighted, Oru32f, true)

enum AccumKernel : int {
#define ORUCV_ACCUM_ID(name, op, Src, masked) k##name,
    ORUCV_ACCUM_KERNELS(ORUCV_ACCUM_ID)
#undef ORUCV_ACCUM_ID
    kAccumKernelCount
};

// One row of n pixels. src2 is used by the products only, mask by the
// masked kernels only, alpha by the weighted averages only; unused pointers
// may be null.
using AccumRow = void (*)(const void* src1, const void* src2, const uint8_t* mask, float* acc, int n, float alpha);

struct AccumKernels {
    AccumRow rows[kAccumKernelCount];
};

// Builds a table from a row template `row<AccumOp, Src, bool masked>`, in
// the order of the list.
#define ORUCV_ACCUM_ROW_ENTRY(name, op, Src, masked) &row<::orucv::a6::AccumOp::op, Src, masked>,
#define ORUCV_ACCUM_TABLE() {{ORUCV_ACCUM_KERNELS(ORUCV_ACCUM_ROW_ENTRY)}}

extern const AccumKernels accum_kernels_scalar;
extern const AccumKernels accum_kernels_sse2;
extern const AccumKernels accum_kernels_avx2;
const AccumKernels& accum_kernels();

// An image-level call: rows top to bottom, each `...Step` bytes apart.
struct AccumImage {
    const void* src1;
    int src1Step;
    const void* src2;
    int src2Step;
    const uint8_t* mask;
    int maskStep;
    float* acc;
    int accStep;
    int width;
    int height;
    float alpha;
};

// Runs kernel `id` over the image. Arguments are trusted; returns 0.
int a6_orcvAccumulate(AccumKernel id, const AccumImage& image);

namespace scalar {

// When both operands of an addition or multiplication are NaN, x86 returns
// the first one (quieted). The compiler treats these operations as
// commutative and may swap their operands, so on x86 they are pinned with
// inline assembly: every path then returns the same NaN, the one of the
// accumulator in acc + addend, and of the difference in difference * weight.
#if defined(__AVX__) && defined(__GNUC__)
static inline float add_first(float a, float b) {
    float r;
    __asm__("vaddss %2, %1, %0" : "=x"(r) : "x"(a), "x"(b));
    return r;
}
static inline float mul_first(float a, float b) {
    float r;
    __asm__("vmulss %2, %1, %0" : "=x"(r) : "x"(a), "x"(b));
    return r;
}
#elif defined(__SSE2__) && defined(__GNUC__)
static inline float add_first(float a, float b) {
    __asm__("addss %1, %0" : "+x"(a) : "x"(b));
    return a;
}
static inline float mul_first(float a, float b) {
    __asm__("mulss %1, %0" : "+x"(a) : "x"(b));
    return a;
}
#else
static inline float add_first(float a, float b) { return a + b; }
static inline float mul_first(float a, float b) { return a * b; }
#endif

// 8-bit values are widened to int (zero- or sign-extended) and converted
// exactly; float values pass unchanged.
static inline float to_float(uint8_t v) { return static_cast<float>(static_cast<int32_t>(v)); }
static inline float to_float(int8_t v) { return static_cast<float>(static_cast<int32_t>(v)); }
static inline float to_float(float v) { return v; }

// The addend of one pixel. Squares and products of 8-bit values are exact
// integers (at most 65025 in magnitude) and so exact as floats.
template <AccumOp op, class S>
static inline float addend(S a, S b) {
    if constexpr (op == AccumOp::Add) {
        return to_float(a);
    } else if constexpr (std::is_same<S, float>::value) {
        return op == AccumOp::Square ? a * a : mul_first(a, b);
    } else {
        const int32_t p = op == AccumOp::Square ? int32_t(a) * int32_t(a) : int32_t(a) * int32_t(b);
        return static_cast<float>(p);
    }
}

// v where the pixel is selected, +0.0 where not: a bitwise selection, so
// that random masks cost no mispredicted branches.
static inline float keep_if(bool selected, float v) {
    uint32_t b;
    std::memcpy(&b, &v, sizeof b);
    b &= 0u - static_cast<uint32_t>(selected);
    std::memcpy(&v, &b, sizeof v);
    return v;
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
            acc[i] = add_first(a, mul_first(to_float(s1[i]) - a, keep_if(selected, alpha)));
        } else {
            const float add = addend<op>(s1[i], op == AccumOp::Product ? s2[i] : s1[i]);
            acc[i] = add_first(a, keep_if(selected, add));
        }
    }
}

template <AccumOp op, class S, bool kMasked>
static inline void row(const void* src1, const void* src2, const uint8_t* mask, float* acc, int n, float alpha) {
    accum_span<op, S, kMasked>(src1, src2, mask, acc, 0, n, alpha);
}

}  // namespace scalar
}  // namespace a6
}  // namespace orucv
