# The Debian packages, one per component: `morvath` (the plug-in), `morvath-dev` (for building tools) and `orvelbox`
# (the host platform and the command-line device). Install.cmake defines the components.
set(packaging ${PROJECT_SOURCE_DIR}/packaging)
set(package_components plugin development host)
set(package_of_plugin morvath)
set(package_of_development morvath-dev)
set(package_of_host orvelbox)

file(STRINGS ${packaging}/changelog newest_entry LIMIT_COUNT 1)
if(NOT newest_entry MATCHES "^morvath \\(${PROJECT_VERSION}\\) ")
  message(FATAL_ERROR "${packaging}/changelog begins with \"${newest_entry}\"; it must begin with version ${PROJECT_VERSION}")
endif()
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${packaging}/changelog)

# The documentation files of every package. gzip -n stores neither name nor time.
find_program(GZIP_PROGRAM gzip REQUIRED)
configure_file(${packaging}/changelog ${PROJECT_BINARY_DIR}/package/changelog COPYONLY)
execute_process(COMMAND ${GZIP_PROGRAM} -9nf ${PROJECT_BINARY_DIR}/package/changelog COMMAND_ERROR_IS_FATAL ANY)
foreach(component IN LISTS package_components)
  install(FILES ${packaging}/copyright ${PROJECT_BINARY_DIR}/package/changelog.gz
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package_of_${component}} COMPONENT ${component})
  string(TOUPPER ${component} COMPONENT)
  set(CPACK_DEBIAN_${COMPONENT}_PACKAGE_NAME ${package_of_${component}})
endforeach()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME morvath)
set(CPACK_PACKAGE_CONTACT "Morvath maintainers <maintainers@example.org>")
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_OUTPUT_FILE_PREFIX ${PROJECT_BINARY_DIR}/packages)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_COMPONENTS_ALL ${package_components})
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PLUGIN_PACKAGE_CONTROL_EXTRA ${packaging}/triggers)
set(CPACK_DEBIAN_HOST_PACKAGE_CONTROL_EXTRA ${packaging}/triggers)

# dpkg-shlibdeps finds the packages of Debian's libraries. Our own libraries have no entry there, so they are named
# below. On a desk the plug-in and the host platform depend on each other.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
  ${PROJECT_BINARY_DIR}/plugin ${PROJECT_BINARY_DIR}/quarnel_util ${PROJECT_BINARY_DIR}/platform/host)
set(same_version "(= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_PLUGIN_PACKAGE_DEPENDS "orvelbox ${same_version}")
set(CPACK_DEBIAN_HOST_PACKAGE_DEPENDS "morvath ${same_version}")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "morvath ${same_version}, orvelbox ${same_version}")

set(CPACK_DEBIAN_PLUGIN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_HOST_PACKAGE_SECTION devel)
set(CPACK_COMPONENT_PLUGIN_DESCRIPTION "parser plug-in for .NET packages of the Orvel platform
The package manager loads this plug-in when a package of a .NET application is
installed, upgraded or removed. It deletes the DLLs that the platform has
already, and keeps the cache files of the runtime's candidate loader.")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "headers for launcher tools that use the Morvath plug-in
A launcher tool asks the plug-in for the assemblies of the platform and of
packages. Here are the headers, and their descriptions for pkg-config and
CMake.")
set(CPACK_COMPONENT_HOST_DESCRIPTION "device on the command line for packages of .NET applications
orvelbox installs, upgrades and removes packages on a device that is a
directory, with the parser plug-in of the Orvel platform, and tells what
became of their DLLs. The platform's libraries for a desk, their headers and
the candidate loader come with it.")
include(CPack)
