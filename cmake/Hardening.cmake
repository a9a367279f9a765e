# What a shared library is expected to have against the exploitation of faults. No table of the linker can be written once the
# library is loaded, returns and indirect jumps are guarded where processor and system do so, and functions of the standard
# library check the bounds of buffers that they know. tools/dev/check-native looks at the result.
#
# Guards on the stack are for what handles the bytes of hosts and files: the C interface, and the readers and writers of files. In
# the engine's other sources, arrays on the stack are plates, in the hot loops.
#
# On Windows, GCC knows no control flow guard, and its guards on the stack would make the library need ADVAPI32.dll, for a random
# number: there the linker's marks are what there is. Clang in the guise of Microsoft's compiler (clang-cl) takes other options.
option(BRIX_HARDEN "Harden the libraries; a project that takes Brix in has its own options for that" ${PROJECT_IS_TOP_LEVEL})
if(NOT BRIX_HARDEN OR BRIX_SANITIZE OR NOT CMAKE_CXX_COMPILER_ID MATCHES "^(GNU|Clang)$"
        OR CMAKE_CXX_COMPILER_FRONTEND_VARIANT STREQUAL "MSVC")
    function(brix_harden)
    endfunction()
    return()
endif()

include(CheckCXXCompilerFlag)
include(CheckLinkerFlag)
set(CMAKE_REQUIRED_FLAGS -Werror) # Clang only warns of options that are another processor's
set(brix_hardened_code "")
set(brix_hardened_stack "")
set(brix_hardened_link "")
if(WIN32)
    set(link LINKER:--dynamicbase,--high-entropy-va,--nxcompat)
else()
    # Only with optimisation does the standard library check. A host that asks for more or fewer checks than these gets its own.
    if(NOT CMAKE_CXX_FLAGS MATCHES "_FORTIFY_SOURCE")
        set(brix_hardened_code $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE$<SEMICOLON>-D_FORTIFY_SOURCE=2>)
    endif()
    check_cxx_compiler_flag(-fcf-protection=full BRIX_HAS_CF_PROTECTION) # Intel and AMD
    if(BRIX_HAS_CF_PROTECTION)
        list(APPEND brix_hardened_code -fcf-protection=full)
    endif()
    check_cxx_compiler_flag(-mbranch-protection=standard BRIX_HAS_BRANCH_PROTECTION) # ARM
    if(BRIX_HAS_BRANCH_PROTECTION)
        list(APPEND brix_hardened_code -mbranch-protection=standard)
    endif()
    check_cxx_compiler_flag(-fstack-protector-strong BRIX_HAS_STACK_PROTECTOR)
    if(BRIX_HAS_STACK_PROTECTOR)
        set(brix_hardened_stack -fstack-protector-strong)
    endif()
    set(link LINKER:-z,relro,-z,now,-z,noexecstack)
endif()
check_linker_flag(CXX "${link}" BRIX_HAS_HARDENED_LINK)
if(BRIX_HAS_HARDENED_LINK)
    set(brix_hardened_link "${link}")
endif()
unset(CMAKE_REQUIRED_FLAGS)

# brix_harden(<target> [<source with guards on the stack> ...]); without sources, all of them get guards.
function(brix_harden target)
    target_compile_options(${target} PRIVATE ${brix_hardened_code})
    if(ARGN)
        set_property(SOURCE ${ARGN} APPEND PROPERTY COMPILE_OPTIONS ${brix_hardened_stack})
    else()
        target_compile_options(${target} PRIVATE ${brix_hardened_stack})
    endif()
    get_target_property(type ${target} TYPE)
    if(type STREQUAL "SHARED_LIBRARY")
        target_link_options(${target} PRIVATE ${brix_hardened_link})
    endif()
endfunction()
