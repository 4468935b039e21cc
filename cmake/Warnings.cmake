# Our own targets link tsl_warnings; sources that are not ours do not. A warning stops the build where it is
# tested, which is up to the compilers of Debian 13; a newer one knows of more, and whoever has it only sees them.
set(tested_GNU 14)
set(tested_Clang 19)
string(REGEX MATCH "^[0-9]+" compiler_major "${CMAKE_CXX_COMPILER_VERSION}")
set(TSL_WARNINGS -Wall -Wextra -Wconversion -Wshadow)
if(compiler_major LESS_EQUAL tested_${CMAKE_CXX_COMPILER_ID})
  list(APPEND TSL_WARNINGS -Werror)
endif()
add_library(tsl_warnings INTERFACE)
target_compile_options(tsl_warnings INTERFACE
  "$<$<COMPILE_LANGUAGE:CXX>:${TSL_WARNINGS}>"
  # The C++ library's own sorting calls what it declares deprecated; clang tells so of its callers.
  $<$<COMPILE_LANG_AND_ID:CXX,Clang>:-Wno-deprecated-declarations>)

# A folder of the component as a static library. Includes are written from the top of the tree.
function(tsl_add_library name)
  add_library(${name} STATIC ${ARGN})
  target_include_directories(${name} PUBLIC "${PROJECT_SOURCE_DIR}")
  target_link_libraries(${name} PRIVATE tsl_warnings tsl_coverage)
  # Where several files are compiled as one, those of a folder are.
  set_target_properties(${name} PROPERTIES UNITY_BUILD_MODE GROUP)
  foreach(source IN LISTS ARGN)
    get_filename_component(folder "${source}" DIRECTORY)
    set_source_files_properties("${source}" PROPERTIES UNITY_GROUP "${name}_${folder}")
  endforeach()
endfunction()
