// SPDX-License-Identifier: MIT
#include "framework/internet/net/SocksTalk.h"

#include <array>
#include <utility>

#include "framework/platform/resolver.h"

namespace internet {

namespace {

constexpr char kVersion = 5;
constexpr char kLoginVersion = 1;
constexpr char kNoLogin = 0;
constexpr char kUserAndPassword = 2;
constexpr char kNoMethod = '\xff';
constexpr char kConnect = 1;
constexpr std::size_t kMostOfText = 255;  // its length is one byte
constexpr std::size_t kPortBytes = 2;

enum AddressKind : char { kV4 = 1, kName = 3, kV6 = 4 };

constexpr std::size_t bytesOf(AddressKind kind) noexcept { return kind == kV4 ? 4 : 16; }

constexpr std::array<std::string_view, 9> kOutcomes{
    "",
    "General failure",
    "The connection is not allowed by its rules",
    "The network cannot be reached",
    "The host cannot be reached",
    "The host has refused the connection",
    "The time to live is over",
    "It does not make connections",
    "It does not know this kind of address",
};

std::string outcomeText(char outcome) {
  const auto number = static_cast<unsigned char>(outcome);
  return number < kOutcomes.size() ? std::string(kOutcomes[number]) : "Failure " + std::to_string(number);
}

void appendByte(secret::Text& bytes, char byte) { bytes.append({&byte, 1}); }

void appendCounted(secret::Text& bytes, std::string_view text) {
  appendByte(bytes, static_cast<char>(text.size()));
  bytes.append(text);
}

// An address goes as such, anything else is a name for the proxy to look up.
void appendHost(secret::Text& bytes, const std::string& host) {
  const auto addresses = platform::numericAddresses(host, 0);
  if (addresses.empty()) {
    appendByte(bytes, kName);
    return appendCounted(bytes, host);
  }
  const AddressKind kind = addresses.front().v6 ? kV6 : kV4;
  appendByte(bytes, kind);
  for (std::size_t i = 0; i < bytesOf(kind); ++i) {
    appendByte(bytes, static_cast<char>(addresses.front().host[i]));
  }
}

}  // namespace

SocksTalk::SocksTalk(const platform::Proxy& proxy, std::string host, std::uint16_t port)
    : ProxyTalk(proxy), host_(std::move(host)), port_(port) {
  if (host_.size() > kMostOfText) refuse("SOCKS takes no host name of more than 255 bytes");
  if (proxy.user.size() > kMostOfText || proxy.password.view().size() > kMostOfText) {
    refuse("SOCKS takes no user name or password of more than 255 bytes");
  }
  greet();
}

void SocksTalk::greet() {
  constexpr std::array kWithoutLogin{kVersion, char{1}, kNoLogin};
  constexpr std::array kWithLogin{kVersion, char{2}, kNoLogin, kUserAndPassword};
  next_ = &SocksTalk::takeMethod;
  say(secret::Text(hasLogin() ? std::string_view(kWithLogin.data(), kWithLogin.size())
                              : std::string_view(kWithoutLogin.data(), kWithoutLogin.size())),
      2);
}

void SocksTalk::takeMethod(std::string_view answer) {
  if (answer[0] != kVersion) misunderstand("It does not speak SOCKS 5");
  if (answer[1] == kNoLogin) return request();
  if (answer[1] == kUserAndPassword && hasLogin()) return logIn();
  if (answer[1] != kNoMethod) misunderstand("It wants a way to log in that was not offered");
  refuse(hasLogin() ? "It takes no user name and password" : "It wants a user name and a password");
}

void SocksTalk::logIn() {
  secret::Text bytes;
  appendByte(bytes, kLoginVersion);
  appendCounted(bytes, proxy().user);
  appendCounted(bytes, proxy().password.view());
  next_ = &SocksTalk::takeLogin;
  say(std::move(bytes), 2);
}

void SocksTalk::takeLogin(std::string_view answer) {
  if (answer[1] != 0) refuse("It has refused the user name or the password");
  request();
}

void SocksTalk::request() {
  constexpr std::array kHead{kVersion, kConnect, char{0}};
  secret::Text bytes(std::string_view(kHead.data(), kHead.size()));
  appendHost(bytes, host_);
  appendByte(bytes, static_cast<char>(port_ >> 8));
  appendByte(bytes, static_cast<char>(port_ & 0xff));
  next_ = &SocksTalk::takeOutcome;
  say(std::move(bytes), 2);
}

// Some proxies say no more than this when they refuse.
void SocksTalk::takeOutcome(std::string_view answer) {
  if (answer[0] != kVersion) misunderstand("It does not speak SOCKS 5");
  if (answer[1] != 0) refuse(outcomeText(answer[1]));
  next_ = &SocksTalk::takeAddressKind;
  listen(3);
}

// A reserved byte, the kind of the address that the proxy speaks from, and the first byte of that.
void SocksTalk::takeAddressKind(std::string_view answer) {
  next_ = &SocksTalk::takeAddress;
  switch (answer[1]) {
    case kV4:
    case kV6:
      return listen(bytesOf(static_cast<AddressKind>(answer[1])) - 1 + kPortBytes);
    case kName:
      return listen(static_cast<unsigned char>(answer[2]) + kPortBytes);
    default:
      misunderstand("It has answered with an unknown kind of address");
  }
}

// Nobody needs to know it.
void SocksTalk::takeAddress(std::string_view) {}

}  // namespace internet
