# A TV with a 32-bit ARM processor.
set(architecture armhf)
set(triplet arm-linux-gnueabihf)
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(qemu qemu-arm)
include(${CMAKE_CURRENT_LIST_DIR}/debian.cmake)
