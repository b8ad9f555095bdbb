# Warnings and hardening for everything that is built here.
add_compile_options(-Wall -Wextra -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual -Wformat=2)
# Formats that are no constants are errors for every compiler, as in all Debian packages.
add_compile_options(-Werror=format-security)
if(ORVEL_WERROR)
  add_compile_options(-Werror)
endif()

# 64-bit sizes, inode numbers and times on 32-bit processors too: the 32-bit functions fail on files with larger
# numbers. No interface that is used here passes such a number.
add_compile_definitions(_FILE_OFFSET_BITS=64 _TIME_BITS=64)

# Position-independent programs, like shared libraries.
include(CheckPIESupported)
check_pie_supported()
add_compile_options(-fstack-protector-strong)
add_link_options(-Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
if(ORVEL_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
  # With sanitizers GCC reports wrong "maybe uninitialized" warnings in the standard library. valgrind finds real ones.
  add_compile_options($<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
else()
  add_compile_options($<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE> $<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=2>)
endif()

if(ORVEL_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

if(ORVEL_COVERAGE)
  add_compile_options(--coverage -fprofile-abs-path)
  add_link_options(--coverage)
endif()

# A unique symbol would keep the library loaded for ever, but dlclose must really unload the plug-in.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-fno-gnu-unique>)
endif()

# Reproducible builds: neither objects nor run paths contain the folder's name. A debug build keeps it for the debugger.
if(CMAKE_BUILD_TYPE STREQUAL "Release" AND NOT ORVEL_COVERAGE)
  add_compile_options(-ffile-prefix-map=${PROJECT_BINARY_DIR}=build -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.)
endif()
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
