// SPDX-License-Identifier: MIT
// nlohmann::json, whose code Json.cpp has once for all tests. Stands in their precompiled header; they
// include <nlohmann/json.hpp> as usual.
#pragma once

#include <nlohmann/json.hpp>

extern template class nlohmann::basic_json<>;
