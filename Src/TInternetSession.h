// SPDX-License-Identifier: MIT
// The client's session: it forwards the status notifications of its connections to a dispatcher.
#pragma once

#include "QXErrorInfo.h"
#include "framework/internet/InternetSession.h"

class TQXIP;

// What a notification carries back to its client.
struct SessionOwner {
  TQXIP* pQXIP;
  QXErrorInfo* pErrorInfo;
};

using StatusDispatcher = void (*)(const SessionOwner& owner, std::uintptr_t context, std::uint32_t status,
                                  void* information, std::uint32_t informationLength);

class TInternetSession : public CInternetSession {
 public:
  // Without a dispatcher its notifications reach nobody.
  TInternetSession(QXErrorInfo* pErrorInfo, TQXIP* pQXIP, StatusDispatcher dispatcher);
  ~TInternetSession() override;  // closes while its notifications still reach the client

  void OnStatusCallback(std::uintptr_t context, std::uint32_t status, void* information,
                        std::uint32_t informationLength) override;
  // To the client's OnStatus, where that is a function of the host's own.
  [[nodiscard]] bool WantsProtocol() const noexcept override;
  void OnProtocolLine(const char* line) override;

 private:
  SessionOwner m_owner;
  StatusDispatcher m_dispatcher;
};

// Keeps the client's connection state and finders in step with the notifications: 11 and 100 are successes,
// 20 is a connection that comes up, 50 and 51 one that goes down. Runs on the thread that does the work.
void DispatchStatus(const SessionOwner& owner, std::uintptr_t context, std::uint32_t status,
                    void* information, std::uint32_t informationLength);

// A session of `client` with its status notifications on. Throws std::bad_alloc.
TInternetSession* NewSession(TQXIP& client);
