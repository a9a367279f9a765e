# The libraries that tools, tests and benchmarks use; the engine uses none. Nothing is fetched: tools/dev/set-up installs what is missing
# where it can, and here one sentence says what to install.

# brix_require_library(<CMake package> <target> <Debian package> <what for>)
macro(brix_require_library name target package purpose)
    find_package(${name} QUIET)
    if(NOT TARGET ${target})
        message(FATAL_ERROR "Brix needs ${name} for ${purpose}. On Debian or Ubuntu: apt-get install ${package}")
    endif()
endmacro()

# Cairo has no CMake package; its pkg-config file becomes the target PkgConfig::CAIRO.
macro(brix_require_cairo)
    find_package(PkgConfig QUIET)
    if(PKG_CONFIG_FOUND)
        pkg_check_modules(CAIRO QUIET IMPORTED_TARGET cairo cairo-svg cairo-pdf)
    endif()
    if(NOT TARGET PkgConfig::CAIRO)
        message(FATAL_ERROR "Brix needs Cairo for its pictures. On Debian or Ubuntu: apt-get install libcairo2-dev pkg-config")
    endif()
endmacro()
