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
                    "${PROJECT_SOURCE_DIR}/bindings/c/brix_c.h" "${CMAKE_NM}")
        endif()
    endif()
endif()

find_program(BRIX_PYTHON NAMES python3 python)
if(BRIX_PYTHON)
    add_test(NAME Reports.WriteTheirTablesAlone COMMAND "${BRIX_PYTHON}" "${PROJECT_SOURCE_DIR}/tests/reports/marked_tables_tests.py")
    # What documents tell their readers to type. Hosts cannot be linked to a sanitized library by a line that does not say so.
    if(BRIX_BUILD_TOOLS AND BRIX_INSTALL)
        add_test(NAME Documents.TellCommandsThatWork COMMAND "${BRIX_PYTHON}" "${PROJECT_SOURCE_DIR}/tests/documents/commands_tests.py"
            "${PROJECT_BINARY_DIR}" "$<TARGET_FILE:brix>" $<IF:$<BOOL:${BRIX_SANITIZE}>,--without-hosts,--with-hosts>)
        set_tests_properties(Documents.TellCommandsThatWork PROPERTIES TIMEOUT 900)
    endif()
    # Of several Pythons, the system's own is the one that the system's packages serve.
    foreach(python IN ITEMS "${BRIX_PYTHON}" /usr/bin/python3)
        execute_process(COMMAND "${python}" -c "import numpy" RESULT_VARIABLE no_numpy OUTPUT_QUIET ERROR_QUIET)
        if(no_numpy EQUAL 0)
            set(BRIX_PYTHON_WITH_NUMPY "${python}")
        endif()
    endforeach()
    if(BRIX_PYTHON_WITH_NUMPY AND BRIX_BUILD_TOOLS)
        add_test(NAME Formats.AreReadByOthers COMMAND "${BRIX_PYTHON_WITH_NUMPY}" "${PROJECT_SOURCE_DIR}/tests/formats/read_back.py"
            "$<TARGET_FILE:brix>")
    elseif(BRIX_BUILD_TOOLS)
        message(STATUS "The test that NumPy reads what brix writes is left out: there is no Python with NumPy.")
    endif()
else()
    message(STATUS "Tests of the documents and the reports are left out: there is no Python 3.")
endif()
