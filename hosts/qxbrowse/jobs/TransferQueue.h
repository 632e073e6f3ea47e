// SPDX-License-Identifier: MIT
// Transfers one after the other, on the window's own thread: the library dispatches its messages meanwhile,
// so the window lives, and asks whether to go on, so the user can cancel. What a message starts during a
// transfer, a menu or a dialog, holds its end up, and no second transfer begins within a first.
//
// A client of its own, which has no connection between two of them. One whose target has come since the user
// was asked fails. One that fails does not stop the others; a disk that is full here would fail all of them,
// so the rest waits until somebody calls resume() or retry().
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

#include "hosts/qxbrowse/jobs/ListingAside.h"
#include "hosts/qxbrowse/jobs/TransferList.h"

namespace browse {

class TransferQueue {
 public:
  using Letter = std::function<void()>;

  struct Events {
    // Letters run on this thread, later, from a loop of messages.
    ListingAside::Letters letters;
    // The protocol, on whatever thread.
    std::function<void(const char*)> line = nullptr;
    // Something is to be drawn; of one that runs ten times a second at most, within the transfer.
    Letter changed = nullptr;
    // One has ended.
    std::function<void(const TransferRow& row)> ended = nullptr;
    // A full disk has stopped the queue.
    std::function<void(const TransferRow& row)> paused = nullptr;
  };

  TransferQueue(qx::Exports exports, Events events);
  // REQUIRES: none runs (end()).
  ~TransferQueue();
  TransferQueue(const TransferQueue&) = delete;
  TransferQueue& operator=(const TransferQueue&) = delete;

  void add(std::vector<Transfer> transfers);
  // The one that runs, within moments. The next one begins.
  void cancel();
  void cancel(std::size_t row);
  void cancelAll();
  // Of those in the list that have failed or were cancelled, with what is known of them now.
  void retry(const std::vector<Transfer>& transfers);
  void clearDone();
  void resume();

  // `isOver` is posted when nothing runs any more; nothing begins from now on. Of a download nothing is left
  // when this returns.
  void end(Letter isOver);

  [[nodiscard]] bool isRunning() const { return m_running != nullptr; }
  [[nodiscard]] bool isPaused() const { return m_isPaused; }
  [[nodiscard]] bool hasWork() const { return isRunning() || m_list.count(TransferState::waiting) > 0; }
  [[nodiscard]] const TransferList& list() const { return m_list; }
  // The file of which the server has a part now, or may have; "": none.
  [[nodiscard]] std::string leftOnServer() const;
  TransferList::Changes takeChanges() { return m_list.takeChanges(); }

 private:
  class Running;

  void beginSoon();
  void tellOfChange() const;
  void runNext();
  void finish(const hosts::Outcome& outcome);

  const qx::Exports m_exports;
  const Events m_events;
  TransferList m_list;
  Running* m_running = nullptr;
  bool m_isPaused = false;
  bool m_isOver = false;
  Letter m_tellOver;
  const std::shared_ptr<TransferQueue*> m_self = std::make_shared<TransferQueue*>(this);  // of letters
};

}  // namespace browse
