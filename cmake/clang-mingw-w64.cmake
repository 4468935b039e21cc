# Cross-builds for 64-bit Windows with clang, on the C++ library and the runtime of mingw-w64's GCC
# (posix threads).
include("${CMAKE_CURRENT_LIST_DIR}/windows-target.cmake")

set(CMAKE_C_COMPILER clang-19)
set(CMAKE_CXX_COMPILER clang++-19)
set(CMAKE_C_COMPILER_TARGET x86_64-w64-mingw32)
set(CMAKE_CXX_COMPILER_TARGET x86_64-w64-mingw32)
foreach(tool IN ITEMS AR RANLIB OBJCOPY STRIP)
  string(TOLOWER ${tool} name)
  set(CMAKE_${tool} x86_64-w64-mingw32-${name})
endforeach()

# Left to itself, clang takes the newest GCC that it finds, also one with other threads.
execute_process(COMMAND x86_64-w64-mingw32-g++-posix -print-libgcc-file-name
  OUTPUT_VARIABLE gcc_folder OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
get_filename_component(gcc_folder "${gcc_folder}" DIRECTORY)
set(CMAKE_CXX_FLAGS_INIT
  "-stdlib++-isystem ${gcc_folder}/include/c++ -stdlib++-isystem ${gcc_folder}/include/c++/x86_64-w64-mingw32")
foreach(kind IN ITEMS EXE SHARED)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT "-B${gcc_folder} -L${gcc_folder} -pthread")
endforeach()
