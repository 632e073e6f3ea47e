// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/jobs/TransferQueue.h"

#include <utility>

#include "hosts/shared/TransferProgress.h"

namespace browse {
namespace {

using std::chrono::steady_clock;

constexpr std::chrono::milliseconds kBetweenLooks{100};  // at how far a transfer is
// An operation that has not asked for so long is one that never does.
constexpr std::chrono::milliseconds kAsksNoMore{250};

TransferState stateOf(const hosts::Outcome& outcome) {
  switch (outcome.state) {
    case hosts::Outcome::State::done:
      return TransferState::done;
    case hosts::Outcome::State::cancelled:
      return TransferState::cancelled;
    case hosts::Outcome::State::failed:
      break;
  }
  return TransferState::failed;
}

hosts::Outcome notMoved(const std::string& why) {
  return {.state = hosts::Outcome::State::failed, .text = why + "; nothing was moved"};
}

qx::Result<bool> isTaken(qx::Client& client, const Transfer& transfer) {
  if (transfer.direction == Direction::upload) return client.fileExists(transfer.remote.path);
  if (transfer.direction == Direction::copy) return client.fileExists(transfer.copy);
  std::error_code ignored;
  return {std::filesystem::is_regular_file(transfer.local, ignored), {}};
}

// What has come since the user was asked, or is another entry of the queue, stays.
std::optional<std::string> whyTaken(qx::Client& client, const Transfer& transfer) {
  if (transfer.mayReplace) return {};
  const qx::Result<bool> taken = isTaken(client, transfer);
  if (!taken) return taken.report().text;
  return *taken ? std::optional<std::string>(hosts::kHasCome) : std::nullopt;
}

hosts::Outcome copyOnServer(qx::Client& client, const Transfer& transfer) {
  const auto copied = client.copy(transfer.remote.path, transfer.copy);
  if (copied) return {};
  return {.state = hosts::Outcome::State::failed,
          .text = copied.report().text + "; a part of it may be on the server as " + transfer.copy};
}

// What the library said of a client that was freed to end it is no reason for the user.
hosts::Outcome asCancelled(const hosts::Outcome& outcome) {
  const auto left = outcome.text.find("; ");
  return {.state = hosts::Outcome::State::cancelled,
          .text = "cancelled" + (left == std::string::npos ? "" : outcome.text.substr(left))};
}

}  // namespace

// The transfer under way. It is on the stack below whatever the library dispatches.
class TransferQueue::Running {
 public:
  Running(TransferQueue& queue, Transfer transfer)
      : m_queue(queue), m_transfer(std::move(transfer)), m_listing(queue.m_exports, queue.m_events.letters) {}

  hosts::Outcome run() {
    auto made = qx::Client::make(m_queue.m_exports);
    if (!made) return notMoved(made.report().text);
    m_client = std::move(made).value();
    m_client->use({.poll = [this](const qx::Progress& progress) { return poll(progress); },
                   .line = m_queue.m_events.line});
    static_cast<void>(m_client->setLogin(login()));
    const hosts::Outcome outcome = move();
    return m_isCancelled && !outcome ? asCancelled(outcome) : outcome;
  }

  void cancel() {
    m_isCancelled = true;
    if (m_listing.isRunning() || steady_clock::now() - m_askedAt > kAsksNoMore) freeClient();
  }
  // Also what has come of a download is gone then: the process may end before run() does.
  void end() {
    m_isCancelled = true;
    freeClient();
    if (m_part) m_part->drop();
  }

 private:
  hosts::Outcome move() {
    if (const auto why = whyTaken(*m_client, m_transfer)) return notMoved(*why);
    m_figures.begin({}, m_transfer.size, steady_clock::now());
    switch (m_transfer.direction) {
      case Direction::upload:
        return upload();
      case Direction::copy:
        return copyOnServer(*m_client, m_transfer);
      case Direction::download:
        break;
    }
    return download();
  }

  hosts::Outcome upload() {
    const auto listedSize = [this](const std::string& file) {
      return m_listing.sizeOf(file, *m_transfer.server);
    };
    return hosts::upload(*m_client, m_transfer.local, m_transfer.remote.path, listedSize);
  }

  hosts::Outcome download() {
    std::error_code error;
    std::filesystem::create_directories(m_transfer.local.parent_path(), error);
    if (error) return notMoved(error.message());
    const auto ifThere = m_transfer.mayReplace ? hosts::IfThere::replace : hosts::IfThere::keep;
    return hosts::download(*m_client, m_transfer.remote, m_part.emplace(m_transfer.local, ifThere));
  }

