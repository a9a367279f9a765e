# What GCC for Windows (MinGW-w64) needs to be told.
if(MINGW AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # Windows aligns the stack to 16 bytes, and GCC believes that its own 32-byte alignment holds there: AVX registers that it spills
    # with aligned moves crash. The assembler turns those moves into unaligned ones, which cost the same (binutils 2.38 or later).
    add_compile_options(-Wa,-muse-unaligned-vector-move)
endif()
