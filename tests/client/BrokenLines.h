// SPDX-License-Identifier: MIT
// Scripted servers whose connections break, and what was moved over them all the same.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/Fixture.h"

namespace broken_lines {

using nlohmann::json;

inline json rule(const char* verb, const json& step, const json& nth) {
  return {{"on", verb}, {"nth", nth}, {"do", json::array({step})}};
}

// The transfers `nth` of this verb end at so many bytes.
inline json broken(const char* verb, const json& nth, std::size_t after = 20'480) {
  // One that ends an upload in good order calls it complete.
  const char* how = verb == std::string_view("STOR") ? "reset_after" : "close_after";
  return rule(verb, {{"normal", {{how, after}}}}, nth);
}

// Serves /a with the pattern 9; a rule for each thing that goes wrong.
inline fixture::ScriptedFtp serving(const std::vector<json>& rules, std::size_t size) {
  return fixture::ScriptedFtp(json{{"tree", {{"/a", {{"size", size}, {"seed", 9}}}}}, {"rules", rules}});
}

inline std::vector<std::string> restarts(const fixture::ScriptedFtp& server) {
  std::vector<std::string> lines = server.commands();
  std::erase_if(lines, [](const std::string& line) { return !line.starts_with("REST"); });
  return lines;
}

inline std::uint64_t bytesMoved(const fixture::ScriptedFtp& server) {
  std::uint64_t sum = 0;
  for (const auto& data : server.dataConnections()) sum += data.bytes;
  return sum;
}

}  // namespace broken_lines
