# The libraries that tools, tests and benchmarks use (the engine uses none). A library that is not installed is fetched as a
# Debian package into the build folder where that is possible; otherwise one sentence says what to install.

# brix_fetch_debian_package(<package> <out-variable>) unpacks a Debian package below the build folder, without root.
function(brix_fetch_debian_package package out)
    set(root "${PROJECT_BINARY_DIR}/_packages/${package}")
    find_program(BRIX_APT_GET apt-get)
    find_program(BRIX_DPKG_DEB dpkg-deb)
    if(NOT EXISTS "${root}/usr" AND BRIX_APT_GET AND BRIX_DPKG_DEB)
        file(MAKE_DIRECTORY "${root}" "${PROJECT_BINARY_DIR}/_packages/lists/partial")
        set(lists -o "Dir::State::lists=${PROJECT_BINARY_DIR}/_packages/lists" -o "Debug::NoLocking=true" -o "APT::Sandbox::User=root")
        execute_process(COMMAND "${BRIX_APT_GET}" -qq ${lists} update OUTPUT_QUIET ERROR_QUIET TIMEOUT 120)
        execute_process(COMMAND "${BRIX_APT_GET}" -qq ${lists} download "${package}"
            WORKING_DIRECTORY "${root}" OUTPUT_QUIET ERROR_QUIET TIMEOUT 120)
        file(GLOB archives "${root}/*.deb")
        foreach(archive IN LISTS archives)
            execute_process(COMMAND "${BRIX_DPKG_DEB}" -x "${archive}" "${root}" OUTPUT_QUIET ERROR_QUIET)
        endforeach()
    endif()
    set(${out} "${root}/usr" PARENT_SCOPE)
endfunction()

# brix_require_library(<CMake package> <target> <Debian package> <what for>)
macro(brix_require_library name target package purpose)
    find_package(${name} QUIET)
    if(NOT TARGET ${target})
        message(FATAL_ERROR "Brix needs ${name} for ${purpose}. On Debian or Ubuntu: apt-get install ${package}")
    endif()
endmacro()

# The header-only argument parser: installed, or fetched.
macro(brix_require_cli11)
    find_package(CLI11 QUIET)
    if(NOT TARGET CLI11::CLI11)
        brix_fetch_debian_package(libcli11-dev fetched)
        if(EXISTS "${fetched}/include/CLI/CLI.hpp")
            add_library(CLI11::CLI11 INTERFACE IMPORTED)
            target_include_directories(CLI11::CLI11 SYSTEM INTERFACE "${fetched}/include")
        else()
            message(FATAL_ERROR "Brix needs CLI11 for its command-line program. On Debian or Ubuntu: apt-get install libcli11-dev")
        endif()
    endif()
endmacro()
