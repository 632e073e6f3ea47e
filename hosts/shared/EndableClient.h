// SPDX-License-Identifier: MIT
// A client whose operations another thread can end, also those that never ask for a cancel: a listing waits
// 30 s for a silent server, and nobody wants to wait for that. Freeing the client ends them, but only what
// the library is at work on can be freed under it; this class knows when that is so.
//
// It watches connect(), list(), count(), fileExists(), directoryExists(), size(), remove(),
// removeDirectory(), createDirectory(), createNewDirectory() and rename(), where the host calls them. All
// others go on, and end where the lambda `poll` cancels them.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>

#include "QXClient.h"

namespace hosts {

class EndableClient {
 public:
  EndableClient() = default;
  ~EndableClient() { free(); }
  EndableClient(const EndableClient&) = delete;
  EndableClient& operator=(const EndableClient&) = delete;

  // These are for the one thread that uses the client. There is none at first, and none behind an operation
  // that was ended or could not begin; those of that one fail as of a client that was moved from.
  [[nodiscard]] bool isThere() const noexcept { return m_client && *m_client; }
  // Fails as qx::Client::make does.
  qx::Result<qx::Done> make(const qx::Exports& exports, qx::Lambdas lambdas);
  void free() noexcept;
  // REQUIRES: it was made.
  [[nodiscard]] qx::Client& client() noexcept { return *m_client; }

  // For any other thread: of what is watched, the call that runs fails within moments, and the next one at
  // once.
  void end();
  // Operations work again. Not while one runs.
  void rearm();

 private:
  template <auto Slot>
  struct Watched;
  class Call;

  template <auto... Slots>
  void watch();
  bool enter();
  bool leave();
  void giveUpClient();

  std::optional<qx::Client> m_client;
  std::mutex m_lock;
  std::condition_variable m_left;
  bool m_isInside = false;  // this and the rest are guarded
  bool m_isEnded = false;
  std::chrono::steady_clock::time_point m_entered;
};

}  // namespace hosts
