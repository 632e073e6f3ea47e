// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/sites/Site.h"

#include <algorithm>
#include <array>
#include <utility>

namespace browse {
namespace {

constexpr std::size_t kPinDigits = 64;
constexpr std::uint32_t kLastPort = 65535;

constexpr std::array<std::pair<Encryption, std::string_view>, 3> kEncryptions = {
    {{Encryption::none, "none"}, {Encryption::ftpes, "ftpes"}, {Encryption::ftps, "ftps"}}};

bool isControl(char character) { return static_cast<unsigned char>(character) < ' ' || character == '\x7f'; }

bool isOneLine(std::string_view text) { return std::ranges::none_of(text, isControl); }

bool isHost(std::string_view text) {
  return !text.empty() && isOneLine(text) && text.find_first_of(" ;/\\@") == std::string_view::npos;
}

int hexDigit(char character) {
  if (character >= '0' && character <= '9') return character;
  if (character >= 'a' && character <= 'f') return character;
  if (character >= 'A' && character <= 'F') return character - 'A' + 'a';
  return 0;
}

}  // namespace

std::optional<Text> faultOf(const Site& site) {
  if (site.name.empty() || !isOneLine(site.name)) return Text::wrongName;
  if (!isHost(site.host)) return Text::wrongHost;
  if (site.port == 0 || site.port > kLastPort) return Text::wrongPort;
  for (const std::string* text : {&site.user, &site.localFolder, &site.remoteFolder, &site.password}) {
    if (!isOneLine(*text)) return Text::wrongText;
  }
  if (!site.pin.empty() && pinFrom(site.pin) != site.pin) return Text::wrongPin;
  if (!site.pin.empty() && site.encryption == Encryption::none) return Text::wrongPinPlain;
  return std::nullopt;
}

qx::Login loginOf(const Site& site, std::string password) {
  std::string host = site.host;
  if (site.encryption != Encryption::none) {
    host = std::string(nameOf(site.encryption)) + "://" + host;
    if (!site.pin.empty()) host += ";fingerprint=sha256:" + site.pin;
  }
  return {std::move(host), site.user, std::move(password), site.port, site.isPassive};
}

std::optional<std::string> pinFrom(std::string_view text) {
  std::string pin;
  for (const char character : text) {
    if (character == ':') continue;
    const int digit = hexDigit(character);
    if (digit == 0) return std::nullopt;
    pin += static_cast<char>(digit);
  }
  return pin.size() == kPinDigits ? std::optional(pin) : std::nullopt;
}

std::string_view nameOf(Encryption encryption) {
  return std::ranges::find(kEncryptions, encryption, &std::pair<Encryption, std::string_view>::first)->second;
}

std::optional<Encryption> encryptionFrom(std::string_view name) {
  const auto* const found =
      std::ranges::find(kEncryptions, name, &std::pair<Encryption, std::string_view>::second);
  return found != kEncryptions.end() ? std::optional(found->first) : std::nullopt;
}

}  // namespace browse
