# The Debian package of library, headers, C interface and program, which CPack makes of what is installed:
#   cpack -G DEB --config build/test/CPackConfig.cmake
# tools/dev/release does, and looks at the result.
find_program(BRIX_DPKG dpkg)
if(NOT BRIX_DPKG)
    return()
endif()
set(CPACK_GENERATOR DEB)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_PACKAGE_NAME brix)
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_CONTACT "${BRIX_MAINTAINER}") # the documents' script sees it
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "voxel geometry engine: C++ and C libraries, and a program")
set(CPACK_PACKAGE_DESCRIPTION "Turns triangles into sparse models of filled and empty voxels at up to
six levels of detail, and answers volumetric questions: what is solid or
enclosed, where a person can stand and walk, what can be seen, what remains
after cutting or growing.
Holds the C++ library with its headers, the C interface for other
languages, and the program brix, which works on STL files.")
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${BRIX_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA "${PROJECT_SOURCE_DIR}/cmake/debian/triggers")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "fonts-dejavu-core")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PRE_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/cmake/DebianDocuments.cmake")
include(CPack)
