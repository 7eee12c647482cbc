# What the clang-built test projects share (the fuzzers in tests/fuzz, the ThreadSanitizer build in
# tests/threads/tsan, each built by the main build through ExternalProject): the main build's folders, clang
# itself, and the library's language settings. Each adds its own sanitizer flags.
set(VEK_SOURCE_DIR "" CACHE PATH "The library's source tree")
set(VEK_BINARY_DIR "" CACHE PATH "The main build: its gen/ folder and the renamed OpenBLAS archive")
if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  message(FATAL_ERROR "${PROJECT_NAME} needs clang")
endif()
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
# The generated start rules bracket every comparison, which clang would warn about.
add_compile_options(-O1 -g -fno-omit-frame-pointer -ffp-contract=off -fno-math-errno -Wno-parentheses-equality)
