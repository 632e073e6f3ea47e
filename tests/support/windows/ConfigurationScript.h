// SPDX-License-Identifier: MIT
// Serves an automatic configuration script as often as the system asks for it.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "tests/support/Fixture.h"

namespace testing_support {

class ConfigurationScript : public fixture::ScriptedHttp {
 public:
  // `body` of the function, of (url, host); `more` keys of the server's answer.
  explicit ConfigurationScript(const std::string& body, const nlohmann::json& more = nlohmann::json::object())
      : ScriptedHttp(nlohmann::json{{"answers", nlohmann::json::array({answer(body, more)})}}) {}

  [[nodiscard]] std::string address() const {
    return "http://" + host() + ":" + std::to_string(port()) + "/p.pac";
  }

 private:
  static nlohmann::json answer(const std::string& body, const nlohmann::json& more) {
    nlohmann::json whole = more;
    whole["headers"] = {"Content-Type: application/x-ns-proxy-autoconfig"};
    whole["body"] = {{"text", "function FindProxyForURL(url, host) {" + body + "}"}};
    whole["end"] = "close";
    return whole;
  }
};

}  // namespace testing_support
