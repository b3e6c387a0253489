# Installation: the libraries with their soname links, the public headers in their own folder,
# the command line with its man page, a CMake package and a pkg-config file. Components:
# lib (run-time libraries), dev (headers, links, package files), tools (command line).
include(CMakePackageConfigHelpers)

# Outside /usr the installed programs find the libraries next to them, whatever the prefix.
if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    file(RELATIVE_PATH _svgmodule_bin_to_lib ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
    set_target_properties(svgmodule PROPERTIES INSTALL_RPATH "$ORIGIN")
    set_target_properties(metafile2svg PROPERTIES INSTALL_RPATH "$ORIGIN/${_svgmodule_bin_to_lib}")
endif()

set(SVGMODULE_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/SvgModule)

install(TARGETS svgmodule logging EXPORT SvgModuleTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT lib NAMELINK_COMPONENT dev)
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

install(TARGETS metafile2svg RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
install(FILES tools/metafile2svg.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
