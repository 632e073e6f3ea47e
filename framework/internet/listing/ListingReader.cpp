// SPDX-License-Identifier: MIT
#include "framework/internet/listing/ListingReader.h"

#include <array>
#include <utility>

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

std::string_view withoutReturns(std::string_view line) noexcept {
  while (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

}  // namespace

// --- Rows ---

void ListingPass::take(std::string_view line) {
  constexpr std::size_t kRowsBetween = 4096;
  if (listing_.overLimit) return;
  if (rules_->betweenRows != nullptr && ++taken_ % kRowsBetween == 0) rules_->betweenRows();
  listing_.lastLineUnparsed = false;
  const RowKind kind = read(line);
  if (kind == RowKind::unparsed) takeOtherRow(line, listing_);
  if (kind == RowKind::rest) takeRest(row_, last_);
  if (kind != RowKind::entry) return;
  listing_.overLimit = listing_.rows == rules_->maxEntries;
  if (listing_.overLimit) return;
  keepLast();
  std::swap(row_, last_);
  ++listing_.rows;
}

RowKind ListingPass::read(std::string_view line) {
  return form_ == ListingForm::facts ? readMlsxEntry(line, rules_->directory, row_)
                                     : reader_.read(line, row_);
}

void ListingPass::keepLast() {
  if (listing_.rows > 0 && (!rules_->wanted || rules_->wanted(last_))) listing_.entries.add(last_);
}

FtpListing ListingPass::finish() {
  keepLast();
  return std::move(listing_);
}

// --- Lines ---

void ListingReader::take(std::string_view piece) {
  for (std::size_t end = piece.find('\n'); end != std::string_view::npos; end = piece.find('\n')) {
    lineFeeds_ = true;
    if (rest_.empty()) {
      takeLine(piece.substr(0, end));
    } else {
      takeLine(rest_.append(piece, 0, end));
      rest_.clear();
    }
    piece.remove_prefix(end + 1);
  }
  rest_.append(piece);
}

// Which of the two readings is right shows at the end. They differ from the first row of Unix on, if at all.
void ListingReader::takeLine(std::string_view line) {
  line = withoutReturns(line);
  if (form_ == ListingForm::rows && !clocksBehindYears_ && pass_.reader().mayBeginClocksInNames(line)) {
    clocksBehindYears_.emplace(pass_).reader().takeClocksBehindYears();
  }
  pass_.take(line);
  if (!clocksBehindYears_) return;
  if (pass_.reader().mayHaveClocksInNames()) {
    clocksBehindYears_->take(line);
  } else {
    clocksBehindYears_.reset();
  }
}

// In a text with LF a CR that ended a row would let a file's name forge one.
void ListingReader::takeLinesOfRest() {
  std::string_view rest = rest_;
  for (std::size_t end = rest.find('\r'); !lineFeeds_ && end != std::string_view::npos;
       end = rest.find('\r')) {
    takeLine(rest.substr(0, end));
    rest.remove_prefix(end + 1);
  }
  if (!rest.empty()) takeLine(rest);
}

FtpListing ListingReader::finish() {
  const bool cut = !rest_.empty() && (lineFeeds_ || rest_.back() != '\r');
  takeLinesOfRest();
  ListingPass& right = pass_.reader().clocksAreInNames() ? *clocksBehindYears_ : pass_;
  FtpListing listing = right.finish();
  listing.cutInLine = cut;
  return listing;
}

}  // namespace internet
