// SPDX-License-Identifier: MIT
// Texts that name a server: plain ones stay what they are, others come to a protected one or to a failure.
#include <string>

#include "framework/internet/net/Failure.h"
#include "framework/internet/net/ServerName.h"
#include "framework/internet/tls/SecureHost.h"
#include "framework/platform/last_error.h"
#include "framework/text/AsciiText.h"
#include "tests/fuzz/Invariants.h"

namespace {

using internet::Encryption;

bool hasScheme(std::string_view text) {
  return ascii::startsBlindToCase(text, "ftpes://") || ascii::startsBlindToCase(text, "ftps://");
}

void checkHost(std::string_view text, const internet::SecureHost& host) {
  const bool secure = hasScheme(text);
  fuzz::require((host.policy.encryption != Encryption::none) == secure);
  if (secure) {
    fuzz::require(!host.name.empty() && host.name.find(';') == std::string::npos);
    fuzz::require(text.find("//" + host.name) != text.npos || text.find("//[" + host.name) != text.npos);
  } else {
    const std::string_view name = host.tellsUploads ? text.substr(0, text.rfind(';')) : text;
    fuzz::require(!host.tellsUploads || !name.empty());
    fuzz::require(host.name == internet::parseServerName(name).name);
    fuzz::require(host.policy.verifies && !host.policy.onlyTls12 && !host.policy.fingerprint);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = fuzz::textOf(data, size);
  try {
    checkHost(text, internet::parseFtpHost(text));
  } catch (const internet::Failure& failure) {
    fuzz::require(hasScheme(text) && failure.error == platform::kErrorInvalidParameter);
    fuzz::require(!failure.serverText.empty() && failure.serverText.size() < 200);
  }
  return 0;
}
