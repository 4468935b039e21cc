# The checked build: standard-library assertions, traps on undefined behaviour, stack protector,
# fortified C functions and a guarded heap. A fault stops the program where it happens.

# Every program and the component link this; only in the checked build is there something in it.
add_library(tsl_heap INTERFACE)
if(NOT TSL_CHECKED)
  return()
endif()

add_compile_definitions($<$<COMPILE_LANGUAGE:CXX>:_GLIBCXX_ASSERTIONS>)
add_compile_options(
  $<$<COMPILE_LANGUAGE:CXX>:-Og>
  $<$<COMPILE_LANGUAGE:CXX>:-fstack-protector-strong>
  $<$<COMPILE_LANGUAGE:CXX>:-D_FORTIFY_SOURCE=2>
  $<$<COMPILE_LANGUAGE:CXX>:-fsanitize=undefined>
  $<$<COMPILE_LANGUAGE:CXX>:-fno-sanitize=vptr>
  $<$<COMPILE_LANGUAGE:CXX>:-fsanitize-undefined-trap-on-error>)
add_link_options(-fstack-protector-strong)

add_library(guarded_heap OBJECT "${PROJECT_SOURCE_DIR}/tests/support/GuardedHeap.cpp")
target_link_libraries(guarded_heap PRIVATE tsl_warnings)
target_link_libraries(tsl_heap INTERFACE guarded_heap)
target_compile_definitions(tsl_heap INTERFACE TSL_GUARDED_HEAP)
target_sources(tsl_heap INTERFACE $<TARGET_OBJECTS:guarded_heap>)
