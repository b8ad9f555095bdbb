# The libraries that the build needs. Each missing one is reported on a line with its ordinary name, because Debian's
# package names do not help on other machines.

# Boost has its own CMake configuration; newer CMake releases warn about CMake's module for it.
if(POLICY CMP0167)
  cmake_policy(SET CMP0167 NEW)
endif()

# require(PACKAGE VERSION WORDS…): find_package(PACKAGE VERSION). WORDS is its ordinary name. `COMPONENTS…` may follow.
macro(require package version words)
  find_package(${package} ${version} QUIET ${ARGN})
  if(NOT ${package}_FOUND)
    message(NOTICE "missing: ${words} ${version} or newer, with its headers")
    list(APPEND missing_packages ${package})
  endif()
endmacro()

require(LibXml2 2.9 "libxml2")
require(Boost 1.74 "Boost.Filesystem" COMPONENTS filesystem)
if(ORVEL_PLATFORM STREQUAL "host")
  require(CLI11 2.1 "CLI11")
  require(nlohmann_json 3.11 "JSON for Modern C++ (nlohmann_json)")
  require(SQLite3 3.40 "SQLite")
  require(SQLiteCpp 3.2 "SQLiteC++ (SQLiteCpp)")
  require(ZLIB 1.2 "zlib")
  if(BUILD_TESTING)
    require(GTest 1.12 "GoogleTest with GoogleMock")
    require(PNG 1.6 "libpng")
  endif()
endif()
if(missing_packages)
  list(JOIN missing_packages " " missing_packages)
  message(FATAL_ERROR "install what is missing (${missing_packages})")
endif()
