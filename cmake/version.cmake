# The version is written in a header; project, packages and tool take it from there, as qo_html_version.
file(STRINGS ${CMAKE_CURRENT_LIST_DIR}/../src/qo_html/qo_html_version.h lines REGEX "^#define QO_HTML_VERSION")
string(REGEX REPLACE ".*_MAJOR ([0-9]+).*_MINOR ([0-9]+).*_PATCH ([0-9]+).*" "\\1.\\2.\\3" qo_html_version "${lines}")
if(NOT lines MATCHES "QO_HTML_VERSION \"${qo_html_version}\"")
  message(FATAL_ERROR "qo_html_version.h: the parts of the version, ${qo_html_version}, are not its text")
endif()
