// SPDX-License-Identifier: MIT
// A client whose hooks note their calls and then do what the library's own do. It looks like a host that has
// put its functions into these slots; all other slots are the library's.
#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "Src/QXIP.h"

class CFtpFileFind;

class RecordingClient final : public TQXIP {
 public:
  explicit RecordingClient(QXErrorInfo* pErrorInfo = nullptr, QXBool bOption = 0);
  ~RecordingClient();

  // The hooks in the order of their calls, with what tells two calls apart: "OnIPError 12002 FTP-Error!".
  [[nodiscard]] std::vector<std::string> calls() const;
  // The message buffer as each of those calls found it.
  [[nodiscard]] std::vector<std::string> messages() const;
  // How many calls start with `hook`.
  [[nodiscard]] std::size_t count(const std::string& hook) const;
  // The message buffer as the first call that starts with `hook` found it; "" without one.
  [[nodiscard]] std::string messageAt(const std::string& hook) const;
  void forget();

  // Set: every named finder is this one (the client does not own it).
  CFtpFileFind* finder = nullptr;
  // What OnPoll answers; the arguments are OnPoll's.
  std::function<QXBool(QXHostValue, QXHostValue, QXHostValue, QXBool*)> poll;
  std::function<void(QXHostValue)> notified;
  // Called by OnConnect and OnDisconnect, on the thread whose connection it is.
  std::function<void()> connected, disconnected;
  std::vector<std::string> statusTexts;

  QXBool OnBeforeDisconnect() override;
  QXBool OnAfterDisconnect() override;
  void OnIPError(std::uint32_t nError, const char* pszText, std::uint32_t* pRetries) override;
  void OnConnect() override;
  void OnDisconnect() override;
  void OnSuccess() override;
  void OnNotify(QXHostValue nValue) override;
  QXBool OnPoll(QXHostValue nPollArg1, QXHostValue nPollArg2, QXHostValue nTransfer,
                QXBool* pbReconnect) override;
  void OnStatusText(const char* pszText) override;
  QXBool FTPReConnect(std::uint32_t nRetries, QXHostValue nValue) override;
  CFtpFileFind* GetFinder(QXHostValue nReserved, const char* pszName) override;

 private:
  void note(std::string call);

  struct Call {
    std::string name;
    std::string message;
  };
  // Hooks come on the threads that do the work.
  mutable std::mutex m_mutex;
  std::vector<Call> m_calls;
};
