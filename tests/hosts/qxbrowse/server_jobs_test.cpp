// SPDX-License-Identifier: MIT
// What the background thread does for the panes, at a server with all kinds of names.
#include "hosts/qxbrowse/jobs/ServerJobs.h"

#include <fstream>

#include "tests/hosts/qxbrowse/LaneTest.h"
#include "tests/support/ScratchFolder.h"

namespace browse {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class TheServerJobs : public LaneTest {
 protected:
  TheServerJobs() {
    server.put(R"({"/tree/one.txt": "1", "/tree/deep/two.txt": "22", "/tree/deep/er/three.txt": "333",
                   "/tree/empty/": {}, "/kept/four.txt": "4444", "/tree/link": {"link": "/kept"}})");
    background.connect(login(), [](const qx::Result<qx::Done>& done) { EXPECT_TRUE(done); });
    letters.readOne();
  }

  // Runs the job and returns its answer.
  template <typename Work>
  auto run(Work work) {
    std::optional<std::invoke_result_t<Work, const Session&>> answer;
    background.run(std::move(work), [&](auto got) { answer.emplace(std::move(got)); });
    letters.readUntil([&] { return answer.has_value(); });
    return *answer;
  }

  [[nodiscard]] static std::vector<std::string> pathsOf(const Problems& problems) {
    std::vector<std::string> paths;
    for (const hosts::Problem& problem : problems) paths.push_back(problem.path);
    return paths;
  }
  [[nodiscard]] std::vector<std::string> movesOf(const Expansion& expansion) const {
    std::vector<std::string> moves;
    for (const Transfer& transfer : expansion.transfers) {
      const std::string local =
          transfer.local.empty() ? "" : transfer.local.lexically_relative(scratch.path()).generic_string();
      moves.push_back(transfer.remote.path + " " + local + transfer.copy);
    }
    return moves;
  }
  [[nodiscard]] static std::vector<std::string> replacedBy(const Expansion& expansion) {
    std::vector<std::string> replaced;
    for (const Transfer& transfer : expansion.transfers) {
      if (!transfer.replaces) continue;
      replaced.push_back(transfer.remote.path + " " + std::to_string(transfer.replaces->size.value_or(999)));
    }
    return replaced;
  }
  void write(const std::string& name) const {
    std::filesystem::create_directories((scratch.path() / name).parent_path());
    std::ofstream(scratch.path() / name) << name;
  }

  const testing_support::ScratchFolder scratch;
  Background background{exports(), post()};
};

TEST_F(TheServerJobs, ListsAFolderWithItsEntries) {
  const auto entries = run([](const Session& session) { return listFolder(session, "/tree/deep"); });
  ASSERT_TRUE(entries);
  EXPECT_EQ(entries->size(), 2U);
}

// The library lists what is not there as empty.
TEST_F(TheServerJobs, AFolderThatIsMissingIsNotEmpty) {
  const auto missing = run([](const Session& session) { return listFolder(session, "/none"); });
  EXPECT_FALSE(missing);
  EXPECT_THAT(missing.report().text, HasSubstr("550"));
  EXPECT_TRUE(run([](const Session& session) { return listFolder(session, "/tree/empty"); }));
}

TEST_F(TheServerJobs, RemovesATreeButNotWhatALinkLeadsTo) {
  const auto removed = run([](const Session& session) { return removePlaces(session, {{"/tree", true}}); });
  ASSERT_TRUE(removed);
  EXPECT_THAT(pathsOf(*removed), IsEmpty());
  EXPECT_FALSE(server.exists("/tree"));
  EXPECT_TRUE(server.exists("/kept/four.txt"));
}

