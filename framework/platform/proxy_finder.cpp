// SPDX-License-Identifier: MIT
#include "framework/platform/proxy_finder.h"

#include "framework/platform/proxy_list.h"

namespace platform {

namespace {

// What a script knows of a target. It comes behind the script's address, which has no line end.
std::string keyOf(const std::string& script, const ProxyTarget& target) {
  return script + '\n' + target.scheme + "://" + target.host + '\n' + std::to_string(target.port);
}

std::vector<std::string> scriptsOf(const ProxySettings& settings) {
  std::vector<std::string> scripts;
  if (settings.detects) scripts.emplace_back();
  if (!settings.script.empty()) scripts.push_back(settings.script);
  return scripts;
}

}  // namespace

std::optional<std::vector<Proxy>> ProxyFinder::atOnce(const ProxyTarget& target) {
  return search(target, false);
}

std::vector<Proxy> ProxyFinder::find(const ProxyTarget& target) { return search(target, true).value(); }

std::optional<std::vector<Proxy>> ProxyFinder::search(const ProxyTarget& target, bool asks) {
  if (isOwnMachine(target.host) && !system_.sendsOwnMachineThrough()) return std::vector<Proxy>();
  const ProxySettings settings = system_.settings();
  for (const std::string& script : scriptsOf(settings)) {
    const auto said = scriptSays(script, target, asks);
    if (!said) return std::nullopt;
    if (*said) return *said;
  }
  if (isExcepted(settings.exceptions, target)) return std::vector<Proxy>();
  return proxiesOfList(settings.proxies, target);
}

std::optional<ProxyFinder::Answer> ProxyFinder::scriptSays(const std::string& script,
                                                           const ProxyTarget& target, bool asks) {
  const std::string key = keyOf(script, target);
  // A script that is not there is so for every target.
  for (const std::string& known : {script, key}) {
    if (auto answer = remembered(known)) return answer;
  }
  if (!asks) return std::nullopt;
  const Answer answer = system_.askScript(script, target);
  remember(answer ? key : script, answer, answer ? kAnswerLasts : kFailureLasts);
  return answer;
}

std::optional<ProxyFinder::Answer> ProxyFinder::remembered(const std::string& key) {
  const std::lock_guard lock(mutex_);
  const auto found = memory_.find(key);
  if (found == memory_.end() || found->second.until <= system_.now()) return std::nullopt;
  return found->second.answer;
}

void ProxyFinder::remember(const std::string& key, const Answer& answer, std::chrono::seconds lasts) {
  const std::lock_guard lock(mutex_);
  if (memory_.size() >= kMostAnswers) memory_.clear();
  memory_[key] = {answer, system_.now() + lasts};
}

}  // namespace platform
