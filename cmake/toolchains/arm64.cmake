# A TV with a 64-bit ARM processor.
set(architecture arm64)
set(triplet aarch64-linux-gnu)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(qemu qemu-aarch64)
include(${CMAKE_CURRENT_LIST_DIR}/debian.cmake)
