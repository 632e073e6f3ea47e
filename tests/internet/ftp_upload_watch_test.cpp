// SPDX-License-Identifier: MIT
// What the watch over an upload is told, step by step: nothing, unless the host's text asks for it.
#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "framework/internet/WholeFile.h"
#include "framework/platform/last_error.h"
#include "tests/internet/FtpMemoryTest.h"
#include "tests/support/ScratchFolder.h"

namespace internet_tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing_support::MemoryLink;

constexpr std::size_t kStep = 10'000;
constexpr std::uint64_t kFile = 2 * kStep + 5'000;

// Takes uploads in steps.
class SteppingFtp final : public testing_support::MemoryFtp {
 public:
  SteppingFtp() {
    answers["STOR"] = "150 Go on\r\n";
    answers["REST"] = "350 From there\r\n";
    onLeft = [this](const Link& link) {
      if (link == data && !link->clientBroken) control->toClient += "226 Done\r\n";
    };
  }

  std::function<void()> onStep;

  // Takes no further step.
  void breakOff() {
    data->server = MemoryLink::End::broken;
    control->server = MemoryLink::End::broken;
  }

  void received(const Link& link) override {
    if (link == data && onStep) onStep();
    MemoryFtp::received(link);
  }
  std::size_t portion(std::size_t most) override { return std::min(most, kStep); }
};

using Sent = std::pair<std::uint64_t, std::uint64_t>;  // of so much

class FtpUploadWatch : public FtpMemory {
 protected:
  std::unique_ptr<CFtpConnection> loginAt(const char* host) {
    return std::unique_ptr<CFtpConnection>(session.GetFtpConnection(host, "user", "secret", 21, true));
  }
  void makeFile(std::uint64_t size) {
    std::ofstream(local).close();
    std::filesystem::resize_file(local, size);
  }
  CFileUpload watched(bool goesOn = false) {
    return CFileUpload(local.c_str(), goesOn, [this](std::uint64_t position, std::uint64_t size) {
      told.emplace_back(position, size);
    });
  }
  bool put(CFileUpload& file, const char* host = "127.0.0.1;progress=uploads") {
    return loginAt(host)->PutFile(file, "/f");
  }

  const testing_support::ScratchFolder scratch;
  const std::string local = scratch.file("local");
  SteppingFtp server;
  testing_support::MemoryNetwork network{server};
  std::vector<Sent> told;
};

TEST_F(FtpUploadWatch, IsToldOfEachStepThatTheSystemTakes) {
  makeFile(kFile);
  CFileUpload file = watched();
  std::vector<std::size_t> toldBefore;
  server.onStep = [&] { toldBefore.push_back(told.size()); };
  EXPECT_TRUE(put(file));
  EXPECT_THAT(told,
              ElementsAre(Sent{0, kFile}, Sent{kStep, kFile}, Sent{2 * kStep, kFile}, Sent{kFile, kFile}));
  EXPECT_THAT(toldBefore, ElementsAre(1u, 2u, 3u));
}

TEST_F(FtpUploadWatch, HearsNothingUnasked) {
  makeFile(kFile);
  CFileUpload file = watched();
  EXPECT_TRUE(put(file, "127.0.0.1"));
  EXPECT_THAT(told, IsEmpty());
}

TEST_F(FtpUploadWatch, HearsNothingOfAFileThatIsRefused) {
  server.answers["STOR"] = "553 No\r\n";
  makeFile(kFile);
  CFileUpload file = watched();
  EXPECT_FALSE(put(file));
  EXPECT_THAT(told, IsEmpty());
}

TEST_F(FtpUploadWatch, IsToldThatAnEmptyFileHasBegun) {
  makeFile(0);
  CFileUpload file = watched();
  EXPECT_TRUE(put(file));
  EXPECT_THAT(told, ElementsAre(Sent{0, 0}));
}

TEST_F(FtpUploadWatch, IsToldOfAFileThatHasGrown) {
  makeFile(kStep);
  CFileUpload file = watched();
  server.onStep = [&] {
    server.onStep = nullptr;
    std::ofstream(local, std::ios::app | std::ios::binary) << "more";
  };
  EXPECT_TRUE(put(file));
  EXPECT_THAT(told, ElementsAre(Sent{0, kStep}, Sent{kStep, kStep}, Sent{kStep + 4, kStep + 4}));
}

TEST_F(FtpUploadWatch, GoesOnWhereTheNextAttemptDoes) {
  makeFile(kFile);
  CFileUpload file = watched(true);
  server.onStep = [&] { server.breakOff(); };
  EXPECT_FALSE(put(file));
  EXPECT_THAT(told, ElementsAre(Sent{0, kFile}, Sent{kStep, kFile}));
  told.clear();
  server.answers["SIZE"] = "213 " + std::to_string(kStep) + "\r\n";
  server.onStep = [&] { server.answers["SIZE"] = "213 " + std::to_string(kFile) + "\r\n"; };
  EXPECT_TRUE(put(file));
  EXPECT_THAT(told, ElementsAre(Sent{kStep, kFile}, Sent{2 * kStep, kFile}, Sent{kFile, kFile}));
}

TEST_F(FtpUploadWatch, BeginsAgainWithAnAttemptFromTheStart) {
  makeFile(kFile);
  CFileUpload file = watched(true);
  server.onStep = [&] { server.breakOff(); };
  EXPECT_FALSE(put(file));
  told.clear();
  server.onStep = nullptr;
  EXPECT_TRUE(put(file));
  ASSERT_EQ(told.size(), 4u);
  EXPECT_EQ(told.front(), (Sent{0, kFile}));
}

TEST_F(FtpUploadWatch, CountsBeyond32Bits) {
  constexpr std::uint64_t kHuge = (std::uint64_t{1} << 32) + 5;
  makeFile(kHuge);
  CFileUpload file = watched();
  server.onStep = [&] { server.breakOff(); };
  EXPECT_FALSE(put(file));
  EXPECT_THAT(told, ElementsAre(Sent{0, kHuge}, Sent{kStep, kHuge}));
}

}  // namespace
}  // namespace internet_tests
