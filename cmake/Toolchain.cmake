# SPDX-License-Identifier: AGPL-3.0-or-later
# The sound is compared sample by sample against a model, so floating point must stay as written:
# no fused multiply-add, no fast-math, no host-specific instruction sets.
set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "" FORCE)
endif()
set(CMAKE_CXX_FLAGS_RELEASE "-O2")
set(CMAKE_C_FLAGS_RELEASE "-O2")
add_compile_options(-ffp-contract=off)

option(ONDRIVEL_SANITIZE "Build with AddressSanitizer and UndefinedBehaviorSanitizer" OFF)
if(ONDRIVEL_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer -g)
  add_link_options(-fsanitize=address,undefined)
endif()

# Coverage instrumentation for libFuzzer (clang only); the fuzz programs link the fuzzer's main.
option(ONDRIVEL_LIBFUZZER "Build the fuzz targets for libFuzzer (clang)" OFF)
if(ONDRIVEL_LIBFUZZER)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  set(CMAKE_C_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
endif()
