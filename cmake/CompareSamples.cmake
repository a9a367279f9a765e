# Runs the two samples of the typical request, DOTNET and CPP, on their own table and on a building that SCENE makes: they must print
# the same and write the same file. Then .NET alone on a file that does not exist: one sentence, and exit code 1.
file(MAKE_DIRECTORY "${FOLDER}")
execute_process(COMMAND "${SCENE}" scene building -o "${FOLDER}/building.stl" OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)

foreach(input IN ITEMS "" "${FOLDER}/building.stl")
    execute_process(COMMAND "${CPP}" "${FOLDER}/cpp.stl" ${input} OUTPUT_VARIABLE cpp COMMAND_ERROR_IS_FATAL ANY)
    execute_process(COMMAND ${DOTNET} "${FOLDER}/dotnet.stl" ${input} OUTPUT_VARIABLE dotnet COMMAND_ERROR_IS_FATAL ANY)
    file(SHA256 "${FOLDER}/cpp.stl" cpp_file)
    file(SHA256 "${FOLDER}/dotnet.stl" dotnet_file)
    if(NOT cpp STREQUAL dotnet)
        message(FATAL_ERROR "The samples differ. C++:\n${cpp}.NET:\n${dotnet}")
    endif()
    if(NOT cpp_file STREQUAL dotnet_file)
        message(FATAL_ERROR "The samples print the same but write different files.")
    endif()
    message(STATUS "Both samples:\n${cpp}")
endforeach()

execute_process(COMMAND ${DOTNET} "${FOLDER}/dotnet.stl" "${FOLDER}/missing.stl" RESULT_VARIABLE code ERROR_VARIABLE text)
if(NOT code EQUAL 1 OR NOT text MATCHES "missing.stl")
    message(FATAL_ERROR "A missing file gave exit code ${code} and: ${text}")
endif()
