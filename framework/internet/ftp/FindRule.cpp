// SPDX-License-Identifier: MIT
#include "framework/internet/ftp/FindRule.h"

#include <algorithm>
#include <utility>

#include "framework/internet/ftp/FtpDataChannel.h"
#include "framework/internet/ftp/OpenRows.h"
#include "framework/internet/ftp/ServerWords.h"
#include "framework/internet/listing/FtpListing.h"
#include "framework/internet/listing/ListingRow.h"
#include "framework/internet/net/Failure.h"
#include "framework/internet/net/InternetErrors.h"
#include "framework/platform/stop_token.h"

namespace internet {
namespace {

// The server does not know the command. Some say 501 also of an argument that they do not like.
bool commandUnknown(const FtpReply& reply) noexcept {
  return reply.code == 500 || reply.code == 501 || reply.code == 502 || reply.code == 504;
}

// How servers that refuse to list an empty directory put it; the second group could also speak of the
// directory itself, where it is not known to exist. In doubt the directory is not empty.
bool saysNothingThere(std::string_view text, const QuotedPaths& paths, bool directoryExists) {
  return serverSays(text, {"no files", "empty", "no match", "no data sets", "no members"}, paths,
                    BareName::anywhere) ||
         (directoryExists &&
          serverSays(text, {"no such file", "not found", "cannot find"}, paths, BareName::anywhere));
}

bool refusedForEmptiness(const FtpReply& reply, const QuotedPaths& paths, bool directoryExists) {
  return (reply.code == 450 || reply.code == 550) && saysNothingThere(reply.text, paths, directoryExists);
}

// The fact line among the lines of a reply to MLST; with or without a blank or the code before it. Without
// the type it tells nothing.
std::optional<MlsxRow> factsOfReply(std::string_view text) noexcept {
  while (!text.empty()) {
    std::string_view line = text.substr(0, text.find_first_of("\r\n"));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    if (line.starts_with("250-") || line.starts_with("250 ")) line.remove_prefix(4);
    MlsxRow row;
    if (readMlsxRow(line, row) && row.type != MlsxType::unknown) return row;
  }
  return std::nullopt;
}

Found contentOf(EntryList entries) { return {.entries = std::move(entries), .isContent = true}; }

// The one entry that a path without wildcards names.
Found onlyEntry(RawRow row, std::string_view name) {
  Found found;
  row.name = name;
  if (FtpEntry entry; makeEntry(row, {}, entry) == RowKind::entry) found.entries.add(entry);
  return found;
}

}  // namespace

FindRule::Path FindRule::split(std::string_view asked) noexcept {
  const auto withoutSlashes = [](std::string_view path) {
    while (path.size() > 1 && path.ends_with('/')) path.remove_suffix(1);
    return path;
  };
  Path path;
  path.whole = withoutSlashes(asked);
  const std::size_t slash = path.whole.rfind('/');
  path.name = path.whole.substr(slash == std::string_view::npos ? 0 : slash + 1);
  path.parent = withoutSlashes(path.whole.substr(0, path.whole.size() - path.name.size()));
  return path;
}

bool FindRule::Path::isPattern() const noexcept { return name.find_first_of("*?") != std::string_view::npos; }

void FindRule::foresee(std::string_view asked, bool content) {
  const Path path = split(asked);
  const bool facts = control_.knownTraits().mlst;
  if (path.isPattern()) {
    if (facts || path.parent.empty() || control_.foresee("CWD", path.parent)) foreseeListing();
    return;
  }
  if (!control_.foresee(facts ? "MLST" : "CWD", path.whole)) return;
  if (content) {
    foreseeListing();
  } else if (!facts && control_.foreseeBinary()) {
    static_cast<void>(control_.foresee("SIZE", path.whole));
  }
}

void FindRule::foreseeListing() {
  if (control_.foreseeBinary()) FtpDataChannel::foresee(control_);
}

// Whoever goes to another directory has to know the way back before.
void FindRule::prepare(const Path& path, std::string_view asked, bool content) {
  const bool visits = !control_.traits().mlst && !(path.isPattern() && path.parent.empty());
  if (visits && !control_.visitsOnce()) static_cast<void>(control_.currentDirectory());
  if (control_.visitsOnce() && control_.foresees()) return;
  control_.forgetForeseen();
  foresee(asked, content);
}

Found FindRule::find(std::string_view asked, bool content) {
  const Path path = split(asked);
  prepare(path, asked, content);
  if (path.isPattern()) {
    wanted_ = [&path](const FtpEntry& entry) { return matchesPattern(path.name, entry.name); };
    return {.entries = list(path.parent, path.parent.empty())};
  }
  if (!control_.traits().mlst) return byVisit(path);
  const FtpReply reply = control_.command("MLST", path.whole);
  const bool unknown = commandUnknown(reply);
  std::optional<Found> told = unknown ? std::nullopt : byFacts(path, reply);
  if (told) return std::move(*told);
  Found found = byVisit(path);
  if (unknown && !found.entries.empty()) withdrawFacts();
  return found;
}

bool FindRule::isLink(std::string_view asked) {
  const Path path = split(asked);
  followsLinks_ = false;
  wanted_ = [&path](const FtpEntry& entry) { return entry.name == path.name; };
  EntryList entries = list(path.parent, true);
  FtpEntry entry;
  return entries.size() == 1 && entries.takeFirst(entry) && entry.isLink;
}

// None when the server says that it has answered, but not what is there.
std::optional<Found> FindRule::byFacts(const Path& path, const FtpReply& reply) {
  if (reply.code >= 500) return Found();
  if (reply.refused()) control_.raise(reply);
  const std::optional<MlsxRow> row = factsOfReply(reply.text);
  if (!row) return std::nullopt;
  if (row->type == MlsxType::file) return byFileFacts(path, *row);
  if (row->raw.isDirectory) return contentOf(list(path.whole, true));
  return byKindUnknown(path, *row);
}

// A link, for one: a directory if it can be listed.
Found FindRule::byKindUnknown(const Path& path, const MlsxRow& row) {
  Answer answer = fetch(ListingForm::facts, path.whole);
  if (answer.reply.code == 450 || answer.reply.code >= 500) return byFileFacts(path, row);
  return contentOf(factsOf(std::move(answer), path.whole, true));
}

Found FindRule::byFileFacts(const Path& path, const MlsxRow& row) {
  RawRow file = row.raw;
  // What is no directory is a file, whose size a link's facts do not tell.
  if (std::exchange(file.isLink, false)) file.size = 0;
  if (row.mayBeLink) {
    control_.useBinary();
    file.size = parseSizeReply(control_.command("SIZE", path.whole)).value_or(file.size);
  }
  return onlyEntry(file, path.name);
}

Found FindRule::byVisit(const Path& path) {
  FtpControl::DirectoryVisit visit(control_);
  if (!visit.enter(path.whole).completed()) return bySize(path);
  return contentOf(rowsIn(visit, path.whole));
}

Found FindRule::bySize(const Path& path) {
  // Text mode has sizes of its own, where it has any.
  control_.useBinary();
  const FtpReply reply = control_.command("SIZE", path.whole);
  const std::optional<std::uint64_t> size = parseSizeReply(reply);
  if (!size) {
    if (reply.completed() || commandUnknown(reply)) return byParent(path);
    if (reply.code < 500) control_.raise(reply);
    return {};
  }
  RawRow row;
  row.size = *size;
  Found found = onlyEntry(row, path.name);
  if (!path.whole.starts_with('/')) found.timePath = control_.currentDirectory() + '/';
  found.timePath += path.whole;
  return found;
}

Found FindRule::byParent(const Path& path) {
  wanted_ = [&path](const FtpEntry& entry) { return entry.name == path.name; };
  return {.entries = listByVisit(path.parent)};
}

// The content of a directory.
EntryList FindRule::list(std::string_view directory, bool exists) {
  if (!control_.traits().mlst) return listByVisit(directory);
  Answer answer = fetch(ListingForm::facts, directory);
  if (!commandUnknown(answer.reply)) return factsOf(std::move(answer), directory, exists);
  EntryList entries = listByVisit(directory);
  withdrawFacts();
  return entries;
}

EntryList FindRule::factsOf(Answer answer, std::string_view directory, bool exists) {
  EntryList entries = entriesOf(std::move(answer), directory, exists);
  FtpControl::DirectoryVisit visit(control_);
  settle(visit, directory, entries);
  return entries;
}

EntryList FindRule::listByVisit(std::string_view directory) {
  FtpControl::DirectoryVisit visit(control_);
  if (!directory.empty()) {
    const FtpReply entered = visit.enter(directory);
    if (!entered.completed()) control_.raise(entered);
  }
  return rowsIn(visit, directory);
}

EntryList FindRule::rowsIn(FtpControl::DirectoryVisit& visit, std::string_view directory) {
  EntryList entries = entriesOf(fetch(ListingForm::rows, directory), directory, true);
  settle(visit, directory, entries);
  return entries;
}

// Without an argument LIST, in the directory, can take nothing for an option, a mask or two names.
FindRule::Answer FindRule::fetch(ListingForm form, std::string_view directory) {
  ListingReader reader(form, now_, rulesFor(directory));
  const auto take = [&reader](std::string_view piece) { reader.take(piece); };
  FtpListing listing;
  const auto ended = [&] {
    listing = reader.finish();
    if (followsLinks_) OpenRows::follow(control_, listing.entries);
  };
  // A refusal is handed back; what is thrown has broken the listing off.
  listingUnusable_ = true;
  FtpReply reply = form == ListingForm::facts ? control_.listing("MLSD", directory, take, ended)
                                              : control_.listing("LIST", {}, take, ended);
  listingUnusable_ = false;
  return {std::move(reply), reader.begun(), std::move(listing)};
}

ListingRules FindRule::rulesFor(std::string_view directory) const {
  ListingRules rules{.directory = directory, .betweenRows = &platform::throwIfStopped};
  if (!wanted_) return rules;
  rules.wanted = [this](const FtpEntry& entry) {
    platform::throwIfStopped();
    return wanted_(entry);
  };
  return rules;
}

EntryList FindRule::entriesOf(Answer answer, std::string_view directory, bool exists) {
  const std::string current = control_.directoryForReturn().value_or("");
  const QuotedPaths paths{.asked = directory, .current = current};
  if (answer.reply.refused()) {
    if (!answer.hasText && refusedForEmptiness(answer.reply, paths, exists)) return {};
    // Rows have come: this is no answer to the question whether there are any.
    listingUnusable_ = answer.hasText;
    control_.raise(answer.reply);
  }
  FtpListing& listing = answer.listing;
  // "226-Output truncated to 10000 matches". In doubt it is truncated.
  if (serverSays(answer.reply.text, {"truncated"}, paths, BareName::leading)) {
    failUnusable(kExtendedError, answer.reply.text);
  }
  checkWhole(listing);
  if (listing.rows == 0 && !listing.errorText.empty() &&
      !saysNothingThere(listing.errorText, paths, exists)) {
    fail(kExtendedError, listing.errorText);
  }
  return std::move(listing.entries);
}

void FindRule::settle(FtpControl::DirectoryVisit& visit, std::string_view directory, EntryList& entries) {
  if (followsLinks_) OpenRows(control_, visit, directory).settle(entries);
}

void FindRule::checkWhole(const FtpListing& listing) {
  if (listing.overLimit) failUnusable(kInvalidServerResponse);
  // A last row without its end is taken when it can be read: the server says that it has sent all.
  if (listing.cutInLine && listing.lastLineUnparsed) failUnusable(kConnectionAborted);
  if (listing.rows == 0 && listing.unparsedLines > 0) failUnusable(kInvalidServerResponse);
}

void FindRule::failUnusable(std::uint32_t error, std::string text) {
  listingUnusable_ = true;
  fail(error, std::move(text));
}

// Only behind a listing that the other way has given: a 501 may have been meant for the argument alone.
void FindRule::withdrawFacts() { control_.withdraw(&FtpTraits::mlst); }

}  // namespace internet
