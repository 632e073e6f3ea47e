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

bool readFingerprint(std::string_view value, SecureHost& host) noexcept {
  constexpr std::string_view kHash = "sha256:";
  if (!ascii::startsBlindToCase(value, kHash)) return false;
  value.remove_prefix(kHash.size());
  auto& bytes = host.policy.fingerprint.emplace();
  if (value.size() != 2 * bytes.size()) return false;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const auto high = hexDigit(value[2 * i]);
    const auto low = hexDigit(value[2 * i + 1]);
    if (!high || !low) return false;
    bytes[i] = static_cast<std::uint8_t>(*high << 4 | *low);
  }
  return true;
}

bool readVerify(std::string_view value, SecureHost& host) noexcept {
  host.policy.verifies = false;
  return ascii::equalBlindToCase(value, "no");
}

bool readVersion(std::string_view value, SecureHost& host) noexcept {
  host.policy.onlyTls12 = true;
  return value == "1.2";
}

bool readProgress(std::string_view value, SecureHost& host) noexcept {
  host.tellsUploads = true;
  return ascii::equalBlindToCase(value, "uploads");
}

struct Option {
  std::string_view name;
  bool (*read)(std::string_view value, SecureHost& host) noexcept;
};

constexpr std::array kOptions{Option{"fingerprint", readFingerprint}, Option{"verify", readVerify},
                              Option{"tls", readVersion}, Option{"progress", readProgress}};

// The only option that a plain name has.
constexpr std::string_view kProgressOfUploads = ";progress=uploads";

// What the texts of a protocol may have.
struct HostTexts {
  std::span<const Scheme> schemes;
  std::span<const Option> options;
  bool haveUploads;
};

constexpr HostTexts kFtpHosts{kFtpSchemes, kOptions, true};
constexpr HostTexts kWebHosts{kHttpSchemes, std::span(kOptions).first(kOptions.size() - 1), false};

class Options {
 public:
  Options(std::span<const Option> known, SecureHost& host) noexcept : options_(known), host_(host) {}

  void take(std::string_view text) {
    const std::string_view name = text.substr(0, text.find('='));
    const auto known = std::find_if(options_.begin(), options_.end(), [name](const Option& option) {
      return ascii::equalBlindToCase(option.name, name);
    });
    if (known == options_.end()) refuse("unknown option", text);
    bool& given = given_[static_cast<std::size_t>(known - options_.begin())];
    if (std::exchange(given, true)) refuse("second option", text);
    if (name.size() == text.size() || !known->read(text.substr(name.size() + 1), host_)) {
      refuse("bad value in option", text);
    }
  }

 private:
  const std::span<const Option> options_;
  SecureHost& host_;
  std::array<bool, kOptions.size()> given_{};
};

// What stands before the first ';', which goes as well.
std::string_view cutPart(std::string_view& rest) noexcept {
  const std::string_view part = rest.substr(0, rest.find(';'));
  rest.remove_prefix(std::min(part.size() + 1, rest.size()));
  return part;
}

SecureHost plainHost(std::string_view text, const HostTexts& texts) {
  const std::size_t name = text.size() - std::min(text.size(), kProgressOfUploads.size());
  const bool tellsUploads =
      texts.haveUploads && name > 0 && ascii::equalBlindToCase(text.substr(name), kProgressOfUploads);
  return {parseServerName(tellsUploads ? text.substr(0, name) : text).name, {}, tellsUploads};
}

SecureHost parseHost(std::string_view text, const HostTexts& texts) {
  const auto scheme = std::find_if(texts.schemes.begin(), texts.schemes.end(), [text](const Scheme& known) {
    return ascii::startsBlindToCase(text, known.prefix);
  });
  if (scheme == texts.schemes.end()) return plainHost(text, texts);
  std::string_view rest = text.substr(scheme->prefix.size());
  const bool endsOpen = rest.ends_with(';');
  SecureHost host{.name = parseServerName(cutPart(rest)).name, .policy = {}};
  if (host.name.empty()) {
    fail(platform::kErrorInvalidParameter, std::string("no server's name behind ").append(scheme->prefix));
  }
  host.policy.encryption = scheme->encryption;
  Options options(texts.options, host);
  while (!rest.empty()) options.take(cutPart(rest));
  if (endsOpen) options.take({});
  return host;
}

}  // namespace

SecureHost parseFtpHost(std::string_view text) { return parseHost(text, kFtpHosts); }

SecureHost parseHttpHost(std::string_view text) { return parseHost(text, kWebHosts); }

}  // namespace internet
