// SPDX-License-Identifier: MIT
// A host's own hooks: a copy of the client's table with some slots replaced. Hosts without C++ override like
// this.
#pragma once

#include <cstddef>
#include <cstring>

#include "QXIPInt.h"

class PatchedTable {
 public:
  explicit PatchedTable(TQXIPIFInt* client) : m_client(client) {
    std::memcpy(&m_original, static_cast<const void*>(client), sizeof m_original);
    std::memcpy(m_entries, m_original - kBefore, sizeof m_entries);
    use(m_entries + kBefore);
  }
  ~PatchedTable() { use(m_original); }
  PatchedTable(const PatchedTable&) = delete;
  PatchedTable& operator=(const PatchedTable&) = delete;

  template <typename Function>
  void replace(std::size_t slot, Function* hook) {
    void* const entry = reinterpret_cast<void*>(hook);
    std::memcpy(&m_entries[kBefore + slot], &entry, sizeof entry);
  }

 private:
  // As bytes: the compiler must not take this for memory that calls do not read.
  void use(void** table) { std::memcpy(static_cast<void*>(m_client), &table, sizeof table); }

  static constexpr std::size_t kBefore = 2;  // what compilers keep in front of the slots
  TQXIPIFInt* m_client;
  void** m_original = nullptr;
  void* m_entries[kBefore + 51];
};
