// SPDX-License-Identifier: MIT
#include "tests/support/AllocationWatch.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

namespace testing_support {

namespace {

thread_local AllocationWatch* t_watch = nullptr;
std::atomic<long> g_blocksHeld{0};
std::atomic<long> g_bytesHeld{0};
std::atomic<long> g_mostBytesHeld{0};
std::atomic<const std::string_view*> g_sought{nullptr};
std::atomic<long> g_found{0};

// Stands in front of every block.
struct Header {
  alignas(std::max_align_t) std::size_t size;
};

// What an earlier owner has left behind must not pass for the text of this one.
void prepare(void* memory, std::size_t size) noexcept {
  constexpr int kUnwritten = 0xA5;
  if (g_sought.load() != nullptr) std::memset(memory, kUnwritten, size);
}

void count(std::size_t size) noexcept {
  ++g_blocksHeld;
  const long held = g_bytesHeld += static_cast<long>(size);
  long most = g_mostBytesHeld.load();
  while (held > most && !g_mostBytesHeld.compare_exchange_weak(most, held)) continue;
}

void search(const char* memory, std::size_t size) noexcept {
  const std::string_view* const sought = g_sought.load();
  if (sought == nullptr) return;
  if (std::string_view(memory, size).find(*sought) != std::string_view::npos) ++g_found;
}

}  // namespace

long blocksHeld() noexcept { return g_blocksHeld; }

MostBytesHeld::MostBytesHeld() noexcept : m_before(g_bytesHeld) { g_mostBytesHeld = m_before; }

long MostBytesHeld::beyond() const noexcept { return g_mostBytesHeld - m_before; }

FreedMemorySearch::FreedMemorySearch(std::string_view text) noexcept : m_text(text) {
  g_found = 0;
  g_sought = &m_text;
}

FreedMemorySearch::~FreedMemorySearch() { g_sought = nullptr; }

long FreedMemorySearch::found() const noexcept { return g_found; }

AllocationWatch::AllocationWatch(Look look) : m_look(std::move(look)) { t_watch = this; }

AllocationWatch::~AllocationWatch() { t_watch = nullptr; }

bool AllocationWatch::allowsNext() {
  AllocationWatch* const self = std::exchange(t_watch, nullptr);
  const bool allowed = m_look(m_next++);
  t_watch = self;
  return allowed;
}

}  // namespace testing_support

namespace {

void* allocate(std::size_t size) noexcept {
  testing_support::AllocationWatch* const watch = testing_support::t_watch;
  if (watch != nullptr && !watch->allowsNext()) return nullptr;
  auto* const header =
      static_cast<testing_support::Header*>(std::malloc(sizeof(testing_support::Header) + size));
  if (header == nullptr) return nullptr;
  header->size = size;
  testing_support::count(size);
  testing_support::prepare(header + 1, size);
  return header + 1;
}

void* allocateOrThrow(std::size_t size) {
  void* const memory = allocate(size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

void release(void* memory) noexcept {
  if (memory == nullptr) return;
  --testing_support::g_blocksHeld;
  auto* const header = static_cast<testing_support::Header*>(memory) - 1;
  testing_support::g_bytesHeld -= static_cast<long>(header->size);
  testing_support::search(static_cast<const char*>(memory), header->size);
  std::free(header);
}

}  // namespace

void* operator new(std::size_t size) { return allocateOrThrow(size); }
void* operator new[](std::size_t size) { return allocateOrThrow(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void operator delete(void* memory) noexcept { release(memory); }
void operator delete[](void* memory) noexcept { release(memory); }
void operator delete(void* memory, std::size_t) noexcept { release(memory); }
void operator delete[](void* memory, std::size_t) noexcept { release(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { release(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { release(memory); }
