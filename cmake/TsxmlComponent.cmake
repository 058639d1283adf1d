# tsxml_warnings(<target>): the project's warning set, errors with TSXML_WERROR.
function(tsxml_warnings target)
  if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wshadow
      -Wold-style-cast -Wdouble-promotion -Wsign-conversion)
    if(TSXML_WERROR)
      target_compile_options(${target} PRIVATE -Werror)
    endif()
  endif()
endfunction()

# tsxml_component(<name> SOURCES <files...> [HEADERS <files...>] [DEPENDS <components...>])
# Compiles a folder's sources once, as the object library tsxml_<name>, with
# the library's visibility rules. HEADERS are the folder's installed headers;
# DEPENDS names the components below it whose headers it includes. The
# components it uses, directly or through others, are kept in the property
# TSXML_CLOSURE_<name>, so that a program links exactly what one component
# needs.
function(tsxml_component name)
  cmake_parse_arguments(C "" "" "SOURCES;HEADERS;DEPENDS" ${ARGN})
  add_library(tsxml_${name} OBJECT ${C_SOURCES})
  target_include_directories(tsxml_${name} PUBLIC ${PROJECT_SOURCE_DIR}
                                                  ${TSXML_GENERATED_INCLUDE_DIR})
  target_compile_definitions(tsxml_${name} PRIVATE TSXML_BUILDING)
  if(NOT BUILD_SHARED_LIBS)
    target_compile_definitions(tsxml_${name} PUBLIC TSXML_STATIC)
  endif()
  set_target_properties(tsxml_${name} PROPERTIES
    POSITION_INDEPENDENT_CODE ON
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
  tsxml_warnings(tsxml_${name})

  set(closure ${name})
  foreach(dependency IN LISTS C_DEPENDS)
    get_property(known GLOBAL PROPERTY TSXML_CLOSURE_${dependency} SET)
    if(NOT known)
      message(FATAL_ERROR "component ${name}: ${dependency} is not a component below it")
    endif()
    get_property(below GLOBAL PROPERTY TSXML_CLOSURE_${dependency})
    list(APPEND closure ${below})
  endforeach()
  list(REMOVE_DUPLICATES closure)
  set_property(GLOBAL PROPERTY TSXML_CLOSURE_${name} ${closure})

  set_property(GLOBAL APPEND PROPERTY TSXML_COMPONENTS ${name})
  foreach(header IN LISTS C_HEADERS)
    set_property(GLOBAL APPEND PROPERTY TSXML_PUBLIC_HEADERS
                 ${CMAKE_CURRENT_SOURCE_DIR}/${header})
  endforeach()
endfunction()

# tsxml_add_program(<name> SOURCES <files...> COMPONENT <component> [LIBS <libs...>])
# An executable of the project's own (a test, benchmark or fuzz target),
# linked against the object libraries of `component` and of every component
# it uses, so that it reaches internal helpers the shared library hides.
function(tsxml_add_program name)
  cmake_parse_arguments(P "" "COMPONENT" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${P_SOURCES})
  get_property(closure GLOBAL PROPERTY TSXML_CLOSURE_${P_COMPONENT})
  foreach(component IN LISTS closure)
    target_link_libraries(${name} PRIVATE tsxml_${component})
  endforeach()
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE ${P_LIBS})
  tsxml_warnings(${name})
endfunction()

# tsxml_add_folders(<folders...>): add_subdirectory for each of the named
# folders that has a CMakeLists.txt below the current directory.
macro(tsxml_add_folders)
  foreach(folder ${ARGN})
    if(EXISTS ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/CMakeLists.txt)
      add_subdirectory(${folder})
    endif()
  endforeach()
endmacro()
