// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/jobs/ServerItems.h"

#include "hosts/qxbrowse/ui/Names.h"

namespace browse {
namespace {

Item itemOfEntry(const QXDirEntry& entry) {
  const bool isFolder = entry.bIsDirectory != 0;
  const std::uint64_t size = std::uint64_t{entry.nFileSizeHigh} << 32 | entry.nFileSizeLow;
  const QXFileTime& time = entry.ftLastWriteTime;
  return {fromLibrary(entry.szName), isFolder, isFolder ? 0 : size,
          static_cast<std::int64_t>(std::uint64_t{time.nHigh} << 32 | time.nLow)};
}

}  // namespace

std::vector<Item> itemsOf(const std::vector<QXDirEntry>& entries) {
  std::vector<Item> items;
  items.reserve(entries.size());
  for (const QXDirEntry& entry : entries) items.push_back(itemOfEntry(entry));
  return items;
}

}  // namespace browse
