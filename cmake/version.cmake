# Each library's version is written in a header of its own, and comes from there as NAME_version. That of qo_page is the
# one of the project, its packages and the tool as well.
function(qo_html_read_version name header)
  string(TOUPPER ${name} prefix)
  file(STRINGS ${CMAKE_CURRENT_LIST_DIR}/../src/${name}/${header} lines REGEX "^#define ${prefix}_VERSION")
  string(REGEX REPLACE ".*_MAJOR ([0-9]+).*_MINOR ([0-9]+).*_PATCH ([0-9]+).*" "\\1.\\2.\\3" version "${lines}")
  if(NOT lines MATCHES "${prefix}_VERSION \"${version}\"")
    message(FATAL_ERROR "${header}: the parts of the version, ${version}, are not its text")
  endif()
  set(${name}_version ${version} PARENT_SCOPE)
endfunction()

qo_html_read_version(qo_html qo_html_version.h)
qo_html_read_version(qo_page version.h)
