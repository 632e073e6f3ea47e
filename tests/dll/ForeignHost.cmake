# SPDX-License-Identifier: MIT
# A host of Microsoft's C++ ABI: clang compiles it without any SDK, lld links it with the shipped import library.
find_program(QX_CLANG NAMES clang++-14 clang++ REQUIRED)
find_program(QX_CLANG_C NAMES clang-14 clang REQUIRED)
find_program(QX_LLD_LINK NAMES lld-link-14 lld-link REQUIRED)

set(source "${CMAKE_CURRENT_SOURCE_DIR}/foreign_host.cpp")
set(program "${CMAKE_BINARY_DIR}/bin/foreign_host.exe")  # beside the DLL, which the loader looks for there
set(import_library "$<TARGET_PROPERTY:qx_msvc_import_library,IMPORT_LIBRARY>")

add_custom_command(
  OUTPUT kernel32.lib
  COMMAND "${QX_LLVM_DLLTOOL}" -m i386:x86-64 -d "${CMAKE_CURRENT_SOURCE_DIR}/kernel32.def" -l kernel32.lib
  DEPENDS kernel32.def
  VERBATIM)
set(options --target=x86_64-pc-windows-msvc -O1 -ffreestanding -fno-stack-protector
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror
  -I "${CMAKE_CURRENT_SOURCE_DIR}/foreign_include" -I "${CMAKE_SOURCE_DIR}/include" -I "${CMAKE_SOURCE_DIR}")
add_custom_command(
  OUTPUT foreign_c_host.obj
  COMMAND "${QX_CLANG_C}" ${options} -std=c99
    -MD -MF foreign_c_host.d -MT foreign_c_host.obj -c "${CMAKE_CURRENT_SOURCE_DIR}/c_host.c" -o foreign_c_host.obj
  DEPENDS c_host.c
  DEPFILE foreign_c_host.d
  VERBATIM)
add_custom_command(
  OUTPUT foreign_host.obj
  COMMAND "${QX_CLANG}" ${options} -std=c++20 -nostdinc++ -fno-exceptions -fno-rtti
    -MD -MF foreign_host.d -MT foreign_host.obj -c "${source}" -o foreign_host.obj
  DEPENDS "${source}"
  DEPFILE foreign_host.d
  VERBATIM)
add_custom_command(
  OUTPUT "${program}"
  COMMAND "${QX_LLD_LINK}" /nologo /nodefaultlib /subsystem:console /entry:hostMain "/out:${program}"
    foreign_host.obj foreign_c_host.obj kernel32.lib "${import_library}"
  DEPENDS foreign_host.obj foreign_c_host.obj kernel32.lib qx_msvc_import_library
  VERBATIM)
add_custom_target(qx_foreign_host ALL DEPENDS "${program}")
add_dependencies(qx_foreign_host ZRM_QXKT32x64)

add_test(NAME foreign_host_test COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} "${program}")
set_tests_properties(foreign_host_test PROPERTIES TIMEOUT 60 LABELS dll)
