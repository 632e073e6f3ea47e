// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/jobs/ServerItems.h"

#include "hosts/qxbrowse/ui/Names.h"
#include "hosts/shared/Entries.h"

namespace browse {
namespace {

Item itemOfEntry(const QXDirEntry& entry) {
  const bool isFolder = entry.bIsDirectory != 0;
  return {fromLibrary(entry.szName), isFolder, isFolder ? 0 : hosts::sizeOf(entry),
          static_cast<std::int64_t>(hosts::unitsOf(entry.ftLastWriteTime))};
}

}  // namespace

std::vector<Item> itemsOf(const std::vector<QXDirEntry>& entries) {
  std::vector<Item> items;
  items.reserve(entries.size());
  for (const QXDirEntry& entry : entries) items.push_back(itemOfEntry(entry));
  return items;
}

}  // namespace browse
