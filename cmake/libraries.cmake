# How the two libraries are built. QO_HTML_KIND is SHARED or STATIC.
include(CheckLinkerFlag)

if(NOT CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang|IntelLLVM")
  message(FATAL_ERROR "qo_html is written for GCC and Clang, not for ${CMAKE_CXX_COMPILER_ID}")
endif()

# Shared, unless BUILD_SHARED_LIBS says otherwise.
set(QO_HTML_KIND SHARED)
if(DEFINED BUILD_SHARED_LIBS AND NOT BUILD_SHARED_LIBS)
  set(QO_HTML_KIND STATIC)
endif()
if(QO_HTML_KIND STREQUAL SHARED AND (APPLE OR WIN32))
  message(FATAL_ERROR "A shared qo_html is left to find its host's services when it is loaded, which needs ELF. "
    "Here, configure with -DBUILD_SHARED_LIBS=OFF.")
endif()

# Keeps instances of the C++ runtime's templates inside. A linker without version scripts exports them as well.
set(qo_html_version_script "${PROJECT_SOURCE_DIR}/src/qo_html/qo_html.map")
if(QO_HTML_KIND STREQUAL SHARED)
  check_linker_flag(CXX "LINKER:--version-script=${qo_html_version_script}" QO_HTML_HAS_VERSION_SCRIPTS)
  if(NOT QO_HTML_HAS_VERSION_SCRIPTS)
    message(STATUS "The linker takes no version script: the libraries export more than their interface")
  endif()
endif()

# NAME_objects, compiled once for the library and for the tests of its inner operations.
function(qo_html_add_objects name)
  add_library(${name}_objects OBJECT ${ARGN})
  target_include_directories(${name}_objects PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${name}_objects PRIVATE qo_html_options)
  # Nothing interposes the library's own calls to what it exports.
  target_compile_options(${name}_objects PRIVATE -fno-semantic-interposition)
  set_target_properties(${name}_objects PROPERTIES
    POSITION_INDEPENDENT_CODE ON
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
endfunction()

# The library of NAME_objects, called qo_html::ALIAS by those who link it.
function(qo_html_add_library name alias)
  set(version ${${name}_version})
  string(REGEX MATCH "^[0-9]+" major ${version})
  add_library(${name} ${QO_HTML_KIND} $<TARGET_OBJECTS:${name}_objects>)
  add_library(qo_html::${alias} ALIAS ${name})
  target_compile_features(${name} PUBLIC cxx_std_17)
  target_include_directories(${name} INTERFACE
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/src>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  target_link_libraries(${name} PRIVATE $<BUILD_INTERFACE:qo_html_options>)
  if(QO_HTML_HAS_VERSION_SCRIPTS)
    target_link_options(${name} PRIVATE "LINKER:--version-script=${qo_html_version_script}")
  endif()
  set_target_properties(${name} PROPERTIES
    EXPORT_NAME ${alias}
    LINK_DEPENDS "${qo_html_version_script}"
    LINKER_LANGUAGE CXX
    VERSION ${version}
    SOVERSION ${major})
endfunction()
