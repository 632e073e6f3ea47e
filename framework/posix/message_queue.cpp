// SPDX-License-Identifier: MIT
#include "framework/platform/message_queue.h"

#include <dlfcn.h>
#include <unistd.h>

#include <atomic>
#include <cstdint>
#include <ctime>
#include <mutex>

#include "framework/platform/worker_thread.h"

namespace platform {
namespace {

// GLib's functions by their binary interface; nothing of GLib is needed to build or to run without it.
struct GLib {
  void* (*threadDefault)();
  void* (*processDefault)();
  int (*isOwner)(void* context);
  int (*pending)(void* context);
  int (*iteration)(void* context, int mayBlock);
};

template <class Function>
bool find(void* library, const char* name, Function& function) noexcept {
  function = reinterpret_cast<Function>(::dlsym(library, name));
  return function != nullptr;
}

bool findAll(void* library, GLib& glib) noexcept {
  return find(library, "g_main_context_get_thread_default", glib.threadDefault) &&
         find(library, "g_main_context_default", glib.processDefault) &&
         find(library, "g_main_context_is_owner", glib.isOwner) &&
         find(library, "g_main_context_pending", glib.pending) &&
         find(library, "g_main_context_iteration", glib.iteration);
}

// True once per 100 ms: the look-up costs far more than the question that callers spin on.
bool timeToLook() noexcept {
  static constinit std::atomic<std::int64_t> next{0};
  std::timespec now{};
  ::clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
  const std::int64_t milliseconds = std::int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1'000'000;
  if (milliseconds < next.load(std::memory_order_relaxed)) return false;
  next.store(milliseconds + 100, std::memory_order_relaxed);
  return true;
}

// The host's GLib, or null while its process has none.
const GLib* glib() noexcept {
  static constinit std::atomic<const GLib*> found{nullptr};
  static constinit GLib functions{};
  static constinit std::mutex mutex;
  if (const GLib* known = found.load(std::memory_order_acquire)) return known;
  // Only callers' threads look: the loader's lock may be held by a caller that waits for this very worker.
  if (WorkerThread::isCurrent() || !timeToLook()) return nullptr;

  const std::lock_guard lock(mutex);
  if (found.load(std::memory_order_relaxed) == nullptr) {
    // Among the names that everybody sees, else where a plug-in of the host loaded it for itself. A library
    // found that way is never released, so the functions stay.
    void* const library = ::dlopen("libglib-2.0.so.0", RTLD_LAZY | RTLD_NOLOAD);
    GLib candidate{};
    if (!findAll(RTLD_DEFAULT, candidate) && (library == nullptr || !findAll(library, candidate)))
      return nullptr;
    functions = candidate;
    found.store(&functions, std::memory_order_release);
  }
  return &functions;
}

bool isFirstThread() noexcept { return ::gettid() == ::getpid(); }

// The context whose messages are the calling thread's own; null when it has none.
void* contextOfThread(const GLib& glib) noexcept {
  if (void* const pushed = glib.threadDefault()) return pushed;
  void* const common = glib.processDefault();
  return glib.isOwner(common) || isFirstThread() ? common : nullptr;
}

bool iterate() {
  const GLib* const host = glib();
  void* const context = host != nullptr ? contextOfThread(*host) : nullptr;
  return context != nullptr && host->iteration(context, 0) != 0;
}

}  // namespace

bool isWindow(WindowHandle /*window*/) noexcept { return false; }

bool messageWaiting() noexcept {
  const GLib* const host = glib();
  void* const context = host != nullptr ? contextOfThread(*host) : nullptr;
  return context != nullptr && host->pending(context) != 0;
}

void takeAndDispatchMessage() { iterate(); }

// The sources of a context have neither windows nor numbers, so each of them is within any range.
bool dispatchOneMessage(WindowHandle /*window*/, std::uint32_t /*firstMessage*/,
                        std::uint32_t /*lastMessage*/) {
  return iterate();
}

}  // namespace platform
