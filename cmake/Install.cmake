# The installed files, in components: `plugin` (the two libraries), `development` (for building tools with them) and, on
# a desk, `host` (the host platform and orvelbox). The installed tree can be moved as a whole.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

foreach(directory BINDIR LIBDIR INCLUDEDIR)
  if(IS_ABSOLUTE "${CMAKE_INSTALL_${directory}}")
    message(FATAL_ERROR "CMAKE_INSTALL_${directory} is \"${CMAKE_INSTALL_${directory}}\"; it must be relative to the prefix")
  endif()
endforeach()

install(TARGETS morvath quarnel_util LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT plugin)
set_target_properties(morvath quarnel_util PROPERTIES INSTALL_RPATH "$ORIGIN")

# The tool itself destroys package records, so it links the package-info library as well.
set(MORVATH_PC_REQUIRES "")
set(MORVATH_PC_PLATFORM_LIBS -lorvel_pkgmgr_info)
if(TARGET PkgConfig::orvel_pkgmgr_info)
  set(MORVATH_PC_REQUIRES orvel_pkgmgr_info)
  set(MORVATH_PC_PLATFORM_LIBS "")
endif()
file(RELATIVE_PATH MORVATH_PC_TO_PREFIX /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)

set(package_directory ${CMAKE_INSTALL_LIBDIR}/cmake/morvath)
set(generated ${PROJECT_BINARY_DIR}/package)
configure_file(cmake/morvath.pc.in ${generated}/morvath.pc @ONLY)
configure_package_config_file(cmake/morvath-config.cmake.in ${generated}/morvath-config.cmake
  INSTALL_DESTINATION ${package_directory} PATH_VARS CMAKE_INSTALL_LIBDIR CMAKE_INSTALL_INCLUDEDIR
  NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(${generated}/morvath-config-version.cmake
  VERSION ${MORVATH_INTERFACE_VERSION} COMPATIBILITY SameMajorVersion)

install(DIRECTORY include/morvath DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development
  FILES_MATCHING PATTERN "*.h")
install(FILES ${generated}/morvath.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
install(FILES ${generated}/morvath-config.cmake ${generated}/morvath-config-version.cmake
  DESTINATION ${package_directory} COMPONENT development)

if(ORVEL_PLATFORM STREQUAL "host")
  get_property(host_libraries DIRECTORY platform/host PROPERTY BUILDSYSTEM_TARGETS)
  list(FILTER host_libraries INCLUDE REGEX "^orvel_")
  install(TARGETS ${host_libraries} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT host)
  install(DIRECTORY platform/include/orvel DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT host
    FILES_MATCHING PATTERN "*.h")
  # liborvel_aul starts the loader from its own directory.
  install(TARGETS dotnet-loader-inhouse RUNTIME DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT host)
  install(TARGETS orvelbox RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT host)
  install(FILES orvelbox/share/Orvelbox.Check.targets DESTINATION ${CMAKE_INSTALL_DATADIR}/orvelbox COMPONENT host)
  install(FILES ${PROJECT_BINARY_DIR}/orvelbox/orvelbox.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT host)
  set(completion ${PROJECT_SOURCE_DIR}/orvelbox/completion)
  install(FILES ${completion}/orvelbox.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
    RENAME orvelbox COMPONENT host)
  install(FILES ${completion}/_orvelbox DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions COMPONENT host)
  install(FILES ${completion}/orvelbox.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d COMPONENT host)
endif()
