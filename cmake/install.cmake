# Puts headers, library, default host, CMake package and pkg-config file in place.
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/qo_html)

install(TARGETS qo_html EXPORT qo_html_targets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(TARGETS default_host EXPORT qo_html_targets
  OBJECTS DESTINATION ${CMAKE_INSTALL_LIBDIR}/qo_html)

install(FILES
  src/qo_html/qo_html.h
  src/qo_html/qo_html_export.h
  src/qo_html/qo_html_host.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qo_html)
install(FILES src/default_host/qo_html_default_host.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/default_host)

install(EXPORT qo_html_targets NAMESPACE qo_html:: DESTINATION ${package_dir})
configure_package_config_file(cmake/qo_htmlConfig.cmake.in ${PROJECT_BINARY_DIR}/qo_htmlConfig.cmake
  INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/qo_htmlConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/qo_htmlConfig.cmake
  ${PROJECT_BINARY_DIR}/qo_htmlConfigVersion.cmake
  DESTINATION ${package_dir})

file(RELATIVE_PATH pkgconfig_to_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(cmake/qo_html.pc.in ${PROJECT_BINARY_DIR}/qo_html.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/qo_html.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
