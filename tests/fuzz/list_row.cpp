// SPDX-License-Identifier: MIT
// One row of LIST, read by each dialect's reader: alone, and in a listing that is known to be of its kind.
#include "framework/internet/listing/ListDialects.h"
#include "tests/fuzz/Invariants.h"

namespace {

using internet::Dialect;
using internet::RawRow;
using internet::RowContext;

constexpr std::int64_t kNow = 1'718'452'800;
constexpr std::int64_t kFirstSecond = -11'644'473'600;  // of 1601
constexpr std::int64_t kLastSecond = 253'402'300'800;   // of 9999, a leap one included

const Dialect* const kDialects[] = {&internet::kEplf,     &internet::kVms,     &internet::kOs400,
                                    &internet::kDataSets, &internet::kMembers, &internet::kLoadModules,
                                    &internet::kNonStop,  &internet::kNetware};

bool isPart(std::string_view part, std::string_view line) {
  return part.empty() ||
         (part.data() >= line.data() && part.data() + part.size() <= line.data() + line.size());
}

void requireSoundTime(const RawRow& row) {
  fuzz::require(row.modified >= kFirstSecond && row.modified <= kLastSecond);
}

void requireSoundRow(const RawRow& row, std::string_view line) {
  fuzz::require(isPart(row.name, line) && isPart(row.exactName, line));
  fuzz::require(!(row.isDirectory && row.isLink));
  requireSoundTime(row);
  internet::FtpEntry entry;
  if (makeEntry(row, "/d", entry) == internet::RowKind::entry) fuzz::requireSound(entry);
}

void readAs(const Dialect& dialect, std::string_view line) {
  bool alone = false;
  for (const bool known : {false, true}) {
    RawRow row;
    const bool read = dialect.readRow(line, {.now = kNow, .known = known}, row);
    if (read) requireSoundRow(row, line);
    fuzz::require(read || !alone);  // what tells enough by itself does so anywhere
    alone = read;
  }
  RawRow rest;
  if (dialect.readRest && dialect.readRest(line, rest)) requireSoundTime(rest);
  static_cast<void>(dialect.isHeader(line));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view line = fuzz::textOf(data, size);
  for (const Dialect* dialect : kDialects) readAs(*dialect, line);
  for (const bool clockBehindYear : {false, true}) {
    RawRow row;
    const RowContext context{.now = kNow, .clockBehindYear = clockBehindYear};
    if (readUnixRow(line, context, row)) requireSoundRow(row, line);
    if (readDosRow(line, row)) requireSoundRow(row, line);
  }
  internet::RowFields fields(line);
  internet::RowTime time;
  static_cast<void>(internet::readLocalDate(fields, kNow, time));
  const int month = internet::monthOfLocalName(line);
  fuzz::require(month >= 0 && month <= 12);
  return 0;
}
