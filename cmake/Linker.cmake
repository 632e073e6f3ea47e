# SPDX-License-Identifier: MIT
# LLVM's linker for Windows, and for all programs of the tests. GNU's looks at all sections of a Windows program again
# and again (5 s where this one takes 0.4 s), writes no PDB, and the time of day into what it makes.
configure_file("${CMAKE_SOURCE_DIR}/cmake/lld/collect2" "${CMAKE_BINARY_DIR}/lld/collect2" COPYONLY)
# A relative folder, because the linker's command line becomes part of a PDB.
set(QX_LLD -Blld -fno-use-linker-plugin)
if(WIN32)
  # In place of the time stands a sum of the content.
  add_link_options(${QX_LLD} LINKER:-Xlink=-Brepro)
endif()
