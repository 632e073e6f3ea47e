# SPDX-License-Identifier: MIT
# qx_room(name SOURCES files... [LINKS lower rooms and system libraries...])
#
# One static library per folder. Includes name the room ("support/Paths.h"), so the root is the include directory;
# who may include whom is held by the order of the rooms here and by tools/check.
add_library(qx_include INTERFACE)
target_include_directories(qx_include INTERFACE "${CMAKE_SOURCE_DIR}/include")
# The name that the package gives to its headers, for the sources that are in both.
add_library(ZRM_QXKT32x64::headers ALIAS qx_include)

# Files of a room that are compiled as one take a fifth of the time, because each would read the same headers. Their
# file-scope names must differ for it. Off, each file is compiled alone: for tools that look at single files.
option(QX_UNITY "Compile the files of a room in batches" ON)

function(qx_room name)
  cmake_parse_arguments(PARSE_ARGV 1 room "" "" "SOURCES;LINKS")
  foreach(lower IN LISTS room_LINKS)
    if(lower MATCHES "^qx_" AND NOT TARGET ${lower})
      message(FATAL_ERROR "${name} links ${lower}, which is not below it")
    endif()
  endforeach()
  if(NOT room_SOURCES)
    message(STATUS "${name}: no sources yet")
    add_library(${name} INTERFACE)
    target_include_directories(${name} INTERFACE "${CMAKE_SOURCE_DIR}")
    target_link_libraries(${name} INTERFACE ${room_LINKS})
    return()
  endif()
  add_library(${name} STATIC ${room_SOURCES})
  target_include_directories(${name} PUBLIC "${CMAKE_SOURCE_DIR}")
  target_link_libraries(${name} PUBLIC ${room_LINKS} PRIVATE qx_warnings qx_hardening)
  set_target_properties(${name} PROPERTIES UNITY_BUILD ${QX_UNITY} UNITY_BUILD_BATCH_SIZE 16)
endfunction()
