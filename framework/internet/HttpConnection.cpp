// SPDX-License-Identifier: MIT
#include "framework/internet/HttpConnection.h"

#include <string>
#include <string_view>
#include <utility>

#include "framework/internet/HttpFile.h"
#include "framework/internet/Raising.h"
#include "framework/internet/http/HttpSite.h"
#include "framework/internet/http/HttpUrl.h"
#include "framework/internet/net/Failure.h"
#include "framework/platform/last_error.h"
#include "framework/text/AsciiText.h"

using internet::HttpSite;

namespace {

constexpr std::string_view kGet = "GET";
constexpr std::string_view kAccept = "Accept:";

// The value of an accept type: hosts hand in whole header lines too.
std::string_view acceptValue(std::string_view entry) {
  const auto blank = [](char c) { return static_cast<unsigned char>(c) <= 0x20; };
  const auto trim = [&] {
    while (!entry.empty() && blank(entry.front())) entry.remove_prefix(1);
    while (!entry.empty() && blank(entry.back())) entry.remove_suffix(1);
  };
  trim();
  if (ascii::startsBlindToCase(entry, kAccept)) entry.remove_prefix(kAccept.size());
  trim();
  return entry;
}

// The Accept header of a list; empty for none.
std::string acceptLine(const char* const* types) {
  std::string line;
  for (; types && *types; ++types) {
    line.append(line.empty() ? std::string(kAccept) + ' ' : ", ").append(acceptValue(*types));
  }
  return line;
}

}  // namespace

CHttpConnection::CHttpConnection(std::shared_ptr<HttpSite> site) noexcept : m_site(std::move(site)) {}

CHttpConnection::~CHttpConnection() { Close(); }

CHttpFile* CHttpConnection::OpenRequest(int verb, const char* object, const char* referrer,
                                        std::uintptr_t context, const char* const* acceptTypes,
                                        const char* version, std::uint32_t flags) {
  return OpenRequest(verb == HTTP_VERB_GET ? kGet.data() : "", object, referrer, context, acceptTypes,
                     version, flags);
}

CHttpFile* CHttpConnection::OpenRequest(const char* verb, const char* object, const char*, std::uintptr_t,
                                        const char* const* acceptTypes, const char*, std::uint32_t) {
  const auto site = m_site;
  std::unique_ptr<CHttpFile> file;
  internet::raising([&] {
    const std::string accept = acceptLine(acceptTypes);
    if (!verb || verb != kGet || (!accept.empty() && !internet::HttpExchange::isHeaderLine(accept))) {
      internet::fail(platform::kErrorInvalidParameter);
    }
    const auto exchange = site->open(internet::requestTarget(object ? object : ""));
    if (!accept.empty()) exchange->addHeader(accept);
    file = std::make_unique<CHttpFile>(exchange);
    site->notify(internet::kStatusHandleCreated);
  });
  return file.release();
}

void CHttpConnection::Close() noexcept {
  const auto site = m_site;
  site->close();
}
