// SPDX-License-Identifier: MIT
// What a host does with the client in OnNotify, in the middle of a listing. A second listing there took the
// array away that the first one went on to fill, behind the end of the heap's block.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "framework/internet/net/InternetErrors.h"
#include "tests/client/ErrorRecord.h"
#include "tests/client/RecordingClient.h"
#include "tests/client/ScriptedFinder.h"

namespace {

constexpr int kFiles = 600;  // more than an array begins with

class ListingWithin : public testing::Test {
 protected:
  void SetUp() override {
    std::vector<Found> files;
    for (int i = 0; i < kFiles; ++i) files.push_back({.name = "f" + std::to_string(i)});
    finder.answersWith(std::move(files));
    client.finder = &finder;
  }

  // Lists, with `work` in the OnNotify of the first file. What the host then gets is whole.
  void listWith(const std::function<void()>& work) {
    int notified = 0;
    client.notified = [&](QXHostValue) {
      if (++notified == 1) work();
    };
    std::uint32_t count = 0;
    ASSERT_EQ(client.FTPGetDirectory("/pub", nullptr, &count, "*.*", 0), 1);
    EXPECT_EQ(notified, kFiles);
    ASSERT_EQ(count, std::uint32_t{kFiles});
    const auto entries = std::make_unique<QXDirEntry[]>(kFiles);
    ASSERT_EQ(client.FTPGetDirectory("/pub", entries.get(), &count, "*.*", 0), 1);
    EXPECT_STREQ(entries[0].szName, "f0");
    EXPECT_STREQ(entries[kFiles - 1].szName, "f599");
  }

  void expectToldOfTheOther() {
    EXPECT_EQ(client.count("OnIPError 12110 FTP-Error!"), 1u);
    EXPECT_EQ(record.nError, internet::kTransferInProgress);
  }

  QXErrorInfo record{};
  RecordingClient client{&record};
  ScriptedFinder finder;
};

TEST_F(ListingWithin, AnotherListingFails) {
  listWith([&] {
    std::uint32_t count = 77;
    EXPECT_EQ(client.FTPGetDirectory("/other", nullptr, &count, "*.*", 0), 0);
    EXPECT_EQ(count, 0u);
    expectToldOfTheOther();
  });
  EXPECT_EQ(finder.patterns, std::vector<std::string>{"/pub/*.*"});
}

TEST_F(ListingWithin, TheRetriesOfAnotherListingFailToo) {
  listWith([&] {
    std::uint32_t count = 77;
    EXPECT_EQ(client.FTPGetDirectory("/other", nullptr, &count, "*.*", 2), 0);
    EXPECT_EQ(client.count("OnIPError 12110"), 3u);
  });
}

TEST_F(ListingWithin, CountingFails) {
  listWith([&] {
    std::uint32_t files = 77;
    std::uint32_t directories = 77;
    EXPECT_EQ(client.FTPCountFolderItems("/other", &files, &directories, 0), 0);
    EXPECT_EQ(files, 0u);
    EXPECT_EQ(directories, 0u);
    expectToldOfTheOther();
    EXPECT_EQ(client.FTPHasSubDir("/other", 0), 0);
  });
}

TEST_F(ListingWithin, NothingIsHandedOutYet) {
  listWith([&] {
    QXDirEntry entry{};
    std::uint32_t count = 1;
    EXPECT_EQ(client.FTPGetDirectory("/pub", &entry, &count, "*.*", 0), 0);
    expectToldOfTheOther();
  });
}

TEST_F(ListingWithin, OfAnotherClientOneMayBeMade) {
  listWith([&] {
    RecordingClient other;
    other.finder = &finder;
    std::uint32_t count = 0;
    EXPECT_EQ(other.FTPGetDirectory("/other", nullptr, &count, "*.*", 0), 1);
    EXPECT_EQ(count, std::uint32_t{kFiles});
  });
}

TEST_F(ListingWithin, TheFindersMayBeRenewed) {
  auto own = std::make_unique<ScriptedFinder>();
  own->answer = finder.answer;
  client.finder = nullptr;
  client.m_pFTPGetDir = own.release();
  std::uint32_t count = 0;
  client.notified = [&](QXHostValue) { client.OnConnect(); };
  EXPECT_EQ(client.FTPGetDirectory("/pub", nullptr, &count, "*.*", 0), 1);
  EXPECT_EQ(count, std::uint32_t{kFiles});
  client.m_bConnected = 0;
}

}  // namespace
