// What the engine is written for: C++20, and the vector extensions and bit operations of GCC and Clang. Every public header
// includes this one, so that another compiler, or an older language, is told in one sentence before it meets anything else.
#pragma once

#if defined(_MSVC_LANG) ? _MSVC_LANG < 202002L : __cplusplus < 202002L
#error "Brix needs C++20: compile with -std=c++20 (clang-cl: /std:c++20), in CMake with target_compile_features(... cxx_std_20)."
#elif defined(__clang__) ? __clang_major__ < 14 : defined(__GNUC__) ? __GNUC__ < 12 : 1
#error "Brix needs GCC 12, Clang 14, or later; on Windows MinGW-w64 or Clang."
#endif
