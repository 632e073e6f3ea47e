// SPDX-License-Identifier: MIT
// A host that is linked with GLib: its sources are the messages.
#include "framework/platform/message_queue.h"

#include <gtest/gtest.h>

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wold-style-cast"  // in its macros
#include <glib.h>
#pragma GCC diagnostic pop

#include <atomic>
#include <functional>
#include <memory>
#include <thread>

#include "framework/platform/worker_thread.h"

namespace {

using platform::dispatchOneMessage;
using platform::messageWaiting;
using platform::takeAndDispatchMessage;
using Context = std::unique_ptr<GMainContext, decltype(&g_main_context_unref)>;

// One message for `context` (null: the default one), as g_idle_add and g_main_context_invoke leave them.
void post(GMainContext* context, std::function<void()> handler) {
  GSource* const source = g_idle_source_new();
  const auto call = [](void* function) -> gboolean {
    (*static_cast<std::function<void()>*>(function))();
    return G_SOURCE_REMOVE;
  };
  const auto destroy = [](void* function) { delete static_cast<std::function<void()>*>(function); };
  g_source_set_callback(source, call, new std::function<void()>(std::move(handler)), destroy);
  g_source_attach(source, context);
  g_source_unref(source);
}

class MessageQueue : public testing::Test {
 protected:
  std::atomic<int> handled{0};
  std::function<void()> count = [this] { ++handled; };

  void TearDown() override {
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
  }
};

TEST_F(MessageQueue, HasNoWindows) { EXPECT_FALSE(platform::isWindow(this)); }

TEST_F(MessageQueue, AskingDoesNotTake) {
  EXPECT_FALSE(messageWaiting());
  post(nullptr, count);
  EXPECT_TRUE(messageWaiting());
  EXPECT_TRUE(messageWaiting());
  EXPECT_EQ(handled, 0);
}

TEST_F(MessageQueue, TakesAndDispatches) {
  post(nullptr, count);
  ASSERT_TRUE(messageWaiting());
  takeAndDispatchMessage();
  EXPECT_EQ(handled, 1);
  EXPECT_FALSE(messageWaiting());
  takeAndDispatchMessage();
  EXPECT_EQ(handled, 1);
}

TEST_F(MessageQueue, DispatchingTellsWhetherThereWasOne) {
  EXPECT_FALSE(dispatchOneMessage(nullptr, 0, 0));
  post(nullptr, count);
  EXPECT_TRUE(dispatchOneMessage(nullptr, 0, 0));
  post(nullptr, count);
  EXPECT_TRUE(dispatchOneMessage(this, 15, 15));
  EXPECT_FALSE(dispatchOneMessage(nullptr, 0, 0));
  EXPECT_EQ(handled, 2);
}

// The host called us from a source of its own: this thread iterates the context already.
TEST_F(MessageQueue, MayBeEnteredAgainByASource) {
  post(nullptr, [this] {
    post(nullptr, count);
    EXPECT_TRUE(messageWaiting());
    takeAndDispatchMessage();
    EXPECT_EQ(handled, 1);
    ++handled;
  });
  EXPECT_TRUE(g_main_context_iteration(nullptr, FALSE));
  EXPECT_EQ(handled, 2);
}

TEST_F(MessageQueue, AWorkerLeavesTheHostsMessagesAlone) {
  post(nullptr, count);
  ASSERT_TRUE(messageWaiting());
  platform::WorkerThread worker;
  ASSERT_TRUE(worker.start(
      [](void*) {
        for (int i = 0; i < 100; ++i) {
          EXPECT_FALSE(messageWaiting());
          EXPECT_FALSE(dispatchOneMessage(nullptr, 0, 0));
          takeAndDispatchMessage();
        }
      },
      nullptr));
  ASSERT_TRUE(worker.ended(std::chrono::minutes(1)));
  EXPECT_EQ(handled, 0);
  EXPECT_TRUE(messageWaiting());
}

TEST_F(MessageQueue, AThreadThatOwnsTheDefaultContextHasItsMessages) {
  post(nullptr, count);
  std::thread([this] {
    ASSERT_TRUE(g_main_context_acquire(nullptr));
    EXPECT_TRUE(messageWaiting());
    takeAndDispatchMessage();
    EXPECT_EQ(handled, 1);
    g_main_context_release(nullptr);
    post(nullptr, count);
    EXPECT_FALSE(messageWaiting());
  }).join();
  EXPECT_TRUE(messageWaiting());
}

TEST_F(MessageQueue, TheFirstThreadYieldsToAnOwner) {
  post(nullptr, count);
  std::atomic<int> step{0};
  std::thread owner([&step] {
    ASSERT_TRUE(g_main_context_acquire(nullptr));
    for (step = 1; step != 2;) platform::yieldProcessor();
    g_main_context_release(nullptr);
  });
  while (step != 1) platform::yieldProcessor();
  EXPECT_FALSE(messageWaiting());
  EXPECT_FALSE(dispatchOneMessage(nullptr, 0, 0));
  EXPECT_EQ(handled, 0);
  step = 2;
  owner.join();
  EXPECT_TRUE(messageWaiting());
}

TEST_F(MessageQueue, AThreadsOwnContextComesFirst) {
  int own = 0;
  post(nullptr, count);
  std::thread([&own] {
    const Context context(g_main_context_new(), &g_main_context_unref);
    g_main_context_push_thread_default(context.get());
    EXPECT_FALSE(messageWaiting());
    post(context.get(), [&own] { ++own; });
    EXPECT_TRUE(messageWaiting());
    takeAndDispatchMessage();
    EXPECT_FALSE(messageWaiting());
    g_main_context_pop_thread_default(context.get());
  }).join();
  EXPECT_EQ(own, 1);
  EXPECT_EQ(handled, 0);
}

}  // namespace