// Some servers tell nobody that there is a link: all that it led to went.
TEST_F(TheServerJobs, RemovesALinkThatIsListedAsAFolderAlone) {
  server.reconfigure(R"({"rules": [
    {"on": "MLSD", "argument": "/tree", "do": [{"normal": {"lines": ["type=dir; link"]}}]},
    {"on": "MLST", "argument": "/tree/link", "do": [{"reply": ["250-Facts", " type=dir; /tree/link", "250 End"]}]}
  ]})");
  const auto removed = run([](const Session& session) {
    return removePlaces(session, {{"/tree/link", true}});
  });
  ASSERT_TRUE(removed);
  EXPECT_THAT(pathsOf(*removed), IsEmpty());
  EXPECT_FALSE(server.exists("/tree/link"));
  EXPECT_TRUE(server.exists("/kept/four.txt"));
}

TEST_F(TheServerJobs, RemovesTheRestOfATreeInWhichOneFileStays) {
  server.reconfigure(
      R"({"rules": [{"on": "DELE", "argument": "/tree/deep/two.txt", "do": [{"reply": "550 Mine"}]}]})");
  const auto removed = run([](const Session& session) { return removePlaces(session, {{"/tree", true}}); });
  ASSERT_TRUE(removed);
  EXPECT_THAT(pathsOf(*removed), ElementsAre("/tree/deep/two.txt"));
  EXPECT_FALSE(server.exists("/tree/one.txt"));
  EXPECT_FALSE(server.exists("/tree/deep/er"));
  EXPECT_TRUE(server.exists("/tree/deep/two.txt"));
}

TEST_F(TheServerJobs, ExpandsADownloadOfFilesAndFolders) {
  server.put(R"({"/tree/link": null})");
  const auto expansion = run([this](const Session& session) {
    return expandDownload(session, {{"/tree/one.txt", false}, {"/tree/deep", true}, {"/tree/empty", true}},
                          scratch.path() / "here");
  });
  ASSERT_TRUE(expansion);
  EXPECT_THAT(expansion->problems, IsEmpty());
  EXPECT_THAT(movesOf(*expansion),
              UnorderedElementsAre("/tree/one.txt here/one.txt", "/tree/deep/two.txt here/deep/two.txt",
                                   "/tree/deep/er/three.txt here/deep/er/three.txt"));
  EXPECT_TRUE(std::filesystem::is_directory(scratch.path() / "here" / "empty"));
  EXPECT_EQ(expansion->transfers.front().size, 1U);
  EXPECT_TRUE(expansion->transfers.front().remote.time.has_value());
}

TEST_F(TheServerJobs, ADownloadTellsWhatHasGoneMeanwhile) {
  const auto expansion = run([this](const Session& session) {
    return expandDownload(session, {{"/tree/gone", false}, {"/tree/one.txt", false}}, scratch.path());
  });
  ASSERT_TRUE(expansion);
  EXPECT_THAT(pathsOf(expansion->problems), ElementsAre("/tree/gone"));
  EXPECT_EQ(expansion->transfers.size(), 1U);
}

// A name that is a path here would have been written elsewhere.
TEST_F(TheServerJobs, ADownloadLeavesOutNamesThatCannotBeHere) {
  server.put(R"({"/odd/good": "x"})");
  server.reconfigure(R"({"rules": [{"on": ["LIST", "MLSD"], "do": [{"normal": {"lines": [
      "type=file;size=1; good", "type=file;size=1; ..\\..\\bad", "type=dir; up\\.."]}}]}]})");
  const auto expansion = run([this](const Session& session) {
    return expandDownload(session, {{"/odd", true}}, scratch.path());
  });
  ASSERT_TRUE(expansion);
  EXPECT_FALSE(std::filesystem::exists(scratch.path().parent_path() / "bad"));
  for (const Transfer& transfer : expansion->transfers) {
    EXPECT_THAT(transfer.local.string(), HasSubstr(scratch.path().string()));
    EXPECT_THAT(transfer.remote.path, testing::Not(HasSubstr("bad")));
  }
}

