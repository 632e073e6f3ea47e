# SPDX-License-Identifier: MIT
# The protections of the code that a host loads: it reads from the network. The rooms of the product link this; tests
# and borrowed code do not, and sanitizers have better ones of their own.
add_library(qx_hardening INTERFACE)
option(QX_HARDENED "Build with them; without, tools/bench can tell what they cost" ON)
if(NOT QX_HARDENED OR QX_SANITIZE MATCHES "address|thread")
  return()
endif()

target_compile_options(qx_hardening INTERFACE
  -fstack-protector-strong
  -ftrivial-auto-var-init=zero
  -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3)
if(WIN32)
  # Stack probes are part of the calling convention there. Randomised addresses and non-executable data are the linker's
  # defaults.
  target_link_options(qx_hardening INTERFACE -fstack-protector-strong)
else()
  target_compile_options(qx_hardening INTERFACE -fstack-clash-protection -fcf-protection=full)
  target_link_options(qx_hardening INTERFACE LINKER:-z,relro,-z,now,-z,noexecstack)
endif()
