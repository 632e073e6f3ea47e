// SPDX-License-Identifier: MIT
// A host that is not linked with GLib, and one of whose plug-ins brings it along later, for itself alone.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include "framework/platform/message_queue.h"
#include "framework/platform/worker_thread.h"

namespace {

constexpr char kGLib[] = "libglib-2.0.so.0";

using platform::messageWaiting;

TEST(MessageQueueWithoutGLib, IsEmpty) {
  ASSERT_EQ(::dlopen(kGLib, RTLD_LAZY | RTLD_NOLOAD), nullptr);
  EXPECT_FALSE(messageWaiting());
  platform::takeAndDispatchMessage();
  EXPECT_FALSE(platform::dispatchOneMessage(nullptr, 0, 0));
  EXPECT_FALSE(platform::isWindow(nullptr));
  EXPECT_EQ(::dlopen(kGLib, RTLD_LAZY | RTLD_NOLOAD), nullptr);
}

TEST(MessageQueueWithoutGLib, FindsItOnceItIsThere) {
  EXPECT_FALSE(messageWaiting());
  void* const library = ::dlopen(kGLib, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(library, nullptr) << ::dlerror();
  using IdleAdd = unsigned (*)(int (*)(void*), void*);
  const auto idleAdd = reinterpret_cast<IdleAdd>(::dlsym(library, "g_idle_add"));
  ASSERT_NE(idleAdd, nullptr);
  int handled = 0;
  const auto handler = [](void* count) {
    ++*static_cast<int*>(count);
    return 0;
  };
  idleAdd(handler, &handled);
  while (!messageWaiting()) platform::yieldProcessor();  // the next look is a moment away
  platform::takeAndDispatchMessage();
  EXPECT_EQ(handled, 1);
  EXPECT_FALSE(messageWaiting());
}

}  // namespace
