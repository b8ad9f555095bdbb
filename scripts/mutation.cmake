# Included by the builds of mutation.py: precompiles the headers that take longest, instead of parsing them for every
# mutant.
foreach(target morvath_plugin morvath_util)
  cmake_language(EVAL CODE "cmake_language(DEFER CALL target_precompile_headers ${target} PRIVATE
    <algorithm> <array> <boost/filesystem/operations.hpp> <map> <memory> <string> <vector>)")
endforeach()
