# SPDX-License-Identifier: MIT
# QX_VERSION from the public header, which is where hosts read it.
set(QX_VERSION_HEADER "${CMAKE_CURRENT_LIST_DIR}/../include/QXVersion.h")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${QX_VERSION_HEADER}")
set(QX_VERSION "")
foreach(part MAJOR MINOR PATCH)
  file(STRINGS "${QX_VERSION_HEADER}" line REGEX "^#define QXIP_VERSION_${part} [0-9]+$")
  if(NOT line)
    message(FATAL_ERROR "${QX_VERSION_HEADER} has no QXIP_VERSION_${part}")
  endif()
  string(REGEX MATCH "[0-9]+$" number "${line}")
  list(APPEND QX_VERSION ${number})
endforeach()
list(JOIN QX_VERSION . QX_VERSION)
