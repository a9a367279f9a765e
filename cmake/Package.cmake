# Tests of the NuGet package (label package), when the class library is built: tools/dev/pack-nuget makes a package for this system
# alone, and tests/package/check uses it. Included by tests/CMakeLists.txt.
if(NOT COMMAND brix_add_dotnet_tests OR NOT BRIX_BASH OR NOT CMAKE_SYSTEM_NAME STREQUAL "Linux"
    OR NOT CMAKE_SYSTEM_PROCESSOR STREQUAL "x86_64")
    return()
endif()

# The library with the next ABI version. Only Errors.cpp knows the number; the other objects are those of this version.
math(EXPR next "${BRIX_ABI_VERSION} + 1")
set(native "${PROJECT_SOURCE_DIR}/bindings/c")
set(sources "${CMAKE_CURRENT_BINARY_DIR}/next")
file(READ "${native}/brix_c.h" header)
string(REPLACE "#define BRIX_ABI_VERSION ${BRIX_ABI_VERSION}\n" "#define BRIX_ABI_VERSION ${next}\n" header "${header}")
file(CONFIGURE OUTPUT "${sources}/brix_c.h" CONTENT "${header}" @ONLY)
foreach(file Errors.cpp Objects.h)
    configure_file("${native}/${file}" "${sources}/${file}" COPYONLY)
endforeach()
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${native}/brix_c.h")
add_library(brix_c_next SHARED "${sources}/Errors.cpp" $<FILTER:$<TARGET_OBJECTS:brix_c>,EXCLUDE,Errors>)
target_link_libraries(brix_c_next PRIVATE brix::engine)
target_compile_definitions(brix_c_next PRIVATE BRIX_C_BUILD BRIX_VERSION="${PROJECT_VERSION}")
target_link_options(brix_c_next PRIVATE "LINKER:--version-script=${native}/brix_c.map")
set_target_properties(brix_c_next PROPERTIES OUTPUT_NAME "brix_c.${next}" CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
brix_set_warnings(brix_c_next)

add_test(NAME Package.ServesItsHosts
    COMMAND "${BRIX_BASH}" "${PROJECT_SOURCE_DIR}/tools/dev/pack-nuget" --rid linux-x64 --from "${PROJECT_BINARY_DIR}"
        --to "${PROJECT_BINARY_DIR}/package")
set_tests_properties(Package.ServesItsHosts PROPERTIES LABELS package TIMEOUT 900)
