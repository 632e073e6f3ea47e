# SPDX-License-Identifier: MIT
# qx_link_old_glibc(target): the target then needs no C library newer than QX_OLDEST_GLIBC, whatever this machine has.
# It brings what such a library lacks itself; a name that neither of them has is an error of the linker.
set(QX_OLDEST_GLIBC 2.31 CACHE STRING "The oldest C library that the shared object works with; 2.31 is of 2020")
find_program(QX_PYTHON python3 HINTS /usr/bin REQUIRED)

function(qx_link_old_glibc target)
  set(script "${CMAKE_SOURCE_DIR}/cmake/old_glibc.py")
  set(folder "${CMAKE_BINARY_DIR}/glibc-${QX_OLDEST_GLIBC}")
  execute_process(COMMAND "${CMAKE_CXX_COMPILER}" -print-file-name=libc.so.6
    OUTPUT_VARIABLE c_library OUTPUT_STRIP_TRAILING_WHITESPACE)
  add_custom_command(
    OUTPUT "${folder}/libc.so"
    COMMAND "${QX_PYTHON}" "${script}"
      --version ${QX_OLDEST_GLIBC} --compiler "${CMAKE_CXX_COMPILER}" "${folder}"
    DEPENDS "${script}" "${c_library}"
    VERBATIM)
  add_custom_target(${target}_old_glibc DEPENDS "${folder}/libc.so")
  add_dependencies(${target} ${target}_old_glibc)
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${folder}/libc.so")
  target_link_options(${target} PRIVATE "-L${folder}")
endfunction()
