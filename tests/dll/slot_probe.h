// SPDX-License-Identifier: MIT
// A stand-in for a client: each slot of its table only notes its own number. Calling the operations of the
// public header on it tells into which slot the compiler turned each of them. Needs no run-time library.
#pragma once

#include "QXIPInt.h"

class SlotProbe {
 public:
  static constexpr unsigned kSlots = 51;
  static constexpr unsigned kNone = ~0U;
  static constexpr unsigned kTable = kSlots + 13;  // slots that moved to behind the last one are told, too

  SlotProbe() noexcept : m_pTable(m_table) { Fill<kTable>::into(m_table); }
  SlotProbe(const SlotProbe&) = delete;
  SlotProbe& operator=(const SlotProbe&) = delete;

  TQXIPIFInt* client() noexcept { return reinterpret_cast<TQXIPIFInt*>(&m_pTable); }

  // The slot called since the last question.
  static unsigned taken() noexcept {
    const unsigned slot = s_called;
    s_called = kNone;
    return slot;
  }

 private:
  template <unsigned Slot>
  static std::uintptr_t note() noexcept {
    s_called = Slot;
    return 0;
  }

  template <unsigned Count>
  struct Fill {
    static void into(void** table) noexcept {
      table[Count - 1] = reinterpret_cast<void*>(&note<Count - 1>);
      if constexpr (Count > 1) Fill<Count - 1>::into(table);
    }
  };

  static inline volatile unsigned s_called = kNone;
  void** m_pTable;  // where a client has the pointer to its table
  void* m_table[kTable];
};
