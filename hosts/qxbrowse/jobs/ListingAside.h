// SPDX-License-Identifier: MIT
// Lists a folder on a thread of its own, with a client of its own, while the thread that asks goes on
// dispatching its messages: the library dispatches none in a listing, which takes half a minute where a
// server says nothing. Portable: how letters get to the thread that asks, and how it reads them, is the
// caller's.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "hosts/shared/EndableClient.h"

namespace browse {

class ListingAside {
 public:
  using Letter = std::function<void()>;
  struct Letters {
    // Runs a letter on the thread that asks. On any thread.
    std::function<void(Letter)> post;
    // Reads letters on that thread until one has made this true.
    std::function<void(const std::function<bool()>& isOver)> readUntil = nullptr;
  };

  ListingAside(const qx::Exports& exports, const Letters& letters) : m_exports(exports), m_letters(letters) {}

  // The size of a file as its folder's listing has it; none: that is not to be had.
  std::optional<std::uint64_t> sizeOf(const std::string& file, const qx::Login& server);
  // In a letter meanwhile: there is no answer, and that within moments.
  void end() { m_client.end(); }
  [[nodiscard]] bool isRunning() const { return m_isRunning; }

 private:
  std::optional<std::uint64_t> list(const std::string& file, const qx::Login& server);

  const qx::Exports& m_exports;
  const Letters& m_letters;
  bool m_isRunning = false;
  hosts::EndableClient m_client;  // the thread's
};

}  // namespace browse
