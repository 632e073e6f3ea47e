# SPDX-License-Identifier: MIT
# What the built library exports, needs and carries, read from its file, and what is said of that elsewhere.
if(WIN32)
  set(windres --windres "${CMAKE_RC_COMPILER}")
  set(arguments ${windres}
    --import-library "$<TARGET_LINKER_FILE:ZRM_QXKT32x64>"
    --import-library "$<TARGET_PROPERTY:qx_msvc_import_library,IMPORT_LIBRARY>")
elseif(QX_SANITIZE)
  set(arguments --sanitized)
else()
  set(arguments --debug-file "$<TARGET_FILE:ZRM_QXKT32x64>.debug")
endif()
add_test(NAME library_file_test COMMAND
  /usr/bin/python3 "${CMAKE_CURRENT_SOURCE_DIR}/check_library.py"
  --objdump "${CMAKE_OBJDUMP}" --nm "${CMAKE_NM}" ${arguments} "$<TARGET_FILE:ZRM_QXKT32x64>")
if(TARGET qxftp)
  set(host --host ${CMAKE_CROSSCOMPILING_EMULATOR} "$<TARGET_FILE:qxftp>")
endif()
add_test(NAME version_test COMMAND
  /usr/bin/python3 "${CMAKE_CURRENT_SOURCE_DIR}/check_version.py"
  "${CMAKE_SOURCE_DIR}/include/QXVersion.h" "$<TARGET_FILE:ZRM_QXKT32x64>" --project "${PROJECT_VERSION}" ${windres}
  ${host})
add_test(NAME interface_documents_test COMMAND
  /usr/bin/python3 "${CMAKE_CURRENT_SOURCE_DIR}/check_documents.py" "${CMAKE_SOURCE_DIR}")
set_tests_properties(library_file_test version_test interface_documents_test PROPERTIES TIMEOUT 60 LABELS dll)

# No sanitizer has a say in it.
if(NOT QX_SANITIZE MATCHES "address|thread")
  set(compilers "${CMAKE_C_COMPILER}" "${CMAKE_CXX_COMPILER}")
  if(NOT WIN32)
    find_program(QX_CLANG NAMES clang++-14 clang++ REQUIRED)
    find_program(QX_CLANG_C NAMES clang-14 clang REQUIRED)
    list(APPEND compilers "${QX_CLANG_C}" "${QX_CLANG}")
  endif()
  add_test(NAME public_headers_test COMMAND
    /usr/bin/python3 "${CMAKE_CURRENT_SOURCE_DIR}/check_headers.py" "${CMAKE_SOURCE_DIR}/include" ${compilers})
  set_tests_properties(public_headers_test PROPERTIES TIMEOUT 300 LABELS dll)
endif()
