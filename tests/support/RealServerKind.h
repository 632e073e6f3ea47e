// SPDX-License-Identifier: MIT
// The real servers, how a client asks each of them, and all the ways in which they speak TLS.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <string>
#include <tuple>
#include <vector>

// Kind of the server, and whether the mode is passive. Behind a kind, and a blank, stands what the host's
// text has in front of the name, and its options: "vsftpd ftps://;tls=1.2".
using ServerAndMode = std::tuple<const char*, bool>;

// The system's TLS under Wine resumes no session, and ends at 1.2.
inline constexpr bool kResumesSessions = std::filesystem::path::preferred_separator == '/';

struct ServerKind {
  explicit ServerKind(const std::string& text)
      : kind(text.substr(0, text.find(' '))),
        scheme(text.substr(std::min(kind.size() + 1, text.size()))),
        options(scheme.substr(std::min(scheme.find(';'), scheme.size()))) {
    scheme.resize(scheme.size() - options.size());
  }
  // For the fixture: data connections must resume the login's session wherever the system can do that.
  [[nodiscard]] std::string script() const {
    if (scheme.empty()) return "{}";
    const std::string implicit = scheme == "ftps://" ? "true" : "false";
    const std::string reuse = kResumesSessions ? "true" : "false";
    return R"({"tls": {"implicit": )" + implicit + R"(, "reuse": )" + reuse + "}}";
  }
  // The newest that both sides have.
  [[nodiscard]] std::string version() const { return kResumesSessions && options.empty() ? "1.3" : "1.2"; }

  // pure-ftpd gives out none over TLS 1.3, and asks for none.
  [[nodiscard]] bool givesSessions() const { return kind != "pure-ftpd" || version() != "1.3"; }

  std::string kind;
  std::string scheme;
  std::string options;
};

inline constexpr const char* kServerKinds[] = {"vsftpd", "pyftpdlib", "proftpd", "pure-ftpd",
                                               "inetutils-ftpd"};

// Every server that speaks TLS, explicit and implicit where it has both, in each version of the system's;
// some in active mode. pyftpdlib is not: it lets go of an earlier data connection once more, by the number of
// its socket, which is another client's by then, and that client hears nothing any more.
inline auto inEveryEncryption() {
  std::vector<ServerAndMode> all = {
      {"vsftpd ftpes://;tls=1.2", true},    {"vsftpd ftps://;tls=1.2", false},
      {"proftpd ftpes://;tls=1.2", true},   {"proftpd ftps://;tls=1.2", false},
      {"pure-ftpd ftpes://;tls=1.2", true}, {"pyftpdlib ftpes://;tls=1.2", true}};
  if (kResumesSessions) {
    all.insert(all.end(), {{"vsftpd ftpes://", false}, {"vsftpd ftps://", true}});
    all.insert(all.end(), {{"proftpd ftpes://", false}, {"proftpd ftps://", true}});
    all.insert(all.end(), {{"pure-ftpd ftpes://", false}, {"pyftpdlib ftpes://", true}});
  }
  return testing::ValuesIn(all);
}

inline std::string serverAndModeName(const testing::TestParamInfo<ServerAndMode>& instance) {
  std::string name = std::get<0>(instance.param);
  std::erase_if(name, [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); });
  return name + (std::get<1>(instance.param) ? "Passive" : "Active");
}
