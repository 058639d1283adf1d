# tsxml_warnings(<target>): the project's warning set, errors with TSXML_WERROR.
function(tsxml_warnings target)
  if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
    target_compile_options(${target} PRIVATE -Wall -Wextra)
    if(TSXML_WERROR)
      target_compile_options(${target} PRIVATE -Werror)
    endif()
  endif()
endfunction()

# tsxml_component(<name> SOURCES <files...> HEADERS <files...>)
# Compiles a folder's sources once, as the object library tsxml_<name>, with
# the library's visibility rules. HEADERS are the folder's installed headers.
function(tsxml_component name)
  cmake_parse_arguments(C "" "" "SOURCES;HEADERS" ${ARGN})
  add_library(tsxml_${name} OBJECT ${C_SOURCES})
  target_include_directories(tsxml_${name} PUBLIC ${PROJECT_SOURCE_DIR})
  target_compile_definitions(tsxml_${name} PRIVATE TSXML_BUILDING)
  if(NOT BUILD_SHARED_LIBS)
    target_compile_definitions(tsxml_${name} PUBLIC TSXML_STATIC)
  endif()
  set_target_properties(tsxml_${name} PROPERTIES
    POSITION_INDEPENDENT_CODE ON
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
  tsxml_warnings(tsxml_${name})
  set_property(GLOBAL APPEND PROPERTY TSXML_COMPONENTS ${name})
  foreach(header IN LISTS C_HEADERS)
    set_property(GLOBAL APPEND PROPERTY TSXML_PUBLIC_HEADERS
                 ${CMAKE_CURRENT_SOURCE_DIR}/${header})
  endforeach()
endfunction()
