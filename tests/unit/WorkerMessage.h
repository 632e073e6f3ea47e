// SPDX-License-Identifier: MIT
// A message on the queue of a worker of the library, which nobody but that worker can dispatch.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <thread>

#include "tests/unit/TestQueue.h"

class WorkerMessage {
 public:
  // Both on the worker's thread; takeBack() may be called more than once.
  void post() {
    m_worker = std::this_thread::get_id();
    m_queue = std::make_unique<TestQueue>([this](unsigned) { m_dispatcher = std::this_thread::get_id(); });
    m_queue->post(1);
  }
  void takeBack() { m_queue.reset(); }
  // When the operation has ended.
  void expectDispatched() const {
    EXPECT_EQ(m_queue, nullptr);
    EXPECT_NE(m_dispatcher, std::thread::id()) << "nobody took it";
    EXPECT_EQ(m_dispatcher, m_worker);
    EXPECT_NE(m_worker, std::this_thread::get_id()) << "there was no worker";
  }

 private:
  std::unique_ptr<TestQueue> m_queue;
  std::thread::id m_worker;
  std::thread::id m_dispatcher;
};
