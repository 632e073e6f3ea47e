// SPDX-License-Identifier: MIT
// A web server as a session knows it. It does not touch the network: each request makes a connection.
#pragma once

#include <cstdint>
#include <memory>

#include "framework/internet/net/InternetErrors.h"

class CHttpFile;
class CInternetSession;

namespace internet {
class HttpSite;
}

class CHttpConnection {
 public:
  enum Verb : int { HTTP_VERB_GET = 1 };  // of the verbs there are, the one that is carried out

  ~CHttpConnection();  // Close()
  CHttpConnection(const CHttpConnection&) = delete;
  CHttpConnection& operator=(const CHttpConnection&) = delete;

  // A request for `object` (null or empty: "/"), see requestTarget(). `acceptTypes` ends with a null; its
  // entries, each with or without "Accept:" in front, become one Accept header. The flags change nothing:
  // nothing is cached, and no redirect is followed. The caller deletes the result, before or after this
  // object. Throws CInternetException*: 12019 when closed, 87 for any verb but GET and for a type that is no
  // header's value.
  CHttpFile* OpenRequest(int verb, const char* object, const char* referrer = nullptr,
                         std::uintptr_t context = 1, const char* const* acceptTypes = nullptr,
                         const char* version = nullptr, std::uint32_t flags = internet::kFlagExistingConnect);
  CHttpFile* OpenRequest(const char* verb, const char* object, const char* referrer = nullptr,
                         std::uintptr_t context = 1, const char* const* acceptTypes = nullptr,
                         const char* version = nullptr, std::uint32_t flags = internet::kFlagExistingConnect);

  // Closes its requests, then itself (70). May be called twice, and after the session is gone. Never throws;
  // keeps the last error.
  void Close() noexcept;

 private:
  friend class CInternetSession;
  explicit CHttpConnection(std::shared_ptr<internet::HttpSite> site) noexcept;
  std::shared_ptr<internet::HttpSite> m_site;
};