  // A copy on the server would tell its bytes twice, on both ways.
  [[nodiscard]] qx::Login login() const {
    qx::Login login = *m_transfer.server;
    login.tellsUploads = m_transfer.direction == Direction::upload;
    return login;
  }

  // What runs on it fails.
  void freeClient() {
    m_listing.end();
    if (m_client) const qx::Client freed = std::move(*m_client);
  }

  qx::Poll poll(const qx::Progress& progress) {
    m_askedAt = steady_clock::now();
    if (progress.isKnown && m_askedAt - m_lookedAt >= kBetweenLooks) look(progress);
    return m_isCancelled ? qx::Poll::cancel : qx::Poll::goOn;
  }

  void look(const qx::Progress& progress) {
    m_lookedAt = m_askedAt;
    m_figures.moved(progress.transferred, m_askedAt);
    const hosts::ProgressFigures figures = m_figures.at(m_askedAt);
    m_queue.m_list.show({figures.file.done, figures.rate, figures.file.left});
    m_queue.tellOfChange();
  }

  TransferQueue& m_queue;
  const Transfer m_transfer;
  std::optional<qx::Client> m_client;
  std::optional<hosts::Part> m_part;
  ListingAside m_listing;
  hosts::TransferProgress m_figures{1, m_transfer.size};
  steady_clock::time_point m_askedAt;  // at first never: the look at the target asks nobody
  steady_clock::time_point m_lookedAt;
  bool m_isCancelled = false;
};

TransferQueue::TransferQueue(qx::Exports exports, Events events)
    : m_exports(std::move(exports)), m_events(std::move(events)) {}

TransferQueue::~TransferQueue() { *m_self = nullptr; }

void TransferQueue::tellOfChange() const {
  if (m_events.changed) m_events.changed();
}

void TransferQueue::add(std::vector<Transfer> transfers) {
  m_list.add(std::move(transfers));
  tellOfChange();
  beginSoon();
}

// Never within the caller, who may be in the middle of a message of the transfer that runs.
void TransferQueue::beginSoon() {
  m_events.letters.post([self = m_self] {
    if (*self != nullptr) (*self)->runNext();
  });
}

void TransferQueue::runNext() {
  if (m_running != nullptr || m_isPaused || m_isOver) return;
  const Transfer* const next = m_list.begin();
  if (next == nullptr) return;
  hosts::Outcome outcome;
  {
    Running running(*this, *next);
    m_running = &running;
    tellOfChange();
    outcome = running.run();
    m_running = nullptr;
  }
  finish(outcome);
}

void TransferQueue::finish(const hosts::Outcome& outcome) {
  const std::size_t row = m_list.end(stateOf(outcome), outcome.text);
  m_isPaused = outcome.isDiskFull;
  tellOfChange();
  if (m_events.ended) m_events.ended(m_list[row]);
  if (m_isPaused && m_events.paused) m_events.paused(m_list[row]);
  if (m_isOver) return m_events.letters.post(std::move(m_tellOver));
  beginSoon();
}

void TransferQueue::cancel() {
  if (m_running != nullptr) m_running->cancel();
}

void TransferQueue::cancel(std::size_t row) {
  if (row < m_list.size() && m_list.isRunning(row)) return cancel();
  m_list.cancelWaiting(row);
  tellOfChange();
}

void TransferQueue::cancelAll() {
  m_list.cancelWaiting();
  tellOfChange();
  cancel();
}

void TransferQueue::retry(const std::vector<Transfer>& transfers) {
  m_list.retry(transfers);
  tellOfChange();
  resume();
}

void TransferQueue::clearDone() {
  m_list.clearDone();
  tellOfChange();
}

std::string TransferQueue::leftOnServer() const {
  const TransferRow* const row = m_list.running();
  if (row == nullptr || row->transfer.direction == Direction::download) return {};
  return row->transfer.direction == Direction::copy ? row->transfer.copy : row->transfer.remote.path;
}

void TransferQueue::resume() {
  m_isPaused = false;
  beginSoon();
}

void TransferQueue::end(Letter isOver) {
  m_isOver = true;
  m_list.cancelWaiting();
  if (m_running == nullptr) return m_events.letters.post(std::move(isOver));
  m_tellOver = std::move(isOver);
  m_running->end();
}

}  // namespace browse
