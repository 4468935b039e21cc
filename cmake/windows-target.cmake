# What both toolchains know of the target: 64-bit Windows, with the headers and libraries of mingw-w64.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR AMD64)

set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)

# What was compiled before is taken from there where the machine keeps it.
find_program(TSL_CCACHE ccache)
if(TSL_CCACHE)
  set(CMAKE_C_COMPILER_LAUNCHER "${TSL_CCACHE}")
  set(CMAKE_CXX_COMPILER_LAUNCHER "${TSL_CCACHE}")
endif()

if(NOT DEFINED CMAKE_CROSSCOMPILING_EMULATOR)
  set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_CURRENT_LIST_DIR}/../scripts/wine")
endif()
