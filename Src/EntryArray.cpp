// SPDX-License-Identifier: MIT
#include "Src/EntryArray.h"

#include <algorithm>
#include <cstring>

#include "framework/platform/memory.h"

namespace {

constexpr std::size_t kBoundStep = 255;

}  // namespace

std::size_t EntryCapacity(std::size_t count) noexcept {
  const std::size_t reached = count > 1 ? (count - 2) / kBoundStep : 0;  // the last entry needs no more room
  return (reached + 1) * kBoundStep + 1;
}

std::unique_ptr<QXDirEntry[]> NewEntryArray(std::size_t count) {
  const std::size_t capacity = EntryCapacity(count);
  std::unique_ptr<QXDirEntry[]> array(new QXDirEntry[capacity]);
  platform::expectToFill(array.get(), capacity * sizeof(QXDirEntry));
  StoreEntryCount(array.get(), 0);
  return array;
}

void StoreEntryCount(QXDirEntry* array, std::uint32_t count) noexcept {
  std::memcpy(array->aReserved, &count, sizeof count);
}

std::uint32_t EntryCount(const QXDirEntry* array) noexcept {
  std::uint32_t count = 0;
  std::memcpy(&count, array->aReserved, sizeof count);
  return count;
}

bool CopyEntries(const QXDirEntry* array, QXDirEntry* target, std::uint32_t count) noexcept {
  const std::uint32_t held = EntryCount(array);
  const std::uint32_t copied = std::min(count, held);
  std::copy_n(array, copied, target);
  if (copied > 0) std::memset(target->aReserved, 0, sizeof target->aReserved);
  return copied == count;
}
