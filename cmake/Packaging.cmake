# Debian packages through CPack (cpack -G DEB in the build folder, configured with
# -DCMAKE_INSTALL_PREFIX=/usr): libsvgmodule1 (the libraries), libsvgmodule-dev (headers and
# package files) and metafile2svg (the command line). Run-time dependencies come from
# dpkg-shlibdeps.
set(SVGMODULE_MAINTAINER "libsvgmodule developers <libsvgmodule-devel@lists.libsvgmodule.org>"
    CACHE STRING "The packages' Maintainer field: name <address>")
set(CPACK_PACKAGE_NAME svgmodule)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "${SVGMODULE_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${SVGMODULE_MAINTAINER}")
# No CPACK_PACKAGE_DESCRIPTION_SUMMARY: CPack would put it before every package's description,
# in place of the package's own synopsis (the first line of its description below).
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
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)

set(CPACK_DEBIAN_LIB_PACKAGE_NAME libsvgmodule1)
set(CPACK_DEBIAN_LIB_PACKAGE_SECTION libs)
# The shlibs file names libsvgmodule only: CPack's own would list the private liblogging too, as
# if other packages could link it. (CPack's postinst and postrm run ldconfig.)
set(_svgmodule_shlibs ${CMAKE_CURRENT_BINARY_DIR}/debian-libsvgmodule1/shlibs)
file(WRITE ${_svgmodule_shlibs}
     "libsvgmodule 1 libsvgmodule1 (= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})\n")
set(CPACK_DEBIAN_LIB_PACKAGE_CONTROL_EXTRA ${_svgmodule_shlibs})
set(CPACK_DEBIAN_DEV_PACKAGE_NAME libsvgmodule-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
if(SVGMODULE_QT STREQUAL "5")
    set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "qtbase5-dev (>= 5.15)")
else()
    set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "qt6-base-dev")
endif()
set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME metafile2svg)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION graphics)

# Every package carries the licence as share/doc/PACKAGE/copyright.
foreach(_component LIB DEV TOOLS)
    string(TOLOWER ${_component} _name)
    install(FILES cmake/copyright
            DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${CPACK_DEBIAN_${_component}_PACKAGE_NAME}
            COMPONENT ${_name})
endforeach()

include(CPack)
# A description's first line is the package's synopsis; CPack indents the others.
cpack_add_component(lib DESCRIPTION "converts Windows metafiles (EMF, WMF) to SVG
libsvgmodule converts Windows metafiles - EMF, and WMF with or without the
placeable header - into SVG 1.1 documents, from memory or from a file.
Any bytes may be given to it: output and memory stay in proportion to the
input. Conversions may run on many threads at once.

This package holds the shared library and its private logging library.")
cpack_add_component(dev DEPENDS lib DESCRIPTION "development files for libsvgmodule
libsvgmodule converts Windows metafiles (EMF, WMF) to SVG 1.1 documents.

This package holds the header, the CMake package (find_package(SvgModule))
and the pkg-config file (svgmodule) for building programs with libsvgmodule.")
cpack_add_component(tools DEPENDS lib DESCRIPTION "command-line converter of EMF and WMF files to SVG
metafile2svg converts Windows metafiles (EMF, WMF) to SVG 1.1 with
libsvgmodule: one file, from standard input too, or whole folders on several
threads with a progress bar, and can write an HTML page previewing the
results.")
