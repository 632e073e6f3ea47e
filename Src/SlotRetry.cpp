// SPDX-License-Identifier: MIT
#include "Src/SlotRetry.h"

#include <atomic>
#include <cstring>

namespace {

using Table = const void* const*;

std::atomic<Table> g_ownTable{nullptr};

Table tableOf(const TQXIP& client) noexcept {
  Table table = nullptr;
  std::memcpy(&table, static_cast<const void*>(&client), sizeof table);
  return table;
}

}  // namespace

void NoteOwnTable(const TQXIP& client) noexcept {
  g_ownTable.store(tableOf(client), std::memory_order_release);
}

bool HasOwnSlot(const TQXIP& client, Slot slot) noexcept {
  const auto index = static_cast<std::size_t>(slot);
  return tableOf(client)[index] == g_ownTable.load(std::memory_order_acquire)[index];
}
