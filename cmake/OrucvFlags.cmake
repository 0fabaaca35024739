# Compiler flags shared by every target. Rounding must not depend on the
# code path: no contraction into FMA, no fast-math, SSE arithmetic on 32-bit.
set(ORUCV_X86 OFF)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|amd64|i[3-6]86|x86)$")
  set(ORUCV_X86 ON)
endif()
set(ORUCV_SIMD OFF)
if(ORUCV_X86 AND NOT ORUCV_PORTABLE)
  set(ORUCV_SIMD ON)
endif()

add_compile_options(-Wall -Wextra -ffp-contract=off -fno-math-errno)
if(ORUCV_X86)
  add_compile_options(-msse2 -mfpmath=sse)
endif()
if(ORUCV_PORTABLE)
  add_compile_definitions(ORUCV_PORTABLE=1)
endif()
if(NOT ORUCV_RUNTIME_DISPATCH)
  # For builds that target one CPU: the level is the compiler's target
  # (AVX2 under -mavx2 or -march=..., else SSE2), read without cpuid.
  add_compile_definitions(ORUCV_NO_RUNTIME_DISPATCH=1)
endif()
if(ORUCV_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()
