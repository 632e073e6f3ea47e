// SPDX-License-Identifier: MIT
// Several copies count as done although nothing, or not all, has arrived: one that the host stopped, one
// between two local paths, a refused upload. Who deletes the source afterwards watches for them.
#pragma once

// Watches the calling thread's copies and uploads for as long as it lives; those of a worker are told by the
// operation that waited for it. What a host's own function in a slot calls done is the host's word.
class CopyWatch {
 public:
  CopyWatch() noexcept;
  ~CopyWatch();
  CopyWatch(const CopyWatch&) = delete;
  CopyWatch& operator=(const CopyWatch&) = delete;

  // Something that counts as done is not known to be whole at its destination.
  static void TellDoubt() noexcept;
  [[nodiscard]] bool Doubted() const noexcept { return m_doubted; }

 private:
  CopyWatch* const m_outer;
  bool m_doubted = false;
};
