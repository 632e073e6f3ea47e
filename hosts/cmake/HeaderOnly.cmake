# SPDX-License-Identifier: MIT
# qx_header_only(target header): a library of headers alone, such as CLI/CLI.hpp. It serves a cross build as well, but
# the system's folder must never come into that build's include path, so the build tree gets a folder that shows this
# one library.
function(qx_header_only target header)
  if(TARGET ${target})
    return()
  endif()
  cmake_path(GET header PARENT_PATH folder)
  find_path(QX_HEADERS_OF_${folder} "${header}" PATHS /usr/include /usr/local/include NO_CMAKE_FIND_ROOT_PATH
    DOC "The folder that has ${header}" REQUIRED)
  set(shown "${CMAKE_BINARY_DIR}/third_party")
  file(MAKE_DIRECTORY "${shown}")
  file(CREATE_LINK "${QX_HEADERS_OF_${folder}}/${folder}" "${shown}/${folder}" SYMBOLIC)
  add_library(${target} INTERFACE)
  target_include_directories(${target} SYSTEM INTERFACE "${shown}")
  # Else GCC names a header by where the link leads when that is the shorter name, so that the bytes of a program would
  # depend on the length of the build folder's name.
  target_compile_options(${target} INTERFACE $<$<CXX_COMPILER_ID:GNU>:-fno-canonical-system-headers>)
endfunction()
