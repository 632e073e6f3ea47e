// SPDX-License-Identifier: MIT
// What a search on a server is: which commands are sent for which pattern, and what their answers mean.
//   a wildcard in the last component   the parent is listed and filtered here; the pattern is never sent
//   else, where the server has MLST    one fact line tells a file from a directory, whose content is listed
//   else                               CWD and LIST for a directory, SIZE for a file
// What the rows of a listing leave open is asked behind it (OpenRows.h).
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "framework/internet/ftp/FtpControl.h"
#include "framework/internet/listing/ListingReader.h"

namespace internet {

struct MlsxRow;

struct Found {
  EntryList entries{};     // in the server's order; empty when nothing is there
  std::string timePath{};  // MDTM of this path tells the only entry's time; "" = the times are known
  bool isContent = false;  // of a directory, whose own path was asked for
};

// One search; only inside FtpControl::request(). Failures are thrown as internet::Failure.
class FindRule {
 public:
  // `now` in seconds UTC.
  FindRule(FtpControl& control, std::int64_t now) noexcept : control_(control), now_(now) {}

  // `content`: the path is most likely a directory's.
  Found find(std::string_view asked, bool content = false);
  // Tells the connection the first lines of find(). REQUIRES: the server's features are known.
  void foresee(std::string_view asked, bool content);
  // Whether the path itself is a link, wherever that leads, as far as the listing of its directory tells.
  bool isLink(std::string_view asked);

  // The failure was that of a listing which is not whole or cannot be read: more than a refusal, because
  // taking it for an empty or a shorter directory would be wrong.
  [[nodiscard]] bool listingUnusable() const noexcept { return listingUnusable_; }

 private:
  struct Path {
    std::string_view whole;
    std::string_view parent;  // "" = the current directory
    std::string_view name;
    [[nodiscard]] bool isPattern() const noexcept;
  };
  struct Answer {
    FtpReply reply;
    bool hasText;
    FtpListing listing;
  };

  static Path split(std::string_view asked) noexcept;
  void foreseeListing();
  void prepare(const Path& path, std::string_view asked, bool content);
  std::optional<Found> byFacts(const Path& path, const FtpReply& reply);
  Found byKindUnknown(const Path& path, const MlsxRow& row);
  Found byFileFacts(const Path& path, const MlsxRow& row);
  Found byVisit(const Path& path);
  Found bySize(const Path& path);
  Found byParent(const Path& path);
  EntryList list(std::string_view directory, bool exists);
  EntryList listByVisit(std::string_view directory);
  EntryList rowsIn(FtpControl::DirectoryVisit& visit, std::string_view directory);
  EntryList factsOf(Answer answer, std::string_view directory, bool exists);
  Answer fetch(ListingForm form, std::string_view directory);
  [[nodiscard]] ListingRules rulesFor(std::string_view directory) const;
  EntryList entriesOf(Answer answer, std::string_view directory, bool exists);
  void settle(FtpControl::DirectoryVisit& visit, std::string_view directory, EntryList& entries);
  void checkWhole(const FtpListing& listing);
  [[noreturn]] void failUnusable(std::uint32_t error, std::string text = {});
  void withdrawFacts();

  FtpControl& control_;
  std::int64_t now_;
  std::function<bool(const FtpEntry&)> wanted_;  // of a listing; null = all
  bool followsLinks_ = true;
  bool listingUnusable_ = false;
};

}  // namespace internet
