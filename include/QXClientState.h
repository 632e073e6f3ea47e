// SPDX-License-Identifier: MIT
// The part of qx::Client (QXClient.h) that the library knows the addresses of: the error record, the hooks,
// and the functions that turn calls of the library into calls of the host's lambdas. C++20.
#pragma once

#include <atomic>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>

#include "QXHooks.h"
#include "QXLibrary.h"

namespace qx {

// What a lambda wants of the operation that asks it. The third wish of OnPoll, another run, is not among
// them: the library's answer does not tell how that one went.
enum class Poll { goOn, cancel };

// How far a transfer is, in bytes; of one to the server where the login `tellsUploads`: the system has taken
// so many, of which some may be under way still. The last that a write tells is the size of its last part.
struct Progress {
  bool isKnown = false;  // false: no data has moved yet, or none is told of
  std::uint64_t transferred = 0;
  std::uint64_t total = 0;
};

// The lambdas of a client. Empty ones cost nothing: the library's own functions stay in the table.
struct Lambdas {
  // Asked on the thread that called the operation, again and again while it waits: by read(), write(),
  // append(), copy(), download(), upload(), move(), remove(), removeDirectory() and fetch().
  std::function<Poll(const Progress&)> poll = nullptr;
  // The protocol line by line, on the thread that does the work; no password is ever in it.
  std::function<void(const char* line)> line = nullptr;
  // Each file of a listing, on the calling thread.
  std::function<void(const QXDirEntry& entry)> entry = nullptr;
  // Each internet error, also of attempts that are repeated; on the thread that does the work.
  std::function<void(std::uint32_t number, const char* text)> error = nullptr;
  // The object's connection, or one of an operation's own, is being made or closed; on the thread that does
  // the work.
  std::function<void()> connected = nullptr;
  std::function<void()> disconnected = nullptr;

  bool isAny() const noexcept { return poll || line || entry || error || connected || disconnected; }
};

namespace detail {

class State : public std::enable_shared_from_this<State> {
 public:
  explicit State(Exports exports) : m_exports(std::move(exports)) {}
  State(const State&) = delete;
  State& operator=(const State&) = delete;

  bool Create() {
    TQXIPIFInt* const client = m_exports.create(&m_record);
    if (client != nullptr) QXInstallHooks(client, &m_hooks, this);
    m_client = client;
    return client != nullptr;
  }

  // Ends the client. What it calls while it ends still finds this object, so the destructor would be too
  // late.
  void Free() noexcept {
    if (TQXIPIFInt* const client = m_client.exchange(nullptr)) m_exports.free(client);
  }

  TQXIPIFInt* Client() const noexcept { return m_client; }

  void Use(Lambdas lambdas) {
    m_lambdas = std::move(lambdas);
    if (m_client == nullptr) return;
    QXClientTable& table = m_hooks.Table;
    const QXClientTable& own = *m_hooks.pOriginal;
    table.OnPoll = m_lambdas.isAny() ? &OnPoll : own.OnPoll;
    table.OnStatus = m_lambdas.line ? &OnStatus : own.OnStatus;
    table.OnNotify = m_lambdas.entry ? &OnNotify : own.OnNotify;
    table.OnIPError = m_lambdas.error ? &OnIPError : own.OnIPError;
    table.OnConnect = m_lambdas.connected ? &OnConnect : own.OnConnect;
    table.OnDisconnect = m_lambdas.disconnected ? &OnDisconnect : own.OnDisconnect;
  }

  // Before an operation: each one has a report and a progress of its own.
  void Begin() noexcept {
    m_record = {};
    m_cancelled = false;
    static_cast<void>(TakeThrown());  // outside of the operations of qx::Client, where nobody could get it
    TQXIPIFInt* const client = m_client;
    client->m_Transfer = {};
    client->m_szMessage[0] = '\0';
  }

  // After it. Throws what a lambda has thrown.
  Report End() {
    const TQXIPIFInt* const client = m_client;
    Report report{(m_record.bSet & 0xFF) != 0, m_cancelled, m_record.nError, m_record.szText,
                  client != nullptr ? client->m_szMessage : ""};
    if (const std::exception_ptr thrown = TakeThrown()) std::rethrow_exception(thrown);
    return report;
  }

