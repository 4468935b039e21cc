# Our own targets link tsl_warnings; sources that are not ours do not.
add_library(tsl_warnings INTERFACE)
target_compile_options(tsl_warnings INTERFACE
  $<$<COMPILE_LANGUAGE:CXX>:-Wall -Wextra -Wconversion -Wshadow -Werror>)

# A folder of the component as a static library. Includes are written from the top of the tree.
function(tsl_add_library name)
  add_library(${name} STATIC ${ARGN})
  target_include_directories(${name} PUBLIC "${PROJECT_SOURCE_DIR}")
  target_link_libraries(${name} PRIVATE tsl_warnings tsl_coverage)
endfunction()
