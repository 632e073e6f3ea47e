// SPDX-License-Identifier: MIT
// A message on the queue of a worker of the library, which nobody but that worker can dispatch.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <thread>

#include "tests/unit/TestQueue.h"

class WorkerMessage {
 public:
  // On the worker's thread.
  void post() {
    thread_local std::unique_ptr<TestQueue> queue;  // ends with the worker
    m_worker = std::this_thread::get_id();
    queue = std::make_unique<TestQueue>([this](unsigned) { m_dispatcher = std::this_thread::get_id(); });
    queue->post(1);
  }
  // When the operation has ended.
  void expectDispatched() const {
    EXPECT_NE(m_dispatcher, std::thread::id()) << "it still waits";
    EXPECT_EQ(m_dispatcher, m_worker);
    EXPECT_NE(m_worker, std::this_thread::get_id()) << "there was no worker";
  }

 private:
  std::thread::id m_worker;
  std::thread::id m_dispatcher;
};
