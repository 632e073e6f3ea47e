// SPDX-License-Identifier: MIT
// How settings that name lists and scripts lead to proxies, and what a script said a moment ago. No I/O of
// its own.
#pragma once

#include <chrono>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "framework/platform/proxies.h"

namespace platform {

struct ProxySettings {
  bool detects = false;    // a script is looked for in the network
  std::string script;      // its address; empty: none is named
  std::string proxies;     // as proxy_list.h reads them
  std::string exceptions;  // from `proxies`; a script knows its own
};

// The system, as tests have another one. Called from any thread.
class ProxySystem {
 public:
  using Time = std::chrono::steady_clock::time_point;

  virtual ~ProxySystem() = default;
  // Cheap: asked for each connection to this machine, which as a rule needs nothing more.
  virtual bool sendsOwnMachineThrough() = 0;
  virtual ProxySettings settings() = 0;
  // What the script at this address, or the one that is found in the network ("") says: no entry is direct.
  // None when there is no such script, or when it cannot be run.
  virtual std::optional<std::vector<Proxy>> askScript(const std::string& script,
                                                      const ProxyTarget& target) = 0;
  virtual Time now() = 0;
};

// As Windows takes them: what is found in the network comes before the script that is named, and that before
// the list. A script that is not there is passed over.
class ProxyFinder {
 public:
  // Each private connection would ask its script again without this.
  static constexpr std::chrono::seconds kAnswerLasts{60};
  // Looking for a script that is not there takes seconds, and most networks have none.
  static constexpr std::chrono::seconds kFailureLasts{300};
  // More targets than this are forgotten all at once.
  static constexpr std::size_t kMostAnswers = 256;

  explicit ProxyFinder(ProxySystem& system) : system_(system) {}

  // None where a script has to be asked, which find() does.
  std::optional<std::vector<Proxy>> atOnce(const ProxyTarget& target);
  std::vector<Proxy> find(const ProxyTarget& target);

 private:
  using Answer = std::optional<std::vector<Proxy>>;
  struct Memory {
    Answer answer;
    ProxySystem::Time until;
  };

  // `asks` may take its time.
  std::optional<std::vector<Proxy>> search(const ProxyTarget& target, bool asks);
  // None where it has to be asked and must not be.
  std::optional<Answer> scriptSays(const std::string& script, const ProxyTarget& target, bool asks);
  std::optional<Answer> remembered(const std::string& key);
  void remember(const std::string& key, const Answer& answer, std::chrono::seconds lasts);

  ProxySystem& system_;
  std::mutex mutex_;
  std::map<std::string, Memory> memory_;
};

}  // namespace platform
