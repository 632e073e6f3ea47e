// SPDX-License-Identifier: MIT
// Open remote files: what Read, Write and Close tell, and what servers do wrong in mid-transfer.
#include <thread>

#include "tests/internet/FtpTransferTest.h"

namespace internet_tests {
namespace {

TEST_F(FtpTransferTest, ReadsInBlocksOfAnySize) {
  ScriptedFtp server = serving(json::object());
  auto connection = connect(server);
  for (const std::uint32_t block : {1000u, 4096u, 65536u, 524'288u, 1'000'000u, 4'000'000u}) {
    auto file = openToRead(*connection, "/big");
    EXPECT_EQ(readPattern(*file, block), kBigSize) << block;
    EXPECT_EQ(errorOf([&] { return file->Close(); }), 0u);
  }
}

TEST_F(FtpTransferTest, AReadIsFilledUntilTheEndOfTheData) {
  ScriptedFtp server = serving({{"pace", {{"bytes", 100'000}, {"ms", 1}}}});
  auto connection = connect(server);
  auto file = openToRead(*connection, "/big");
  std::vector<char> buffer(2'000'000);
  EXPECT_EQ(file->Read(buffer.data(), 2'000'000), 2'000'000u);
  EXPECT_EQ(file->Read(buffer.data(), 2'000'000), 1'000'000u);
  EXPECT_EQ(file->Read(buffer.data(), 2'000'000), 0u);
  EXPECT_EQ(file->Read(buffer.data(), 2'000'000), 0u);
}

TEST_F(FtpTransferTest, WritesInBlocksOfAnySize) {
  ScriptedFtp server;
  auto connection = connect(server);
  for (const std::uint32_t block : {1000u, 4096u, 65536u, 3'000'000u}) {
    auto file = openToWrite(*connection, "/up");
    writePattern(*file, kBigSize, block);
    EXPECT_EQ(errorOf([&] { return file->Close(); }), 0u);
    EXPECT_TRUE(server.matches("/up", kSeed, kBigSize)) << block;
  }
}

TEST_F(FtpTransferTest, AFileMayBeEmpty) {
  ScriptedFtp server(R"({"tree": {"/empty": ""}})"_json);
  auto connection = connect(server);
  auto in = openToRead(*connection, "/empty");
  EXPECT_EQ(readToEnd(*in), "");
  EXPECT_TRUE(in->Close());
  auto out = openToWrite(*connection, "/up");
  EXPECT_TRUE(out->Close());
  EXPECT_EQ(server.size("/up"), 0u);
  out = openToWrite(*connection, "/up");
  out->Write("", 0);
  out.reset();
  EXPECT_TRUE(works(*connection)) << "deleting closes";
}

TEST_F(FtpTransferTest, ManyTransfersRunOverOneConnection) {
  ScriptedFtp server(R"({"tree": {"/f": "content"}})"_json);
  auto connection = connect(server);
  for (int i = 0; i < 60; ++i) {
    auto file = openToRead(*connection, "/f");
    EXPECT_EQ(readToEnd(*file), "content");
    EXPECT_TRUE(file->Close());
  }
  EXPECT_EQ(server.connections().size(), 1u);
  EXPECT_EQ(server.commandCount("TYPE"), 1);
}

TEST_F(FtpTransferTest, NamesGoThroughByteForByte) {
  ScriptedFtp server(R"({"encoding": "latin-1"})"_json);
  auto connection = connect(server);
  int number = 0;
  for (const char* name : {" leading", "trailing ", "a b", "%41", "a#b", "a?b", "a*b", "[x]", "a;b=c", "-l",
                           "\"q\"", "gr\xc3\xbc\xc3\x9f", "gr\xfc\xdf", "(12 bytes)"}) {
    const std::string content = "content " + std::to_string(number++);
    auto out = openToWrite(*connection, name);
    out->Write(content.data(), static_cast<std::uint32_t>(content.size()));
    EXPECT_TRUE(out->Close()) << name;
    auto in = openToRead(*connection, name);
    EXPECT_EQ(readToEnd(*in), content) << name;
    EXPECT_TRUE(in->Close()) << name;
  }
  EXPECT_EQ(server.names("/").size(), 14u);
}

TEST_F(FtpTransferTest, ARefusalIsToldBeforeTheFirstReadOrWrite) {
  ScriptedFtp server;
  auto connection = connect(server);
  const Thrown missing = thrownBy([&] { openToRead(*connection, "/missing"); });
  EXPECT_EQ(missing.error, 12003u);
  EXPECT_EQ(missing.text, "550 No such file");
  EXPECT_EQ(thrownBy([&] { openToWrite(*connection, "/missing/up"); }).text, "553 Could not create file");
  EXPECT_EQ(connection->LastServerText(), "553 Could not create file");
  EXPECT_TRUE(works(*connection)) << "a refusal costs nothing";
}

TEST_F(FtpTransferTest, AcceptanceIsToldBeforeTheFirstByte) {
  ScriptedFtp server = serving({{"stall_after", 0}, {"gate", "data"}});
  auto connection = connect(server);
  auto file = openToRead(*connection, "/big");
  EXPECT_TRUE(file);
  server.release("data");
  EXPECT_EQ(readPattern(*file), kBigSize);
}

TEST_F(FtpTransferTest, AnOpenFileHoldsTheConnection) {
  ScriptedFtp server = serving(json::object());
  auto connection = connect(server);
  auto file = openToRead(*connection, "/big");
  EXPECT_EQ(errorOf([&] { return connection->Remove("/big"); }), 12110u);
  EXPECT_EQ(thrownBy([&] { openToRead(*connection, "/big"); }).error, 12110u);
  EXPECT_FALSE(connection->WaitIdle(std::chrono::milliseconds(1)));
  EXPECT_EQ(readPattern(*file), kBigSize);
  EXPECT_TRUE(file->Close());
  EXPECT_TRUE(connection->Remove("/big"));
}

TEST_F(FtpTransferTest, NotifiesOfTheControlConnectionAlone) {
  ScriptedFtp server = serving(json::object());
  auto connection = connect(server);
  session.takeStatuses();
  auto file = openToRead(*connection, "/big");
  // TYPE and SIZE with EPSV, RETR.
  EXPECT_EQ(session.takeStatuses(), (Statuses{30, 31, 40, 41, 30, 31, 40, 41, 100}));
  readPattern(*file);
  EXPECT_EQ(session.takeStatuses(), Statuses{});
  EXPECT_TRUE(file->Close());
  EXPECT_EQ(session.takeStatuses(), (Statuses{40, 41, 100}));
}

TEST_F(FtpTransferTest, AReadOfExactlyTheSizeIsComplete) {
  ScriptedFtp server = serving(json::object());
  auto connection = connect(server);
  auto file = openToRead(*connection, "/big");
  std::vector<char> buffer(kBigSize);
  EXPECT_EQ(file->Read(buffer.data(), kBigSize), kBigSize);
  EXPECT_EQ(errorOf([&] { return file->Close(); }), 0u);
  EXPECT_TRUE(works(*connection));
  EXPECT_EQ(server.dataConnections().at(0).how, "complete");
}

TEST_F(FtpTransferTest, AReadOfExactlyTheSizeIsAFailureWhereTheServerSaysSo) {
  ScriptedFtp server = serving({{"final", "451 Checksum error"}, {"final_gate", "late"}});
  auto connection = connect(server);
  auto file = openToRead(*connection, "/big");
  std::vector<char> buffer(kBigSize);
  EXPECT_EQ(file->Read(buffer.data(), kBigSize), kBigSize);
  server.release("late");
  EXPECT_EQ(errorOf([&] { return file->Close(); }), 12003u);
  EXPECT_EQ(connection->LastServerText(), "451 Checksum error");
}

TEST_F(FtpTransferTest, An250InPlaceOf226IsSuccess) {
  ScriptedFtp server = serving({{"final", "250 Done"}});
  auto connection = connect(server);
  auto file = openToRead(*connection, "/big");
  readPattern(*file);
  EXPECT_TRUE(file->Close());
}

TEST_F(FtpTransferTest, AShortFileIsNeverASuccess) {
  struct Case {
    json options;
    std::uint32_t error;
    bool alive;
  };
  const Case cases[] = {
      {{{"close_after", 1'000'000}}, 12030, true},  // 226, but fewer bytes than announced
      {{{"close_after", 1'000'000}, {"final", "426 Aborted"}}, 12030, true},
      {{{"close_after", 1'000'000}, {"final", "451 Read error"}}, 12003, true},
      {{{"close_after", 1'000'000}, {"final", "451 Read error"}, {"opening", "150 Size unknown"}},
       12003,
       true},
      {{{"reset_after", 1'000'000}}, 12030, true},
      {{{"reset_after", 1'000'000}, {"final", "552 Gone"}}, 12003, true},
      {{{"close_after", 1'000'000}, {"final", nullptr}}, 12030, true},
  };
  for (const Case& each : cases) {
    session.SetTimeouts(shortTimeouts());
    ScriptedFtp server = serving(each.options);
    auto connection = connect(server);
    auto file = openToRead(*connection, "/big");
    EXPECT_EQ(thrownBy([&] { readPattern(*file); }).error, each.error) << each.options;
    EXPECT_NE(errorOf([&] { return file->Close(); }), 0u) << each.options;
    EXPECT_EQ(works(*connection), each.alive) << each.options;
  }
}

TEST_F(FtpTransferTest, AFileThatGrewIsReadInFull) {
  ScriptedFtp server = serving({{"extra_bytes", 1000}});
  auto connection = connect(server);
  auto file = openToRead(*connection, "/big");
  EXPECT_EQ(readToEnd(*file, 65536).size(), kBigSize + 1000);
  EXPECT_TRUE(file->Close());
}

TEST_F(FtpTransferTest, AResetWithoutAReasonIs12031) {
  session.SetTimeouts(shortTimeouts());
  ScriptedFtp server = serving({{"reset_after", 1000}, {"final", nullptr}});
  auto connection = connect(server);
  auto file = openToRead(*connection, "/big");
  EXPECT_EQ(thrownBy([&] { readPattern(*file); }).error, 12031u);
}

TEST_F(FtpTransferTest, AStalledReadIs12002) {
  session.SetTimeouts(shortTimeouts());
  ScriptedFtp server = serving({{"stall_after", 1'000'000}, {"gate", "never"}});
  auto connection = connect(server);
  auto file = openToRead(*connection, "/big");
  EXPECT_EQ(thrownBy([&] { readPattern(*file); }).error, 12002u);
  EXPECT_EQ(thrownBy([&] { readPattern(*file); }).error, 12030u) << "no end of data after a failure";
  EXPECT_FALSE(file->Close());
  EXPECT_EQ(errorOf([&] { return connection->Remove("/x"); }), 12030u);
}

TEST_F(FtpTransferTest, ARefusalThatFollowsTheEndOfTheDataIsWaitedForWhereTheSizeIsUnknown) {
  ScriptedFtp server = serving({{"close_after", 1'000'000},
                                {"opening", "150 Size unknown"},
                                {"final_gate", "later"},
                                {"final", "451 Read error"}});
  internet::Timeouts patient;
  patient.endOfData = std::chrono::seconds(30);
  session.SetTimeouts(patient);
  auto connection = connect(server);
  auto file = openToRead(*connection, "/big");
  std::thread later([&] {
    server.waitAtGate("later");
    server.release("later");
  });
  EXPECT_EQ(thrownBy([&] { readPattern(*file); }).error, 12003u);
  later.join();
}

TEST_F(FtpTransferTest, AStalledReadEndsAsSoonAsTheServerTellsWhy) {
  // The data connection stays open and silent; only the control connection tells that it is over.
  const json later = {{{"reply", "150 Here"}}, {{"gate", "wait"}}, {{"reply", "451 Disk error"}}};
  const json together = json::array({{{"reply", {"150 Here", "451 Disk error"}}}, {{"gate", "wait"}}});
  for (const json& steps : {later, together}) {
    ScriptedFtp server(json{{"rules", {{{"on", "RETR"}, {"do", steps}}}}});
    auto connection = connect(server);
    auto file = openToRead(*connection, "/big");
    server.release("wait");
    const Thrown thrown = thrownBy([&] { readPattern(*file); });
    EXPECT_EQ(thrown.error, 12003u);
    EXPECT_EQ(thrown.text, "451 Disk error");
  }
}

TEST_F(FtpTransferTest, AFullDiskInMidUploadKeepsTheServersWords) {
  for (const char* how : {"close_after", "reset_after"}) {
    ScriptedFtp server = serving({{how, 1'000'000}, {"final", "552 disk full"}}, "STOR");
    auto connection = connect(server);
    auto file = openToWrite(*connection, "/up");
    const Thrown thrown = thrownBy([&] { writePattern(*file, 50'000'000); });
    EXPECT_EQ(thrown.error, 12003u) << how;
    EXPECT_EQ(thrown.text, "552 disk full") << how;
    EXPECT_EQ(errorOf([&] { return file->Close(); }), 12003u) << how;
    EXPECT_TRUE(works(*connection)) << how;
  }
}

TEST_F(FtpTransferTest, AnUploadThatTheServerStopsReadingEndsAsSoonAsItTellsWhy) {
  ScriptedFtp server(
      json{{"rules",
            {{{"on", "STOR"},
              {"do", {{{"reply", "150 Send"}}, {{"gate", "wait"}}, {{"reply", "552 disk full"}}}}}}}});
  auto connection = connect(server);
  auto file = openToWrite(*connection, "/up");
  server.release("wait");
  const Thrown thrown = thrownBy([&] { writePattern(*file, 200'000'000, 1'000'000); });
  EXPECT_EQ(thrown.error, 12003u);
  EXPECT_EQ(thrown.text, "552 disk full");
}

// The end of the data told such a server that it had the whole file.
TEST_F(FtpTransferTest, AnUploadThatIsAnsweredBeforeItsEndIsBrokenOff) {
  struct Case {
    const char* answer;
    std::uint32_t error;
    const char* text;
  };
  for (const Case& each :
       {Case{"552 disk full", 12003, "552 disk full"}, Case{"426 Broken", 12030, "426 Broken"},
        Case{"226 Done", 12030, ""}, Case{"421 Farewell", 12030, "421 Farewell"}}) {
    internet::forgetCachedTraits();
    const json rest = {{"normal", {{"opening", nullptr}, {"final", nullptr}}}};
    ScriptedFtp server(
        json{{"rules", {{{"on", "STOR"}, {"do", {{{"reply", {"150 Send", each.answer}}}, rest}}}}}});
    internet::Timeouts patient;
    patient.epsvProbe = std::chrono::minutes(10);
    session.SetTimeouts(patient);
    auto connection = connect(server);
    auto file = openToWrite(*connection, "/up");
    file->Write("abc", 3);
    server.waitFor(R"({"data": 1})");
    EXPECT_EQ(errorOf([&] { return file->Close(); }), each.error) << each.answer;
    EXPECT_EQ(connection->LastServerText(), each.text);
    EXPECT_EQ(works(*connection), !std::string_view(each.answer).starts_with("421"));
    server.waitFor(R"({"data_closed": 1})");
    EXPECT_NE(server.dataConnections().at(0).how, "complete") << each.answer;
  }
}

TEST_F(FtpTransferTest, AStalledWriteIs12002) {
  session.SetTimeouts(shortTimeouts());
  ScriptedFtp server = serving({{"stall_after", 100'000}, {"gate", "never"}}, "STOR");
  auto connection = connect(server);
  auto file = openToWrite(*connection, "/up");
  EXPECT_EQ(thrownBy([&] { writePattern(*file, 200'000'000, 1'000'000); }).error, 12002u);
  EXPECT_EQ(errorOf([&] { return file->Close(); }), 12030u);
}

TEST_F(FtpTransferTest, AFileOutlivesItsConnectionAndItsSession) {
  ScriptedFtp server = serving(json::object());
  auto inner = std::make_unique<RecordingSession>();
  std::unique_ptr<CFtpConnection> connection(
      inner->GetFtpConnection(server.host().c_str(), "user", "secret", server.port(), true));
  auto file = openToRead(*connection, "/big");
  inner.reset();
  connection.reset();
  EXPECT_EQ(readPattern(*file), kBigSize) << "what is on its way still comes";
  EXPECT_EQ(errorOf([&] { return file->Close(); }), 12030u);
  file.reset();
  server.waitUntilAllClosed();
}

TEST_F(FtpTransferTest, AFileIsOnlyForWhatItWasOpenedFor) {
  ScriptedFtp server = serving(json::object());
  auto connection = connect(server);
  char byte = 0;
  auto in = openToRead(*connection, "/big");
  EXPECT_EQ(thrownBy([&] { in->Write(&byte, 1); }).error, 12019u);
  EXPECT_EQ(thrownBy([&] { in->Read(nullptr, 1); }).error, 87u);
  EXPECT_TRUE(in->Close());
  EXPECT_TRUE(in->Close()) << "twice";
  EXPECT_EQ(thrownBy([&] { in->Read(&byte, 1); }).error, 12019u);
  auto out = openToWrite(*connection, "/up");
  EXPECT_EQ(thrownBy([&] { out->Read(&byte, 1); }).error, 12019u);
  EXPECT_EQ(thrownBy([&] { out->Write(nullptr, 1); }).error, 87u);
}

}  // namespace
}  // namespace internet_tests
