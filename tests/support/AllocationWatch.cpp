// SPDX-License-Identifier: MIT
#include "tests/support/AllocationWatch.h"

#include <atomic>
#include <cstdlib>
#include <new>
#include <utility>

namespace testing_support {

namespace {

thread_local AllocationWatch* t_watch = nullptr;
std::atomic<long> g_blocksHeld{0};

}  // namespace

long blocksHeld() noexcept { return g_blocksHeld; }

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
  void* const memory = std::malloc(size != 0 ? size : 1);
  if (memory != nullptr) ++testing_support::g_blocksHeld;
  return memory;
}

void* allocateOrThrow(std::size_t size) {
  void* const memory = allocate(size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

void release(void* memory) noexcept {
  if (memory != nullptr) --testing_support::g_blocksHeld;
  std::free(memory);
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
