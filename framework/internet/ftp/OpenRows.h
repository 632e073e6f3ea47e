// SPDX-License-Identifier: MIT
// What the rows of a listing leave open, asked in one go behind it:
//   - what a link leads to. One that can be entered is a directory; else SIZE tells the size of a file, 0 for
//     one that leads nowhere. Up to kMostLinks of a listing are asked about, the others stay files of size 0.
//   - in which zone the clocks of LIST are: one MDTM of a file that is listed tells, once for a server. Where
//     it does not, their times count as UTC.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "framework/internet/ftp/FtpControl.h"
#include "framework/internet/listing/EntryList.h"

namespace internet {

inline constexpr std::size_t kMostLinks = 64;

// Only inside FtpControl::request(), behind the listing of `directory` ("" = the current one), where its rows
// have come by LIST in `visit` there. Failures as of FtpControl::command().
class OpenRows {
 public:
  OpenRows(FtpControl& control, FtpControl::DirectoryVisit& visit, std::string_view directory) noexcept
      : control_(control), visit_(visit), directory_(directory) {}

  // Asks for the zone while the listing still waits for its last reply: settle() takes the answer.
  static void follow(FtpControl& control, const EntryList& entries);
  void settle(EntryList& entries);

 private:
  using Questions = std::vector<FtpControl::Question>;
  struct Link {
    std::size_t entry = 0;  // its number
    std::string path{};
    bool isDirectory = false;
    std::optional<std::uint64_t> size{};
  };
  using Links = std::vector<std::shared_ptr<Link>>;

  static std::optional<FtpEntry> witnessOfZone(const FtpTraits& traits, const EntryList& entries);
  void askZone(const FtpEntry& witness, Questions& questions);
  void learnZone(std::int64_t listed, const FtpReply& reply);
  [[nodiscard]] Links linksOf(const EntryList& entries);
  [[nodiscard]] std::string pathOf(std::string_view name) const;
  void askLink(const std::shared_ptr<Link>& link, Questions& questions) const;
  void askAll(const Links& links, Questions questions);
  static void applyLinks(const Links& links, EntryList& entries);
  void applyZone(EntryList& entries) const;

  FtpControl& control_;
  FtpControl::DirectoryVisit& visit_;
  std::string_view directory_;
};

}  // namespace internet
