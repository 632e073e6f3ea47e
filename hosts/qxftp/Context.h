// SPDX-License-Identifier: MIT
// What a command works with: paths that are found on their servers, texts for people or one JSON document,
// and a tally of what has failed.
//
//   void size(Context& context, const std::vector<std::string>& paths) {
//     context.each(paths, [&](const Place& place, Json& result) {
//       const auto bytes = need(context.connected(place).size(place.path()));
//       result["size"] = bytes;
//       context.say(std::to_string(bytes));
//     });
//   }
#pragma once

#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "hosts/qxftp/Outcome.h"
#include "hosts/qxftp/Servers.h"

namespace qxftp {

using Json = nlohmann::ordered_json;

// A path of the command line.
struct Place {
  std::string text;  // as it was written, without a password
  hosts::Address address;

  [[nodiscard]] const std::string& path() const { return address.path; }
};

// The command line asks for what cannot be.
struct WrongUsage : std::invalid_argument {
  using std::invalid_argument::invalid_argument;
};

class Context {
 public:
  explicit Context(const Settings& settings) : m_settings(settings), m_servers(settings) {}

  [[nodiscard]] const Settings& settings() const { return m_settings; }

  // Of a whole address, or of a path at the host of the options. Throws WrongUsage.
  [[nodiscard]] Place place(const std::string& text) const;
  [[nodiscard]] std::vector<Place> places(const std::vector<std::string>& texts) const;
  // A second path of one operation, at the first one's server. Throws WrongUsage where it names another.
  [[nodiscard]] Place placeBeside(const Place& first, const std::string& text) const;
  // Another path at the same server.
  [[nodiscard]] static Place at(const Place& place, const std::string& path);

  // Whether its wildcards count.
  [[nodiscard]] bool isPattern(const Place& place) const;

  // For what changes the server or moves content.
  [[nodiscard]] qx::Client& client(const Place& place) { return m_servers.client(place.address); }
  // For listings and questions, over one connection.
  [[nodiscard]] qx::Client& connected(const Place& place) { return m_servers.connected(place.address); }
  [[nodiscard]] qx::Client& anonymous() { return m_servers.anonymous(); }
  void onProgress(Servers::OnProgress onProgress) { m_servers.onProgress(std::move(onProgress)); }
  [[nodiscard]] hosts::ListingWatch& watch() { return m_servers.watch(); }
  // The server's last one, which a failure tells.
  [[nodiscard]] Refusal& refusal() { return m_servers.refusal(); }

  // `work` for each path: what it throws as a Failure is told, and the next path's turn comes; after Ctrl-C
  // those that are left are told to be. It may fill in the path's JSON object, which has "path" already. No
  // work is done where a path is wrong.
  using Work = std::function<void(const Place& place, Json& result)>;
  void each(const std::vector<std::string>& paths, const Work& work);
  void each(const std::vector<Place>& places, const Work& work);

  // One thing that `what` names, which need not be a path on a server.
  void one(const std::string& what, const std::function<void(Json& result)>& work);

  // Of a result is told only that it is a failure.
  void attempt(const Place& place, const std::function<void()>& work);

  // `take` for each place, until Ctrl-C: what is left then is given up.
  void untilInterrupted(const std::vector<Place>& places,
                        const std::function<void(const Place& place)>& take);
  // Tells that this one and so many others are not tried.
  void giveUp(const Place& first, std::size_t others);

  // The answer to a question was no. Within each().
  void sayNo() { m_isNo = true; }

  // A line on the standard output, unless that is to be JSON. What comes from servers is made printable.
  void say(const std::string& line) const;
  // A line on the standard error output.
  static void warn(const std::string& line);

  [[nodiscard]] ExitCode exitCode() const { return m_tally.exitCode(); }
  // What the JSON document has as "results".
  [[nodiscard]] const Json& results() const { return m_results; }

 private:
  void addFailure(const std::string& what, Json result, qx::Report report);

  const Settings& m_settings;
  Servers m_servers;
  Tally m_tally;
  Json m_results = Json::array();
  bool m_isNo = false;
};

// "error" of a JSON document.
[[nodiscard]] Json jsonOf(const qx::Report& report);

}  // namespace qxftp
