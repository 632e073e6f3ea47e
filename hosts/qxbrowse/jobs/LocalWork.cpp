// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/jobs/LocalWork.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

#include "hosts/qxbrowse/jobs/LocalFolder.h"
#include "hosts/qxbrowse/ui/Names.h"

namespace browse {
namespace {

constexpr std::chrono::milliseconds kEndLimit{500};

LocalWork::Answer tryToRead(const std::wstring& path, const Sorting& sorting) {
  try {
    return ItemList(readLocalFolder(path), sorting);
  } catch (const std::system_error& problem) {
    return fromLibrary(problem.code().message());
  }
}

}  // namespace

struct LocalWork::State : std::enable_shared_from_this<State> {
  struct Wanted {
    std::wstring path;
    Sorting sorting;
  };

  State(Post toWindow, Then whenRead) : post(std::move(toWindow)), then(std::move(whenRead)) {}

  // None: it is over.
  std::optional<Wanted> next() {
    std::unique_lock lock(mutex);
    changed.wait(lock, [this] { return isOver || wanted.has_value(); });
    return isOver ? std::nullopt : std::exchange(wanted, std::nullopt);
  }

  void answer(const std::wstring& path, Answer found) {
    const std::lock_guard lock(mutex);
    if (isOver) return;
    post([self = shared_from_this(), path, found = std::move(found)]() mutable {
      if (!self->isOver) self->then(path, std::move(found));  // that changes on this thread alone
    });
  }

  void hasEnded() {
    const std::lock_guard lock(mutex);
    isThreadDone = true;
    changed.notify_all();
  }

  const Post post;  // not used any more when it is over
  const Then then;
  std::mutex mutex;
  std::condition_variable changed;
  std::optional<Wanted> wanted;  // guarded, and so is the rest
  bool isOver = false;
  bool isThreadDone = false;
};

LocalWork::LocalWork(Post post, Then then)
    : m_state(std::make_shared<State>(std::move(post), std::move(then))) {
  std::thread([state = m_state] { runJobs(state); }).detach();
}

LocalWork::~LocalWork() {
  std::unique_lock lock(m_state->mutex);
  m_state->isOver = true;
  m_state->changed.notify_all();
  m_state->changed.wait_for(lock, kEndLimit, [this] { return m_state->isThreadDone; });
}

void LocalWork::read(const std::wstring& path, Sorting sorting) {
  const std::lock_guard lock(m_state->mutex);
  m_state->wanted = State::Wanted{path, sorting};
  m_state->changed.notify_all();
}

void LocalWork::runJobs(const std::shared_ptr<State>& state) {
  while (const auto wanted = state->next())
    state->answer(wanted->path, tryToRead(wanted->path, wanted->sorting));
  state->hasEnded();
}

}  // namespace browse
