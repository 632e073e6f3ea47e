// SPDX-License-Identifier: MIT
// What the tests of encrypted data share: reads, writes and listings with their numbers.
#pragma once

#include "tests/internet/FindTest.h"
#include "tests/internet/FtpTlsTest.h"
#include "tests/support/Pattern.h"

namespace internet_tests {

using nlohmann::json;
using testing_support::Pattern;

inline constexpr std::uint32_t kSize = 300'000;
inline constexpr std::uint32_t kSeed = 9;
// Wine's TLS knows neither 1.3 nor a session again.
inline constexpr bool kResumes = !kWindows;

class FtpTlsTransfer : public FtpTlsTest {
 protected:
  static json script(const json& tls, const json& rules = json::array()) {
    json result = FtpTlsTest::script(tls, rules);
    result["tree"]["/big"] = {{"size", kSize}, {"seed", kSeed}};
    return result;
  }
  static json bent(const char* verb, const json& options) {
    return instead(verb, json::array({{{"normal", options}}}));
  }

  static Thrown reading(CFtpConnection& connection, std::string& content, const char* path = "/big") {
    return thrownBy([&] {
      auto file = openToRead(connection, path);
      content = readToEnd(*file, 70'000);
      if (!file->Close()) AfxThrowInternetException(platform::lastError());
    });
  }
  static std::uint32_t errorOfReading(CFtpConnection& connection, const char* path = "/big") {
    std::string content;
    return reading(connection, content, path).error;
  }
  static void expectReads(CFtpConnection& connection) {
    std::string content;
    EXPECT_EQ(reading(connection, content).error, 0u);
    EXPECT_EQ(content.size(), kSize);
    EXPECT_TRUE(Pattern(kSeed).matches(0, content.data(), content.size()));
  }
  static std::uint32_t errorOfWriting(CFtpConnection& connection, std::uint32_t size = kSize) {
    std::vector<char> content(size);
    Pattern(kSeed).fill(0, content.data(), size);
    std::uint32_t error = 0;
    const Thrown thrown = thrownBy([&] {
      auto file = openToWrite(connection, "/up");
      file->Write(content.data(), size);
      error = errorOf([&] { return file->Close(); });
    });
    return thrown.error ? thrown.error : error;
  }
  static void expectWrites(CFtpConnection& connection, const fixture::ScriptedFtp& server) {
    EXPECT_EQ(errorOfWriting(connection), 0u);
    EXPECT_TRUE(server.matches("/up", kSeed, kSize));
  }
  static void expectLists(CFtpConnection& connection) {
    CFtpFileFind finder(&connection);
    const Search found = search(finder, "/dir/*");
    ASSERT_EQ(found.entries.size(), 1u) << found.error << ' ' << found.thrown.error;
    EXPECT_EQ(found.entries.front().name, "file");
  }
  static json dataOf(const fixture::ScriptedFtp& server) { return server.log().at("data"); }
};

}  // namespace internet_tests
