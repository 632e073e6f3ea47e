// SPDX-License-Identifier: MIT
#include "tests/support/CurlClient.h"

#include <nlohmann/json.hpp>

#include "tests/support/Base64.h"

namespace fixture {

std::optional<std::string> CurledServer::byCurl(const std::string& path) const {
  const nlohmann::json answer = ask("curl", {{"path", path}});
  if (answer.at("code") != 0) return std::nullopt;
  return decodeBase64(answer.at("base64").get<std::string>());
}

}  // namespace fixture
