# tsl_ship(TARGET FOLDER)
# What of a program or DLL is delivered: a stripped copy, and beside it a file of debug symbols that
# the copy names. The tools would put the time of day into the copies.
set(tsl_shipped "${CMAKE_BINARY_DIR}/shipped")
set(tsl_symbols "${CMAKE_BINARY_DIR}/symbols")
file(MAKE_DIRECTORY "${tsl_shipped}" "${tsl_symbols}")

function(tsl_ship target folder)
  set(objcopy ${CMAKE_COMMAND} -E env SOURCE_DATE_EPOCH=0 ${CMAKE_OBJCOPY})
  set(name "$<TARGET_FILE_NAME:${target}>")
  add_custom_command(TARGET ${target} POST_BUILD VERBATIM
    WORKING_DIRECTORY "${tsl_symbols}"
    COMMAND ${objcopy} --only-keep-debug "$<TARGET_FILE:${target}>" "${name}.debug"
    COMMAND ${objcopy} --strip-all "--add-gnu-debuglink=${name}.debug" "$<TARGET_FILE:${target}>"
      "${tsl_shipped}/${name}")
  install(PROGRAMS "${tsl_shipped}/${name}" DESTINATION "${folder}" COMPONENT runtime)
  install(FILES "${tsl_symbols}/${name}.debug" DESTINATION . COMPONENT symbols)
endfunction()
