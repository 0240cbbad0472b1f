# Runs inside cpack on the staged packages: compresses manual pages, and adds the copyright and the
# changelogs that Debian asks of each.

find_program(gzip gzip REQUIRED)
string(TIMESTAMP now "%a, %d %b %Y %H:%M:%S +0000" UTC)
set(version ${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  set(root ${CPACK_TEMPORARY_DIRECTORY}/${component}${CPACK_PACKAGING_INSTALL_PREFIX})
  string(TOUPPER ${component} upper)
  set(package ${CPACK_DEBIAN_${upper}_PACKAGE_NAME})

  set(doc ${root}/share/doc/${package})
  configure_file(${CPACK_QELTIN_SOURCE}/LICENSE ${doc}/copyright COPYONLY)
  configure_file(${CPACK_QELTIN_SOURCE}/CHANGELOG.md ${doc}/changelog COPYONLY)
  file(WRITE ${doc}/changelog.Debian "qeltin (${version}) unstable; urgency=medium

  * Packaged from a build of this version.

 -- ${CPACK_PACKAGE_CONTACT}  ${now}
")
  file(GLOB manuals ${root}/share/man/man1/*.1)
  execute_process(COMMAND ${gzip} -9nf ${doc}/changelog ${doc}/changelog.Debian ${manuals}
    COMMAND_ERROR_IS_FATAL ANY)
endforeach()
