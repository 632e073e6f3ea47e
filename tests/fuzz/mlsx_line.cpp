// SPDX-License-Identifier: MIT
// One fact line: as a row of a listing, and as the answer about a path.
#include "framework/internet/listing/ListingRow.h"
#include "tests/fuzz/Invariants.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view line = fuzz::textOf(data, size);
  internet::FtpEntry entry;
  const bool read = internet::parseMlsxLine(line, entry);
  internet::MlsxRow row;
  const bool hasFacts = internet::readMlsxRow(line, row);
  fuzz::require(hasFacts || !read);
  if (hasFacts) fuzz::require(!row.raw.name.empty() && line.ends_with(row.raw.name));
  if (!read) return 0;
  fuzz::requireSound(entry);
  fuzz::require(row.raw.name.find(entry.name) != std::string_view::npos);
  fuzz::require(row.type != internet::MlsxType::itself);
  return 0;
}