TEST_F(TheServerJobs, ExpandsAnUploadAndMakesItsFolders) {
  write("up/a.txt");
  write("up/in/b.txt");
  write("c.txt");
  std::filesystem::create_directories(scratch.path() / "up" / "nothing");
  const auto expansion = run([this](const Session& session) {
    return expandUpload(session, {scratch.path() / "up", scratch.path() / "c.txt"}, "/tree");
  });
  ASSERT_TRUE(expansion);
  EXPECT_THAT(expansion->problems, IsEmpty());
  EXPECT_THAT(
      movesOf(*expansion),
      UnorderedElementsAre("/tree/up/a.txt up/a.txt", "/tree/up/in/b.txt up/in/b.txt", "/tree/c.txt c.txt"));
  EXPECT_TRUE(server.exists("/tree/up/nothing"));
}

TEST_F(TheServerJobs, AnUploadTellsWhatIsNotThere) {
  const auto expansion = run(
      [this](const Session& session) { return expandUpload(session, {scratch.path() / "none"}, "/tree"); });
  ASSERT_TRUE(expansion);
  EXPECT_EQ(expansion->problems.size(), 1U);
}

TEST_F(TheServerJobs, ExpandsACopyOfOneAndOfSeveral) {
  server.put(R"({"/tree/link": null})");
  const auto one = run([](const Session& session) {
    return expandCopy(session, {{"/tree", true}}, "/other");
  });
  ASSERT_TRUE(one);
  EXPECT_THAT(movesOf(*one),
              UnorderedElementsAre("/tree/one.txt /other/one.txt", "/tree/deep/two.txt /other/deep/two.txt",
                                   "/tree/deep/er/three.txt /other/deep/er/three.txt"));
  EXPECT_TRUE(server.exists("/other/empty"));
  const auto several = run([](const Session& session) {
    return expandCopy(session, {{"/tree/one.txt", false}, {"/kept/four.txt", false}}, "/other");
  });
  ASSERT_TRUE(several);
  EXPECT_THAT(movesOf(*several),
              ElementsAre("/tree/one.txt /other/one.txt", "/kept/four.txt /other/four.txt"));
}

// The library would have copied the file over itself.
TEST_F(TheServerJobs, CopiesNothingOntoItself) {
  const auto same = run([](const Session& session) {
    return expandCopy(session, {{"/kept/four.txt", false}}, "/kept/four.txt");
  });
  ASSERT_TRUE(same);
  EXPECT_THAT(same->transfers, IsEmpty());
  EXPECT_EQ(same->problems.size(), 1U);
}

TEST_F(TheServerJobs, MovesOneToANewNameAndSeveralIntoAFolder) {
  const auto one = run([](const Session& session) {
    return movePlaces(session, {{"/tree/one.txt", false}}, "/kept/1.txt");
  });
  ASSERT_TRUE(one);
  EXPECT_TRUE(server.exists("/kept/1.txt"));
  const auto several = run([](const Session& session) {
    return movePlaces(session, {{"/kept/1.txt", false}, {"/none", false}, {"/kept/four.txt", false}},
                      "/tree");
  });
  ASSERT_TRUE(several);
  EXPECT_THAT(pathsOf(*several), ElementsAre("/none"));
  EXPECT_TRUE(server.exists("/tree/1.txt"));
  EXPECT_TRUE(server.exists("/tree/four.txt"));
}

// A transfer that replaced a file did so without a word.
TEST_F(TheServerJobs, TellsTheFilesThatADownloadWouldReplace) {
  server.put(R"({"/tree/link": null})");
  write("deep/two.txt");
  const auto expansion = run([this](const Session& session) {
    return expandDownload(session, {{"/tree/one.txt", false}, {"/tree/deep", true}}, scratch.path());
  });
  ASSERT_TRUE(expansion);
  EXPECT_THAT(replacedBy(*expansion), ElementsAre("/tree/deep/two.txt 12"));
  for (const Transfer& transfer : expansion->transfers) EXPECT_FALSE(transfer.mayReplace);
}

TEST_F(TheServerJobs, TellsTheFilesThatAnUploadWouldReplace) {
  for (const char* name : {"deep/two.txt", "deep/new.txt", "deep/er/three.txt", "deep/other/four.txt"})
    write(name);
  const auto expansion = run(
      [this](const Session& session) { return expandUpload(session, {scratch.path() / "deep"}, "/tree"); });
  ASSERT_TRUE(expansion);
  EXPECT_THAT(replacedBy(*expansion),
              UnorderedElementsAre("/tree/deep/two.txt 2", "/tree/deep/er/three.txt 3"));
}