 private:
  // The state of a call from the library; it lives on when the lambda frees the client.
  static std::shared_ptr<State> Of(const TQXIPIFInt* client) {
    return static_cast<State*>(QXHooksOf(client)->pContext)->shared_from_this();
  }

  // No exception may go through the library: the first one is kept until the operation has ended. OnPoll,
  // which is there with any lambda, cancels it where that can be done.
  template <typename Call>
  void Guard(Call&& call) noexcept {
    try {
      call();
    } catch (...) {
      const std::lock_guard lock(m_thrownLock);
      if (!m_thrown) m_thrown = std::current_exception();
    }
  }

  bool HasThrown() {
    const std::lock_guard lock(m_thrownLock);
    return m_thrown != nullptr;
  }

  std::exception_ptr TakeThrown() {
    const std::lock_guard lock(m_thrownLock);
    return std::exchange(m_thrown, nullptr);
  }

  Poll Ask(const Progress& progress) const { return m_lambdas.poll ? m_lambdas.poll(progress) : Poll::goOn; }

  // The worker writes each counter whole, the total before what belongs to it.
  static Progress ProgressAt(QXHostValue address) noexcept {
    if (address == 0) return {};
    auto& counters = *reinterpret_cast<QXTransfer*>(address);
    Progress progress;
    progress.isKnown = std::atomic_ref(counters.bValid).load(std::memory_order_acquire) != 0;
    progress.transferred = std::atomic_ref(counters.nTransferred).load(std::memory_order_acquire);
    progress.total = std::atomic_ref(counters.nTotal).load(std::memory_order_acquire);
    return progress;
  }

  static QXBool QX_CALL OnPoll(TQXIPIFInt* client, QXHostValue, QXHostValue, QXHostValue transfer, QXBool*) {
    const std::shared_ptr<State> state = Of(client);
    Poll answer = Poll::cancel;
    state->Guard([&] {
      if (!state->HasThrown()) answer = state->Ask(ProgressAt(transfer));
    });
    if (answer == Poll::cancel) state->m_cancelled = true;
    return answer == Poll::cancel ? 1 : 0;
  }

  static void QX_CALL OnStatus(TQXIPIFInt* client, const char* line) {
    const std::shared_ptr<State> state = Of(client);
    state->Guard([&] { state->m_lambdas.line(line); });
  }

  static void QX_CALL OnNotify(TQXIPIFInt* client, QXHostValue entry) {
    const std::shared_ptr<State> state = Of(client);
    state->Guard([&] { state->m_lambdas.entry(*reinterpret_cast<const QXDirEntry*>(entry)); });
  }

  static void QX_CALL OnIPError(TQXIPIFInt* client, std::uint32_t number, const char* text,
                                std::uint32_t* pRetries) {
    const std::shared_ptr<State> state = Of(client);
    state->m_hooks.pOriginal->OnIPError(client, number, text, pRetries);
    state->Guard([&] { state->m_lambdas.error(number, text != nullptr ? text : ""); });
  }

  static void QX_CALL OnConnect(TQXIPIFInt* client) {
    const std::shared_ptr<State> state = Of(client);
    state->m_hooks.pOriginal->OnConnect(client);
    state->Guard([&] { state->m_lambdas.connected(); });
  }

  static void QX_CALL OnDisconnect(TQXIPIFInt* client) {
    const std::shared_ptr<State> state = Of(client);
    state->m_hooks.pOriginal->OnDisconnect(client);
    state->Guard([&] { state->m_lambdas.disconnected(); });
  }

  const Exports m_exports;
  QXErrorInfo m_record{};
  QXHooks m_hooks{};
  std::atomic<TQXIPIFInt*> m_client = nullptr;  // a lambda may free it on a worker's thread
  Lambdas m_lambdas;
  bool m_cancelled = false;
  std::mutex m_thrownLock;
  std::exception_ptr m_thrown;
};

}  // namespace detail

}  // namespace qx
