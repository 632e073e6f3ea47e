// SPDX-License-Identifier: MIT
#include "hosts/shared/EndableClient.h"

namespace hosts {
namespace {

// The library knows of an operation from its first instructions on. No client is freed before them.
constexpr std::chrono::milliseconds kSurelyBegun{100};

// Whose calls are watched on this thread: none within an operation, which may call others, and on the
// library's own threads.
constinit thread_local EndableClient* t_watched = nullptr;

}  // namespace

// An operation on the thread that uses the client.
class EndableClient::Call {
 public:
  Call()
      : m_watched(std::exchange(t_watched, nullptr)),
        m_mayBegin(m_watched == nullptr || m_watched->enter()) {}
  ~Call() { t_watched = m_watched; }
  Call(const Call&) = delete;
  Call& operator=(const Call&) = delete;

  [[nodiscard]] bool mayBegin() const noexcept { return m_mayBegin; }
  // Whether its answer counts: the client is there still.
  [[nodiscard]] bool finish() { return m_watched == nullptr || m_watched->leave(); }

 private:
  EndableClient* const m_watched;
  const bool m_mayBegin;
};

template <typename Answer, typename... Arguments,
          Answer (QX_CALL* QXClientTable::*Slot)(TQXIPIFInt*, Arguments...)>
struct EndableClient::Watched<Slot> {
  static Answer QX_CALL call(TQXIPIFInt* client, Arguments... arguments) {
    const auto original = QXHooksOf(client)->pOriginal->*Slot;
    Call call;
    if (!call.mayBegin()) return Answer();
    const Answer answer = original(client, arguments...);
    return call.finish() ? answer : Answer();
  }
};

template <auto... Slots>
void EndableClient::watch() {
  QXClientTable& table = QXHooksOf(m_client->get())->Table;
  ((table.*Slots = &Watched<Slots>::call), ...);
}

qx::Result<qx::Done> EndableClient::make(const qx::Exports& exports, qx::Lambdas lambdas) {
  qx::Result<qx::Client> made = qx::Client::make(exports);
  if (!made) return {std::nullopt, made.report()};
  m_client = std::move(made).value();
  m_client->use(std::move(lambdas));
  using Table = QXClientTable;
  watch<&Table::FTPConnect, &Table::FTPGetDirectory, &Table::FTPCountFolderItems, &Table::FTPFileExists,
        &Table::FTPDirExist, &Table::FTPFileSize, &Table::FTPRmvFile, &Table::FTPRmvDir, &Table::FTPCreateDir,
        &Table::FTPCreateNewDir, &Table::FTPRenameFile>();
  t_watched = this;
  return {qx::Done{}, {}};
}

void EndableClient::end() {
  std::unique_lock lock(m_lock);
  m_isEnded = true;
  m_left.wait_until(lock, m_entered + kSurelyBegun, [this] { return !m_isInside; });
  if (m_isInside) const qx::Client freed = std::move(*m_client);
}

void EndableClient::rearm() {
  const std::lock_guard lock(m_lock);
  m_isEnded = false;
}

bool EndableClient::enter() {
  const std::lock_guard lock(m_lock);
  m_isInside = !m_isEnded;
  m_entered = std::chrono::steady_clock::now();
  return m_isInside;
}

bool EndableClient::leave() {
  const std::lock_guard lock(m_lock);
  m_isInside = false;
  m_left.notify_all();
  return !m_isEnded;
}

}  // namespace hosts
