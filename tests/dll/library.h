// SPDX-License-Identifier: MIT
// The shared library under test, as a host sees it: its exports, the table of slots and the fields by offset.
#pragma once

#include <gtest/gtest.h>

#include <cstring>

#include "examples/host/ClientLibrary.h"

// Loaded once per program, from the path in QX_LIBRARY.
const ClientLibrary& library();

[[nodiscard]] inline std::uint32_t moduleCount() {
  library().addRef();
  return library().release();
}

// Calls an operation by its slot's number alone. The arguments need the exact types of the operation.
template <typename Result, typename... Arguments>
Result callSlot(TQXIPIFInt* client, std::size_t slot, Arguments... arguments) {
  using Function = Result (*)(TQXIPIFInt*, Arguments...);
  void** const table = *reinterpret_cast<void***>(client);
  return reinterpret_cast<Function>(table[slot])(client, arguments...);
}

template <typename Value>
Value fieldAt(const TQXIPIFInt* client, std::size_t offset) {
  Value value;
  std::memcpy(&value, reinterpret_cast<const char*>(client) + offset, sizeof value);
  return value;
}

// Every test leaves the module-wide count at 0: no client and no reference is left behind.
class LibraryTest : public testing::Test {
 protected:
  LibraryTest() { EXPECT_EQ(moduleCount(), 0U); }
  ~LibraryTest() override { EXPECT_EQ(moduleCount(), 0U); }
};

// With one client and its error record.
class ClientTest : public LibraryTest {
 protected:
  ClientTest() : client(makeClient(library(), &error)) {
    if (client == nullptr) throw std::runtime_error("the library makes no client");
  }

  QXErrorInfo error{};
  Client client;
};
