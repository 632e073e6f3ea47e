// SPDX-License-Identifier: MIT
#include "hosts/shared/EndableClient.h"

#include <map>

namespace hosts {
namespace {

// The library knows of an operation from its first instructions on. No client is freed before them.
constexpr std::chrono::milliseconds kSurelyBegun{100};

// The clients whose calls are watched on this thread. The library's own threads have none.
thread_local std::map<const TQXIPIFInt*, EndableClient*> t_watched;
// An operation, which may call others.
constinit thread_local bool t_isInside = false;

EndableClient* watchedOf(const TQXIPIFInt* client) {
  const auto found = t_watched.find(client);
  return found != t_watched.end() && !t_isInside ? found->second : nullptr;
}

}  // namespace

// An operation on the thread that uses the client.
class EndableClient::Call {
 public:
  explicit Call(const TQXIPIFInt* client)
      : m_client(client),
        m_watched(watchedOf(client)),
        m_mayBegin(m_watched == nullptr || m_watched->enter()),
        m_wasInside(std::exchange(t_isInside, true)) {}
  ~Call() {
    t_isInside = m_wasInside;
    if (m_watched != nullptr && !m_watched->isThere()) t_watched.erase(m_client);
  }
  Call(const Call&) = delete;
  Call& operator=(const Call&) = delete;

  [[nodiscard]] bool mayBegin() const noexcept { return m_mayBegin; }
  // Whether its answer counts: nobody has ended it.
  [[nodiscard]] bool finish() { return m_watched == nullptr || m_watched->leave(); }

 private:
  const TQXIPIFInt* const m_client;  // perhaps gone
  EndableClient* const m_watched;
  const bool m_mayBegin;
  const bool m_wasInside;
};

template <typename Answer, typename... Arguments,
          Answer (QX_CALL* QXClientTable::*Slot)(TQXIPIFInt*, Arguments...)>
struct EndableClient::Watched<Slot> {
  static Answer QX_CALL call(TQXIPIFInt* client, Arguments... arguments) {
    const auto original = QXHooksOf(client)->pOriginal->*Slot;
    Call call(client);
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
  t_watched.insert_or_assign(m_client->get(), this);
  return {qx::Done{}, {}};
}

void EndableClient::free() noexcept {
  if (isThere()) t_watched.erase(m_client->get());
  m_client.reset();
}

void EndableClient::giveUpClient() { const qx::Client freed = std::move(*m_client); }

void EndableClient::end() {
  std::unique_lock lock(m_lock);
  m_isEnded = true;
  m_left.wait_until(lock, m_entered + kSurelyBegun, [this] { return !m_isInside; });
  if (m_isInside) giveUpClient();
}

void EndableClient::rearm() {
  const std::lock_guard lock(m_lock);
  m_isEnded = false;
}

// What may not begin any more has to be a failure, also where "no" would be an answer: without a client it
// is.
bool EndableClient::enter() {
  const std::lock_guard lock(m_lock);
  if (m_isEnded) giveUpClient();
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
