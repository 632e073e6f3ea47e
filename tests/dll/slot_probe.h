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

  SlotProbe() noexcept {
    Fill<kTable>::into(m_table);
    put(m_object, m_table);
  }
  SlotProbe(const SlotProbe&) = delete;
  SlotProbe& operator=(const SlotProbe&) = delete;

  TQXIPIFInt* client() noexcept {
    // Volatile: a compiler that sees where the pointer comes from knows that no client is there.
    void* volatile object = m_object;
    return static_cast<TQXIPIFInt*>(object);
  }

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

  // As bytes: the compiler must not take pointers of another type for memory that calls do not read.
  template <typename Pointer>
  static void put(unsigned char* where, Pointer pointer) noexcept {
    __builtin_memcpy(where, &pointer, sizeof pointer);
  }

  template <unsigned Count>
  struct Fill {
    static void into(unsigned char* table) noexcept {
      put(table + (Count - 1) * sizeof(void*), &note<Count - 1>);
      if constexpr (Count > 1) Fill<Count - 1>::into(table);
    }
  };

  static inline volatile unsigned s_called = kNone;
  // All that a call reads of a client: the address of its table.
  alignas(void*) unsigned char m_object[sizeof(void*)];
  alignas(void*) unsigned char m_table[kTable * sizeof(void*)];
};
