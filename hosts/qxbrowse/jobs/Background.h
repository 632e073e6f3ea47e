// SPDX-License-Identifier: MIT
// What the library does without dispatching messages, a listing above all, on a thread of its own, one job
// after the other. The thread has a client of its own, which stays connected.
//
// All functions are called on one thread, the window's, and return at once; cancelling and the end take a
// tenth of a second at most, whatever the server does. Portable: how answers get to the window is the
// caller's.
#pragma once

#include <atomic>
#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <type_traits>

#include "hosts/shared/EndableClient.h"
#include "hosts/shared/ListingWatch.h"

namespace browse {

// What a job works with.
struct Session {
  qx::Client& client;          // with the operations that EndableClient watches
  hosts::ListingWatch& watch;  // of its protocol
  // The job was cancelled. One that makes several calls asks between them.
  const std::atomic<bool>& isStopped;
};

class Background {
 public:
  using Letter = std::function<void()>;
  // Runs a letter on the window's thread, later.
  using Post = std::function<void(Letter)>;
  using Line = std::function<void(const char*)>;

  // `line` gets the protocol, on another thread than this.
  Background(qx::Exports exports, Post post, Line line = nullptr);
  // Nothing comes from it any more.
  ~Background();
  Background(const Background&) = delete;
  Background& operator=(const Background&) = delete;

  // Logs in; the jobs behind it work there. `then` gets a qx::Result<qx::Done>.
  template <typename Then>
  void connect(qx::Login login, Then then) {
    add([this, login = std::move(login)] { return logIn(login); }, std::move(then));
  }
  template <typename Then>
  void disconnect(Then then) {
    add([this] { return logOut(); }, std::move(then));
  }

  // `work(session)` on the thread; it answers a qx::Result, which `then` gets as a letter. One that was
  // cancelled has a report that says so. Behind a cancel the client logs in again.
  template <typename Work, typename Then>
  void run(Work work, Then then) {
    using Answer = std::invoke_result_t<Work&, const Session&>;
    const auto task = [this, work = std::move(work)]() mutable -> Answer {
      const qx::Result<qx::Done> ready = beReady();
      return ready ? work(Session{m_client.client(), m_watch, m_isStopped})
                   : Answer(std::nullopt, ready.report());
    };
    add(task, std::move(then));
  }

  // The job that runs; those behind it come next.
  void cancel();
  // Those that wait as well: they answer as cancelled.
  void cancelAll();
  // Whether an answer is to come.
  [[nodiscard]] bool isBusy() const noexcept { return *m_answersToCome > 0; }

 private:
  // Answers what is to happen on the window's thread.
  using Job = std::function<Letter()>;

  template <typename Task, typename Then>
  void add(Task task, Then then) {
    ++*m_answersToCome;
    add([this, task = std::move(task), then = std::move(then),
         toCome = std::weak_ptr(m_answersToCome)]() mutable {
      return Letter([answer = tryTo(task), then = std::move(then), toCome = std::move(toCome)]() mutable {
        const std::shared_ptr<int> alive = toCome.lock();
        if (alive == nullptr) return;
        --*alive;
        then(std::move(answer));
      });
    });
  }
  void add(Job job);

  template <typename Task>
  auto tryTo(Task& task) -> std::invoke_result_t<Task&> {
    using Answer = std::invoke_result_t<Task&>;
    qx::Report failure{true, m_isStopped, 0, "cancelled", {}};
    try {
      if (!m_isStopped) {
        Answer answer = task();
        if (answer || !m_isStopped) return answer;
        failure.message = answer.report().message;
      }
    } catch (const std::exception& problem) {
      failure.text = problem.what();
    }
    failure.isCancelled = m_isStopped;
    return Answer(std::nullopt, std::move(failure));
  }

  void runJobs();
  std::optional<Job> next();
  void cancelRunning();
  qx::Result<qx::Done> logIn(const qx::Login& login);
  qx::Result<qx::Done> logOut();
  qx::Result<qx::Done> beReady();

  const qx::Exports m_exports;
  const Post m_post;
  const Line m_line;

  hosts::EndableClient m_client;  // this and the next two: the thread's
  std::optional<qx::Login> m_login;
  hosts::ListingWatch m_watch;  // also of the library's threads, while that one waits for them

  const std::shared_ptr<int> m_answersToCome = std::make_shared<int>(0);  // the window's thread's
  std::atomic<bool> m_isStopped = false;                                  // the running job is cancelled

  std::mutex m_lock;
  std::condition_variable m_changed;
  std::deque<Job> m_jobs;  // guarded, and so is the rest
  bool m_isRunning = false;
  bool m_isOver = false;
  std::size_t m_unwanted = 0;  // so many of the first jobs are cancelled before they run
  std::thread m_thread;        // last: all else is there when it starts
};

}  // namespace browse
