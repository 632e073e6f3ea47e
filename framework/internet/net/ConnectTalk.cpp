// SPDX-License-Identifier: MIT
#include "framework/internet/net/ConnectTalk.h"

#include <algorithm>
#include <array>

#include "framework/internet/net/InternetLimits.h"
#include "framework/internet/net/ServerName.h"
#include "framework/text/AsciiText.h"

namespace internet {

namespace {

constexpr std::string_view kProtocol = "HTTP/1.";
constexpr std::string_view kEnd = "\r\n";

// Lines may end in a bare LF. The head ends with two line ends, so two more bytes are its own in any case,
// and one behind a line end.
std::size_t certainlyMissing(std::string_view head) noexcept {
  const bool mayEnd = head.ends_with('\n') || head.ends_with("\n\r");
  return mayEnd ? 1 : 2;
}

bool isWhole(std::string_view head) noexcept { return head.ends_with("\n\n") || head.ends_with("\n\r\n"); }

secret::Text base64(std::string_view bytes) {
  constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  secret::Text text;
  for (; !bytes.empty(); bytes.remove_prefix(std::min<std::size_t>(3, bytes.size()))) {
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < 3; ++i) {
      bits = bits << 8 | (i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0u);
    }
    std::array<char, 4> digits{};
    for (std::size_t i = 0; i < 4; ++i) {
      digits[i] = i <= bytes.size() ? kDigits[bits >> (18 - 6 * i) & 63] : '=';
    }
    text.append({digits.data(), digits.size()});
    secret::wipe(digits.data(), digits.size());
  }
  return text;
}

secret::Text credentials(const platform::Proxy& proxy) {
  if (proxy.user.empty() && proxy.password.empty()) return {};
  return base64(secret::Text(proxy.user).append(":").append(proxy.password.view()).view());
}

}  // namespace

secret::Text proxyAuthorization(const platform::Proxy& proxy) {
  const secret::Text known = credentials(proxy);
  if (known.empty()) return {};
  return secret::Text("Proxy-Authorization: Basic ").append(known.view()).append(kEnd);
}

std::string proxyStatusLine(const platform::Proxy& proxy, std::string_view head) {
  const std::string line(head.substr(0, head.find_first_of(kEnd)));
  return secret::masked(secret::masked(line, credentials(proxy).view()), proxy.password.view());
}

ConnectTalk::ConnectTalk(const platform::Proxy& proxy, const std::string& host, std::uint16_t port)
    : ProxyTalk(proxy) {
  const std::string place = placeText(host, port);
  secret::Text lines("CONNECT " + place + " HTTP/1.1\r\nHost: " + place + "\r\n");
  say(lines.append(proxyAuthorization(proxy).view()).append(kEnd), certainlyMissing({}));
}

void ConnectTalk::heard(std::string_view answer) {
  head_ += answer;
  if (!kProtocol.starts_with(std::string_view(head_).substr(0, kProtocol.size()))) {
    misunderstand("It does not speak HTTP");
  }
  if (taken_ + head_.size() > kMaxProxyAnswer) misunderstand("Its answer does not end");
  if (!isWhole(head_)) return listen(certainlyMissing(head_));
  judge();
}

// Answers of 100 and the like come ahead of the one that counts.
void ConnectTalk::judge() {
  int status = 0;
  if (!ascii::readNumber(std::string_view(head_).substr(kProtocol.size() + 2, 3), status)) {
    misunderstand("It does not speak HTTP");
  }
  if (status / 100 == 2) return;
  if (status / 100 != 1) refuse(proxyStatusLine(proxy(), head_));
  taken_ += head_.size();
  head_.clear();
  listen(certainlyMissing(head_));
}

}  // namespace internet
