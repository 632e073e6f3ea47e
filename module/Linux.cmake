# SPDX-License-Identifier: MIT
# The shared object's export list, and what it may need from the host's system.
set(export_list "${CMAKE_CURRENT_SOURCE_DIR}/exports.map")
target_link_options(ZRM_QXKT32x64 PRIVATE "LINKER:--version-script=${export_list}")
set_target_properties(ZRM_QXKT32x64 PROPERTIES LINK_DEPENDS "${export_list}")
if(NOT QX_SANITIZE)
  # The C++ library comes along, so that the host may have any other. The unwinder does not: a process has one, and an
  # exception of a host's hook must be able to pass through an operation. A sanitizer brings its own versions of both.
  target_link_options(ZRM_QXKT32x64 PRIVATE -static-libstdc++ LINKER:--no-undefined)
endif()
