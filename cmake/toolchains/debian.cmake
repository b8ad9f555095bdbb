# What the toolchain files have in common: Debian's cross compiler, a sysroot out of Debian's packages, and qemu to run
# what was built. The file that includes this one has set `architecture` (Debian's name), `triplet` and
# CMAKE_SYSTEM_PROCESSOR. ORVEL_SYSROOT names a device's own sysroot.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_C_COMPILER ${triplet}-gcc)
set(CMAKE_CXX_COMPILER ${triplet}-g++)
# GCC tells how it passed arguments before its version 7; nobody has such objects.
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi)

list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ORVEL_SYSROOT)
set(ORVEL_SYSROOT ${CMAKE_CURRENT_LIST_DIR}/../../build/sysroot/${architecture}
    CACHE PATH "The device's libraries and headers; scripts/sysroot.sh makes one out of Debian's packages")
get_filename_component(CMAKE_SYSROOT ${ORVEL_SYSROOT} ABSOLUTE)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# pkg-config knows nothing of all that.
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${CMAKE_SYSROOT})
set(ENV{PKG_CONFIG_LIBDIR} ${CMAKE_SYSROOT}/usr/lib/${triplet}/pkgconfig:${CMAKE_SYSROOT}/usr/share/pkgconfig)

set(CMAKE_CROSSCOMPILING_EMULATOR ${qemu};-L;${CMAKE_SYSROOT})
