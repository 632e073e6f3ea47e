// SPDX-License-Identifier: MIT
// Whole files over lines that break anywhere, at servers that keep to their words and at others: what is
// called done is right byte by byte. Each case is the run of one seed.
#include <array>
#include <filesystem>
#include <fstream>

#include "framework/internet/WholeFile.h"
#include "tests/internet/BreakingFtp.h"
#include "tests/internet/FtpMemoryTest.h"
#include "tests/support/Pattern.h"

namespace internet_tests {
namespace {

using Restarts = BreakingFtp::Restarts;

constexpr std::uint32_t kCases = 120;  // of each kind of transfer
constexpr int kAttempts = 12;

std::string contentOf(std::uint32_t seed, std::size_t size) {
  std::string content(size, '\0');
  testing_support::Pattern(seed).fill(0, content.data(), size);
  return content;
}

// What a seed makes of a server, of its file and of what happens to that between two attempts.
class Case {
 public:
  explicit Case(std::uint32_t seed) : choices_(seed) {}

  BreakingFtp server() {
    constexpr std::array kRestarts{Restarts::both, Restarts::both,    Restarts::downloads,
                                   Restarts::none, Restarts::inWords, Restarts::uploadsInWords};
    const BreakingFtp::Abilities abilities{.tellsSize = choices_.of(8) != 0,
                                           .tellsTime = choices_.of(4) != 0,
                                           .restarts = kRestarts[choices_.of(kRestarts.size())]};
    changes_ = choices_.of(3) == 0;
    return {choices_.number(), abilities, {contentOf(choices_.number(), size())}};
  }
  std::string content() { return contentOf(choices_.number(), size()); }
  // Another size, another time, or both.
  void mayChange(BreakingFtp::File& file) {
    if (!changes_ || choices_.of(4) != 0) return;
    const auto way = choices_.of(3);
    const std::size_t before = file.content.size();
    file.content = contentOf(choices_.number(), way == 0 ? before : size());
    if (way != 1 || file.content.size() == before)
      file.time = std::to_string(20240101000000 + choices_.number());
  }

 private:
  std::size_t size() { return choices_.of(8) == 0 ? choices_.of(2) : choices_.of(250'000); }

  Choices choices_;
  bool changes_ = false;
};

class BrokenLines : public FtpMemory {
 protected:
  const testing_support::ScratchFolder folder;
  const std::string local = folder.file("local");

  std::uint32_t done = 0;    // of the cases
  std::size_t restarts = 0;  // of their transfers

  [[nodiscard]] std::string content() const {
    std::ifstream file(local, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  void write(const std::string& text) const { std::ofstream(local, std::ios::binary) << text; }

  // `attempt(connection)` until one succeeds; `between()` behind each that does not.
  template <typename Attempt, typename Between>
  bool comesThrough(Attempt&& attempt, Between&& between) {
    for (int count = 0; count < kAttempts; ++count) {
      std::unique_ptr<CFtpConnection> connection;
      thrownBy([&] { connection = login(); });
      if (connection && attempt(*connection)) return true;
      between();
    }
    return false;
  }
  void count(const BreakingFtp& server, bool ok) {
    done += ok ? 1 : 0;
    restarts += server.restarts;
  }
  // Else these cases would prove nothing.
  void expectMostCameThrough() const {
    EXPECT_GT(done, kCases * 3 / 4);
    EXPECT_GT(restarts, kCases / 4);
  }
};

TEST_F(BrokenLines, ADownloadThatIsDoneIsRight) {
  for (std::uint32_t seed = 1; seed <= kCases; ++seed) {
    SCOPED_TRACE(seed);
    internet::forgetCachedTraits();
    Case made(seed);
    BreakingFtp server = made.server();
    const testing_support::MemoryNetwork network(server);
    CFileDownload file(local.c_str(), true, platform::kFileAttributeNormal, true);
    const bool ok = comesThrough([&](CFtpConnection& connection) { return connection.GetFile("/f", file); },
                                 [&] { made.mayChange(server.file); });
    count(server, ok);
    EXPECT_TRUE(!ok || content() == server.file.content);
    std::filesystem::remove(local);
  }
  expectMostCameThrough();
}

// The server's file is ours alone meanwhile.
TEST_F(BrokenLines, AnUploadThatIsDoneIsRight) {
  for (std::uint32_t seed = 1; seed <= kCases; ++seed) {
    SCOPED_TRACE(seed);
    internet::forgetCachedTraits();
    Case made(seed);
    BreakingFtp server = made.server();
    const testing_support::MemoryNetwork network(server);
    const std::string sent = made.content();
    write(sent);
    CFileUpload file(local.c_str(), true);
    const bool ok =
        comesThrough([&](CFtpConnection& connection) { return connection.PutFile(file, "/f"); }, [] {});
    count(server, ok);
    EXPECT_TRUE(!ok || server.file.content == sent);
  }
  expectMostCameThrough();
}

// As a copy does it, block by block.
bool readOn(CFtpConnection& connection, CFilePart& part, std::string& content) {
  bool closed = false;
  const Thrown thrown = thrownBy([&] {
    const std::unique_ptr<CInternetFile> file(connection.OpenFile("/f", part));
    content.resize(part.Done());
    std::array<char, 4096> block{};
    for (auto count = static_cast<std::uint32_t>(block.size()); count == block.size();) {
      count = file->Read(block.data(), static_cast<std::uint32_t>(block.size()));
      content.append(block.data(), count);
      part.Add(count);
    }
    closed = file->Close();
  });
  if (!closed) part.BrokenOff(thrown.error != 0 ? thrown.error : platform::lastError());
  return closed;
}

TEST_F(BrokenLines, AFileThatIsReadToItsEndIsRight) {
  for (std::uint32_t seed = 1; seed <= kCases; ++seed) {
    SCOPED_TRACE(seed);
    internet::forgetCachedTraits();
    Case made(seed);
    BreakingFtp server = made.server();
    const testing_support::MemoryNetwork network(server);
    CFilePart part(true);
    std::string read;
    const bool ok = comesThrough([&](CFtpConnection& connection) { return readOn(connection, part, read); },
                                 [&] { made.mayChange(server.file); });
    count(server, ok);
    EXPECT_TRUE(!ok || read == server.file.content);
  }
  expectMostCameThrough();
}

}  // namespace
}  // namespace internet_tests
