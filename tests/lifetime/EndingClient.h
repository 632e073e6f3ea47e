// SPDX-License-Identifier: MIT
// A client whose host may end it at each call that the host gets: in every hook, on whatever thread, and in
// the messages that an operation dispatches.
#pragma once

#include <cstddef>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "Src/QXIP.h"

namespace lifetime {

// One of the calls that a host gets: the `nth` of that name (from 1) within an operation.
struct Moment {
  std::string call;
  int nth = 1;
};

class EndingClient;

// What the host's calls do. Outlives the client, which may be gone before an operation returns.
class Host {
 public:
  Host() = default;
  ~Host();
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  // A new client; one that is left over goes.
  EndingClient& renew();
  // Ends what is left of the client. True when the planned moment had ended it.
  bool finish();

  // From now on calls are counted; at the planned one the client goes, on the thread of the call or, with
  // `fromElsewhere`, on another one.
  void watch(const Moment* planned, bool fromElsewhere);

  // A call has come, on any thread. It may have ended the client.
  void called(const char* name);
  [[nodiscard]] std::map<std::string, int> counts() const;

  // The client, unless it has gone.
  [[nodiscard]] EndingClient* client() const;
  // Takes the memory of a client that has gone. Where nothing else watches it, it stays for a while, filled
  // with what crashes whoever follows it.
  void bury(void* memory, std::size_t size);

  QXErrorInfo record{};

 private:
  EndingClient* taken() noexcept;
  [[nodiscard]] bool gravesAreUntouched();

  mutable std::mutex m_mutex;
  EndingClient* m_client = nullptr;
  std::map<std::string, int> m_counts;
  const Moment* m_planned = nullptr;
  bool m_watching = false;
  bool m_fromElsewhere = false;
  bool m_ended = false;
  std::thread m_elsewhere;
  std::vector<std::pair<unsigned char*, std::size_t>> m_graves;
};

// Every hook does what the library's own does, and then tells the host.
class EndingClient final : public TQXIP {
 public:
  explicit EndingClient(Host& host) : TQXIP(&host.record), m_host(host) {}

  void* DeletingDestructor(std::uint32_t nFlags) override;
  QXBool WipeWith(const char* pszPath, std::uint32_t nPattern, std::uint32_t nRetries) override;
  QXBool OnBeforeDisconnect() override;
  QXBool OnAfterDisconnect() override;
  void OnIPError(std::uint32_t nError, const char* pszText, std::uint32_t* pRetries) override;
  void OnConnect() override;
  void OnDisconnect() override;
  void OnSuccess() override;
  void OnNotify(QXHostValue nValue) override;
  QXBool OnPoll(QXHostValue nPollArg1, QXHostValue nPollArg2, QXHostValue nTransfer,
                QXBool* pbReconnect) override;
  void OnStatus(const char* pszText) override;
  void OnStatusText(const char* pszText) override;
  QXBool FTPReConnect(std::uint32_t nRetries, QXHostValue nValue) override;
  QXBool FTPDestroyFileContent(const char* pszPath, std::uint32_t nMethod, std::uint32_t nRetries,
                               QXHostValue nPollArg1, QXHostValue nPollArg2) override;

 protected:
  ~EndingClient() = default;

 private:
  template <typename Own>
  auto tellAfter(const char* name, Own&& own);

  Host& m_host;
};

}  // namespace lifetime
