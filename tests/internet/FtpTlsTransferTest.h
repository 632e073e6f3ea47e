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

// Notes what the host is told of each encryption.
class TellingSession : public CInternetSession {
 public:
  ~TellingSession() override { Close(); }
  [[nodiscard]] bool WantsProtocol() const noexcept override { return true; }
  void OnProtocolLine(const char* line) override {
    if (std::string(line).starts_with("* TLS")) encryptions.emplace_back(line);
  }
  Lines encryptions;
};

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
  static void expectReads(CFtpConnection& connection, const std::string& folder = {}) {
    std::string content;
    EXPECT_EQ(reading(connection, content, (folder + "/big").c_str()).error, 0u);
    EXPECT_EQ(content.size(), kSize);
    EXPECT_TRUE(Pattern(kSeed).matches(0, content.data(), content.size()));
  }
  static std::uint32_t errorOfWriting(CFtpConnection& connection, std::uint32_t size = kSize,
                                      const std::string& path = "/up") {
    std::vector<char> content(size);
    Pattern(kSeed).fill(0, content.data(), size);
    std::uint32_t error = 0;
    const Thrown thrown = thrownBy([&] {
      auto file = openToWrite(connection, path.c_str());
      file->Write(content.data(), size);
      error = errorOf([&] { return file->Close(); });
    });
    return thrown.error ? thrown.error : error;
  }
  static void expectWrites(CFtpConnection& connection, const fixture::FileServer& server,
                           const std::string& folder = {}) {
    EXPECT_EQ(errorOfWriting(connection, kSize, folder + "/up"), 0u);
    EXPECT_TRUE(server.matches(folder + "/up", kSeed, kSize));
  }
  static void expectLists(CFtpConnection& connection, const std::string& folder = {}) {
    CFtpFileFind finder(&connection);
    const Search found = search(finder, folder + "/dir/*");
    ASSERT_EQ(found.entries.size(), 1u) << found.error << ' ' << found.thrown.error;
    EXPECT_EQ(found.entries.front().name, "file");
  }
  // Each kind after each other one.
  static void expectSixTransfers(CFtpConnection& connection, const fixture::FileServer& server,
                                 const std::string& folder = {}) {
    for (int i = 0; i < 2; ++i) {
      expectReads(connection, folder);
      expectWrites(connection, server, folder);
      expectLists(connection, folder);
    }
  }
  // Of a login and its six transfers, which resume its session where the server gives out one.
  static void expectSix(const Lines& encryptions, const std::string& version, bool givesSession = true) {
    ASSERT_EQ(encryptions.size(), 7u);
    for (const std::string& line : encryptions) {
      EXPECT_TRUE(line.starts_with("* TLS " + version + ", ")) << line;
      if (!kResumes) continue;
      EXPECT_EQ(line.ends_with(", resumed"), givesSession && &line != &encryptions.front()) << line;
    }
  }
  static json dataOf(const fixture::ScriptedFtp& server) { return server.log().at("data"); }
};

}  // namespace internet_tests
