// SPDX-License-Identifier: MIT
// Where to connect to: the dialogs about sites and certificates, and what they know of each other while the
// program runs. On the window's thread.
//
//   Sites sites(usualSiteFile());
//   for (auto to = sites.ask(window); to;) {
//     const auto done = client.connect(loginOf(to->site, to->password));
//     if (done) break;
//     to = sites.askAfterFailure(window, *to, done.report());
//   }
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "hosts/qxbrowse/sites/ConnectDialog.h"

namespace browse {

class Sites {
 public:
  explicit Sites(std::filesystem::path file) : m_file(std::move(file)) {}

  // None: the user has cancelled.
  std::optional<Destination> ask(HWND owner);

  // After a login that has failed: where that was for a certificate the user is asked about it. The answer is
  // where to try again, with a pin, which is in the file from now on when the user accepts it for good. None:
  // the login has failed for something else, or the user does not accept.
  std::optional<Destination> askAfterFailure(HWND owner, Destination failed, const qx::Report& report);

 private:
  using Server = std::pair<std::string, std::uint32_t>;

  void keep(HWND owner, const Site& site) const;

  SiteFile m_file;
  std::map<Server, std::string> m_pinsOfThisRun;  // accepted once
};

}  // namespace browse
