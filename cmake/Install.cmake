# SPDX-License-Identifier: MIT
# What `cmake --install` puts where: the tree of the packages, whose papers tools/package adds. Nothing in it names the
# folder that it was installed into, so that it can be moved.
#
# On Linux the folders are those that a system has, so that the tree can also become part of one; QX_DOCUMENT_DIR is for
# what does not belong into the top of such a system. On Windows a program brings the library along: each part has a
# folder of its own at the top.
include(CMakePackageConfigHelpers)

set(QX_DOCUMENT_DIR . CACHE STRING "Where documents, examples and papers are installed, below the prefix")

if(WIN32)
  set(CMAKE_INSTALL_BINDIR bin)
  set(CMAKE_INSTALL_INCLUDEDIR include)
  set(QX_LIBRARY_DIR lib/mingw)
  set(config_dir cmake)
  set(pkgconfig_dir pkgconfig)
  set(QX_LINK_BY_NAME -l:libZRM_QXKT32x64.dll.a)  # by -l and -static alone, an import library is not found
else()
  include(GNUInstallDirs)
  set(QX_LIBRARY_DIR "${CMAKE_INSTALL_LIBDIR}")
  set(config_dir "${CMAKE_INSTALL_LIBDIR}/cmake/ZRM_QXKT32x64")
  set(pkgconfig_dir "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
  set(QX_LINK_BY_NAME -lZRM_QXKT32x64)
endif()

# runtime: what a program needs when it runs.
install(TARGETS ZRM_QXKT32x64
  RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT runtime
  LIBRARY DESTINATION "${QX_LIBRARY_DIR}" COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE DESTINATION "${QX_LIBRARY_DIR}" COMPONENT development)

# All that is installed, and nothing else.
add_custom_target(qx_release DEPENDS ZRM_QXKT32x64)

# hosts: the hosts as programs.
set(hosts)
foreach(host qxftp qxbrowse qxdialogs)
  if(TARGET ${host})
    list(APPEND hosts ${host})
  endif()
endforeach()
if(hosts)
  if(NOT QX_SANITIZE)
    foreach(host IN LISTS hosts)
      target_link_options(${host} PRIVATE -s)  # nobody looks into them with a debugger
    endforeach()
  endif()
  install(TARGETS ${hosts} DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT hosts)
  add_dependencies(qx_release ${hosts})
endif()
if(TARGET qxftp_texts)
  set(texts "${CMAKE_BINARY_DIR}/hosts/qxftp")
  install(FILES "${texts}/qxftp.1" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT hosts)
  install(FILES "${texts}/qxftp.bash" DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions"
    RENAME qxftp COMPONENT hosts)
  add_dependencies(qx_release qxftp_texts)
endif()

# development: what the programs of others are built with.
install(DIRECTORY "${CMAKE_SOURCE_DIR}/include/"
  DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT development FILES_MATCHING PATTERN "*.h")
if(WIN32)
  add_dependencies(qx_release qx_msvc_import_library)
  install(FILES "$<TARGET_PROPERTY:qx_msvc_import_library,IMPORT_LIBRARY>" DESTINATION lib/msvc COMPONENT development)
  install(FILES module/ZRM_QXKT32x64.def DESTINATION def COMPONENT development)
endif()

set(generated "${CMAKE_BINARY_DIR}/packaging")
configure_package_config_file(packaging/cmake/ZRM_QXKT32x64Config.cmake.in
  "${generated}/ZRM_QXKT32x64Config.cmake"
  INSTALL_DESTINATION "${config_dir}" PATH_VARS CMAKE_INSTALL_INCLUDEDIR QX_LIBRARY_DIR CMAKE_INSTALL_BINDIR)
write_basic_package_version_file("${generated}/ZRM_QXKT32x64ConfigVersion.cmake" COMPATIBILITY SameMajorVersion)
install(FILES "${generated}/ZRM_QXKT32x64Config.cmake" "${generated}/ZRM_QXKT32x64ConfigVersion.cmake"
  DESTINATION "${config_dir}" COMPONENT development)

string(REGEX REPLACE "[^/]+" ".." QX_PREFIX_FROM_PKGCONFIG "${pkgconfig_dir}")
configure_file(packaging/pkgconfig/ZRM_QXKT32x64.pc.in "${generated}/ZRM_QXKT32x64.pc" @ONLY)
install(FILES "${generated}/ZRM_QXKT32x64.pc" DESTINATION "${pkgconfig_dir}" COMPONENT development)

# symbols: what a debugger wants to know about the library.
set(debug_files "$<TARGET_FILE:ZRM_QXKT32x64>.debug")
if(WIN32)
  list(APPEND debug_files "$<PATH:REPLACE_EXTENSION,LAST_ONLY,$<TARGET_FILE:ZRM_QXKT32x64>,pdb>")
endif()
install(FILES ${debug_files} DESTINATION symbols COMPONENT symbols OPTIONAL)

# documents: papers, documentation, and the sources of bindings, examples and hosts.
install(FILES LICENSE CHANGELOG.md DESTINATION "${QX_DOCUMENT_DIR}" COMPONENT documents)
configure_file(packaging/README.md.in "${generated}/README.md" @ONLY)
install(FILES "${generated}/README.md" DESTINATION "${QX_DOCUMENT_DIR}" COMPONENT documents)
install(DIRECTORY docs DESTINATION "${QX_DOCUMENT_DIR}" COMPONENT documents)
set(QX_PAGES "${CMAKE_SOURCE_DIR}/build/pages" CACHE PATH "Where tools/pages has made web pages of the documents")
install(DIRECTORY "${QX_PAGES}/" DESTINATION "${QX_DOCUMENT_DIR}/docs/html" COMPONENT documents OPTIONAL)
install(DIRECTORY bindings examples hosts DESTINATION "${QX_DOCUMENT_DIR}" COMPONENT documents
  PATTERN __pycache__ EXCLUDE
  PATTERN demo.py EXCLUDE  # these two work on the servers of the tests
  PATTERN servers.py EXCLUDE)
