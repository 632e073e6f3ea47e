// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/jobs/ListingAside.h"

#include <memory>
#include <thread>

#include "hosts/shared/Transfers.h"

namespace browse {

std::optional<std::uint64_t> ListingAside::sizeOf(const std::string& file, const qx::Login& server) {
  const auto isOver = std::make_shared<bool>(false);  // the letter may be read when this has returned
  std::optional<std::uint64_t> size;
  std::thread aside([&] {
    size = list(file, server);
    m_letters.post([isOver] { *isOver = true; });
  });
  m_isRunning = true;
  m_letters.readUntil([&isOver] { return *isOver; });
  m_isRunning = false;
  m_client.end();  // where the letters have ended first
  aside.join();
  return size;
}

std::optional<std::uint64_t> ListingAside::list(const std::string& file, const qx::Login& server) {
  if (!m_client.make(m_exports, {}) || !m_client.client().setLogin(server)) return {};
  const auto size = hosts::listedSize(m_client.client(), file);
  m_client.free();
  return size;
}

}  // namespace browse
