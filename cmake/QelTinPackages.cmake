# Debian packages of a finished build: `cpack --config build/release/CPackConfig.cmake` makes
# libqeltin (what programs load), libqeltin-dev (what hosts are built with) and qeltin (the command).

set(QELTIN_PACKAGE_CONTACT "The QelTin authors <qeltin@localhost>" CACHE STRING
  "Who is named as the maintainer of the packages")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME qeltin)
set(CPACK_PACKAGE_CONTACT ${QELTIN_PACKAGE_CONTACT})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has a first line of its own
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/QelTinPackageDocs.cmake)
set(CPACK_QELTIN_SOURCE ${PROJECT_SOURCE_DIR})

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# The command's dependency on the library stands below by its version.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(about "Builds Delaunay surfaces from soundings and ground points, answers heights,
derives contours, profiles, volumes and grids, and keeps surfaces in files.")
set(same_version "(= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")

# What a program that loads the library needs: as the CMake package says, one of the same minor
# version.
math(EXPR next_minor "${PROJECT_VERSION_MINOR} + 1")
set(at_least ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
set(below ${PROJECT_VERSION_MAJOR}.${next_minor})
set(shlibs ${PROJECT_BINARY_DIR}/package/shlibs)
set(triggers ${PROJECT_BINARY_DIR}/package/triggers)
file(WRITE ${shlibs} "libqeltin ${PROJECT_VERSION_MAJOR} "
  "libqeltin (>= ${at_least}), libqeltin (<< ${below}~)\n")
file(WRITE ${triggers} "activate-noawait ldconfig\n")

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libqeltin)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${shlibs} ${triggers})
set(CPACK_DEBIAN_LIBRARY_DESCRIPTION "triangulated surface models of terrain and seabed
${about}

This package holds the shared library.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libqeltin-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libqeltin ${same_version}")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "triangulated surface models - development files
${about}

This package holds the headers, the CMake package and the pkg-config module.")

set(CPACK_COMPONENTS_ALL library development)
if(TARGET qeltin_cli)
  list(APPEND CPACK_COMPONENTS_ALL command)
  set(CPACK_DEBIAN_COMMAND_PACKAGE_NAME qeltin)
  set(CPACK_DEBIAN_COMMAND_PACKAGE_SECTION science)
  set(CPACK_DEBIAN_COMMAND_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_COMMAND_PACKAGE_DEPENDS "libqeltin ${same_version}, fonts-dejavu-core")
  set(CPACK_DEBIAN_COMMAND_DESCRIPTION "triangulated surface models - command
${about}

This package holds the qeltin command, which does all of it from a shell.")
endif()

include(CPack)
