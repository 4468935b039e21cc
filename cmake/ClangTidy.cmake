# clang-tidy looks over each file before it is compiled; a finding stops the build.
option(TSL_CLANG_TIDY "Have clang-tidy look over what is compiled" OFF)
if(TSL_CLANG_TIDY)
  set(checks "${PROJECT_SOURCE_DIR}/.clang-tidy")
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${checks}")
  # Part of the command, so that all is looked over anew when the checks have changed.
  file(SHA256 "${checks}" checks_hash)
  set(CMAKE_CXX_CLANG_TIDY clang-tidy-19 --quiet "--extra-arg=-DTSL_CHECKS_${checks_hash}")
endif()
