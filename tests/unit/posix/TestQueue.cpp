// SPDX-License-Identifier: MIT
// A host with GLib in its process. The library looks it up at run time, so it is loaded before the first
// test.
#include "tests/unit/TestQueue.h"

#include <dlfcn.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace {

struct GLib {
  void* (*newContext)();
  void (*pushThreadDefault)(void* context);
  void (*popThreadDefault)(void* context);
  void (*unrefContext)(void* context);
  void* (*newIdle)();
  void (*setCallback)(void* source, int (*work)(void*), void* argument, void (*end)(void*));
  unsigned (*attach)(void* source, void* context);
  void (*unrefSource)(void* source);
};

template <class Function>
void find(void* library, const char* name, Function& function) {
  function = reinterpret_cast<Function>(dlsym(library, name));
}

GLib load() {
  void* library = dlopen("libglib-2.0.so.0", RTLD_NOW | RTLD_GLOBAL);
  if (library == nullptr) {
    std::fprintf(stderr, "no GLib: %s\n", dlerror());
    std::exit(1);
  }
  GLib glib{};
  find(library, "g_main_context_new", glib.newContext);
  find(library, "g_main_context_push_thread_default", glib.pushThreadDefault);
  find(library, "g_main_context_pop_thread_default", glib.popThreadDefault);
  find(library, "g_main_context_unref", glib.unrefContext);
  find(library, "g_idle_source_new", glib.newIdle);
  find(library, "g_source_set_callback", glib.setCallback);
  find(library, "g_source_attach", glib.attach);
  find(library, "g_source_unref", glib.unrefSource);
  return glib;
}

const GLib g_glib = load();

// Owns what it needs: it may be dispatched after the queue object's end.
struct Message {
  std::function<void(unsigned)> handler;
  unsigned number;
};

int dispatch(void* argument) {
  const auto* message = static_cast<Message*>(argument);
  message->handler(message->number);
  return 0;  // once
}

void end(void* argument) { delete static_cast<Message*>(argument); }

}  // namespace

// The first thread has GLib's default context, any other gets one of its own.
struct TestQueue::Impl {
  explicit Impl(std::function<void(unsigned)> work) : handler(std::move(work)) {
    if (gettid() == getpid()) return;
    context = g_glib.newContext();
    g_glib.pushThreadDefault(context);
  }
  ~Impl() {
    if (context == nullptr) return;
    g_glib.popThreadDefault(context);
    g_glib.unrefContext(context);
  }
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;

  std::function<void(unsigned)> handler;
  void* context = nullptr;
};

TestQueue::TestQueue(std::function<void(unsigned)> handler) : m_impl(new Impl(std::move(handler))) {}

TestQueue::~TestQueue() = default;

void TestQueue::post(unsigned number) {
  void* const source = g_glib.newIdle();
  g_glib.setCallback(source, &dispatch, new Message{m_impl->handler, number}, &end);
  g_glib.attach(source, m_impl->context);
  g_glib.unrefSource(source);
}
