# Header-only libraries of the build machine. Its include folder as a whole would break the
# cross-build, so the wanted folders are linked into one of the build's own.
set(header_folder "${CMAKE_BINARY_DIR}/header-libraries")
file(MAKE_DIRECTORY "${header_folder}")
foreach(library IN ITEMS CLI nlohmann date)
  if(NOT EXISTS "/usr/include/${library}")
    message(FATAL_ERROR "${library} headers are missing: run scripts/setup")
  endif()
  file(CREATE_LINK "/usr/include/${library}" "${header_folder}/${library}" SYMBOLIC)
endforeach()

add_library(tsl_header_libraries INTERFACE)
target_include_directories(tsl_header_libraries SYSTEM INTERFACE "${header_folder}")
