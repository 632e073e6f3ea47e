// SPDX-License-Identifier: MIT
// Bytes between a socket and what works on them in place.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <utility>

#include "framework/platform/socket.h"

namespace platform {

class ByteWindow {
 public:
  [[nodiscard]] char* data() noexcept { return bytes_.get() + begin_; }
  [[nodiscard]] std::size_t size() const noexcept { return end_ - begin_; }
  [[nodiscard]] bool empty() const noexcept { return begin_ == end_; }
  void drop(std::size_t count) noexcept {
    begin_ += count;
    if (empty()) begin_ = end_ = 0;
  }

  // Room for `count` bytes behind those that are there, which may move: grown() tells that it is taken.
  char* room(std::size_t count) {
    if (capacity_ - end_ < count) move(std::max(capacity_, size() + count));
    return bytes_.get() + end_;
  }
  void grown(std::size_t count) noexcept { end_ += count; }
  void append(const void* bytes, std::size_t count) {
    std::memcpy(room(count), bytes, count);
    grown(count);
  }

  // What has come, at most `count` bytes of it.
  IoStatus fillFrom(Socket& socket, std::size_t count) {
    char* behind = room(count);
    const IoResult received = socket.receive(behind, count);
    if (received.status != IoStatus::done) return received.status;
    grown(received.bytes);
    return received.bytes > 0 ? IoStatus::done : IoStatus::closed;
  }

  IoStatus drainInto(Socket& socket) noexcept {
    while (!empty()) {
      const IoResult sent = socket.send(data(), size());
      if (sent.status != IoStatus::done) return sent.status;
      drop(sent.bytes);
    }
    return IoStatus::done;
  }

 private:
  // To the start of a block of `capacity` bytes, which may be this one.
  void move(std::size_t capacity) {
    if (capacity == capacity_) {
      std::memmove(bytes_.get(), data(), size());
    } else {
      auto larger = std::make_unique_for_overwrite<char[]>(capacity);
      if (!empty()) std::memcpy(larger.get(), data(), size());
      bytes_ = std::move(larger);
      capacity_ = capacity;
    }
    end_ = size();
    begin_ = 0;
  }

  std::unique_ptr<char[]> bytes_;
  std::size_t capacity_ = 0;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
};

}  // namespace platform
