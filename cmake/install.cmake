# Puts library, headers, default host, CMake package, pkg-config file and tool in place, in three components.
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/qo_html)

install(TARGETS qo_html EXPORT qo_html_targets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development)
install(TARGETS default_host EXPORT qo_html_targets
  OBJECTS DESTINATION ${CMAKE_INSTALL_LIBDIR}/qo_html COMPONENT development)

install(FILES
  src/qo_html/qo_html.h
  src/qo_html/qo_html_export.h
  src/qo_html/qo_html_host.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qo_html COMPONENT development)
install(FILES src/default_host/qo_html_default_host.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/default_host COMPONENT development)

install(EXPORT qo_html_targets NAMESPACE qo_html:: DESTINATION ${package_dir} COMPONENT development)
configure_package_config_file(cmake/qo_htmlConfig.cmake.in ${PROJECT_BINARY_DIR}/qo_htmlConfig.cmake
  INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/qo_htmlConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/qo_htmlConfig.cmake
  ${PROJECT_BINARY_DIR}/qo_htmlConfigVersion.cmake
  DESTINATION ${package_dir} COMPONENT development)

file(RELATIVE_PATH pkgconfig_to_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(cmake/qo_html.pc.in ${PROJECT_BINARY_DIR}/qo_html.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/qo_html.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

if(QO_HTML_BUILD_CLI)
  # The tool finds the library beside it, wherever both were put.
  file(RELATIVE_PATH bin_to_lib /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
  set_target_properties(qo PROPERTIES INSTALL_RPATH $ORIGIN/${bin_to_lib})
  install(TARGETS qo RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tool)
  install(FILES src/cli/completions/qo.bash
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME qo COMPONENT tool)
  install(FILES src/cli/completions/_qo
    DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions COMPONENT tool)
  install(FILES src/cli/completions/qo.fish
    DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d COMPONENT tool)
  if(SCDOC)
    install(FILES ${PROJECT_BINARY_DIR}/src/cli/qo.1
      DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tool)
  endif()
endif()
