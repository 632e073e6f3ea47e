# SPDX-License-Identifier: MIT
# Installs the library as it is shipped: it is one for all compilers. Its archive lies beside this file.
set(VCPKG_BUILD_TYPE release)
set(VCPKG_POLICY_DLLS_WITHOUT_LIBS enabled)  # the import libraries have folders of their own
set(VCPKG_POLICY_ALLOW_OBSOLETE_MSVCRT enabled)

set(title "ZRM_QXKT32x64-${VERSION}")
if(VCPKG_TARGET_IS_WINDOWS)
  set(archive "${CMAKE_CURRENT_LIST_DIR}/${title}-windows-x64.zip")
  set(config_folder cmake)
  set(parts bin/ZRM_QXKT32x64.dll lib/msvc lib/mingw cmake)
else()
  set(archive "${CMAKE_CURRENT_LIST_DIR}/${title}-linux-x64.tar.xz")
  set(config_folder lib/cmake/ZRM_QXKT32x64)
  set(parts lib)
endif()
vcpkg_extract_source_archive(tree ARCHIVE "${archive}")

foreach(part IN LISTS parts ITEMS include)
  cmake_path(GET part PARENT_PATH folder)
  file(INSTALL "${tree}/${part}" DESTINATION "${CURRENT_PACKAGES_DIR}/${folder}")
endforeach()
vcpkg_cmake_config_fixup(PACKAGE_NAME ZRM_QXKT32x64 CONFIG_PATH "${config_folder}")
vcpkg_install_copyright(FILE_LIST "${tree}/LICENSE" "${tree}/THIRD-PARTY.txt")
