// SPDX-License-Identifier: MIT
// Messages of a test's own on the calling thread's queue: a window's on Windows, idle callbacks of a GLib
// context on POSIX. Made and ended by the thread that dispatches them.
#pragma once

#include <functional>
#include <memory>

class TestQueue {
 public:
  // `handler` gets the number of each message when it is dispatched.
  explicit TestQueue(std::function<void(unsigned)> handler);
  ~TestQueue();
  TestQueue(const TestQueue&) = delete;
  TestQueue& operator=(const TestQueue&) = delete;

  void post(unsigned number);

 private:
  struct Impl;
  std::unique_ptr<Impl> m_impl;
};
