// SPDX-License-Identifier: MIT
// A queue of messages that takes its time to say whether it has some, as one of another process does on a
// busy machine. TestQueue.cpp has loaded GLib.
#include <dlfcn.h>

#include <chrono>

#include "tests/client/HttpMemoryTest.h"

namespace {

// A source that is never ready.
class SlowSource {
 public:
  SlowSource() : m_source(newSource(&kFunctions, kSizeOfSource)) {
    s_looks = 0;
    function<unsigned (*)(void*, void*)>("g_source_attach")(m_source, nullptr);
  }
  ~SlowSource() {
    function<void (*)(void*)>("g_source_destroy")(m_source);
    function<void (*)(void*)>("g_source_unref")(m_source);
  }
  SlowSource(const SlowSource&) = delete;
  SlowSource& operator=(const SlowSource&) = delete;

  [[nodiscard]] static unsigned looks() { return s_looks; }

 private:
  static constexpr unsigned kSizeOfSource = 256;  // GLib's own part is smaller
  static constexpr std::chrono::milliseconds kLook{2};

  struct Functions {
    int (*prepare)(void* source, int* timeout);
    int (*check)(void* source);
    int (*dispatch)(void* source, int (*work)(void*), void* argument);
    void (*finalize)(void* source);
    void (*closure)();
    void (*marshal)();
  };

  template <typename Function>
  static Function function(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_DEFAULT, name));
  }
  static void* newSource(const Functions* functions, unsigned size) {
    return function<void* (*)(const Functions*, unsigned)>("g_source_new")(functions, size);
  }
  static int prepare(void*, int*) {
    ++s_looks;
    testing_support::MemoryNetwork::current().pass(kLook);
    return 0;
  }
  static int check(void*) { return 0; }
  static int dispatch(void*, int (*)(void*), void*) { return 1; }

  static constexpr Functions kFunctions{&prepare, &check, &dispatch, nullptr, nullptr, nullptr};
  static inline unsigned s_looks = 0;

  void* const m_source;
};

// A look that took longer than the time between two made the next one due at once: each chunk had one.
TEST_F(HttpMemoryTest, ASlowQueueIsNotLookedAtBehindEachChunk) {
  server.answer = head(100'000) + std::string(100'000, 'x');
  const SlowSource source;
  EXPECT_EQ(fetchUnasked(), 1u);
  EXPECT_GT(SlowSource::looks(), 0u);
  EXPECT_LT(SlowSource::looks(), 5u) << "no other time has gone by";
}

}  // namespace
