// SPDX-License-Identifier: MIT
// What works behind the window of qxbrowse, without a window: the test reads the letters for it.
#pragma once

#include <gmock/gmock.h>

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>

#include "QXClient.h"
#include "tests/support/Fixture.h"

namespace browse {

// What a user takes for at once; every time-out of the library is longer.
inline constexpr std::chrono::seconds kSoon{10};

inline const qx::Exports& exports() {
  static const qx::Exports loaded = qx::loadLibrary(std::getenv("QX_LIBRARY")).value();
  return loaded;
}

inline std::uint32_t moduleCount() {
  exports().addRef();
  return exports().release();
}

class Letters {
 public:
  void post(std::function<void()> letter) {
    const std::lock_guard lock(m_lock);
    m_waiting.push_back(std::move(letter));
    m_come.notify_all();
  }
  void readOne() {
    std::unique_lock lock(m_lock);
    m_come.wait(lock, [this] { return !m_waiting.empty(); });
    const std::function<void()> letter = std::move(m_waiting.front());
    m_waiting.pop_front();
    lock.unlock();
    letter();
  }
  void readUntil(const std::function<bool()>& holds) {
    while (!holds()) readOne();
  }

 private:
  std::mutex m_lock;
  std::condition_variable m_come;
  std::deque<std::function<void()>> m_waiting;
};

class LaneTest : public testing::Test {
 protected:
  ~LaneTest() override { EXPECT_EQ(moduleCount(), 0U) << "a client is left"; }

  [[nodiscard]] qx::Login login() const {
    return {
        .host = "127.0.0.1", .user = "me", .password = "secret", .port = server.port(), .isPassive = true};
  }
  [[nodiscard]] std::function<void(std::function<void()>)> post() {
    return [this](std::function<void()> letter) { letters.post(std::move(letter)); };
  }

  const fixture::ScriptedFtp server{
      R"({"user": "me", "password": "secret", "tree": {"/pub/a.txt": "x", "/pub/sub/": {}}})"};
  Letters letters;
};

}  // namespace browse
