# The .NET class library BrixCLI, its tests and its sample, built by the .NET SDK into the build tree.
#
# BRIX_BUILD_DOTNET is AUTO (when the SDK is there), ON (it has to be) or OFF. Not with the sanitizers: their runtime would have to be
# in the process before the .NET runtime starts, and what the latter does with memory and signals sets them off. The sanitizer build
# tests the same functions through the C interface instead.
set(BRIX_BUILD_DOTNET AUTO CACHE STRING "Build the .NET class library: AUTO (when the .NET SDK is there), ON or OFF")
set_property(CACHE BRIX_BUILD_DOTNET PROPERTY STRINGS AUTO ON OFF)

# Sets brix_dotnet_reason to why the class library cannot be built; empty when it can.
function(brix_find_dotnet)
    set(reason "")
    find_program(BRIX_DOTNET dotnet)
    if(NOT BRIX_BUILD_C_INTERFACE)
        set(reason "BRIX_BUILD_C_INTERFACE is off")
    elseif(BRIX_SANITIZE)
        set(reason "the sanitizers and the .NET runtime do not go together")
    elseif(NOT BRIX_DOTNET)
        set(reason "there is no .NET SDK (dotnet) of version 10 or later")
    else()
        execute_process(COMMAND "${BRIX_DOTNET}" --version WORKING_DIRECTORY "${PROJECT_BINARY_DIR}"
            OUTPUT_VARIABLE version OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
        if(NOT version VERSION_GREATER_EQUAL 10)
            set(reason "the .NET SDK is of version '${version}'; 10 or later is needed")
        endif()
    endif()
    set(brix_dotnet_reason "${reason}" PARENT_SCOPE)
    set(brix_dotnet_version "${version}" PARENT_SCOPE)
endfunction()

set(BRIX_DOTNET_SAMPLE "") # the command that runs the .NET sample, when there is one
if(NOT BRIX_BUILD_DOTNET)
    return()
endif()
brix_find_dotnet()
if(brix_dotnet_reason)
    if(NOT BRIX_BUILD_DOTNET STREQUAL "AUTO")
        message(FATAL_ERROR "The .NET class library cannot be built: ${brix_dotnet_reason}.")
    endif()
    message(STATUS "The .NET class library is left out: ${brix_dotnet_reason}.")
    return()
endif()
message(STATUS "The .NET class library is built with the .NET SDK ${brix_dotnet_version}.")

if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(aarch64|arm64|ARM64)$")
    set(brix_architecture arm64)
else()
    set(brix_architecture x64)
endif()
set(brix_system $<IF:$<PLATFORM_ID:Windows>,win,$<IF:$<PLATFORM_ID:Darwin>,osx,linux>>)
set(BRIX_NATIVE_FOLDER "${PROJECT_BINARY_DIR}/artifacts/native")
set(brix_native_library "${BRIX_NATIVE_FOLDER}/${brix_system}-${brix_architecture}/$<TARGET_FILE_NAME:brix_c>")

# The staged copy is what the .NET builds and, by its place, their programs find.
add_custom_target(brix_native_staged
    COMMAND "${CMAKE_COMMAND}" -E make_directory "${BRIX_NATIVE_FOLDER}/${brix_system}-${brix_architecture}"
    COMMAND "${CMAKE_COMMAND}" -E copy_if_different "$<TARGET_FILE:brix_c>" "${brix_native_library}"
    VERBATIM)
add_dependencies(brix_native_staged brix_c)

# dotnet build restores and builds only what has changed, and leaves no server behind that would keep a caller's pipe open.
set(BRIX_DOTNET_FOLDER "${PROJECT_BINARY_DIR}/dotnet")
set(brix_dotnet_build "${CMAKE_COMMAND}" -E env DOTNET_NOLOGO=1 DOTNET_CLI_TELEMETRY_OPTOUT=1 "${BRIX_DOTNET}" build
    --configuration Release --verbosity quiet --nodeReuse:false -p:UseSharedCompilation=false
    "-p:ArtifactsPath=${BRIX_DOTNET_FOLDER}" "-p:BrixNativeFolder=${BRIX_NATIVE_FOLDER}")

# brix_add_dotnet_program(<target> <project, from the top> <folder of its sources> ...) builds a project and what it references.
function(brix_add_dotnet_program target project)
    set(sources "${PROJECT_SOURCE_DIR}/CMakeLists.txt" "${PROJECT_SOURCE_DIR}/bindings/dotnet/Directory.Build.props")
    foreach(folder IN ITEMS bindings/dotnet/BrixCLI ${ARGN})
        file(GLOB_RECURSE found CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/${folder}/*.cs" "${PROJECT_SOURCE_DIR}/${folder}/*.csproj"
            "${PROJECT_SOURCE_DIR}/${folder}/*.props" "${PROJECT_SOURCE_DIR}/${folder}/*.txt")
        list(FILTER found EXCLUDE REGEX "/(bin|obj)/")
        list(APPEND sources ${found})
    endforeach()
    set(stamp "${BRIX_DOTNET_FOLDER}/${target}.stamp")
    add_custom_command(OUTPUT "${stamp}"
        COMMAND ${brix_dotnet_build} "${PROJECT_SOURCE_DIR}/${project}" ${brix_dotnet_properties}
        COMMAND "${CMAKE_COMMAND}" -E touch "${stamp}"
        DEPENDS ${sources} brix_c brix_native_staged ${brix_dotnet_dependencies}
        COMMENT "Building ${project}"
        JOB_POOL brix_dotnet
        VERBATIM)
    add_custom_target(${target} DEPENDS "${stamp}")
endfunction()

# One build at a time: they share the class library.
set_property(GLOBAL APPEND PROPERTY JOB_POOLS brix_dotnet=1)

set(brix_sample examples/dotnet/TypicalRequest)
brix_add_dotnet_program(brix_dotnet_sample ${brix_sample}/TypicalRequest.csproj ${brix_sample})
set(BRIX_DOTNET_SAMPLE "${BRIX_DOTNET}" "${BRIX_DOTNET_FOLDER}/bin/TypicalRequest/release/TypicalRequest.dll")

brix_add_dotnet_program(brix_dotnet_benchmarks bindings/dotnet/BrixCLI.Benchmarks/BrixCLI.Benchmarks.csproj bindings/dotnet/BrixCLI.Benchmarks)
add_executable(brix_engine_alone EXCLUDE_FROM_ALL bindings/dotnet/BrixCLI.Benchmarks/EngineAlone.cpp)
target_link_libraries(brix_engine_alone PRIVATE brix::engine)
brix_set_warnings(brix_engine_alone)

# Builds the whole solution with everything else, and registers its tests.
function(brix_add_dotnet_tests)
    add_library(brix_other_abi MODULE "${PROJECT_SOURCE_DIR}/bindings/dotnet/BrixCLI.Tests/OtherAbi.cpp")
    brix_set_warnings(brix_other_abi)
    set(brix_dotnet_properties "-p:BrixOtherAbiLibrary=$<TARGET_FILE:brix_other_abi>")
    set(brix_dotnet_dependencies brix_other_abi)
    brix_add_dotnet_program(brix_dotnet bindings/dotnet/BrixCLI.slnx bindings/dotnet/BrixCLI.Tests bindings/dotnet/BrixCLI.NetStandard.Tests
        bindings/dotnet/BrixCLI.Benchmarks ${brix_sample})
    set_property(TARGET brix_dotnet PROPERTY EXCLUDE_FROM_ALL FALSE)
    foreach(project IN ITEMS BrixCLI.Tests BrixCLI.NetStandard.Tests)
        add_test(NAME DotNet.${project}
            COMMAND "${BRIX_DOTNET}" test "${BRIX_DOTNET_FOLDER}/bin/${project}/release/${project}.dll")
        set_tests_properties(DotNet.${project} PROPERTIES TIMEOUT 600 ENVIRONMENT "DOTNET_NOLOGO=1;DOTNET_CLI_TELEMETRY_OPTOUT=1")
    endforeach()
    if(BRIX_BUILD_TOOLS)
        add_test(NAME DotNet.SamplesPrintTheSame
            COMMAND "${CMAKE_COMMAND}" "-DDOTNET=${BRIX_DOTNET_SAMPLE}" "-DCPP=$<TARGET_FILE:TypicalRequest>"
                "-DSCENE=$<TARGET_FILE:brix>" "-DFOLDER=${BRIX_DOTNET_FOLDER}/samples"
                -P "${PROJECT_SOURCE_DIR}/cmake/CompareSamples.cmake")
    endif()
endfunction()
