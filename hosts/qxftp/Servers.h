// SPDX-License-Identifier: MIT
// The clients of a command, one for each login. The first Ctrl-C ends what they are at, whether it asks for a
// cancel or not; from then on all that they are asked for fails.
#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string_view>

#include "hosts/qxftp/Settings.h"
#include "hosts/shared/Address.h"
#include "hosts/shared/EndableClient.h"
#include "hosts/shared/Interrupt.h"
#include "hosts/shared/ListingWatch.h"

namespace qxftp {

// The server's own words for what it would not do, which the library's texts often lack. Lines come on any
// thread.
class Refusal {
 public:
  void take(std::string_view line);
  void forget();
  [[nodiscard]] std::string text() const;

 private:
  mutable std::mutex m_lock;
  std::string m_text;
  bool m_movesContent = false;  // the last command
};

class Servers {
 public:
  explicit Servers(const Settings& settings) : m_settings(settings) {}
  Servers(const Servers&) = delete;
  Servers& operator=(const Servers&) = delete;

  // Has the login data. Loads the library with the first one. Throws std::runtime_error where there is no
  // library or no password.
  [[nodiscard]] qx::Client& client(const hosts::Address& address);

  // The same, with a connection that it keeps for listings and questions. Throws Failure.
  [[nodiscard]] qx::Client& connected(const hosts::Address& address);

  // Without login data, for the web.
  [[nodiscard]] qx::Client& anonymous();

  // The last one of any server.
  [[nodiscard]] Refusal& refusal() { return m_refusal; }

  // What is asked again and again while a client waits; may be null.
  using OnProgress = std::function<void(const qx::Progress& progress)>;
  void onProgress(OnProgress onProgress) { m_onProgress = std::move(onProgress); }

  // Whether any server has taken a login.
  [[nodiscard]] bool hasLoggedIn() const { return m_hasLoggedIn; }

  // Of the listing that came last, from whichever server.
  [[nodiscard]] hosts::ListingWatch& watch() { return m_watch; }

 private:
  struct Entry {
    hosts::EndableClient client;
    qx::Login login;
    bool isConnected = false;
  };

  Entry& entry(const hosts::Address& address);
  std::unique_ptr<Entry> make();
  Entry& keep(const std::string& key, std::unique_ptr<Entry> made);
  void endAll();
  [[nodiscard]] qx::Lambdas lambdas();

  const Settings& m_settings;
  Refusal m_refusal;
  OnProgress m_onProgress;
  hosts::ListingWatch m_watch;
  std::atomic<bool> m_hasLoggedIn = false;
  qx::Exports m_exports;
  std::mutex m_lock;                                        // while m_entries changes, and for endAll()
  std::map<std::string, std::unique_ptr<Entry>> m_entries;  // by the address without a path
  std::optional<hosts::OnInterrupt> m_onInterrupt;          // last: it uses all of this
};

}  // namespace qxftp
