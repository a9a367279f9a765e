# What a host gets: the library, the public headers, the C interface and the program brix when they are built, a CMake package and
# pkg-config files. The installed tree may be moved as a whole: nothing in it names the place that it was installed to.
include(CMakePackageConfigHelpers)
include(PublicHeaders)

set(BRIX_PACKAGE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/brix")

install(TARGETS brix_engine EXPORT brixTargets ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
install(FILES brix.h DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")

file(GLOB BRIX_PUBLIC_HEADERS RELATIVE "${CMAKE_CURRENT_SOURCE_DIR}" CONFIGURE_DEPENDS "*/*.h")
list(REMOVE_ITEM BRIX_PUBLIC_HEADERS ${BRIX_INTERNAL_HEADERS})
foreach(header IN LISTS BRIX_PUBLIC_HEADERS)
    get_filename_component(folder "${header}" DIRECTORY)
    install(FILES "${header}" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/brix/${folder}")
endforeach()

# find_package(brix CONFIG) and the target brix::engine. Until version 1 a new minor version may break a host.
install(EXPORT brixTargets NAMESPACE brix:: DESTINATION "${BRIX_PACKAGE_DIR}")
configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/brixConfig.cmake.in" "${PROJECT_BINARY_DIR}/brixConfig.cmake"
    INSTALL_DESTINATION "${BRIX_PACKAGE_DIR}" NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/brixConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/brixConfig.cmake" "${PROJECT_BINARY_DIR}/brixConfigVersion.cmake"
    DESTINATION "${BRIX_PACKAGE_DIR}")

# brix_install_pkgconfig(<name>): <name>.pc, where all paths are told from the place of the file itself.
function(brix_install_pkgconfig name)
    set(folder "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
    file(RELATIVE_PATH BRIX_PREFIX_FROM_PKGCONFIG "${CMAKE_INSTALL_PREFIX}/${folder}" "${CMAKE_INSTALL_PREFIX}")
    string(REGEX REPLACE "/$" "" BRIX_PREFIX_FROM_PKGCONFIG "${BRIX_PREFIX_FROM_PKGCONFIG}")
    configure_file("${PROJECT_SOURCE_DIR}/cmake/${name}.pc.in" "${PROJECT_BINARY_DIR}/${name}.pc" @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/${name}.pc" DESTINATION "${folder}")
endfunction()
brix_install_pkgconfig(brix)
