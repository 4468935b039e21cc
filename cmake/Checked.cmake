# The checked build: standard-library assertions, traps on undefined behaviour, stack protector and
# fortified C functions. Together with the guarded heap of tests/support, which every program and
# the component link, a fault stops the program where it happens.
add_compile_definitions($<$<COMPILE_LANGUAGE:CXX>:_GLIBCXX_ASSERTIONS>)
add_compile_options(
  -Og
  -fstack-protector-strong
  -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2
  $<$<COMPILE_LANGUAGE:CXX>:-fsanitize=undefined>
  $<$<COMPILE_LANGUAGE:CXX>:-fno-sanitize=vptr>
  $<$<COMPILE_LANGUAGE:CXX>:-fsanitize-undefined-trap-on-error>)
add_link_options(-fstack-protector-strong)
