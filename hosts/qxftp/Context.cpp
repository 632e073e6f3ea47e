// SPDX-License-Identifier: MIT
#include "hosts/qxftp/Context.h"

#include <cstdio>

#include "hosts/qxftp/Printable.h"
#include "hosts/qxftp/Wildcards.h"
#include "hosts/shared/Interrupt.h"
#include "hosts/shared/Terminal.h"

namespace qxftp {
namespace {

using hosts::Address;

Address parsed(const std::string& text) {
  try {
    return hosts::parseAddress(text);
  } catch (const std::invalid_argument& problem) {
    throw WrongUsage(std::string("not an address: ") + problem.what());
  }
}

// What begins elsewhere has another meaning in some of the library's operations, and a local one in copies.
std::string fromRoot(const std::string& path) { return path.starts_with('/') ? path : "/" + path; }

Address atHost(const Settings& settings, const std::string& path) {
  if (settings.host.empty()) throw WrongUsage("which server? Give whole addresses, or --host");
  Address address = parsed(settings.host);
  if (!address.path.empty() && address.path != "/")
    throw WrongUsage("--host wants an address without a path");
  if (settings.port != 0) address.login.port = settings.port;
  address.path = fromRoot(path);
  return address;
}

// A cancel that has left something tells so.
std::string whyFailed(const qx::Report& report) {
  return report.isCancelled && !report.text.starts_with("cancelled") ? "cancelled" : report.text;
}

}  // namespace

Json jsonOf(const qx::Report& report) {
  return {{"number", report.number}, {"text", report.text}, {"cancelled", report.isCancelled}};
}

Place Context::place(const std::string& text) const {
  Place place{text, hosts::isAddress(text) ? parsed(text) : atHost(m_settings, text)};
  if (place.address.login.user.empty()) place.address.login.user = m_settings.user;
  if (place.path().empty()) place.address.path = "/";
  if (hosts::isAddress(text)) place.text = hosts::textOf(place.address);
  return place;
}

std::vector<Place> Context::places(const std::vector<std::string>& texts) const {
  std::vector<Place> places;
  places.reserve(texts.size());
  for (const std::string& text : texts) places.push_back(place(text));
  return places;
}

Place Context::placeBeside(const Place& first, const std::string& text) const {
  if (!hosts::isAddress(text)) return at(first, fromRoot(text));
  Place second = place(text);
  const std::string user = second.address.login.user;
  second.address.login.user = first.address.login.user;
  const bool isSame = hosts::textOf({first.address.login, {}}) == hosts::textOf({second.address.login, {}});
  if (!isSame || (!user.empty() && user != first.address.login.user)) {
    throw WrongUsage("both paths have to be at one server");
  }
  return at(first, second.path());
}

Place Context::at(const Place& place, const std::string& path) {
  Place other{path, place.address};
  other.address.path = path;
  if (hosts::isAddress(place.text)) other.text = hosts::textOf(other.address);
  return other;
}

bool Context::isPattern(const Place& place) const {
  return !m_settings.isLiteral && hasWildcards(place.path());
}

void Context::addFailure(const std::string& what, Json result, qx::Report report) {
  report.isCancelled = report.isCancelled || hosts::isInterrupted();  // also what could not be cancelled
  m_tally.addFailure(report, m_servers.hasLoggedIn());
  result["ok"] = false;
  result["error"] = jsonOf(report);
  const std::string reply = m_servers.refusal().text();
  if (!reply.empty()) result["error"]["reply"] = reply;
  m_results.push_back(std::move(result));
  const std::string why = whyFailed(report);
  warn(what + ": " + (reply.empty() || report.isCancelled ? why : why + " (the server: " + reply + ")"));
}

void Context::one(const std::string& what, const std::function<void(Json& result)>& work) {
  Json result = {{"path", what}, {"ok", true}};
  m_isNo = false;
  m_servers.refusal().forget();
  try {
    if (hosts::isInterrupted()) throw Failure{{false, true, 0, "cancelled", {}}};
    work(result);
    m_isNo ? m_tally.addNo() : m_tally.addDone();
    m_results.push_back(std::move(result));
  } catch (const Failure& failure) {
    addFailure(what, std::move(result), failure.report);
  }
}

void Context::attempt(const Place& place, const std::function<void()>& work) {
  m_servers.refusal().forget();
  try {
    work();
  } catch (const Failure& failure) {
    addFailure(place.text, {{"path", place.text}}, failure.report);
  }
}

void Context::giveUp(const Place& first, std::size_t others) {
  std::string text = hosts::isInterrupted() ? "cancelled; not tried" : "not tried";
  if (others > 0) text += ", and " + std::to_string(others) + " more";
  attempt(first, [&] { fail(text); });
}

void Context::untilInterrupted(const std::vector<Place>& places,
                               const std::function<void(const Place& place)>& take) {
  for (std::size_t at = 0; at < places.size(); ++at) {
    if (hosts::isInterrupted()) return giveUp(places[at], places.size() - at - 1);
    take(places[at]);
  }
}

void Context::each(const std::vector<Place>& places, const Work& work) {
  untilInterrupted(places,
                   [&](const Place& place) { one(place.text, [&](Json& result) { work(place, result); }); });
}

void Context::each(const std::vector<std::string>& paths, const Work& work) { each(places(paths), work); }

void Context::say(const std::string& line) const {
  if (!m_settings.isJson) std::printf("%s\n", printable(line).c_str());
}

// In the order in which both came, where they go to one place.
void Context::warn(const std::string& line) {
  static const bool hasColours = hosts::takesColours(stderr);
  std::fflush(stdout);
  std::fprintf(stderr, hasColours ? "\x1b[31mqxftp:\x1b[0m %s\n" : "qxftp: %s\n", printable(line).c_str());
}

}  // namespace qxftp
