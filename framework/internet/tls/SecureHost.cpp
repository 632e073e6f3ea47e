// SPDX-License-Identifier: MIT
#include "framework/internet/tls/SecureHost.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <utility>

#include "framework/internet/net/Failure.h"
#include "framework/internet/net/ServerName.h"
#include "framework/platform/last_error.h"
#include "framework/text/AsciiText.h"

namespace internet {

namespace {

struct Scheme {
  std::string_view prefix;
  Encryption encryption;
};

constexpr std::array kFtpSchemes{Scheme{"ftpes://", Encryption::onDemand},
                                 Scheme{"ftps://", Encryption::fromStart}};
constexpr std::array kHttpSchemes{Scheme{"https://", Encryption::fromStart}};

constexpr std::size_t kMostShown = 100;

[[noreturn]] void refuse(std::string_view what, std::string_view shown) {
  std::string text(what);
  text.append(" '").append(shown.substr(0, kMostShown)).append("' behind the server's name");
  fail(platform::kErrorInvalidParameter, std::move(text));
}

std::optional<std::uint8_t> hexDigit(char c) noexcept {
  if (ascii::isDigit(c)) return static_cast<std::uint8_t>(c - '0');
  c = ascii::lowerCase(c);
  if (c < 'a' || c > 'f') return std::nullopt;
  return static_cast<std::uint8_t>(c - 'a' + 10);
}

bool readFingerprint(std::string_view value, TlsPolicy& policy) noexcept {
  constexpr std::string_view kHash = "sha256:";
  if (!ascii::startsBlindToCase(value, kHash)) return false;
  value.remove_prefix(kHash.size());
  auto& bytes = policy.fingerprint.emplace();
  if (value.size() != 2 * bytes.size()) return false;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const auto high = hexDigit(value[2 * i]);
    const auto low = hexDigit(value[2 * i + 1]);
    if (!high || !low) return false;
    bytes[i] = static_cast<std::uint8_t>(*high << 4 | *low);
  }
  return true;
}

bool readVerify(std::string_view value, TlsPolicy& policy) noexcept {
  policy.verifies = false;
  return ascii::equalBlindToCase(value, "no");
}

bool readVersion(std::string_view value, TlsPolicy& policy) noexcept {
  policy.onlyTls12 = true;
  return value == "1.2";
}

struct Option {
  std::string_view name;
  bool (*read)(std::string_view value, TlsPolicy& policy) noexcept;
};

constexpr std::array kOptions{Option{"fingerprint", readFingerprint}, Option{"verify", readVerify},
                              Option{"tls", readVersion}};

class Options {
 public:
  explicit Options(TlsPolicy& policy) noexcept : policy_(policy) {}

  void take(std::string_view text) {
    const std::string_view name = text.substr(0, text.find('='));
    const auto known = std::find_if(kOptions.begin(), kOptions.end(), [name](const Option& option) {
      return ascii::equalBlindToCase(option.name, name);
    });
    if (known == kOptions.end()) refuse("unknown option", text);
    bool& given = given_[static_cast<std::size_t>(known - kOptions.begin())];
    if (std::exchange(given, true)) refuse("second option", text);
    if (name.size() == text.size() || !known->read(text.substr(name.size() + 1), policy_)) {
      refuse("bad value in option", text);
    }
  }

 private:
  TlsPolicy& policy_;
  std::array<bool, kOptions.size()> given_{};
};

// What stands before the first ';', which goes as well.
std::string_view cutPart(std::string_view& rest) noexcept {
  const std::string_view part = rest.substr(0, rest.find(';'));
  rest.remove_prefix(std::min(part.size() + 1, rest.size()));
  return part;
}

SecureHost parseHost(std::string_view text, std::span<const Scheme> schemes) {
  const auto scheme = std::find_if(schemes.begin(), schemes.end(), [text](const Scheme& known) {
    return ascii::startsBlindToCase(text, known.prefix);
  });
  if (scheme == schemes.end()) return {parseServerName(text).name, {}};
  std::string_view rest = text.substr(scheme->prefix.size());
  const bool endsOpen = rest.ends_with(';');
  SecureHost host{parseServerName(cutPart(rest)).name, {}};
  if (host.name.empty()) {
    fail(platform::kErrorInvalidParameter, std::string("no server's name behind ").append(scheme->prefix));
  }
  host.policy.encryption = scheme->encryption;
  Options options(host.policy);
  while (!rest.empty()) options.take(cutPart(rest));
  if (endsOpen) options.take({});
  return host;
}

}  // namespace

SecureHost parseFtpHost(std::string_view text) { return parseHost(text, kFtpSchemes); }

SecureHost parseHttpHost(std::string_view text) { return parseHost(text, kHttpSchemes); }

}  // namespace internet
