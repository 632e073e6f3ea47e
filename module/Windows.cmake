# SPDX-License-Identifier: MIT
# The DLL's dialogs, export list, version, manifest and import libraries.
enable_language(RC)
set(module_definition "${CMAKE_CURRENT_BINARY_DIR}/ZRM_QXKT32x64.def")
configure_file(ZRM_QXKT32x64.def ZRM_QXKT32x64.def COPYONLY)
configure_file(ZRM_QXKT32x64.manifest.in ZRM_QXKT32x64.manifest @ONLY)
configure_file(ZRM_QXKT32x64.rc.in ZRM_QXKT32x64.rc @ONLY)
set_source_files_properties("${CMAKE_CURRENT_BINARY_DIR}/ZRM_QXKT32x64.rc" PROPERTIES
  OBJECT_DEPENDS "${CMAKE_CURRENT_BINARY_DIR}/ZRM_QXKT32x64.manifest")
target_sources(ZRM_QXKT32x64 PRIVATE
  windows/DialogExports.cpp "${module_definition}" "${CMAKE_CURRENT_BINARY_DIR}/ZRM_QXKT32x64.rc")
target_link_libraries(ZRM_QXKT32x64 PRIVATE qx_dialogs)
# The library is found by its own name, without MinGW's "lib" before it.
set_target_properties(ZRM_QXKT32x64 PROPERTIES PREFIX "" LINK_DEPENDS "${module_definition}")

if(NOT QX_SANITIZE)
  # As it ships. The PDB has the names of functions for those who debug a host, the .debug file all that the compiler
  # told. No path of this machine: neither in the DLL, which names its PDB, nor in the PDB, which names what it was
  # made of.
  target_link_options(ZRM_QXKT32x64 PRIVATE LINKER:--pdb=bin/ZRM_QXKT32x64.pdb
    LINKER:-Xlink=-pdbaltpath:ZRM_QXKT32x64.pdb LINKER:-Xlink=-pdbsourcepath:/)
  include(DebugFile)
  qx_split_debug_file(ZRM_QXKT32x64)
endif()

# MinGW hosts link libZRM_QXKT32x64.dll.a, which the linker writes beside the DLL; hosts of Microsoft's compiler and
# of clang link this one.
find_program(QX_LLVM_DLLTOOL NAMES llvm-dlltool llvm-dlltool-14 REQUIRED)
set(QX_MSVC_IMPORT_LIBRARY "${CMAKE_BINARY_DIR}/bin/ZRM_QXKT32x64.lib")
add_custom_command(
  OUTPUT "${QX_MSVC_IMPORT_LIBRARY}"
  COMMAND "${QX_LLVM_DLLTOOL}" -m i386:x86-64 -d "${module_definition}" -l "${QX_MSVC_IMPORT_LIBRARY}"
  DEPENDS "${module_definition}"
  VERBATIM)
add_custom_target(qx_msvc_import_library ALL DEPENDS "${QX_MSVC_IMPORT_LIBRARY}")
set_target_properties(qx_msvc_import_library PROPERTIES IMPORT_LIBRARY "${QX_MSVC_IMPORT_LIBRARY}")
