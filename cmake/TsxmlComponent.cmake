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

# tsxml_add_program(<name> SOURCES <files...> COMPONENTS <folders...> [LIBS <libs...>])
# An executable of the project's own (a test, benchmark or fuzz target),
# linked against the object libraries of the named folders, so that it
# reaches internal helpers the shared library hides.
function(tsxml_add_program name)
  cmake_parse_arguments(P "" "" "SOURCES;COMPONENTS;LIBS" ${ARGN})
  add_executable(${name} ${P_SOURCES})
  foreach(component IN LISTS P_COMPONENTS)
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
