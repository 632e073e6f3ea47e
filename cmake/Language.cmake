# SPDX-License-Identifier: MIT
# What every target of the tree has in common, the borrowed ones included.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

# Asserts stay on (no NDEBUG), and line tables are all that a stack trace needs: full debug information would
# double the time to link.
set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O2 -g1")
if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "Build type" FORCE)
endif()

add_compile_definitions(_GLIBCXX_ASSERTIONS)
# No path of the building machine goes into the artefacts: debuggers find sources from the project's folder. ccache
# makes paths relative to the build folder first.
file(RELATIVE_PATH up "${CMAKE_BINARY_DIR}" "${CMAKE_SOURCE_DIR}")
string(REGEX REPLACE "/$" "" up "${up}")
foreach(map "${up}=." "${CMAKE_SOURCE_DIR}=." "${CMAKE_BINARY_DIR}=." "${CMAKE_BINARY_DIR}/=")
  add_compile_options("-ffile-prefix-map=${map}")
endforeach()

set(THREADS_PREFER_PTHREAD_FLAG ON)
find_package(Threads REQUIRED)
