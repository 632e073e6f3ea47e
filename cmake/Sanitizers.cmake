# SPDX-License-Identifier: MIT
# QX_SANITIZE is what the presets choose: nothing, "address" (with undefined), "thread", or "trap": undefined
# behaviour ends the program with an illegal instruction, for a target that has no sanitizer runtime library.
set(QX_SANITIZE "" CACHE STRING "address, thread, trap or nothing")
set_property(CACHE QX_SANITIZE PROPERTY STRINGS "" address thread trap)

# The optimiser takes a third of the time of a checked build, and what it removes is not checked.
if(QX_SANITIZE STREQUAL "address")
  set(flags -O1 -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
elseif(QX_SANITIZE STREQUAL "thread")
  set(flags -O1 -fsanitize=thread -fno-omit-frame-pointer)
elseif(QX_SANITIZE STREQUAL "trap")
  set(flags -fsanitize=undefined -fsanitize-undefined-trap-on-error)
elseif(QX_SANITIZE)
  message(FATAL_ERROR "QX_SANITIZE=${QX_SANITIZE} is not known")
endif()

if(QX_SANITIZE)
  add_compile_options(${flags})
  add_link_options(${flags})
endif()
