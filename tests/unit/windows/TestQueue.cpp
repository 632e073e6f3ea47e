// SPDX-License-Identifier: MIT
#include "tests/unit/TestQueue.h"

#include "tests/unit/windows/TestWindow.h"

struct TestQueue::Impl {
  TestWindow window;
};

TestQueue::TestQueue(std::function<void(unsigned)> handler)
    : m_impl(new Impl{TestWindow(std::move(handler))}) {}

TestQueue::~TestQueue() = default;

void TestQueue::post(unsigned number) { m_impl->window.post(number); }
