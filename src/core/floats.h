// Float pieces every family shares: bit patterns, the one quiet NaN that
// float results are stored as, order keys, and the scalar min and max whose
// operand order the vector instructions follow.
#pragma once

#include <cstdint>
#include <cstring>

namespace orucv {
namespace {  // internal linkage, as every header instruction-set files include

inline uint32_t float_bits(float f) {
    uint32_t b;
    std::memcpy(&b, &f, sizeof b);
    return b;
}

inline float bits_float(uint32_t b) {
    float f;
    std::memcpy(&f, &b, sizeof f);
    return f;
}

// Float results that are NaN are stored as this one quiet NaN: which of two
// NaN operands an operation passes on depends on the operand order, which
// compilers may swap, so no path passes payloads through.
constexpr uint32_t kQuietNanBits = 0x7FC00000u;

inline float quiet_nan() {
    float v;
    std::memcpy(&v, &kQuietNanBits, sizeof v);
    return v;
}

// v, or the quiet NaN when v is a NaN.
inline float canonical_nan(float v) { return v == v ? v : quiet_nan(); }

// The order key of a float: its bit pattern when the sign is clear, else
// the complement of the pattern without its sign. Keys compare as signed
// integers in float order, -0.0 just below +0.0 and NaNs beyond the
// infinities on their sign's side; the mapping is its own inverse.
inline int32_t order_key(float f) {
    const int32_t b = static_cast<int32_t>(float_bits(f));
    return b < 0 ? ~(b & 0x7FFFFFFF) : b;
}
inline float key_float(int32_t key) { return bits_float(static_cast<uint32_t>(key < 0 ? ~key | INT32_MIN : key)); }

// The vector min and max, operand for operand: the second operand when
// either is NaN or both are zeros.
inline float scalar_minf(float a, float b) { return a < b ? a : b; }
inline float scalar_maxf(float a, float b) { return a > b ? a : b; }

// a + b and a * b with the operands kept in this order: when both are NaN,
// x86 returns the first one (quieted), but the compiler treats these
// operations as commutative and may swap their operands, so on x86 they are
// pinned with inline assembly (the vector twins are addf_pinned and
// mulf_pinned of ops_<isa>.h).
#if defined(__AVX__) && defined(__GNUC__)
inline float add_pinned(float a, float b) {
    float r;
    __asm__("vaddss %2, %1, %0" : "=x"(r) : "x"(a), "x"(b));
    return r;
}
inline float mul_pinned(float a, float b) {
    float r;
    __asm__("vmulss %2, %1, %0" : "=x"(r) : "x"(a), "x"(b));
    return r;
}
#elif defined(__SSE2__) && defined(__GNUC__)
inline float add_pinned(float a, float b) {
    __asm__("addss %1, %0" : "+x"(a) : "x"(b));
    return a;
}
inline float mul_pinned(float a, float b) {
    __asm__("mulss %1, %0" : "+x"(a) : "x"(b));
    return a;
}
#else
inline float add_pinned(float a, float b) { return a + b; }
inline float mul_pinned(float a, float b) { return a * b; }
#endif

}  // namespace
}  // namespace orucv
