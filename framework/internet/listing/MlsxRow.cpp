// SPDX-License-Identifier: MIT
// Rows of MLSD and MLST (RFC 3659, 7): "fact=value;fact=value; name".
#include <algorithm>
#include <optional>

#include "framework/internet/listing/ListingRow.h"
#include "framework/text/AsciiText.h"

namespace internet {
namespace {

struct Facts {
  MlsxType type = MlsxType::unknown;
  std::uint64_t size = 0;
  std::int64_t modified = 0;
  std::optional<bool> readOnlyByMode;
  std::optional<bool> readOnlyByRights;
  bool everyRight = false;
};

MlsxType typeOf(std::string_view value) noexcept {
  if (ascii::equalBlindToCase(value, "file")) return MlsxType::file;
  if (ascii::equalBlindToCase(value, "dir")) return MlsxType::directory;
  if (ascii::equalBlindToCase(value, "cdir") || ascii::equalBlindToCase(value, "pdir"))
    return MlsxType::itself;
  for (const std::string_view link : {"os.unix=slink", "os.unix=symlink"}) {
    if (ascii::startsBlindToCase(value, link)) return MlsxType::link;
  }
  return MlsxType::other;
}

// The owner's digit of an octal mode: "0644", "644", "100644".
std::optional<bool> readOnlyByMode(std::string_view mode) noexcept {
  constexpr int kWrite = 2;
  if (mode.size() < 3 || mode.find_first_not_of("01234567") != std::string_view::npos) return std::nullopt;
  return ((mode[mode.size() - 3] - '0') & kWrite) == 0;
}

void takeFact(std::string_view name, std::string_view value, Facts& facts) noexcept {
  if (ascii::equalBlindToCase(name, "type")) {
    facts.type = typeOf(value);
  } else if (ascii::equalBlindToCase(name, "size")) {
    ascii::readNumber(value, facts.size);
  } else if (ascii::equalBlindToCase(name, "modify")) {
    facts.modified = parseMdtmTime(value);
  } else if (ascii::equalBlindToCase(name, "perm")) {
    facts.readOnlyByRights = value.find_first_of("aAwW") == std::string_view::npos;
  } else if (ascii::equalBlindToCase(name, "unix.mode")) {
    facts.readOnlyByMode = readOnlyByMode(value);
    facts.everyRight = value.ends_with("777");
  }
}

// False when a part is no "name=value".
bool readFacts(std::string_view text, Facts& facts) noexcept {
  while (!text.empty()) {
    const std::string_view fact = text.substr(0, text.find(';'));
    text.remove_prefix(std::min(fact.size() + 1, text.size()));
    if (fact.empty()) continue;
    const std::size_t equals = fact.find('=');
    if (equals == 0 || equals == std::string_view::npos) return false;
    takeFact(fact.substr(0, equals), fact.substr(equals + 1), facts);
  }
  return true;
}

// The facts end in "; ": the value of one may hold a blank. Some servers leave the last semicolon out.
std::size_t blankBeforeName(std::string_view line) noexcept {
  const std::size_t end = line.find("; ");
  return end == std::string_view::npos ? line.find(' ') : end + 1;
}

bool readWholeRow(std::string_view line, Facts& facts, std::string_view& name) noexcept {
  const std::size_t blank = blankBeforeName(line);
  if (blank == std::string_view::npos) return false;
  name = line.substr(blank + 1);
  return readFacts(line.substr(0, blank), facts);
}

// A row that begins with a blank has no facts, unless they are there behind it: then the blank is one too
// many.
bool readRowBehindBlank(std::string_view line, Facts& facts, std::string_view& name) noexcept {
  const std::string_view inner = line.substr(std::min(line.find_first_not_of(' '), line.size()));
  if (readWholeRow(inner, facts, name) && facts.type != MlsxType::unknown) return true;
  facts = Facts();
  name = line.substr(1);
  return true;
}

bool isReadOnly(const Facts& facts) noexcept {
  if (facts.readOnlyByMode) return *facts.readOnlyByMode;
  // The rights to a directory speak of its entries, and those to a link of what it leads to.
  return facts.type == MlsxType::file && facts.readOnlyByRights.value_or(false);
}

}  // namespace

bool readMlsxRow(std::string_view line, MlsxRow& row) noexcept {
  Facts facts;
  std::string_view name;
  const bool read =
      line.starts_with(' ') ? readRowBehindBlank(line, facts, name) : readWholeRow(line, facts, name);
  if (!read || name.empty()) return false;
  row.type = facts.type;
  row.mayBeLink = facts.type == MlsxType::link || (facts.type == MlsxType::file && facts.everyRight);
  row.raw.isDirectory = facts.type == MlsxType::directory || facts.type == MlsxType::itself;
  row.raw.isLink = facts.type == MlsxType::link;
  row.raw.readOnly = isReadOnly(facts);
  row.raw.size = facts.size;
  row.raw.modified = facts.modified;
  row.raw.name = name;
  return true;
}

}  // namespace internet
