# SPDX-License-Identifier: MIT
# GoogleTest from the sources that Debian installs, built once per preset with that preset's compiler and sanitizer.
set(QX_GOOGLETEST_SOURCE /usr/src/googletest CACHE PATH "Where GoogleTest's sources are")

add_library(qx_gtest STATIC EXCLUDE_FROM_ALL
  "${QX_GOOGLETEST_SOURCE}/googletest/src/gtest-all.cc"
  "${QX_GOOGLETEST_SOURCE}/googlemock/src/gmock-all.cc")
target_include_directories(qx_gtest SYSTEM
  PUBLIC "${QX_GOOGLETEST_SOURCE}/googletest/include" "${QX_GOOGLETEST_SOURCE}/googlemock/include"
  PRIVATE "${QX_GOOGLETEST_SOURCE}/googletest" "${QX_GOOGLETEST_SOURCE}/googlemock")
target_compile_options(qx_gtest PRIVATE -w)
target_link_libraries(qx_gtest PUBLIC Threads::Threads)
if(MINGW)
  # The -posix compilers have pthreads, which GoogleTest does not expect there; without this it is not thread safe.
  target_compile_definitions(qx_gtest PUBLIC GTEST_HAS_PTHREAD=1)
endif()
