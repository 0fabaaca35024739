# The optional parts of the build: the test suite (GoogleTest), the
# benchmarks (Google Benchmark) and PNG files in the orucv program (libpng).
# The library and the orucv program need nothing but a compiler and CMake;
# each part is built when its package is found and otherwise skipped with
# one configure line saying how to get it. Tests and benchmarks take
# ON (required: configuring stops without the package), AUTO (built when
# found) or OFF. At the end of the configuration one line sums up what is
# enabled.
#
# Results for the rest of the build: ORUCV_WITH_TESTS, ORUCV_WITH_BENCH,
# ORUCV_WITH_PNG (ON/OFF).

set(ORUCV_DEBIAN_INSTALL "sudo apt-get install")

# ORUCV_BUILD_TESTS and ORUCV_BUILD_BENCH as ON, AUTO or OFF.
foreach(setting ORUCV_BUILD_TESTS ORUCV_BUILD_BENCH)
  string(TOUPPER "${${setting}}" value)
  if(value MATCHES "^(ON|TRUE|YES|Y|1)$")
    set(value ON)
  elseif(value MATCHES "^(OFF|FALSE|NO|N|0)$")
    set(value OFF)
  elseif(NOT value STREQUAL "AUTO")
    message(FATAL_ERROR "${setting} is '${${setting}}': give ON, AUTO or OFF")
  endif()
  set(${setting}_MODE ${value})
endforeach()

# RESULT is ON when the part (LABEL) is wanted (MODE ON or AUTO) and FOUND; a
# part that is required but missing stops the configuration, saying how to
# get it.
function(orucv_optional_part result label setting mode found what how_to_get)
  if(mode STREQUAL "OFF")
    set(${result} OFF PARENT_SCOPE)
    set(ORUCV_SUMMARY_${result} "off" PARENT_SCOPE)
  elseif(found)
    set(${result} ON PARENT_SCOPE)
    set(ORUCV_SUMMARY_${result} "on" PARENT_SCOPE)
  elseif(mode STREQUAL "AUTO")
    message(STATUS "${label}: skipped, ${what} not found (${how_to_get})")
    set(${result} OFF PARENT_SCOPE)
    set(ORUCV_SUMMARY_${result} "off (no ${what})" PARENT_SCOPE)
  else()
    message(FATAL_ERROR "${label}: ${what} not found, and ${setting}=ON requires it.\n"
                        "${how_to_get}.\n"
                        "Or configure with -D${setting}=AUTO (the release preset) to build without it.")
  endif()
endfunction()

# Test suite. A source tree of GoogleTest (ORUCV_GTEST_SOURCE_DIR, e.g. for a
# 32-bit build) stands in for the installed package.
set(ORUCV_GTEST_FOUND OFF)
if(ORUCV_GTEST_SOURCE_DIR)
  if(EXISTS "${ORUCV_GTEST_SOURCE_DIR}/CMakeLists.txt")
    set(ORUCV_GTEST_FOUND ON)
  endif()
  set(what "GoogleTest sources in ${ORUCV_GTEST_SOURCE_DIR}")
  set(how "Debian: ${ORUCV_DEBIAN_INSTALL} googletest")
else()
  if(NOT ORUCV_BUILD_TESTS_MODE STREQUAL "OFF")
    find_package(GTest QUIET)
    set(ORUCV_GTEST_FOUND ${GTest_FOUND})
  endif()
  set(what "GoogleTest")
  string(CONCAT how "Debian: ${ORUCV_DEBIAN_INSTALL} libgtest-dev; elsewhere the distribution's GoogleTest "
                    "package, or -DORUCV_GTEST_SOURCE_DIR=<GoogleTest sources>")
endif()
orucv_optional_part(ORUCV_WITH_TESTS Tests ORUCV_BUILD_TESTS ${ORUCV_BUILD_TESTS_MODE} "${ORUCV_GTEST_FOUND}" "${what}"
                    "${how}")

# Benchmarks.
set(benchmark_FOUND OFF)
if(NOT ORUCV_BUILD_BENCH_MODE STREQUAL "OFF")
  find_package(benchmark QUIET)
endif()
orucv_optional_part(ORUCV_WITH_BENCH Benchmarks ORUCV_BUILD_BENCH ${ORUCV_BUILD_BENCH_MODE} "${benchmark_FOUND}"
                    "Google Benchmark" "Debian: ${ORUCV_DEBIAN_INSTALL} libbenchmark-dev")

# PNG files in the orucv program (and the benchmarks and tests that share its
# image files); without libpng it reads and writes PGM/PPM, PFM and .npy.
set(ORUCV_WITH_PNG OFF)
set(ORUCV_SUMMARY_ORUCV_WITH_PNG "off (no orucv program)")
if(ORUCV_BUILD_TOOLS OR ORUCV_WITH_BENCH)
  find_package(PNG QUIET)
  orucv_optional_part(ORUCV_WITH_PNG PNG PNG AUTO "${PNG_FOUND}" "libpng"
                      "orucv writes PGM/PPM instead; Debian: ${ORUCV_DEBIAN_INSTALL} libpng-dev")
endif()

# The summary, printed once every directory has been configured.
function(orucv_print_summary)
  if(ORUCV_PORTABLE)
    set(simd "none (portable scalar build)")
  elseif(NOT ORUCV_SIMD)
    set(simd "none (not x86)")
  elseif(ORUCV_RUNTIME_DISPATCH)
    set(simd "SSE2, AVX2 (chosen at run time)")
  else()
    set(simd "SSE2, AVX2 (the compiler's target picks one)")
  endif()
  # Python: the CMake of the Python package (in any directory) sets
  # ORUCV_PYTHON_TESTS to ON or OFF and Python3_EXECUTABLE, and may say why
  # the tests are off in ORUCV_PYTHON_TESTS_NOTE.
  set(dirs "${PROJECT_SOURCE_DIR}")
  set(python "off (no Python package in this tree)")
  while(dirs)
    list(POP_FRONT dirs dir)
    get_directory_property(tests DIRECTORY "${dir}" DEFINITION ORUCV_PYTHON_TESTS)
    if(NOT tests STREQUAL "")
      get_directory_property(note DIRECTORY "${dir}" DEFINITION ORUCV_PYTHON_TESTS_NOTE)
      get_directory_property(interpreter DIRECTORY "${dir}" DEFINITION Python3_EXECUTABLE)
      if(tests)
        set(python "tests with ${interpreter}")
      elseif(note)
        set(python "off (${note})")
      else()
        set(python "off")
      endif()
      break()
    endif()
    get_directory_property(subdirs DIRECTORY "${dir}" SUBDIRECTORIES)
    list(APPEND dirs ${subdirs})
  endwhile()
  set(png "${ORUCV_SUMMARY_ORUCV_WITH_PNG}")
  if(ORUCV_BUILD_TOOLS AND NOT ORUCV_WITH_PNG)
    set(png "off (orucv writes PGM/PPM)")
  endif()
  message(STATUS "orucv ${PROJECT_VERSION}: SIMD ${simd}; tests ${ORUCV_SUMMARY_ORUCV_WITH_TESTS}; "
                 "benchmarks ${ORUCV_SUMMARY_ORUCV_WITH_BENCH}; PNG ${png}; Python ${python}")
endfunction()
cmake_language(DEFER DIRECTORY ${PROJECT_SOURCE_DIR} CALL orucv_print_summary)
