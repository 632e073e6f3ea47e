// SPDX-License-Identifier: MIT
#include "framework/platform/tls_record.h"

#include <algorithm>
#include <iterator>

namespace platform {
namespace {

constexpr std::size_t kRecordHeader = 5;

struct AlertName {
  unsigned char number;
  const char* text;
};

// RFC 8446, 6.
constexpr AlertName kAlertNames[] = {{10, "unexpected message"},      {20, "bad record"},
                                     {40, "handshake failure"},       {42, "bad certificate"},
                                     {43, "unsupported certificate"}, {44, "certificate revoked"},
                                     {45, "certificate expired"},     {46, "certificate unknown"},
                                     {47, "illegal parameter"},       {48, "unknown authority"},
                                     {49, "access denied"},           {50, "decode error"},
                                     {51, "decrypt error"},           {70, "protocol version"},
                                     {71, "insufficient security"},   {80, "internal error"},
                                     {112, "unrecognized name"},      {116, "certificate required"}};

}  // namespace

std::optional<std::size_t> recordSize(TlsBytes bytes) noexcept {
  constexpr auto kFirst = static_cast<unsigned char>(RecordKind::changeCipher);
  constexpr auto kLast = static_cast<unsigned char>(RecordKind::data);
  constexpr unsigned char kMajorVersion = 3;
  if (!bytes.empty() && (bytes[0] < kFirst || bytes[0] > kLast)) return std::nullopt;
  if (bytes.size() > 1 && bytes[1] != kMajorVersion) return std::nullopt;
  if (bytes.size() < kRecordHeader) return 0;
  const std::size_t size = kRecordHeader + (std::size_t{bytes[3]} << 8) + bytes[4];
  if (size > kLargestRecord) return std::nullopt;
  return size <= bytes.size() ? size : 0;
}

std::string alertText(TlsBytes bytes) {
  constexpr std::size_t kAlertSize = 2;
  const bool alert = recordSize(bytes) == kRecordHeader + kAlertSize &&
                     static_cast<RecordKind>(bytes[0]) == RecordKind::alert;
  if (!alert) return {};
  const unsigned char number = bytes[kRecordHeader + 1];
  const std::string code = "alert " + std::to_string(number);
  const auto* known = std::ranges::find(kAlertNames, number, &AlertName::number);
  return known == std::end(kAlertNames) ? code : std::string(known->text) + " (" + code + ')';
}

void HandshakeWatch::look(TlsBytes records) noexcept {
  while (const std::size_t size = recordSize(records).value_or(0)) {
    const auto kind = static_cast<RecordKind>(records[0]);
    if (kind == RecordKind::changeCipher) plain_ = false;
    if (plain_ && kind == RecordKind::handshake) {
      lookAtMessages(records.subspan(kRecordHeader, size - kRecordHeader));
    }
    records = records.subspan(size);
  }
}

// Messages and records begin and end independently of each other.
void HandshakeWatch::lookAtMessages(TlsBytes content) noexcept {
  constexpr unsigned char kCertificateRequest = 13;
  while (!content.empty()) {
    const std::size_t skipped = std::min(left_, content.size());
    left_ -= skipped;
    content = content.subspan(skipped);
    if (content.empty()) return;
    header_[headerSize_++] = content.front();
    content = content.subspan(1);
    if (headerSize_ < header_.size()) continue;
    headerSize_ = 0;
    left_ = (std::size_t{header_[1]} << 16) + (std::size_t{header_[2]} << 8) + header_[3];
    asked_ = asked_ || header_[0] == kCertificateRequest;
  }
}

}  // namespace platform
