// SPDX-License-Identifier: MIT
#include "tests/lifetime/EndingClient.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace lifetime {

namespace {

constexpr unsigned char kDead = 0xDD;

}  // namespace

Host::~Host() { static_cast<void>(finish()); }

EndingClient& Host::renew() {
  static_cast<void>(finish());
  const std::lock_guard lock(m_mutex);
  record = {};
  m_counts.clear();
  m_client = new EndingClient(*this);
  return *m_client;
}

bool Host::finish() {
  if (m_elsewhere.joinable()) m_elsewhere.join();
  {
    const std::lock_guard lock(m_mutex);
    m_watching = false;
  }
  if (EndingClient* const left = taken()) left->Release();
  EXPECT_TRUE(gravesAreUntouched()) << "the memory of a client was written to that had gone";
  const std::lock_guard lock(m_mutex);
  return std::exchange(m_ended, false);
}

EndingClient* Host::taken() noexcept {
  const std::lock_guard lock(m_mutex);
  return std::exchange(m_client, nullptr);
}

void Host::watch(const Moment* planned, bool fromElsewhere) {
  const std::lock_guard lock(m_mutex);
  m_planned = planned;
  m_fromElsewhere = fromElsewhere;
  m_watching = true;
}

void Host::called(const char* name) {
  EndingClient* ending = nullptr;
  bool fromElsewhere = false;
  {
    const std::lock_guard lock(m_mutex);
    if (!m_watching) return;
    const int nth = ++m_counts[name];
    if (m_planned == nullptr || m_planned->call != name || m_planned->nth != nth) return;
    m_watching = false;  // what comes now belongs to the end
    m_ended = true;
    fromElsewhere = m_fromElsewhere;
    ending = std::exchange(m_client, nullptr);
  }
  if (fromElsewhere) {
    m_elsewhere = std::thread([ending] { ending->Release(); });
  } else {
    ending->Release();
  }
}

std::map<std::string, int> Host::counts() const {
  const std::lock_guard lock(m_mutex);
  return m_counts;
}

EndingClient* Host::client() const {
  const std::lock_guard lock(m_mutex);
  return m_client;
}

void Host::bury(void* memory, std::size_t size) {
  static const bool isWatched = QX_STORM_SANITIZED != 0 || std::getenv("QX_MEMORY_IS_WATCHED") != nullptr;
  if (isWatched) {
    ::operator delete(memory, size);
    return;
  }
  std::memset(memory, kDead, size);
  const std::lock_guard lock(m_mutex);
  m_graves.emplace_back(static_cast<unsigned char*>(memory), size);
}

bool Host::gravesAreUntouched() {
  const std::lock_guard lock(m_mutex);
  bool untouched = true;
  for (const auto& [memory, size] : std::exchange(m_graves, {})) {
    untouched = untouched && std::count(memory, memory + size, kDead) == std::ptrdiff_t(size);
    ::operator delete(memory, size);
  }
  return untouched;
}

void* EndingClient::DeletingDestructor(std::uint32_t nFlags) {
  Host& host = m_host;
  void* const self = TQXIP::DeletingDestructor(0);
  if ((nFlags & 1) != 0) host.bury(self, sizeof(EndingClient));
  return self;
}

// The library's own comes first; it may call another hook, which ends the client.
template <typename Own>
auto EndingClient::tellAfter(const char* name, Own&& own) {
  Host& host = m_host;
  const auto answer = own();
  host.called(name);
  return answer;
}

QXBool EndingClient::WipeWith(const char* pszPath, std::uint32_t nPattern, std::uint32_t nRetries) {
  return tellAfter("WipeWith", [&] { return TQXIP::WipeWith(pszPath, nPattern, nRetries); });
}

QXBool EndingClient::OnBeforeDisconnect() {
  return tellAfter("OnBeforeDisconnect", [&] { return TQXIP::OnBeforeDisconnect(); });
}

QXBool EndingClient::OnAfterDisconnect() {
  return tellAfter("OnAfterDisconnect", [&] { return TQXIP::OnAfterDisconnect(); });
}

void EndingClient::OnIPError(std::uint32_t nError, const char* pszText, std::uint32_t* pRetries) {
  tellAfter("OnIPError", [&] { return TQXIP::OnIPError(nError, pszText, pRetries), 0; });
}

void EndingClient::OnConnect() {
  tellAfter("OnConnect", [&] { return TQXIP::OnConnect(), 0; });
}

void EndingClient::OnDisconnect() {
  tellAfter("OnDisconnect", [&] { return TQXIP::OnDisconnect(), 0; });
}

void EndingClient::OnSuccess() {
  tellAfter("OnSuccess", [&] { return TQXIP::OnSuccess(), 0; });
}

void EndingClient::OnNotify(QXHostValue nValue) {
  tellAfter("OnNotify", [&] { return TQXIP::OnNotify(nValue), 0; });
}

QXBool EndingClient::OnPoll(QXHostValue nPollArg1, QXHostValue nPollArg2, QXHostValue nTransfer,
                            QXBool* pbReconnect) {
  return tellAfter("OnPoll", [&] { return TQXIP::OnPoll(nPollArg1, nPollArg2, nTransfer, pbReconnect); });
}

void EndingClient::OnStatus(const char* pszText) {
  tellAfter("OnStatus", [&] { return TQXIP::OnStatus(pszText), 0; });
}

void EndingClient::OnStatusText(const char* pszText) {
  tellAfter("OnStatusText", [&] { return TQXIP::OnStatusText(pszText), 0; });
}

QXBool EndingClient::FTPReConnect(std::uint32_t nRetries, QXHostValue nValue) {
  return tellAfter("FTPReConnect", [&] { return TQXIP::FTPReConnect(nRetries, nValue); });
}

QXBool EndingClient::FTPDestroyFileContent(const char* pszPath, std::uint32_t nMethod, std::uint32_t nRetries,
                                           QXHostValue nPollArg1, QXHostValue nPollArg2) {
  return tellAfter("FTPDestroyFileContent", [&] {
    return TQXIP::FTPDestroyFileContent(pszPath, nMethod, nRetries, nPollArg1, nPollArg2);
  });
}

}  // namespace lifetime
