// SPDX-License-Identifier: MIT
// A session: settings and status notifications for the connections made on it. Nothing here touches the
// network except GetFtpConnection. A session and everything made on it is used by one thread at a time; the
// waits inside watch the calling thread's stop token (platform/stop_token.h) and leave by OperationStopped.
#pragma once

#include <cstdint>
#include <memory>

#include "framework/internet/http/HttpUrl.h"
#include "framework/internet/net/FtpErrand.h"
#include "framework/internet/net/InternetLimits.h"

class CFtpConnection;
class CHttpConnection;

class CInternetSession {
 public:
  // `accessType` 0 = pre-configured. Agent, proxy and bypass may be null. No I/O.
  explicit CInternetSession(const char* agent = nullptr, std::uintptr_t context = 1,
                            std::uint32_t accessType = 0, const char* proxy = nullptr,
                            const char* proxyBypass = nullptr, std::uint32_t flags = 0);
  // Close(). A derived class whose OnStatusCallback must still see the closing notifications calls Close() in
  // its own destructor.
  virtual ~CInternetSession();
  CInternetSession(const CInternetSession&) = delete;
  CInternetSession& operator=(const CInternetSession&) = delete;

  bool EnableStatusCallback(bool enable = true) noexcept;

  // Connects and logs in: resolves the name, waits for the greeting, USER, PASS (and ACCT never). What the
  // server offers (FEAT) is asked later, once per server, by what needs to know it. A null or empty user logs
  // in as "anonymous"; port 0 is the default port. The caller deletes the result (before or after this
  // session). The server's text is read as net/ServerName.h says. Throws CInternetException*: 12007, 12029,
  // 12002, 12030, 12031, 12014 (530), 12015, 87 for a bad argument. See FtpErrand.h.
  CFtpConnection* GetFtpConnection(const char* server, const char* user = nullptr,
                                   const char* password = nullptr, std::uint16_t port = 21,
                                   bool passive = false, const internet::FtpErrand& errand = {});

  // A web server to make requests to; port 0 is the default port. No I/O: what is wrong with the server shows
  // in the requests. User and password are not used. The caller deletes the result (before or after this
  // session). Throws CInternetException*: 87 for a null or empty name.
  CHttpConnection* GetHttpConnection(const char* server, std::uint16_t port = internet::kDefaultHttpPort,
                                     const char* user = nullptr, const char* password = nullptr);

  // Sets one of the kOption... numbers, for connections made from now on. False with the last error 87 for
  // any other.
  bool SetOption(std::uint32_t option, std::uint32_t value) noexcept;

  // Closes every connection and request made on this session that is still open (50, 51, 70 for each). Never
  // throws.
  void Close() noexcept;

  void SetTimeouts(const internet::Timeouts& timeouts) noexcept;
  [[nodiscard]] const internet::Timeouts& GetTimeouts() const noexcept;
  [[nodiscard]] std::uintptr_t GetContext() const noexcept;

  // Called, while enabled, on the thread that does the work, holding no lock. `information` is a
  // NUL-terminated text for 10 and 11 and null with length 0 for all others. Speaks of control connections
  // only.
  virtual void OnStatusCallback(std::uintptr_t context, std::uint32_t status, void* information,
                                std::uint32_t informationLength);

  // The lines of the protocol (net/ProtocolLog.h), one by one, as OnStatusCallback is called, and of file
  // connections' requests, too; in the process's code page, without a line end. Asked before each.
  [[nodiscard]] virtual bool WantsProtocol() const noexcept;
  virtual void OnProtocolLine(const char* line);

 private:
  struct Impl;
  std::shared_ptr<Impl> m_impl;
  friend class CFtpConnection;
};

namespace internet {

// Replaces the time-outs that later sessions of this process start with; {} brings the usual ones back.
void setTimeoutsForTesting(const Timeouts& timeouts);

}  // namespace internet
