// SPDX-License-Identifier: MIT
// The finder of a listing or query: the object's own where it has one, else that of a private connection.
#pragma once

#include "Src/HostCall.h"
#include "Src/PrivateConnection.h"

class FinderLoan {
 public:
  explicit FinderLoan(TQXIP& client) noexcept : m_own(client), m_client(client) {}

  // The finder of the field named `field`; null when a private connection could not be made, which is for
  // `errand` alone.
  [[nodiscard]] CFtpFileFind* Take(const char* field, const internet::FtpErrand& errand, Raised* pRaised) {
    CFtpFileFind* finder = HostCall([&] { return m_client.GetFinder(0, field); });
    if (finder != nullptr) return finder;
    return m_own.OpenWithFinder(errand, pRaised) ? m_own.Finder() : nullptr;
  }

 private:
  PrivateConnection m_own;
  TQXIP& m_client;
};
