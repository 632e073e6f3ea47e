# SPDX-License-Identifier: MIT
# The warnings of our own code; borrowed code (GoogleTest) does not link this.
add_library(qx_warnings INTERFACE)
target_compile_options(qx_warnings INTERFACE
  -Werror
  -Wall
  -Wextra
  -Wpedantic
  -Wshadow
  -Wconversion
  -Wsign-conversion
  -Wnon-virtual-dtor
  -Wold-style-cast
  -Woverloaded-virtual
  -Wcast-align
  -Wformat=2
  -Wimplicit-fallthrough
  -Wundef
  -Wextra-semi
  $<$<CXX_COMPILER_ID:GNU>:-Wduplicated-cond>
  $<$<CXX_COMPILER_ID:GNU>:-Wlogical-op>)
