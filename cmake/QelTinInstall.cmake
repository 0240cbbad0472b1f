# What a host gets: headers, libqeltin.so, the CMake package QelTin, qeltin.pc, the command and its
# manual page. The installed tree may be moved as a whole. The components are the packages of
# QelTinPackages.cmake.

include(CMakePackageConfigHelpers)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/QelTin)
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX
  BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig OUTPUT_VARIABLE prefix_from_pc)

install(TARGETS qeltin EXPORT QelTinTargets
  LIBRARY COMPONENT library NAMELINK_COMPONENT development)
set(without)
if(NOT QELTIN_WITH_RENDER)
  set(without REGEX "${QELTIN_RENDER_FOLDERS}" EXCLUDE)
endif()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/qeltin DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  COMPONENT development FILES_MATCHING PATTERN "*.h" ${without})
install(EXPORT QelTinTargets NAMESPACE QelTin:: DESTINATION ${package_dir} COMPONENT development)

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/QelTinConfig.cmake.in
  QelTinConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(QelTinConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/QelTinConfig.cmake ${PROJECT_BINARY_DIR}/QelTinConfigVersion.cmake
  DESTINATION ${package_dir} COMPONENT development)

configure_file(${PROJECT_SOURCE_DIR}/cmake/qeltin.pc.in qeltin.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/qeltin.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
  COMPONENT development)

if(TARGET qeltin_cli)
  set(manual ${PROJECT_SOURCE_DIR}/docs/man/qeltin.1)
  if(EXISTS ${manual})
    install(FILES ${manual} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT command)
  endif()
endif()
