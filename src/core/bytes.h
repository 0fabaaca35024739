// Byte copies and fills that never become library calls. The library needs nothing from the C runtime but malloc, free and
// __assert_fail, so loops that a compiler would recognise as memcpy or
// memset hide their data from the optimiser with an empty asm.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace orucv {
// Internal linkage: instruction-set files include this too, and each keeps
// its own copy (an out-of-line copy compiled for AVX2 must never be the one
// the scalar path calls).
namespace {

inline void copy_bytes(void* dst, const void* src, size_t n) {
    uint8_t* d = static_cast<uint8_t*>(dst);
    const uint8_t* s = static_cast<const uint8_t*>(src);
    size_t i = 0;
    for (; i + 8 <= n; i += 8) {
        uint64_t v;
        std::memcpy(&v, s + i, 8);
        __asm__("" : "+r"(v));
        std::memcpy(d + i, &v, 8);
    }
    for (; i < n; ++i) {
        unsigned v = s[i];
        __asm__("" : "+r"(v));
        d[i] = static_cast<uint8_t>(v);
    }
}

inline void fill_bytes(void* dst, uint8_t value, size_t n) {
    uint64_t pattern = value * 0x0101010101010101ull;
    __asm__("" : "+r"(pattern));
    uint8_t* p = static_cast<uint8_t*>(dst);
    size_t i = 0;
    for (; i + 8 <= n; i += 8) std::memcpy(p + i, &pattern, 8);
    if (n - i >= 4) std::memcpy(p + i, &pattern, 4), i += 4;
    if (n - i >= 2) std::memcpy(p + i, &pattern, 2), i += 2;
    if (n - i) p[i] = static_cast<uint8_t>(pattern);
}

}  // namespace
}  // namespace orucv
