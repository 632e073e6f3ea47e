// SPDX-License-Identifier: MIT
#include "framework/internet/HttpFile.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "framework/internet/Raising.h"
#include "framework/internet/http/HttpExchange.h"
#include "framework/internet/net/Failure.h"
#include "framework/platform/last_error.h"
#include "framework/platform/process.h"

using internet::HttpExchange;

namespace {

std::vector<std::string_view> linesOf(std::string_view text) {
  constexpr std::string_view kLineEnd = "\r\n";
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    lines.push_back(text.substr(0, text.find(kLineEnd)));
    text.remove_prefix(std::min(lines.back().size() + kLineEnd.size(), text.size()));
  }
  return lines;
}

void requireRoom(const void* buffer, std::uint32_t size) {
  if (!buffer && size > 0) internet::fail(platform::kErrorInvalidParameter);
}

}  // namespace

CHttpFile::CHttpFile(std::shared_ptr<HttpExchange> exchange) noexcept : m_exchange(std::move(exchange)) {}

CHttpFile::~CHttpFile() { Close(); }

bool CHttpFile::AddRequestHeaders(const char* headers, std::uint32_t flags, std::size_t length) {
  return internet::answer([&] {
    const std::string_view text = headers ? headers : "";
    const auto lines = linesOf(text.substr(0, length));
    for (const std::string_view line : lines) {
      if (!HttpExchange::isHeaderLine(line)) internet::fail(platform::kErrorInvalidParameter);
      const bool onlyNew = (flags & internet::kAddIfNew) != 0;
      if (onlyNew && m_exchange->hasHeader(line)) internet::fail(internet::kHeaderAlreadyExists);
    }
    for (const std::string_view line : lines) m_exchange->addHeader(line);
  });
}

bool CHttpFile::SendRequest() {
  const auto exchange = m_exchange;
  if (!exchange->sendable()) {
    platform::setLastError(platform::kErrorInvalidParameter);
    return false;
  }
  internet::raising([&] {
    if (!platform::startSockets()) internet::fail(platform::lastError());
    exchange->send();
  });
  return true;
}

bool CHttpFile::QueryInfoStatusCode(std::uint32_t& status) const {
  return internet::answer([&] { status = static_cast<std::uint32_t>(m_exchange->head().status); });
}

bool CHttpFile::QueryRawHeaders(std::string& headers) const {
  return internet::answer([&] { headers = m_exchange->head().raw; });
}

std::uint64_t CHttpFile::GetLength() {
  const auto exchange = m_exchange;
  std::uint64_t length = 0;
  internet::raising([&] { length = exchange->available(); });
  return length;
}

std::uint32_t CHttpFile::Read(void* buffer, std::uint32_t size) {
  const auto exchange = m_exchange;
  std::uint32_t count = 0;
  internet::raising([&] {
    requireRoom(buffer, size);
    count = static_cast<std::uint32_t>(exchange->read(static_cast<char*>(buffer), size));
  });
  return count;
}

std::uint32_t CHttpFile::ReadFor(void* buffer, std::uint32_t size, std::chrono::milliseconds patience,
                                 bool& ended) {
  const auto exchange = m_exchange;
  HttpExchange::Piece piece;
  internet::raising([&] {
    requireRoom(buffer, size);
    piece = exchange->readFor(static_cast<char*>(buffer), size, patience);
  });
  ended = piece.ended;
  return static_cast<std::uint32_t>(piece.bytes);
}

void CHttpFile::Close() noexcept {
  const auto exchange = m_exchange;
  exchange->close();
}
