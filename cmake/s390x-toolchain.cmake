# Cross-build for s390x (64-bit big-endian) with Debian's s390x-linux-gnu compilers.
#
# Qt, GoogleTest and the libraries they need are the Debian s390x packages unpacked into
# S390X_SYSROOT (scripts/s390x.sh does that); libc and libstdc++ come with the cross compiler
# (/usr/s390x-linux-gnu). Qt's build tools are the host's (QT_HOST_PATH). Programs built here
# run under qemu-user, which also runs the test discovery and ctest.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR s390x)
set(CMAKE_C_COMPILER s390x-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER s390x-linux-gnu-g++)
set(CMAKE_LIBRARY_ARCHITECTURE s390x-linux-gnu)

if(NOT S390X_SYSROOT)
    set(S390X_SYSROOT "$ENV{S390X_SYSROOT}")
endif()
if(NOT S390X_SYSROOT OR NOT EXISTS "${S390X_SYSROOT}/usr/lib/s390x-linux-gnu")
    message(FATAL_ERROR "S390X_SYSROOT must name the unpacked s390x packages (scripts/s390x.sh)")
endif()
set(S390X_SYSROOT "${S390X_SYSROOT}" CACHE PATH "Unpacked Debian s390x packages")
# The toolchain file is read again for every try-compile project: hand the sysroot on.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES S390X_SYSROOT)

set(CMAKE_FIND_ROOT_PATH "${S390X_SYSROOT}" /usr/s390x-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Qt's moc, rcc and friends run on the build machine: the host's Qt 6 under /usr.
set(QT_HOST_PATH /usr CACHE PATH "Host Qt installation")
file(GLOB _host_qt_tools /usr/lib/*-linux-gnu*/cmake/Qt6HostInfo)
if(NOT _host_qt_tools)
    message(FATAL_ERROR "the host's Qt 6 development files (qt6-base-dev) are missing")
endif()
list(GET _host_qt_tools 0 _host_qt_tools)
get_filename_component(_host_qt_cmake "${_host_qt_tools}" DIRECTORY)
set(QT_HOST_PATH_CMAKE_DIR "${_host_qt_cmake}" CACHE PATH "Host Qt CMake packages")

# The linker follows the dependencies of Qt's libraries inside the sysroot.
set(_s390x_libs "${S390X_SYSROOT}/usr/lib/s390x-linux-gnu:${S390X_SYSROOT}/lib/s390x-linux-gnu")
foreach(kind EXE SHARED MODULE)
    set(CMAKE_${kind}_LINKER_FLAGS_INIT "-Wl,-rpath-link,${_s390x_libs}")
endforeach()

# qemu-user finds the s390x loader and libraries under -L.
find_program(S390X_QEMU NAMES qemu-s390x qemu-s390x-static REQUIRED)
set(CMAKE_CROSSCOMPILING_EMULATOR "${S390X_QEMU};-L;${S390X_SYSROOT}")
