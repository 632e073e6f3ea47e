# SPDX-License-Identifier: MIT
# Compiles through ccache where it is installed. The base directory makes a second checkout hit the first one's entries.
find_program(QX_CCACHE ccache)
if(QX_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER env "CCACHE_BASEDIR=${CMAKE_SOURCE_DIR}" CCACHE_NOHASHDIR=1
      CCACHE_SLOPPINESS=pch_defines,time_macros "${QX_CCACHE}")
endif()
