# The libraries that tools, tests and benchmarks use; the engine uses none. Nothing is fetched: tools/dev/set-up installs what is missing
# where it can, and here one sentence says what to install.

# brix_require_library(<CMake package> <target> <Debian package> <what for>)
macro(brix_require_library name target package purpose)
    if(NOT TARGET ${target})
        find_package(${name} QUIET)
    endif()
    if(NOT TARGET ${target})
        message(FATAL_ERROR "Brix needs ${name} for ${purpose}. On Debian or Ubuntu: apt-get install ${package}")
    endif()
endmacro()

# brix_require_headers(<header> <target> <CMake package> <Debian package> <what for>)
# The same for a library that consists of headers alone. Other systems' compilers do not look among the headers of this one, and must
# not: they are led to the library's folder.
macro(brix_require_headers header target name package purpose)
    if(CMAKE_CROSSCOMPILING)
        find_path(BRIX_${name}_HEADERS "${header}" NO_CMAKE_FIND_ROOT_PATH)
        if(BRIX_${name}_HEADERS)
            string(REGEX REPLACE "/.*" "" folder "${header}")
            file(MAKE_DIRECTORY "${PROJECT_BINARY_DIR}/headers")
            file(CREATE_LINK "${BRIX_${name}_HEADERS}/${folder}" "${PROJECT_BINARY_DIR}/headers/${folder}" SYMBOLIC)
            add_library(${target} INTERFACE IMPORTED)
            target_include_directories(${target} SYSTEM INTERFACE "${PROJECT_BINARY_DIR}/headers")
        endif()
    endif()
    brix_require_library(${name} ${target} ${package} "${purpose}")
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

# brix_find_static_cairo(<variable>): Cairo, and what of its dependencies its pictures use, as files to link into a program; empty when one
# is not there.
function(brix_find_static_cairo result)
    set(found)
    foreach(name IN ITEMS cairo pixman-1 fontconfig freetype expat png16 brotlidec brotlicommon z)
        find_library(file "lib${name}.a" PATH_SUFFIXES "${CMAKE_SYSTEM_PROCESSOR}-linux-gnu" NO_CACHE)
        if(NOT file)
            set(found)
            break()
        endif()
        list(APPEND found "${file}")
        unset(file)
    endforeach()
    set(${result} "${found}" PARENT_SCOPE)
endfunction()
