// SPDX-License-Identifier: MIT
#include "framework/internet/listing/FtpListing.h"

#include <algorithm>
#include <array>
#include <utility>

#include "framework/internet/listing/ListReader.h"
#include "framework/internet/listing/ListingRow.h"
#include "framework/text/AsciiText.h"

namespace internet {
namespace {

// Blank, or a word and a number ("total 88", in the server's language). What a broken-off row begins with (a
// date, or a mode: it has no other letters than these) is no such word.
bool isFrame(std::string_view line) noexcept {
  constexpr std::string_view kModeLetters = "bcdlnprstwxCDLMPST";
  RowFields fields(line);
  const std::string_view word = fields.next();
  if (word.empty()) return true;
  if (word.find_first_of("-0123456789") != std::string_view::npos) return false;
  if (word.find_first_not_of(kModeLetters) == std::string_view::npos) return false;
  const std::string_view number = fields.next();
  return !number.empty() && ascii::isDigit(number.front()) && fields.next().empty();
}

// "%DIRECT-W-NOFILES, no files found".
bool isVmsMessage(std::string_view line) noexcept {
  if (!line.starts_with('%')) return false;
  const std::size_t severity = line.find('-');
  return severity < line.size() && line.substr(severity + 1).find('-') == 1 && line.find(", ") < line.size();
}

// What the program behind LIST says on its standard error stream, which some servers send along.
bool isErrorText(std::string_view line) noexcept {
  static constexpr std::array<std::string_view, 5> kEndings{
      ": no such file or directory", ": permission denied", ": not a directory", ": cannot open directory",
      ": input/output error"};
  if (line.starts_with("ls: ") || line.starts_with("/bin/ls: ") || isVmsMessage(line)) return true;
  for (const std::string_view ending : kEndings) {
    if (line.size() > ending.size() &&
        ascii::equalBlindToCase(line.substr(line.size() - ending.size()), ending))
      return true;
  }
  return false;
}

// A row that is no entry.
void takeOtherRow(std::string_view line, FtpListing& listing) {
  if (isFrame(line)) return;
  if (isErrorText(line)) {
    if (listing.errorText.empty()) listing.errorText.assign(line);
    return;
  }
  ++listing.unparsedLines;
  listing.lastLineUnparsed = true;
}

// Cuts a text into its lines. A CR alone ends one only where there is no LF: in a text with LF it would let a
// file's name forge a row.
class Lines {
 public:
  explicit Lines(std::string_view text) noexcept
      : rest_(text), end_(text.find('\n') == std::string_view::npos ? '\r' : '\n') {}
  [[nodiscard]] bool more() const noexcept { return !rest_.empty(); }
  [[nodiscard]] bool lastWasCut() const noexcept { return cut_; }
  std::string_view next() noexcept {
    const std::size_t length = rest_.find(end_);
    cut_ = length == std::string_view::npos;
    std::string_view line = rest_.substr(0, length);
    rest_.remove_prefix(cut_ ? rest_.size() : length + 1);
    while (line.ends_with('\r')) line.remove_suffix(1);
    return line;
  }

 private:
  std::string_view rest_;
  char end_;
  bool cut_ = false;
};

template <class ReadEntry>
FtpListing readListing(std::string_view text, const ListingRules& rules, ReadEntry readEntry) {
  constexpr std::size_t kRowsBetween = 4096;
  FtpListing listing;
  const auto lineEnds = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
  listing.entries.reserve(std::min(lineEnds, rules.maxEntries));
  Lines lines(text);
  for (std::size_t row = 1; lines.more(); ++row) {
    if (rules.betweenRows != nullptr && row % kRowsBetween == 0) rules.betweenRows();
    const std::string_view line = lines.next();
    listing.lastLineUnparsed = false;
    FtpEntry entry;
    const RowKind kind = readEntry(line, entry);
    if (kind == RowKind::unparsed) takeOtherRow(line, listing);
    if (kind == RowKind::rest) takeRest(entry, listing.entries.back());
    if (kind != RowKind::entry) continue;
    listing.overLimit = listing.entries.size() == rules.maxEntries;
    if (listing.overLimit) break;
    listing.entries.push_back(std::move(entry));
  }
  listing.cutInLine = lines.lastWasCut();
  return listing;
}

}  // namespace

bool parseMlsxLine(std::string_view line, FtpEntry& entry) {
  return readMlsxEntry(line, {}, entry) == RowKind::entry;
}

bool parseListLine(std::string_view line, std::int64_t now, FtpEntry& entry) {
  return ListReader(now, {}).read(line, entry) == RowKind::entry;
}

FtpListing parseMlsd(std::string_view text, const ListingRules& rules) {
  return readListing(text, rules, [&](std::string_view line, FtpEntry& entry) {
    return readMlsxEntry(line, rules.directory, entry);
  });
}

FtpListing parseList(std::string_view text, std::int64_t now, const ListingRules& rules) {
  const auto readWith = [&](ListReader& reader) {
    return readListing(text, rules,
                       [&](std::string_view line, FtpEntry& entry) { return reader.read(line, entry); });
  };
  ListReader reader(now, rules.directory);
  FtpListing listing = readWith(reader);
  if (!reader.clocksAreInNames()) return listing;
  ListReader again(now, rules.directory);
  again.takeClocksBehindYears();
  return readWith(again);
}

}  // namespace internet
