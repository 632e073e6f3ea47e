// SPDX-License-Identifier: MIT
#include "Src/TInternetSession.h"

#include "Src/OperationGuard.h"
#include "Src/QXIP.h"
#include "Src/SlotRetry.h"
#include "framework/internet/net/InternetErrors.h"

TInternetSession::TInternetSession(QXErrorInfo* pErrorInfo, TQXIP* pQXIP, StatusDispatcher dispatcher)
    : CInternetSession(nullptr, 1, 0, nullptr, nullptr, 0),
      m_owner{pQXIP, pErrorInfo},
      m_dispatcher(dispatcher) {}

TInternetSession::~TInternetSession() { Close(); }

void TInternetSession::OnStatusCallback(std::uintptr_t context, std::uint32_t status, void* information,
                                        std::uint32_t informationLength) {
  if (m_dispatcher != nullptr) m_dispatcher(m_owner, context, status, information, informationLength);
}

bool TInternetSession::WantsProtocol() const noexcept {
  // A thread that is asked to stop may have outlived its client.
  if (platform::stopRequested()) return false;
  return m_owner.pQXIP != nullptr && !HasOwnSlot(*m_owner.pQXIP, Slot::OnStatus);
}

void TInternetSession::OnProtocolLine(const char* line) {
  if (!WantsProtocol()) return;
  const AFX_MAINTAIN_STATE2 moduleState(AfxGetAppModuleState());
  m_owner.pQXIP->OnStatus(line);
}

void DispatchStatus(const SessionOwner& owner, std::uintptr_t /*context*/, std::uint32_t status,
                    void* /*information*/, std::uint32_t /*informationLength*/) {
  if (owner.pQXIP == nullptr || owner.pErrorInfo == nullptr) return;
  // A cancelled worker closes its sockets on its way out; that is no news about the client's connection.
  if (platform::stopRequested()) return;
  const AFX_MAINTAIN_STATE2 moduleState(AfxGetAppModuleState());
  switch (status) {
    case internet::kStatusNameResolved:
    case internet::kStatusRequestComplete:
      owner.pQXIP->OnSuccess();
      break;
    case internet::kStatusConnecting:
      owner.pQXIP->OnConnect();
      break;
    case internet::kStatusClosing:
    case internet::kStatusClosed:
      owner.pQXIP->OnDisconnect();
      break;
    default:
      break;
  }
}

TInternetSession* NewSession(TQXIP& client) {
  auto* session = new TInternetSession(client.m_pErrorInfo, &client, &DispatchStatus);
  session->EnableStatusCallback();
  return session;
}
