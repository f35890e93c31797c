# Puts libraries, headers, default host, CMake packages, pkg-config files and tool in place, in five components and,
# with the Python module, a sixth.
include(CMakePackageConfigHelpers)

# Folders may be given as relative to the prefix or as absolute ones, which stay where they are.
file(RELATIVE_PATH pkgconfig_to_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
set(pkgconfig_PREFIX "\${pcfiledir}/${pkgconfig_to_prefix}")
set(pkgconfig_LIBDIR "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
set(pkgconfig_INCLUDEDIR "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  string(REPLACE " " "\\ " pkgconfig_PREFIX "${CMAKE_INSTALL_PREFIX}")
  string(REPLACE " " "\\ " pkgconfig_LIBDIR "${CMAKE_INSTALL_LIBDIR}")
endif()
if(IS_ABSOLUTE "${CMAKE_INSTALL_INCLUDEDIR}")
  string(REPLACE " " "\\ " pkgconfig_INCLUDEDIR "${CMAKE_INSTALL_INCLUDEDIR}")
endif()
# A static library leaves what it needs to the program's link line.
set(pkgconfig_static_pcre2 "")
if(QO_HTML_KIND STREQUAL STATIC)
  set(pkgconfig_static_pcre2 libpcre2-8)
endif()

# What the two libraries have in common: the library itself, its headers, its CMake package and its pkg-config file.
# They go into the components PREFIXlibrary and PREFIXdevelopment.
function(qo_html_install_library name prefix)
  set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/${name}")
  install(TARGETS ${name} EXPORT ${name}_targets
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
      COMPONENT ${prefix}library NAMELINK_COMPONENT ${prefix}development
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT ${prefix}development)
  list(TRANSFORM ARGN PREPEND src/${name}/)
  install(FILES ${ARGN}
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${name} COMPONENT ${prefix}development)
  install(EXPORT ${name}_targets NAMESPACE qo_html::
    DESTINATION ${package_dir} COMPONENT ${prefix}development)
  configure_package_config_file(cmake/${name}Config.cmake.in ${PROJECT_BINARY_DIR}/${name}Config.cmake
    INSTALL_DESTINATION ${package_dir})
  write_basic_package_version_file(${PROJECT_BINARY_DIR}/${name}ConfigVersion.cmake
    VERSION ${${name}_version} COMPATIBILITY SameMajorVersion)
  install(FILES
    ${PROJECT_BINARY_DIR}/${name}Config.cmake
    ${PROJECT_BINARY_DIR}/${name}ConfigVersion.cmake
    DESTINATION ${package_dir} COMPONENT ${prefix}development)
  set(pkgconfig_version ${${name}_version})
  configure_file(cmake/${name}.pc.in ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${name}.pc
    DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT ${prefix}development)
endfunction()

qo_html_install_library(qo_html ""
  qo_html.h qo_html_export.h qo_html_host.h qo_html_version.h qo_html_walk.h)
qo_html_install_library(qo_page page_
  decode.h edits.h error.h form_data.h line_index.h node.h page.h qo_page_export.h range.h selector.h substitution.h
  tables.h utf8.h version.h)

install(TARGETS qo_html_default_host EXPORT qo_html_targets
  OBJECTS DESTINATION "${CMAKE_INSTALL_LIBDIR}/qo_html" COMPONENT development)
install(FILES src/default_host/qo_html/qo_html_default_host.h
  DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/qo_html" COMPONENT development)
install(FILES src/default_host/qo_html_default_host.h
  DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/default_host" COMPONENT development)

if(QO_HTML_BUILD_CLI)
  # The tool finds the libraries beside it, wherever all were put.
  if(IS_ABSOLUTE "${CMAKE_INSTALL_BINDIR}" OR IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
    set(tool_rpath "${CMAKE_INSTALL_FULL_LIBDIR}")
  else()
    file(RELATIVE_PATH bin_to_lib /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
    set(tool_rpath $ORIGIN/${bin_to_lib})
  endif()
  set_target_properties(qo_html_tool PROPERTIES INSTALL_RPATH "${tool_rpath}")
  install(TARGETS qo_html_tool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tool)
  install(FILES "${PROJECT_BINARY_DIR}/src/cli/completions/qo.bash"
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME qo COMPONENT tool)
  install(FILES "${PROJECT_BINARY_DIR}/src/cli/completions/_qo"
    DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions COMPONENT tool)
  install(FILES "${PROJECT_BINARY_DIR}/src/cli/completions/qo.fish"
    DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d COMPONENT tool)
  if(SCDOC)
    install(FILES "${PROJECT_BINARY_DIR}/src/cli/qo.1"
      DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tool)
  endif()
endif()

if(QO_HTML_BUILD_PYTHON)
  set(QO_PYTHON_INSTALL_DIR lib/python3/dist-packages CACHE STRING "Where the Python module goes, as Python finds it")
  install(TARGETS qo_python LIBRARY DESTINATION "${QO_PYTHON_INSTALL_DIR}/qo" COMPONENT python)
  install(DIRECTORY src/python/qo/ DESTINATION "${QO_PYTHON_INSTALL_DIR}/qo" COMPONENT python
    FILES_MATCHING PATTERN "*.py" PATTERN "*.pyi" PATTERN "py.typed"
    PATTERN "__pycache__" EXCLUDE)
endif()
