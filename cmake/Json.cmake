# SPDX-License-Identifier: MIT
# nlohmann-json for the tests. It is header only and serves both builds, but /usr/include must never come into a
# cross build's include path, so the build tree gets a folder that shows this one library.
set(QX_JSON_SOURCE /usr/include/nlohmann CACHE PATH "Where nlohmann/json.hpp is")

add_library(qx_json INTERFACE)
if(EXISTS "${QX_JSON_SOURCE}/json.hpp")
  file(MAKE_DIRECTORY "${CMAKE_BINARY_DIR}/third_party")
  file(CREATE_LINK "${QX_JSON_SOURCE}" "${CMAKE_BINARY_DIR}/third_party/nlohmann" SYMBOLIC)
  target_include_directories(qx_json SYSTEM INTERFACE "${CMAKE_BINARY_DIR}/third_party")
else()
  message(WARNING "nlohmann-json is not installed: run tools/setup")
endif()
