// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/sites/Certificates.h"

#include <algorithm>
#include <array>

#include "hosts/qxbrowse/sites/Site.h"

namespace browse {
namespace {

constexpr std::size_t kPinLength = 64;
constexpr std::string_view kTimeForm = "0000-00-00 00:00:00 UTC";

bool isForTheUser(std::uint32_t error) {
  constexpr std::array<std::uint32_t, 4> kErrors = {12037, 12038, 12045, 12169};
  return std::ranges::find(kErrors, error) != kErrors.end();
}

// Reads a text from its front. Once something has not been there, nothing is any more.
class Reader {
 public:
  explicit Reader(std::string_view text) : m_rest(text) {}

  bool skip(std::string_view word) {
    m_isRight = m_isRight && m_rest.starts_with(word);
    if (m_isRight) m_rest.remove_prefix(word.size());
    return m_isRight;
  }

  std::string take(std::size_t length) {
    m_isRight = m_isRight && m_rest.size() >= length;
    if (!m_isRight) return {};
    std::string taken(m_rest.substr(0, length));
    m_rest.remove_prefix(length);
    return taken;
  }

  std::string takeUntil(std::string_view word) {
    const std::size_t end = m_rest.find(word);
    m_isRight = m_isRight && end != std::string_view::npos;
    std::string taken = m_isRight ? take(end) : std::string();
    skip(word);
    return taken;
  }

  std::string takePin() {
    std::string pin = take(kPinLength);
    m_isRight = m_isRight && pinFrom(pin) == pin;
    return pin;
  }

  // In the form of `kTimeForm`, with any digits.
  std::string takeTime() {
    std::string time = take(kTimeForm.size());
    std::string form = time;
    std::ranges::replace_if(
        form, [](char character) { return character >= '0' && character <= '9'; }, '0');
    m_isRight = m_isRight && form == kTimeForm;
    return time;
  }

  [[nodiscard]] bool isRight() const { return m_isRight; }
  [[nodiscard]] std::string_view rest() const { return m_rest; }

 private:
  std::string_view m_rest;
  bool m_isRight = true;
};

// The record ends with " [number source line]".
std::string_view withoutOrigin(std::string_view text) {
  const std::size_t origin = text.rfind(" [");
  if (text.ends_with(']') && origin != std::string_view::npos) text = text.substr(0, origin);
  while (text.ends_with(' ')) text.remove_suffix(1);
  return text;
}

// An address of IPv6 has brackets where a user writes it, and none in the text.
std::string_view withoutBrackets(std::string_view host) {
  return host.starts_with('[') && host.ends_with(']') ? host.substr(1, host.size() - 2) : host;
}

void splitNames(std::string_view names, ShownCertificate& certificate) {
  constexpr std::string_view kBy = ", by ";
  const std::size_t by = names.find(kBy);
  const bool isClear = by != std::string_view::npos && by == names.rfind(kBy);
  certificate.subject = names.substr(0, isClear ? by : names.size());
  certificate.issuer = isClear ? names.substr(by + kBy.size()) : std::string_view();
}

}  // namespace

std::optional<ShownCertificate> shownCertificate(const qx::Report& report, std::string_view host) {
  if (!isForTheUser(report.number)) return std::nullopt;
  ShownCertificate certificate;
  Reader reader(withoutOrigin(report.text));
  reader.skip("The certificate of ");
  reader.skip(withoutBrackets(host));
  reader.skip(" ");
  certificate.reason = reader.takeUntil(": SHA-256 ");
  certificate.fingerprint = reader.takePin();
  if (reader.isRight() && reader.rest().empty()) return certificate;
  reader.skip(", valid from ");
  certificate.validFrom = reader.takeTime();
  reader.skip(" to ");
  certificate.validTo = reader.takeTime();
  reader.skip(", issued to ");
  if (!reader.isRight()) return std::nullopt;
  splitNames(reader.rest(), certificate);
  return certificate;
}

}  // namespace browse
