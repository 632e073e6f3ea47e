// SPDX-License-Identifier: MIT
// A host with GLib in its process. The library looks it up at run time, so it is loaded before the first
// test.
#include "tests/unit/TestQueue.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

namespace {

using IdleAdd = unsigned (*)(int (*)(void*), void*);

IdleAdd loadIdleAdd() {
  void* glib = dlopen("libglib-2.0.so.0", RTLD_NOW | RTLD_GLOBAL);
  if (glib == nullptr) {
    std::fprintf(stderr, "no GLib: %s\n", dlerror());
    std::exit(1);
  }
  return reinterpret_cast<IdleAdd>(dlsym(glib, "g_idle_add"));
}

const IdleAdd g_idleAdd = loadIdleAdd();

}  // namespace

struct TestQueue::Impl {
  std::function<void(unsigned)> handler;
};

namespace {

// Owns what it needs: it may be dispatched after the queue object's end.
struct Message {
  std::function<void(unsigned)> handler;
  unsigned number;
};

int dispatch(void* argument) {
  const std::unique_ptr<Message> message(static_cast<Message*>(argument));
  message->handler(message->number);
  return 0;  // once
}

}  // namespace

TestQueue::TestQueue(std::function<void(unsigned)> handler) : m_impl(new Impl{std::move(handler)}) {}

TestQueue::~TestQueue() = default;

void TestQueue::post(unsigned number) { g_idleAdd(&dispatch, new Message{m_impl->handler, number}); }
