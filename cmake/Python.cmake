# The Python package brix: its wheel for this system, and its tests in a clean room.
#
# BRIX_BUILD_PYTHON is AUTO (when a Python has what it takes), ON (one has to) or OFF. Not with the sanitizers: their runtime would have to
# be in the process before Python starts. The sanitizer build tests the same functions through the C interface instead.
set(BRIX_BUILD_PYTHON AUTO CACHE STRING "Build the Python package: AUTO (when a Python has what it takes), ON or OFF")
set_property(CACHE BRIX_BUILD_PYTHON PROPERTY STRINGS AUTO ON OFF)

# Sets brix_python_reason to why the package cannot be built; empty when it can, by brix_python.
function(brix_find_python)
    set(reason "there is no Python 3.9 or later with cffi, NumPy, SciPy, pytest, Hypothesis, setuptools and wheel")
    find_program(BRIX_PYTHON NAMES python3 python)
    # Of several Pythons, the system's own is the one that the system's packages serve.
    foreach(python IN ITEMS "${BRIX_PYTHON}" /usr/bin/python3)
        execute_process(COMMAND "${python}" -c "import sys, cffi, numpy, scipy, pytest, hypothesis, setuptools, wheel, venv, pip; assert sys.version_info >= (3, 9)"
            RESULT_VARIABLE missing OUTPUT_QUIET ERROR_QUIET)
        if(missing EQUAL 0)
            set(reason "")
            set(brix_python "${python}" PARENT_SCOPE)
        endif()
    endforeach()
    if(NOT BRIX_BUILD_C_INTERFACE)
        set(reason "BRIX_BUILD_C_INTERFACE is off")
    elseif(BRIX_SANITIZE OR BRIX_SANITIZE_THREADS)
        set(reason "the sanitizers and Python do not go together")
    elseif(WIN32 OR APPLE)
        set(reason "wheels are made on Linux")
    endif()
    set(brix_python_reason "${reason}" PARENT_SCOPE)
endfunction()

if(NOT BRIX_BUILD_PYTHON)
    return()
endif()
brix_find_python()
if(brix_python_reason)
    if(NOT BRIX_BUILD_PYTHON STREQUAL "AUTO")
        message(FATAL_ERROR "The Python package cannot be built: ${brix_python_reason}.")
    endif()
    message(STATUS "The Python package is left out: ${brix_python_reason}.")
    return()
endif()
message(STATUS "The Python package is built with ${brix_python}.")

set(brix_wheels "${PROJECT_BINARY_DIR}/python")
set(brix_python_folder "${PROJECT_SOURCE_DIR}/bindings/python")
file(GLOB brix_python_sources CONFIGURE_DEPENDS "${brix_python_folder}/*.py" "${brix_python_folder}/*.toml" "${brix_python_folder}/brix/*")
add_custom_command(OUTPUT "${brix_wheels}/stamp"
    COMMAND "${CMAKE_COMMAND}" -E rm -rf "${brix_wheels}"
    COMMAND "${CMAKE_COMMAND}" -E env "PYTHON=${brix_python}" "CC=${CMAKE_CXX_COMPILER}"
        "${PROJECT_SOURCE_DIR}/tools/dev/pack-python" "$<TARGET_FILE:brix_c>" "${brix_wheels}"
    COMMAND "${CMAKE_COMMAND}" -E touch "${brix_wheels}/stamp"
    DEPENDS ${brix_python_sources} brix_c "${PROJECT_SOURCE_DIR}/tools/dev/pack-python" "${PROJECT_SOURCE_DIR}/CMakeLists.txt"
    COMMENT "Making the wheel of the Python package"
    VERBATIM)
add_custom_target(brix_python DEPENDS "${brix_wheels}/stamp")

# What bindings/python/benchmarks/compare.py measures beside.
add_executable(brix_python_engine_alone EXCLUDE_FROM_ALL bindings/python/benchmarks/EngineAlone.cpp)
target_link_libraries(brix_python_engine_alone PRIVATE brix::engine)
brix_set_warnings(brix_python_engine_alone)

# Makes the wheel with everything else, and registers its tests.
function(brix_add_python_tests)
    set_property(TARGET brix_python PROPERTY EXCLUDE_FROM_ALL FALSE)
    set(check "sh" "-c" "exec \"$0\" \"$1\" \"$2\"/brix-*.whl $3" "${brix_python_folder}/tests/check" "${brix_python}" "${brix_wheels}")
    add_test(NAME Python.Tests COMMAND ${check})
    set_tests_properties(Python.Tests PROPERTIES TIMEOUT 300 RUN_SERIAL TRUE
        ENVIRONMENT "$<$<TARGET_EXISTS:brix>:BRIX_PROGRAM=$<TARGET_FILE:brix>>") # it measures how soon calls end
    execute_process(COMMAND "${brix_python}" -c "import mypy" RESULT_VARIABLE no_mypy OUTPUT_QUIET ERROR_QUIET)
    if(no_mypy EQUAL 0)
        add_test(NAME Python.IsTyped COMMAND ${check} --types)
        set_tests_properties(Python.IsTyped PROPERTIES TIMEOUT 300)
    else()
        message(STATUS "The test of the Python package's annotations is left out: there is no mypy.")
    endif()
endfunction()
