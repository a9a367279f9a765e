# Warnings of this project's own targets, all of them errors: for those who work on it. A project that takes Brix in is spared both, and
# so is Clang in the guise of Microsoft's compiler (clang-cl), for which these options mean something else. GCC 12 takes some sums of
# strings for overlapping copies.
option(BRIX_STRICT_WARNINGS "Many warnings, all of them errors" ${PROJECT_IS_TOP_LEVEL})

function(brix_set_warnings target)
    if(NOT BRIX_STRICT_WARNINGS OR CMAKE_CXX_COMPILER_FRONTEND_VARIANT STREQUAL "MSVC")
        return()
    endif()
    target_compile_options(${target} PRIVATE
        $<$<COMPILE_LANG_AND_ID:CXX,GNU,Clang,AppleClang>:-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
            -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-qual -Wold-style-cast -Wdouble-promotion -Wimplicit-fallthrough -Werror>
        $<$<AND:$<COMPILE_LANG_AND_ID:CXX,GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>)
endfunction()
