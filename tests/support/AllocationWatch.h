// SPDX-License-Identifier: MIT
// The allocations of one thread, seen by a test as they happen: it can make one fail, or look around at one;
// and what is left in the memory that all threads free. A program that has this compiles AllocationWatch.cpp,
// which replaces its operator new.
#pragma once

#include <functional>
#include <string_view>

namespace testing_support {

// How many blocks of operator new the program holds.
[[nodiscard]] long blocksHeld() noexcept;

// The most bytes of operator new that the program holds at a time while this lives, beyond those that it held
// before. One at a time.
class MostBytesHeld {
 public:
  MostBytesHeld() noexcept;
  [[nodiscard]] long beyond() const noexcept;

 private:
  const long m_before;
};

// Looks for a text in every block that any thread frees while it lives. One at a time.
class FreedMemorySearch {
 public:
  // The text outlives this object.
  explicit FreedMemorySearch(std::string_view text) noexcept;
  ~FreedMemorySearch();
  FreedMemorySearch(const FreedMemorySearch&) = delete;
  FreedMemorySearch& operator=(const FreedMemorySearch&) = delete;

  // Blocks so far that had it.
  [[nodiscard]] long found() const noexcept;

 private:
  const std::string_view m_text;
};

// Watches the thread that makes it, until it ends. One at a time.
class AllocationWatch {
 public:
  // Asked at each allocation, which are counted from 0. False: that one fails. Its own are not watched.
  using Look = std::function<bool(int number)>;

  explicit AllocationWatch(Look look);
  ~AllocationWatch();
  AllocationWatch(const AllocationWatch&) = delete;
  AllocationWatch& operator=(const AllocationWatch&) = delete;

  [[nodiscard]] bool allowsNext();

 private:
  Look m_look;
  int m_next = 0;
};

// Runs `work` again and again, the first time with the first of its allocations failing, then with the
// second, and calls `check` after each of these runs, until a run has no such allocation. How many there
// were.
template <typename Work, typename Check>
int failEachAllocation(Work&& work, Check&& check) {
  for (int failing = 0;; ++failing) {
    bool failed = false;
    {
      const AllocationWatch watch([&](int number) {
        if (number == failing) failed = true;
        return number != failing;
      });
      work();
    }
    if (!failed) return failing;
    check();
  }
}

}  // namespace testing_support
