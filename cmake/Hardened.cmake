# What the console host consists of reads files that anybody may have written, and is run by administrators: a
# fault ends it. To be included by each of its folders; whoever links them needs tsl_hardened, too. The fortified
# functions are those of the stack protector's library.
add_compile_options(-fstack-protector-strong -D_FORTIFY_SOURCE=2
  $<$<COMPILE_LANGUAGE:CXX>:-D_GLIBCXX_ASSERTIONS>)
if(NOT TARGET tsl_hardened)
  add_library(tsl_hardened INTERFACE)
  target_link_options(tsl_hardened INTERFACE -fstack-protector-strong)
endif()
