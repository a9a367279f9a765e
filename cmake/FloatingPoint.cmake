# brix_set_floating_point(<target> [<option>...]): floating point is computed as written, as a fused multiply-add would give other voxels
# on another machine. Further options say what the target does not use. clang-cl takes Clang's options behind /clang: alone.
function(brix_set_floating_point target)
    set(options -ffp-contract=off ${ARGN})
    if(CMAKE_CXX_COMPILER_FRONTEND_VARIANT STREQUAL "MSVC")
        list(TRANSFORM options PREPEND "/clang:")
    endif()
    target_compile_options(${target} PRIVATE "$<$<COMPILE_LANG_AND_ID:CXX,GNU,Clang,AppleClang>:${options}>")
endfunction()
