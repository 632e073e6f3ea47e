// SPDX-License-Identifier: MIT
// The queue at a server, without a window: what messages would do is done when something has changed.
#pragma once

#include <fstream>
#include <iterator>
#include <utility>

#include "hosts/qxbrowse/jobs/TransferQueue.h"
#include "tests/hosts/qxbrowse/LaneTest.h"
#include "tests/support/ScratchFolder.h"

namespace browse {

class TheTransferQueue : public LaneTest {
 protected:
  TheTransferQueue() {
    server.put(R"({"/pub/b.txt": "two", "/pub/c.txt": "three", "/pub/large": {"size": 700000, "seed": 5}})");
  }

  [[nodiscard]] Transfer download(const std::string& name, std::optional<std::uint64_t> size = {}) const {
    return {Direction::download, {"/pub/" + name, size, {}}, scratch.path() / name, {}, access, size};
  }
  [[nodiscard]] Transfer upload(const std::string& name) const {
    return {Direction::upload, {"/pub/" + name, {}, {}}, scratch.path() / name, {}, access, {}};
  }
  [[nodiscard]] std::string local(const std::string& name) const {
    std::ifstream file(scratch.path() / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }
  [[nodiscard]] std::size_t localCount() const {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(scratch.path()),
                                                  std::filesystem::directory_iterator()));
  }
  [[nodiscard]] TransferState state(std::size_t row) const { return queue->list()[row].state; }
  [[nodiscard]] const std::string& textOf(std::size_t row) const { return queue->list()[row].text; }

  void runAll() {
    letters.readUntil([this] { return !queue->hasWork() || queue->isPaused(); });
  }

  // What a message would do in the middle of a transfer: some data has come, no more does.
  void inTheMiddle(std::function<void()> action) {
    server.reconfigure(R"({"rules": [{"on": "RETR", "argument": "/pub/large",
                           "do": [{"normal": {"stall_after": 300000, "gate": "half"}}]}]})");
    meanwhile = std::move(action);
  }

  void onChange() {
    if (onAnyChange) onAnyChange();
    const bool isHalf = queue->list()[0].progress.moved.value_or(0) >= 200000;
    if (meanwhile && isHalf) std::exchange(meanwhile, nullptr)();
    if (meanwhileOf) meanwhileOf(queue->list()[0]);
  }

  const testing_support::ScratchFolder scratch;
  const std::shared_ptr<const qx::Login> access = std::make_shared<qx::Login>(login());
  std::function<void()> meanwhile;
  std::function<void(const TransferRow&)> meanwhileOf;  // of the first one, at each change
  std::function<void()> onAnyChange;
  std::vector<std::string> ended;
  int pauses = 0;
  std::optional<TransferQueue> queue{
      std::in_place, exports(),
      TransferQueue::Events{
          .letters = {.post = post(), .readUntil = [this](const auto& isOver) { letters.readUntil(isOver); }},
          .changed = [this] { onChange(); },
          .ended = [this](const TransferRow& row) { ended.push_back(row.transfer.remote.path); },
          .paused = [this](const TransferRow&) { ++pauses; }}};
};

}  // namespace browse
