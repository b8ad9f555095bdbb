# export_only(TARGET LIST): the shared library exports only the symbols in the file LIST (one mangled name per line, "#"
# begins a comment); templates of other libraries that it instantiates are hidden too.
function(export_only target list)
  file(STRINGS ${list} symbols REGEX "^[^#]")
  string(JOIN ";\n    " symbols ${symbols})
  set(script ${CMAKE_CURRENT_BINARY_DIR}/${target}.map)
  file(CONFIGURE OUTPUT ${script} CONTENT "{\n  global:\n    @symbols@;\n  local:\n    *;\n};\n" @ONLY)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${list})
  target_link_options(${target} PRIVATE -Xlinker --version-script=${script})  # -Wl would break a path at a comma
  set_target_properties(${target} PROPERTIES LINK_DEPENDS ${script})
endfunction()