TEST_F(TheServerJobs, TellsTheFilesThatACopyWouldReplace) {
  const auto expansion = run([](const Session& session) {
    return expandCopy(session, {{"/kept/four.txt", false}}, "/tree/one.txt");
  });
  ASSERT_TRUE(expansion);
  EXPECT_THAT(replacedBy(*expansion), ElementsAre("/kept/four.txt 1"));
  EXPECT_EQ(expansion->transfers.front().size, 4U) << "it can be compared";
}

// Servers do not list names that begin with a dot, and some take "ONE.TXT" for "one.txt".
TEST_F(TheServerJobs, AsksTheServerForNamesThatItsListingsMayNotTell) {
  server.put(R"({"/tree/.profile": "hidden", "/tree/ONE.TXT": "other"})");
  server.reconfigure(R"({"rules": [{"on": ["LIST", "MLSD"], "argument": "/tree", "do": [{"normal": {"lines": [
      "type=file;size=1; one.txt"]}}]}]})");
  for (const char* name : {".profile", "ONE.TXT", ".none"}) write(name);
  const auto expansion = run([this](const Session& session) {
    return expandUpload(session,
                        {scratch.path() / ".profile", scratch.path() / "ONE.TXT", scratch.path() / ".none"},
                        "/tree");
  });
  ASSERT_TRUE(expansion);
  EXPECT_THAT(replacedBy(*expansion), UnorderedElementsAre("/tree/.profile 6", "/tree/ONE.TXT 5"));
}

TEST_F(TheServerJobs, LooksAgainAtWhatTheUserHasNotAgreedTo) {
  const auto access = std::make_shared<const qx::Login>(login());
  Transfer free{Direction::upload, {"/tree/fresh", {}, {}}, scratch.path() / "x", {}, access, {}};
  Transfer taken{Direction::upload, {"/tree/one.txt", {}, {}}, scratch.path() / "x", {}, access, {}};
  Transfer agreed = taken;
  agreed.mayReplace = true;
  Transfer elsewhere = taken;
  elsewhere.server = std::make_shared<const qx::Login>();
  Transfer beforeANewLogin = taken;
  beforeANewLogin.server = std::make_shared<const qx::Login>(login());
  const auto expansion = run([&](const Session& session) {
    return lookAgain(session, {free, taken, agreed, elsewhere, beforeANewLogin}, access);
  });
  ASSERT_TRUE(expansion);
  ASSERT_EQ(expansion->transfers.size(), 5U);
  EXPECT_THAT(replacedBy(*expansion), ElementsAre("/tree/one.txt 1", "/tree/one.txt 1"));
  EXPECT_TRUE(expansion->transfers[1].replaces);
  EXPECT_TRUE(expansion->transfers[2].mayReplace);
  EXPECT_FALSE(expansion->transfers[3].replaces);
}

// Most servers replace a file by one that is renamed to its name.
TEST_F(TheServerJobs, MovesNothingOverWhatIsThere) {
  const auto moved = run([](const Session& session) {
    return movePlaces(session, {{"/tree/one.txt", false}}, "/kept/four.txt");
  });
  ASSERT_TRUE(moved);
  EXPECT_THAT(pathsOf(*moved), ElementsAre("/tree/one.txt"));
  EXPECT_EQ(server.content("/kept/four.txt"), "4444");
  EXPECT_TRUE(server.exists("/tree/one.txt"));
}

TEST_F(TheServerJobs, ChangesTheCaseOfAName) {
  const auto moved = run([](const Session& session) {
    return movePlaces(session, {{"/tree/one.txt", false}}, "/tree/One.txt");
  });
  ASSERT_TRUE(moved);
  EXPECT_THAT(*moved, IsEmpty());
  EXPECT_TRUE(server.exists("/tree/One.txt"));
}

}  // namespace
}  // namespace browse
