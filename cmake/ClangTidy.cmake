# clang-tidy looks over each file before it is compiled; a finding stops the build. tsl_clang_tidy does so
# without the analyzer's paths through functions.
option(TSL_CLANG_TIDY "Have clang-tidy look over what is compiled" OFF)
if(TSL_CLANG_TIDY)
  set(checks "${PROJECT_SOURCE_DIR}/.clang-tidy")
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${checks}")
  # Part of the command, so that all is looked over anew when the checks have changed.
  file(SHA256 "${checks}" checks_hash)
  set(tsl_clang_tidy clang-tidy-19 --quiet "--extra-arg=-DTSL_CHECKS_${checks_hash}")
  # The files of a folder are compiled as one, by including them, and the analyzer passes over functions of
  # included files unless it is told.
  set(CMAKE_CXX_CLANG_TIDY ${tsl_clang_tidy} --extra-arg=-Xclang --extra-arg=-analyzer-opt-analyze-headers)
endif()
