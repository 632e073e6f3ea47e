// SPDX-License-Identifier: MIT
#include "framework/internet/listing/ListReader.h"

#include <array>
#include <utility>

namespace internet {
namespace {

constexpr std::array kDialects{&kEplf,    &kVms,         &kOs400,   &kDataSets,
                               &kMembers, &kLoadModules, &kNonStop, &kNetware};

bool beginsWithClock(std::string_view name) noexcept {
  CivilTime time;
  RowFields fields(name);
  return !name.starts_with(' ') && readClock(fields.next(), time) && !fields.restAfterBlank().empty();
}

bool showsYearAndClock(const RawRow& row) noexcept { return !row.inServersZone && beginsWithClock(row.name); }

}  // namespace

void takeRest(const EntryFacts& rest, EntryFacts& entry) noexcept {
  if (!entry.isDirectory) entry.size = rest.size;
  entry.modified = rest.modified;
  entry.inServersZone = rest.inServersZone;
}

RowKind ListReader::read(std::string_view line, FtpEntry& entry) {
  const bool nameWasAlone = std::exchange(nameWasAlone_, false);
  RawRow row;
  if (nameWasAlone && dialect_->readRest(line, row)) {
    entry.size = row.size;
    entry.modified = row.modified;
    entry.inServersZone = row.inServersZone;
    return RowKind::rest;
  }
  if (readUnixOrDos(line, row) || readOther(line, row)) return finish(row, entry);
  return isHeader(line) ? RowKind::header : RowKind::unparsed;
}

bool ListReader::readUnixOrDos(std::string_view line, RawRow& row) noexcept {
  if (!readUnixRow(line, context_, row)) return readDosRow(line, row);
  ++unixRows_;
  if (showsYearAndClock(row)) ++yearsAndClocks_;
  return true;
}

bool ListReader::mayBeginClocksInNames(std::string_view line) const noexcept {
  RawRow row;
  return unixRows_ == 0 && readUnixRow(line, context_, row) && showsYearAndClock(row);
}

bool ListReader::readOther(std::string_view line, RawRow& row) noexcept {
  for (const Dialect* dialect : kDialects) {
    if (dialect_ != nullptr && dialect_ != dialect) continue;
    context_.known = dialect_ == dialect;
    if (!dialect->readRow(line, context_, row)) continue;
    dialect_ = dialect;
    return true;
  }
  return false;
}

bool ListReader::isHeader(std::string_view line) noexcept {
  for (const Dialect* dialect : kDialects) {
    if (!dialect->isHeader(line)) continue;
    dialect_ = dialect;
    return true;
  }
  return false;
}

RowKind ListReader::finish(RawRow row, FtpEntry& entry) {
  // The newest version comes first; the others would be taken for it by its name.
  if (!row.exactName.empty() && !row.name.empty()) {
    const bool older = versioned_ == row.name;
    if (older) {
      row.name = row.exactName;
    } else {
      versioned_.assign(row.name);
    }
  }
  const RowKind kind = makeEntry(row, directory_, entry);
  nameWasAlone_ = row.nameIsAlone && kind == RowKind::entry;
  return kind;
}

}  // namespace internet
