# SPDX-License-Identifier: MIT
# The shared object's names, its export list, and what it may need from the host's system.
set(export_list "${CMAKE_CURRENT_SOURCE_DIR}/exports.map")
target_link_options(ZRM_QXKT32x64 PRIVATE "LINKER:--version-script=${export_list}" LINKER:--build-id=sha1)
# libZRM_QXKT32x64.so.1 is the file and its own name, by which programs that are linked with it ask for it.
# libZRM_QXKT32x64.so is a link to it, for the linker and for hosts that load it at run time.
set_target_properties(ZRM_QXKT32x64 PROPERTIES SOVERSION ${PROJECT_VERSION_MAJOR} LINK_DEPENDS "${export_list}")
if(NOT QX_SANITIZE)
  # The C++ library comes along, so that the host may have any other. The unwinder does not: a process has one, and an
  # exception of a host's hook must be able to pass through an operation. A sanitizer brings its own versions of both.
  target_link_options(ZRM_QXKT32x64 PRIVATE -static-libstdc++ LINKER:--no-undefined)
  include(OldGlibc)
  target_sources(ZRM_QXKT32x64 PRIVATE "${CMAKE_SOURCE_DIR}/framework/posix/old_glibc.cpp")
  qx_link_old_glibc(ZRM_QXKT32x64)
  include(DebugFile)
  qx_split_debug_file(ZRM_QXKT32x64)
endif()
