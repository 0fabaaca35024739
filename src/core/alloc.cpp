// Aligned allocation: a block starts 5..36 bytes into a malloc'ed area at a
// multiple of 32, and the word just before it holds the malloc'ed address.
#include <cstdint>
#include <cstdlib>

#include "orucv.h"

namespace {

constexpr uintptr_t kAlign = 32;
constexpr size_t kSlack = 36;  // room for the alignment and the stored address

}  // namespace

extern "C" void* _orcvAlloc(unsigned int length) {
    if (static_cast<size_t>(length) > SIZE_MAX - kSlack) return nullptr;  // 32-bit size_t would wrap
    void* raw = std::malloc(static_cast<size_t>(length) + kSlack);
    if (!raw) return nullptr;
    const uintptr_t start = (reinterpret_cast<uintptr_t>(raw) + kSlack) & ~(kAlign - 1);
    void** block = reinterpret_cast<void**>(start);
    block[-1] = raw;
    return block;
}

extern "C" void* oruiAlloc(unsigned int length) { return _orcvAlloc(length); }

extern "C" void _orcvFree_(void** ppBlock) {
    if (!ppBlock || !*ppBlock) return;
    // A pointer that cannot come from the allocator is ignored, not freed.
    if (reinterpret_cast<uintptr_t>(*ppBlock) % kAlign != 0) return;
    std::free(static_cast<void**>(*ppBlock)[-1]);
    *ppBlock = nullptr;
}
