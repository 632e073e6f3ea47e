// SPDX-License-Identifier: MIT
// The text of the sites' file: a part for each site, with a line for each thing to remember.
//
//   ; what begins with a semicolon is the user's own
//   [Name of the site]
//   host=ftp.example.org
//   port=21
//   user=me
//   encryption=ftpes          none, ftpes or ftps
//   passive=yes               or no
//   localFolder=C:\letters
//   remoteFolder=/pub
//   pin=...                   64 hex digits
//   password=...              as Protection.h makes it
//
// UTF-8; host alone must be there. What stands behind '=' counts to the end of its line, blanks included.
// Lines that this program does not know are kept, and so is their order. Pure; reads whatever a user has made
// of it.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/qxbrowse/sites/Site.h"

namespace browse {

// The file is not as it should be.
struct BrokenSites : std::runtime_error {
  BrokenSites(std::size_t brokenLine, Text brokenReason)
      : std::runtime_error("broken sites"), line(brokenLine), reason(brokenReason) {}
  std::size_t line;  // from 1
  Text reason;
};

class SiteText {
 public:
  // Throws BrokenSites.
  explicit SiteText(std::string_view text);

  [[nodiscard]] std::vector<Site> sites() const;
  // Replaces the site of that name, or adds one; `formerName` is given up for it. REQUIRES: !faultOf(site).
  void put(const Site& site, std::string_view formerName = {});
  void remove(std::string_view name);
  [[nodiscard]] std::string text() const;

 private:
  struct Line {
    std::size_t number;
    std::string text;

    [[nodiscard]] bool isComment() const;
    [[nodiscard]] std::string_view key() const;
    [[nodiscard]] std::string_view value() const;
  };
  struct Part {
    std::size_t number;  // of its first line
    std::string name;
    std::vector<Line> lines;

    [[nodiscard]] Site site() const;
    void set(std::string_view key, std::string_view value);
  };

  void take(std::size_t number, std::string_view line);
  void begin(std::size_t number, std::string_view line);
  Part& partOf(std::string_view name);

  std::vector<Line> m_head;  // in front of the first part
  std::vector<Part> m_parts;
};

}  // namespace browse
