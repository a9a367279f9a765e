# The libraries that tools, tests and benchmarks use; the engine uses none. Nothing is fetched: tools/dev/set-up installs what is missing
# where it can, and here one sentence says what to install.

# brix_require_library(<CMake package> <target> <Debian package> <what for>)
macro(brix_require_library name target package purpose)
    find_package(${name} QUIET)
    if(NOT TARGET ${target})
        message(FATAL_ERROR "Brix needs ${name} for ${purpose}. On Debian or Ubuntu: apt-get install ${package}")
    endif()
endmacro()
