// SPDX-License-Identifier: MIT
#include "framework/internet/listing/ListingRow.h"

#include <algorithm>

#include "framework/text/AsciiText.h"

namespace internet {
namespace {

// Both builds take a backslash in a local path as a separator, so this name would leave the folder it is put
// into.
bool climbsByBackslash(std::string_view name) noexcept {
  for (std::size_t start = 0; name.find('\\') != std::string_view::npos;) {
    const std::size_t end = name.find('\\', start);
    if (name.substr(start, end - start) == "..") return true;
    if (end == std::string_view::npos) return false;
    start = end + 1;
  }
  return false;
}

bool mayBeName(std::string_view name) noexcept {
  return !name.empty() && name.size() < kMaxNameLength &&
         std::none_of(name.begin(), name.end(), [](char c) { return c == '/' || ascii::isControl(c); }) &&
         !climbsByBackslash(name);
}

// "directory/name" and "./name" as "name"; anything else as it is.
std::string_view withoutDirectory(std::string_view name, std::string_view directory) noexcept {
  const std::size_t slash = name.rfind('/');
  if (slash == std::string_view::npos) return name;
  const std::string_view said = name.substr(0, slash);
  const bool known = !directory.empty();
  while (directory.ends_with('/')) directory.remove_suffix(1);
  const bool matches = said == "." || (known && said == directory);
  return matches ? name.substr(slash + 1) : name;
}

}  // namespace

std::string_view RowFields::restAfterBlank() const noexcept {
  return rest_.starts_with(' ') ? rest_.substr(1) : std::string_view();
}

std::string_view withoutPadding(std::string_view text) noexcept {
  return text.substr(std::min(text.find_first_not_of(' '), text.size()));
}

bool readSize(std::string_view text, std::uint64_t& size) noexcept {
  constexpr std::size_t kGroup = 4;  // ",123"
  const std::size_t comma = text.find(',');
  if (comma == std::string_view::npos) return ascii::readNumber(text, size);
  // 2^64 in groups has 26 characters.
  if (comma == 0 || comma > 3 || text.size() > 26 || (text.size() - comma) % kGroup != 0) return false;
  char digits[26];
  std::size_t count = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool wantsComma = i >= comma && (i - comma) % kGroup == 0;
    if ((text[i] == ',') != wantsComma) return false;
    if (!wantsComma) digits[count++] = text[i];
  }
  return ascii::readNumber(std::string_view(digits, count), size);
}

RowKind makeEntry(const RawRow& row, std::string_view directory, FtpEntry& entry) {
  std::string_view name = row.name;
  if (row.isDirectory && name.size() > 1 && name.ends_with('/')) name.remove_suffix(1);
  name = withoutDirectory(name, directory);
  if (name == "." || name == "..") return RowKind::itself;
  if (!mayBeName(name)) return RowKind::unparsed;
  entry.name.assign(name);
  entry.isDirectory = row.isDirectory;
  entry.isLink = row.isLink;
  entry.size = row.isDirectory || row.isLink ? 0 : row.size;
  entry.modified = row.modified;
  entry.inServersZone = row.inServersZone;
  entry.attributes = (row.isDirectory ? kEntryDirectory : 0) | (row.readOnly ? kEntryReadOnly : 0) |
                     (name.front() == '.' ? kEntryHidden : 0);
  if (entry.attributes == 0) entry.attributes = kEntryNormal;
  return RowKind::entry;
}

RowKind readMlsxEntry(std::string_view line, std::string_view directory, FtpEntry& entry) {
  MlsxRow row;
  if (!readMlsxRow(line, row)) return RowKind::unparsed;
  return row.type == MlsxType::itself ? RowKind::itself : makeEntry(row.raw, directory, entry);
}

}  // namespace internet
