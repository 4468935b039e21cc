# Header-only libraries of the build machine. Its include folder as a whole would break the
# cross-build, so each wanted folder is linked into one of the build's own, and known to those alone
# who link the target.
function(tsl_add_header_library target folder)
  if(NOT EXISTS "/usr/include/${folder}")
    message(FATAL_ERROR "${folder} headers are missing: run scripts/setup")
  endif()
  set(include "${CMAKE_BINARY_DIR}/headers/${target}")
  file(MAKE_DIRECTORY "${include}")
  file(CREATE_LINK "/usr/include/${folder}" "${include}/${folder}" SYMBOLIC)
  add_library(${target} INTERFACE)
  target_include_directories(${target} SYSTEM INTERFACE "${include}")
endfunction()

tsl_add_header_library(cli11 CLI)
tsl_add_header_library(json nlohmann)
tsl_add_header_library(date date)
