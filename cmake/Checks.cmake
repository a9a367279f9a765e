# Checks of the sources, of the tools, and of the library as a whole, run with the tests.
find_program(BRIX_BASH bash)
if(BRIX_BASH)
    add_test(NAME Layers.IncludesFollowTheDataFlow
        COMMAND "${BRIX_BASH}" "${PROJECT_SOURCE_DIR}/tools/dev/check-layers" "${PROJECT_SOURCE_DIR}")
    add_test(NAME SetUp.NamesAndInstallsWhatIsMissing COMMAND "${BRIX_BASH}" "${PROJECT_SOURCE_DIR}/tests/setup/check")
    add_test(NAME Consumer.IsSparedForeignOptions
        COMMAND "${BRIX_BASH}" "${PROJECT_SOURCE_DIR}/tests/consumer/check-options" "${BRIX_INCLUDE_TREE}")
    # The sanitizers put symbols of their own into the library.
    if(CMAKE_NM AND NOT BRIX_SANITIZE AND CMAKE_CXX_COMPILER_ID MATCHES "^(GNU|Clang)$")
        add_test(NAME Library.HasNoSymbolsOutsideItsNamespace
            COMMAND "${BRIX_BASH}" "${PROJECT_SOURCE_DIR}/tools/dev/check-symbols" "$<TARGET_FILE:brix_engine>" "${CMAKE_NM}")
        if(BRIX_BUILD_C_INTERFACE)
            add_test(NAME CInterface.ExportsNothingElse
                COMMAND "${BRIX_BASH}" "${PROJECT_SOURCE_DIR}/tools/dev/check-exports" "$<TARGET_FILE:brix_c>"
                    "${PROJECT_SOURCE_DIR}/managed/native/brix_c.h" "${CMAKE_NM}")
        endif()
    endif()
endif()
