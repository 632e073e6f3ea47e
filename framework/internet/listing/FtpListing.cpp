// SPDX-License-Identifier: MIT
#include "framework/internet/listing/FtpListing.h"

#include "framework/internet/listing/ListReader.h"
#include "framework/internet/listing/ListingRow.h"

namespace internet {

bool parseMlsxLine(std::string_view line, FtpEntry& entry) {
  return readMlsxEntry(line, {}, entry) == RowKind::entry;
}

bool parseListLine(std::string_view line, std::int64_t now, FtpEntry& entry) {
  return ListReader(now, {}).read(line, entry) == RowKind::entry;
}

}  // namespace internet
