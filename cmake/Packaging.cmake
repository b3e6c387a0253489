# Debian packages through CPack (cpack -G DEB in the build folder, configured with
# -DCMAKE_INSTALL_PREFIX=/usr): libsvgmodule1 (the libraries), libsvgmodule-dev (headers and
# package files) and metafile2svg (the command line). Run-time dependencies come from
# dpkg-shlibdeps.
set(CPACK_PACKAGE_NAME svgmodule)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "libsvgmodule developers <svgmodule@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Windows metafile (EMF, WMF) to SVG converter")
set(CPACK_GENERATOR DEB)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL lib dev tools)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The command line needs the libraries of its sibling package: dpkg-shlibdeps finds them in
# the build folder, and the dependency on that package comes from the component's DEPENDS.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_BINARY_DIR})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)

set(CPACK_DEBIAN_LIB_PACKAGE_NAME libsvgmodule1)
set(CPACK_DEBIAN_LIB_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_DEV_PACKAGE_NAME libsvgmodule-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
if(SVGMODULE_QT STREQUAL "5")
    set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "qtbase5-dev (>= 5.15)")
else()
    set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "qt6-base-dev")
endif()
set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME metafile2svg)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION graphics)

include(CPack)
cpack_add_component(lib DESCRIPTION "Windows metafile to SVG converter library
 libsvgmodule converts Windows metafiles (EMF, and WMF with or without the
 placeable header) into SVG 1.1 documents.")
cpack_add_component(dev DEPENDS lib DESCRIPTION "Windows metafile to SVG converter: development files
 Headers, CMake package (find_package(SvgModule)) and pkg-config file (svgmodule)
 for building programs with libsvgmodule.")
cpack_add_component(tools DEPENDS lib DESCRIPTION "Windows metafile to SVG command-line converter
 metafile2svg converts EMF and WMF files to SVG, one file or whole folders on
 several threads, and can write an HTML page previewing the results.")
