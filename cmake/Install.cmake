# Installation: the library with its soname links, the public headers in their own folder, the
# command line with its man page, a CMake package and a pkg-config file. Components:
# lib (run-time libraries), dev (headers, links, package files), tools (command line).
include(CMakePackageConfigHelpers)

# liblogging.so.1 is the library's own: it goes to a folder of its own (lib/svgmodule), where it
# cannot clash with another library of that name, and libsvgmodule and metafile2svg find it
# through their run paths. Outside /usr, metafile2svg also finds libsvgmodule through its run
# path, so the tree can be moved.
set(SVGMODULE_PRIVATE_LIBDIR ${CMAKE_INSTALL_LIBDIR}/svgmodule)
file(RELATIVE_PATH _svgmodule_bin_to_lib ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
set_target_properties(svgmodule PROPERTIES INSTALL_RPATH "$ORIGIN/svgmodule")
set(_svgmodule_tool_rpath "$ORIGIN/${_svgmodule_bin_to_lib}/svgmodule")
if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    list(PREPEND _svgmodule_tool_rpath "$ORIGIN/${_svgmodule_bin_to_lib}")
endif()
set_target_properties(metafile2svg PROPERTIES INSTALL_RPATH "${_svgmodule_tool_rpath}")

# Installed programs and libraries carry no debug information unless asked for
# (-DSVGMODULE_INSTALL_STRIP=OFF): a RelWithDebInfo library is ten times the size stripped.
# CPack strips the packages' files itself (CPACK_STRIP_FILES).
if(SVGMODULE_INSTALL_STRIP)
    install(CODE "if(NOT DEFINED CMAKE_INSTALL_DO_STRIP)\n  set(CMAKE_INSTALL_DO_STRIP 1)\nendif()")
endif()

set(SVGMODULE_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/SvgModule)

install(TARGETS svgmodule EXPORT SvgModuleTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT lib NAMELINK_COMPONENT dev)
# In the export too, so that a host's link finds it (-rpath-link); hosts do not link it.
install(TARGETS logging EXPORT SvgModuleTargets
        LIBRARY DESTINATION ${SVGMODULE_PRIVATE_LIBDIR} COMPONENT lib NAMELINK_SKIP)
install(FILES include/svgmodule.h include/MetafileStructs.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/svgmodule COMPONENT dev)
install(EXPORT SvgModuleTargets NAMESPACE SvgModule:: DESTINATION ${SVGMODULE_CMAKE_DIR}
        COMPONENT dev)

if(SVGMODULE_QT STREQUAL "5")
    set(SVGMODULE_QT_MIN 5.15)
    set(SVGMODULE_PC_CFLAGS " -fPIC")  # Qt 5 requires position-independent code
endif()
configure_package_config_file(cmake/SvgModuleConfig.cmake.in
                              ${CMAKE_CURRENT_BINARY_DIR}/SvgModuleConfig.cmake
                              INSTALL_DESTINATION ${SVGMODULE_CMAKE_DIR})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/SvgModuleConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/SvgModuleConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/SvgModuleConfigVersion.cmake
        DESTINATION ${SVGMODULE_CMAKE_DIR} COMPONENT dev)

# The pkg-config file finds the prefix from its own place, so the tree can be moved.
file(RELATIVE_PATH SVGMODULE_PC_PREFIX ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" SVGMODULE_PC_PREFIX "${SVGMODULE_PC_PREFIX}")
configure_file(cmake/svgmodule.pc.in ${CMAKE_CURRENT_BINARY_DIR}/svgmodule.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/svgmodule.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)

# The man page, compressed as manual pages are installed.
find_program(SVGMODULE_GZIP gzip)
if(NOT SVGMODULE_GZIP)
    message(FATAL_ERROR "gzip not found: it compresses the man page")
endif()
add_custom_command(OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/metafile2svg.1.gz
                   COMMAND ${SVGMODULE_GZIP} -9nc ${CMAKE_CURRENT_SOURCE_DIR}/tools/metafile2svg.1
                           > ${CMAKE_CURRENT_BINARY_DIR}/metafile2svg.1.gz
                   DEPENDS tools/metafile2svg.1 VERBATIM)
add_custom_target(metafile2svg_man DEPENDS ${CMAKE_CURRENT_BINARY_DIR}/metafile2svg.1.gz)
add_dependencies(metafile2svg metafile2svg_man)
install(TARGETS metafile2svg RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/metafile2svg.1.gz
        DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
