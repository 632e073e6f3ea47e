// SPDX-License-Identifier: MIT
// The file of the sites. Several programs may have it open: each change reads it again, changes the one site
// and writes all of it, while the others wait.
//
// It is replaced as a whole, so that a crash or a full disk leaves the former one. A broken one is never
// written: it is the user's to mend, or to be set aside.
//
// The functions throw BrokenSites (SiteText.h), or std::system_error when the file cannot be read or written.
#pragma once

#include <filesystem>
#include <string_view>
#include <vector>

#include "hosts/qxbrowse/sites/SiteText.h"

namespace browse {

class SiteFile {
 public:
  // Needs not be there: it and its folder come with the first site.
  explicit SiteFile(std::filesystem::path file) : m_file(std::move(file)) {}

  [[nodiscard]] const std::filesystem::path& path() const noexcept { return m_file; }
  // None when there is no file.
  [[nodiscard]] std::vector<Site> sites() const;
  // Adds the site, or replaces the one of its name, and gives `formerName` up. REQUIRES: !faultOf(site).
  void put(const Site& site, std::string_view formerName = {}) const;
  void remove(std::string_view name) const;
  // Gives a broken file another name, that no file had; returns that.
  [[nodiscard]] std::filesystem::path setAside() const;

 private:
  template <typename Change>
  void change(Change&& change) const;

  std::filesystem::path m_file;
};

// Where it is without a word of the user: below the folder for the data of programs. Throws
// std::system_error.
std::filesystem::path usualSiteFile();

}  // namespace browse
