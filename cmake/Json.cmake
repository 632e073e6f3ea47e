# SPDX-License-Identifier: MIT
# nlohmann-json for the tests.
include("${CMAKE_SOURCE_DIR}/hosts/cmake/HeaderOnly.cmake")
qx_header_only(qx_json nlohmann/json.hpp)
