# Gives every file that is about to be packed the same time, so that equal files give equal archives.
file(GLOB_RECURSE packed LIST_DIRECTORIES true "${CPACK_TEMPORARY_DIRECTORY}/*")
execute_process(COMMAND touch -h -d "@$ENV{SOURCE_DATE_EPOCH}" ${packed} COMMAND_ERROR_IS_FATAL ANY)
