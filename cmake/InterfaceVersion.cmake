# The version of what the plug-in offers to tools, which stands with the list of what belongs to it.
set(exports ${PROJECT_SOURCE_DIR}/plugin/exported_symbols.txt)
file(STRINGS ${exports} version REGEX "^# interface [0-9]+\\.[0-9]+$")
string(REPLACE "# interface " "" MORVATH_INTERFACE_VERSION "${version}")
if(NOT MORVATH_INTERFACE_VERSION MATCHES "^[0-9]+\\.[0-9]+$")
  message(FATAL_ERROR "${exports}: exactly one line must read \"# interface MAJOR.MINOR\"")
endif()
