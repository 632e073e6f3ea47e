// SPDX-License-Identifier: MIT
#include "framework/platform/tls_record.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace platform {
namespace {

using namespace std::string_literals;

TlsBytes bytesOf(std::string_view text) {
  return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

std::string record(int kind, std::string_view content) {
  const auto byte = [](std::size_t value) { return static_cast<char>(value); };
  return byte(static_cast<std::size_t>(kind)) + "\3\3"s + byte(content.size() >> 8) + byte(content.size()) +
         std::string(content);
}

std::string message(int kind, const std::string& content) {
  return static_cast<char>(kind) + "\0\0"s + static_cast<char>(content.size()) + content;
}

TEST(TlsRecord, IsWholeOrNotYetOrNone) {
  const std::string whole = record(23, "content");
  EXPECT_EQ(recordSize(bytesOf(whole)), whole.size());
  EXPECT_EQ(recordSize(bytesOf(whole + "more")), whole.size());
  for (std::size_t size = 0; size < whole.size(); ++size) {
    EXPECT_EQ(recordSize(bytesOf(whole).first(size)), 0u) << size;
  }
  EXPECT_EQ(recordSize(bytesOf("\x16\3\1\x48\0"s)), 0u) << "the largest one";
  for (const std::string& none : {"2"s, "220 Welcome\r\n"s, "\x13\3\3\0\1x"s, "\x18\3\3\0\1x"s,
                                  "\x16\2\0\0\1x"s, "\x16\3\3\x48\1"s, "\x17\3\3\xff\xff"s}) {
    EXPECT_EQ(recordSize(bytesOf(none)), std::nullopt) << none;
  }
}

TEST(TlsRecord, TellsAnAlert) {
  EXPECT_EQ(alertText(bytesOf(record(21, "\2\x28"))), "handshake failure (alert 40)");
  EXPECT_EQ(alertText(bytesOf(record(21, "\2\x74"))), "certificate required (alert 116)");
  EXPECT_EQ(alertText(bytesOf(record(21, "\2\xff"))), "alert 255");
  EXPECT_EQ(alertText(bytesOf(record(22, "\2\x28"))), "") << "of another kind";
  EXPECT_EQ(alertText(bytesOf(record(21, "\2\x28 and more"))), "") << "encrypted";
  EXPECT_EQ(alertText({}), "");
}

bool asksForCertificate(const std::string& records) {
  HandshakeWatch watch;
  watch.look(bytesOf(records));
  return watch.certificateAsked();
}

TEST(HandshakeWatch, SeesThatACertificateIsWanted) {
  const std::string others = message(2, "hello") + message(11, std::string(100, '\x0d')) + message(14, "");
  const std::string wish = message(13, "kinds");
  EXPECT_FALSE(asksForCertificate(record(22, others)));
  EXPECT_TRUE(asksForCertificate(record(22, others + wish)));
  EXPECT_TRUE(asksForCertificate(record(22, wish + others)));
  EXPECT_TRUE(asksForCertificate(record(22, others) + record(22, wish)));
  EXPECT_FALSE(asksForCertificate(record(20, "\1") + record(22, wish))) << "encrypted by then";
  EXPECT_FALSE(asksForCertificate(record(23, wish)));
}

TEST(HandshakeWatch, ReadsMessagesAcrossRecords) {
  const std::string messages = message(2, "hello") + message(13, "kinds");
  for (std::size_t cut = 0; cut <= messages.size(); ++cut) {
    HandshakeWatch watch;
    watch.look(bytesOf(record(22, messages.substr(0, cut))));
    EXPECT_EQ(watch.certificateAsked(), cut >= 13) << cut;
    watch.look(bytesOf(record(22, messages.substr(cut))));
    EXPECT_TRUE(watch.certificateAsked()) << cut;
  }
}

}  // namespace
}  // namespace platform
