# Included by the builds of mutation.py: precompiles the headers that take longest, instead of parsing them for every
# mutant.
function(precompile target)
  cmake_language(EVAL CODE "cmake_language(DEFER CALL target_precompile_headers ${target} PRIVATE ${ARGN})")
endfunction()

foreach(target morvath_plugin morvath_util)
  precompile(${target} <algorithm> <array> <boost/filesystem/operations.hpp> <map> <memory> <string> <vector>)
endforeach()
precompile(host_support <SQLiteCpp/SQLiteCpp.h> <filesystem> <functional> <nlohmann/json.hpp> <string> <vector>)
