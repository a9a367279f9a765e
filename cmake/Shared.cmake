# The engine as a shared library, included by engine/CMakeLists.txt. It exports the whole of namespace brix, of which only the installed
# headers are promised. While the version is 0.x each minor version may change them, so that its two first numbers name the interface:
# libbrix.so.0.1. Calls inside the library stay direct, and are inlined, as in the static one.
set_target_properties(brix_engine PROPERTIES CXX_VISIBILITY_PRESET default WINDOWS_EXPORT_ALL_SYMBOLS ON
    VERSION "${PROJECT_VERSION}" SOVERSION "${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}")
if(NOT WIN32)
    target_compile_options(brix_engine PRIVATE $<$<COMPILE_LANG_AND_ID:CXX,GNU,Clang,AppleClang>:-fno-semantic-interposition>)
endif()
if(NOT WIN32 AND NOT APPLE)
    target_link_options(brix_engine PRIVATE "LINKER:--version-script=${CMAKE_CURRENT_SOURCE_DIR}/brix.map")
    set_target_properties(brix_engine PROPERTIES LINK_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/brix.map")
endif()

# What is installed beside it finds it there, wherever the whole is moved.
file(RELATIVE_PATH brix_from_programs "/${CMAKE_INSTALL_BINDIR}" "/${CMAKE_INSTALL_LIBDIR}")
list(APPEND CMAKE_INSTALL_RPATH "$ORIGIN" "$ORIGIN/${brix_from_programs}")
set(CMAKE_INSTALL_RPATH "${CMAKE_INSTALL_RPATH}" PARENT_SCOPE)
