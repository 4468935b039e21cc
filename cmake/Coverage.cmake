# Counts which lines and branches of the component's own code are run; scripts/coverage reads the
# counts. Everything of the component links this; only in the coverage build is there something in it.
option(TSL_COVERAGE "Count the lines and branches of the component that are run" OFF)
add_library(tsl_coverage INTERFACE)
if(TSL_COVERAGE)
  target_compile_options(tsl_coverage INTERFACE $<$<COMPILE_LANGUAGE:CXX>:--coverage>)
  add_link_options(--coverage)
endif()
