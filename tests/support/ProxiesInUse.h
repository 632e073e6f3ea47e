// SPDX-License-Identifier: MIT
// Proxies as if the system's settings named them.
#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "framework/internet/net/ProxySettings.h"
#include "framework/platform/proxy_text.h"

namespace testing_support {

// On the way to every server while it lives, in their texts; "direct" for none. One at a time.
class ProxiesInUse {
 public:
  explicit ProxiesInUse(const std::vector<std::string>& texts) {
    ways = {};
    for (const std::string& text : texts) {
      ways.push_back(text == "direct" ? platform::Proxy() : platform::parseProxy(text));
    }
    static constexpr internet::ProxySource kSource{&atOnce, &inTime};
    internet::setProxiesForTesting(&kSource);
  }
  ~ProxiesInUse() { internet::setProxiesForTesting(nullptr); }
  ProxiesInUse(const ProxiesInUse&) = delete;
  ProxiesInUse& operator=(const ProxiesInUse&) = delete;

  // Whose way was asked for last.
  static platform::ProxyTarget asked() {
    const std::lock_guard lock(mutex);
    return target;
  }

 private:
  static std::optional<std::vector<platform::Proxy>> atOnce(const platform::ProxyTarget& wanted) {
    const std::lock_guard lock(mutex);
    target = wanted;
    return ways;
  }
  static std::vector<platform::Proxy> inTime(const platform::ProxyTarget&) { return {}; }

  static inline std::vector<platform::Proxy> ways;  // constant while it lives
  static inline std::mutex mutex;                   // of the target: workers ask
  static inline platform::ProxyTarget target;
};

}  // namespace testing_support
