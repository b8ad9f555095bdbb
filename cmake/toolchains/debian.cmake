# Common part of the toolchain files: Debian's cross compiler, a sysroot made of Debian's packages, and qemu to run the
# result. The including file sets `architecture` (Debian's name), `triplet` and CMAKE_SYSTEM_PROCESSOR first.
# ORVEL_SYSROOT names a device's own sysroot.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_C_COMPILER ${triplet}-gcc)
set(CMAKE_CXX_COMPILER ${triplet}-g++)
# GCC notes that it passed arguments differently before version 7; no such old objects are used.
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi)

list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ORVEL_SYSROOT)
set(ORVEL_SYSROOT ${CMAKE_CURRENT_LIST_DIR}/../../build/sysroot/${architecture}
    CACHE PATH "The device's libraries and headers; scripts/sysroot.sh makes one out of Debian's packages")
get_filename_component(CMAKE_SYSROOT ${ORVEL_SYSROOT} ABSOLUTE)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# pkg-config does not read CMake's settings.
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${CMAKE_SYSROOT})
set(ENV{PKG_CONFIG_LIBDIR} ${CMAKE_SYSROOT}/usr/lib/${triplet}/pkgconfig:${CMAKE_SYSROOT}/usr/share/pkgconfig)

set(CMAKE_CROSSCOMPILING_EMULATOR ${qemu};-L;${CMAKE_SYSROOT})
