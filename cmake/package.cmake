# Debian packages, by CPack: one for each component that install.cmake knows.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "The qo_html developers <qo_html@example.org>")
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL library development page_library page_development tool)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
  ${PROJECT_BINARY_DIR}/src/qo_html ${PROJECT_BINARY_DIR}/src/qo_page)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)

string(REGEX MATCH "^[0-9]+" qo_html_major ${qo_html_version})
string(REGEX MATCH "^[0-9]+" qo_page_major ${qo_page_version})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libqo-html${qo_html_major})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_DESCRIPTION "HTML text to a tree of nodes, and back - library
 The process that loads it supplies jsoncpp and three services.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libqo-html-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS libjsoncpp-dev)
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS library)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "HTML text to a tree of nodes, and back - development files
 Headers, ready-made host services, CMake package and pkg-config file.")

set(CPACK_DEBIAN_PAGE_LIBRARY_PACKAGE_NAME libqo-page${qo_page_major})
set(CPACK_DEBIAN_PAGE_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PAGE_LIBRARY_DESCRIPTION "HTML pages as their authors wrote them - library
 Reads any page or template, finds elements, and changes only what is named.")

set(CPACK_DEBIAN_PAGE_DEVELOPMENT_PACKAGE_NAME libqo-page-dev)
set(CPACK_DEBIAN_PAGE_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_PAGE_DEVELOPMENT_DEPENDS page_library)
set(CPACK_DEBIAN_PAGE_DEVELOPMENT_DESCRIPTION "HTML pages as their authors wrote them - development files
 Headers, CMake package and pkg-config file.")

set(CPACK_DEBIAN_TOOL_PACKAGE_NAME qo)
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION web)
set(CPACK_COMPONENT_TOOL_DEPENDS library page_library)
set(CPACK_DEBIAN_TOOL_DESCRIPTION "search, edit and check HTML pages
 What an edit does not touch stays byte for byte as its author wrote it.")

if(QO_HTML_BUILD_PYTHON)
  list(APPEND CPACK_COMPONENTS_ALL python)
  math(EXPR next_python "${Python3_VERSION_MINOR} + 1")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-qo)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
    "python3 (>= 3.${Python3_VERSION_MINOR}), python3 (<< 3.${next_python})")
  set(CPACK_DEBIAN_PYTHON_DESCRIPTION "HTML pages as their authors wrote them - Python module
 Reads any page or template, finds elements, and changes only what is named.")
endif()

# Debian wants to know the terms in each package.
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} component)
  string(TOLOWER ${component} name)
  install(FILES cmake/copyright COMPONENT ${name} EXCLUDE_FROM_ALL
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${CPACK_DEBIAN_${component}_PACKAGE_NAME})
endforeach()

include(CPack)
