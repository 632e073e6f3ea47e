// SPDX-License-Identifier: MIT
// Requests to the fixture controller; tests use the classes of Fixture.h.
#pragma once

#include <nlohmann/json.hpp>

namespace fixture {

// Over the program's one lasting connection, which owns every server that it starts. Any thread.
nlohmann::json askController(const nlohmann::json& request);

// Over a connection of its own, so that a request that waits holds up no other.
nlohmann::json askControllerApart(const nlohmann::json& request);

}  // namespace fixture
