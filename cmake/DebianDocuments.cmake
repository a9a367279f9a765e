# What a Debian package holds beside what is installed everywhere: whose work it is, what changed, and manual pages compressed as Debian
# wants them. CPack runs this on the packed folder.
set(packed "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share")
set(documents "${packed}/doc/brix")
file(MAKE_DIRECTORY "${documents}")

# The program is compiled with the headers of two libraries.
set(copyright "The licence of Brix is not decided yet. Until it is, all rights are reserved.\n")
foreach(package IN ITEMS libcli11-dev nlohmann-json3-dev)
    file(GLOB text "/usr/share/doc/${package}/copyright")
    if(text)
        file(READ "${text}" text)
        string(APPEND copyright "\n\n--- ${package}, of which code is in the program ---\n\n${text}")
    endif()
endforeach()
file(WRITE "${documents}/copyright" "${copyright}")

file(COPY_FILE "${CMAKE_CURRENT_LIST_DIR}/../CHANGELOG.md" "${documents}/CHANGELOG.md")
string(TIMESTAMP now "%a, %d %b %Y %H:%M:%S +0000" UTC)
file(WRITE "${documents}/changelog" "brix (${CPACK_PACKAGE_VERSION}) unstable; urgency=medium

  * What is new stands in CHANGELOG.md.

 -- ${CPACK_PACKAGE_CONTACT}  ${now}
")
file(GLOB pages "${packed}/man/man1/*.1")
execute_process(COMMAND gzip -9nf "${documents}/changelog" "${documents}/CHANGELOG.md" ${pages} COMMAND_ERROR_IS_FATAL ANY)
