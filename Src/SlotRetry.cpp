// SPDX-License-Identifier: MIT
#include "Src/SlotRetry.h"

#include <atomic>
#include <cstring>
#include <utility>

namespace {

using Table = const void* const*;

// The table of TQXIP, the same for all clients: each constructor of one notes it while the object is no more
// than a TQXIP. It lies in read-only memory and never changes; a host replaces slots by giving its client
// another table (a derived class, or a copy with entries of its own). So an entry that differs is a host's.
std::atomic<Table> g_ownTable{nullptr};

constinit thread_local const SlotCall* t_innermost = nullptr;

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

SlotCall::SlotCall(const TQXIP& client, Slot slot, const RetryLimit& limit) noexcept
    : m_client(client), m_slot(slot), m_limit(limit), m_outer(std::exchange(t_innermost, this)) {}

SlotCall::~SlotCall() { t_innermost = m_outer; }

const RetryLimit* SlotCall::LimitAround(const TQXIP& client, Slot slot) noexcept {
  for (const SlotCall* call = t_innermost; call != nullptr; call = call->m_outer) {
    if (&call->m_client == &client && call->m_slot == slot) return &call->m_limit;
  }
  return nullptr;
}
