// Internal invariants abort through the C runtime's __assert_fail with the
// condition's text and the family's source name, in every build (NDEBUG
// included, which is why <assert.h> cannot serve).
#pragma once

extern "C" void __assert_fail(const char* assertion, const char* file, unsigned int line,
                              const char* function) noexcept __attribute__((__noreturn__));

// ORUCV_ASSERT(cond, "src/orcvpyr", "ownPyrUpG5x5_8u") aborts with the text of cond.
#define ORUCV_ASSERT(cond, file, function) \
    ((cond) ? static_cast<void>(0) : __assert_fail(#cond, file, __LINE__, function))
// The same where the family's message names a fixed line of its source.
#define ORUCV_ASSERT_AT(cond, file, line, function) \
    ((cond) ? static_cast<void>(0) : __assert_fail(#cond, file, line, function))
