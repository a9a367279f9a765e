# Warnings of this project's own targets, all of them errors. GCC 12 takes some sums of strings for overlapping copies.
function(brix_set_warnings target)
    target_compile_options(${target} PRIVATE
        $<$<CXX_COMPILER_ID:GNU,Clang,AppleClang>:-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
            -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-qual -Wold-style-cast -Wdouble-promotion -Wimplicit-fallthrough -Werror>
        $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>)
endfunction()
