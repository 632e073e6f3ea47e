// SPDX-License-Identifier: MIT
// The question before a transfer replaces a file, answered by a second thread.
#include "hosts/qxbrowse/pane/ReplaceQuestion.h"

#include <gmock/gmock.h>

#include "hosts/qxbrowse/ui/Names.h"
#include "tests/dialogs/Driver.h"

namespace {

using namespace browse;
using dialog_test::drive;
using dialog_test::Driver;
namespace buttons = browse::replace_question;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::chrono::sys_seconds kEarly{std::chrono::seconds(1'700'000'000)};
constexpr std::chrono::sys_seconds kLate = kEarly + std::chrono::hours(24);

Transfer transferOf(const std::string& name, bool isTaken = true) {
  Transfer transfer{Direction::download, {"/pub/" + name, 1200, {}}, "C:\\here\\" + name, {}, {}, 1200,
                    hosts::Moment{kLate}};
  if (isTaken) transfer.replaces = FileFacts{34, hosts::Moment{kEarly}};
  return transfer;
}

class TheReplaceQuestion : public testing::Test {
 protected:
  using Answers = std::vector<WORD>;

  // The names of those that are agreed to, behind so many dialogs.
  std::vector<std::string> ask(std::vector<Transfer> transfers, const Answers& answers) {
    std::vector<std::string> names;
    const auto note = [&names](const std::vector<Transfer>& agreed) {
      for (const Transfer& transfer : agreed) {
        names.push_back(transfer.local.filename().string() + (transfer.mayReplace ? "!" : ""));
      }
    };
    drive([&] { questions.ask(nullptr, std::move(transfers), note); },
          [&answers](Driver& user) {
            for (const WORD answer : answers) {
              const HWND dialog = user.waitForDialog("Replace a file?");
              user.press(dialog, answer);
              user.waitUntilGone(dialog);
            }
          });
    return names;
  }

  ReplaceQuestions questions;
};

TEST_F(TheReplaceQuestion, IsNotAskedWhereNothingIsReplaced) {
  EXPECT_THAT(ask({transferOf("a", false), transferOf("b", false)}, {}), ElementsAre("a", "b"));
}

TEST_F(TheReplaceQuestion, ShowsWhereTheFileIsAndWhatDiffers) {
  std::string question, there, comes, more;
  drive(
      [&] {
        questions.ask(nullptr, {transferOf("a"), transferOf("b")}, [](const std::vector<Transfer>&) {});
      },
      [&](Driver& user) {
        const HWND dialog = user.waitForDialog("Replace a file?");
        question = user.textOf(user.control(dialog, buttons::kQuestion));
        there = user.textOf(user.control(dialog, buttons::kThere));
        comes = user.textOf(user.control(dialog, buttons::kComes));
        more = user.textOf(user.control(dialog, buttons::kMore));
        user.press(dialog, buttons::kCancel);
      });
  EXPECT_THAT(question, AllOf(HasSubstr("\"a\""), HasSubstr("C:\\here\\a")));
  EXPECT_THAT(there, AllOf(HasSubstr("34 bytes, 2023-11-1"), testing::Not(HasSubstr("newer"))));
  EXPECT_THAT(comes, HasSubstr("1,200 bytes, 2023-11-1"));
  EXPECT_THAT(comes, AllOf(HasSubstr("(newer)"), HasSubstr("(larger)")));
  EXPECT_THAT(more, HasSubstr("1 more"));
}

TEST_F(TheReplaceQuestion, IsAnsweredForEachFile) {
  EXPECT_THAT(ask({transferOf("a"), transferOf("b", false), transferOf("c"), transferOf("d")},
                  {buttons::kReplace, buttons::kSkip, buttons::kReplace}),
              ElementsAre("a!", "b", "d!"));
}

TEST_F(TheReplaceQuestion, IsAnsweredForAll) {
  EXPECT_THAT(ask({transferOf("a"), transferOf("b"), transferOf("c", false)}, {buttons::kReplaceAll}),
              ElementsAre("a!", "b!", "c"));
  EXPECT_THAT(ask({transferOf("a"), transferOf("b"), transferOf("c", false), transferOf("d")},
                  {buttons::kReplace, buttons::kSkipAll}),
              ElementsAre("a!", "c"));
}

TEST_F(TheReplaceQuestion, LeavesAllOutWhenItIsCancelled) {
  EXPECT_THAT(
      ask({transferOf("a", false), transferOf("b"), transferOf("c")}, {buttons::kReplace, buttons::kCancel}),
      IsEmpty());
}

TEST_F(TheReplaceQuestion, LosesNothingByEnterAndHasNoAllForTheLast) {
  std::vector<Transfer> kept;
  drive(
      [&] {
        questions.ask(nullptr, {transferOf("a")},
                      [&](const std::vector<Transfer>& agreed) { kept = agreed; });
      },
      [](Driver& user) {
        const HWND dialog = user.waitForDialog("Replace a file?");
        EXPECT_FALSE(IsWindowEnabled(user.control(dialog, buttons::kReplaceAll)));
        user.press(dialog, static_cast<int>(LOWORD(user.send(dialog, DM_GETDEFID))));
      });
  EXPECT_THAT(kept, IsEmpty());
}

// Two of them over each other would have let the user at the window behind the first.
TEST_F(TheReplaceQuestion, WaitsForTheOneThatIsOpen) {
  int answered = 0;
  const auto count = [&answered](const std::vector<Transfer>&) { ++answered; };
  drive(
      [&] {
        questions.ask(nullptr, {transferOf("a")}, [&](const std::vector<Transfer>&) {
          count({});
          questions.ask(nullptr, {transferOf("b")}, count);
          EXPECT_EQ(answered, 1) << "within the first";
        });
      },
      [](Driver& user) {
        for (int i = 0; i < 2; ++i) {
          const HWND dialog = user.waitForDialog("Replace a file?");
          user.press(dialog, buttons::kSkip);
          user.waitUntilGone(dialog);
        }
      });
  EXPECT_EQ(answered, 2);
}

TEST(TheFactsOfAFile, AreNoMoreThanIsKnown) {
  EXPECT_EQ(factsText({}, {}), L"size not known");
  EXPECT_EQ(factsText({5, {}}, {7, {}}), L"5 bytes");
  EXPECT_EQ(factsText({7, {}}, {5, {}}), L"7 bytes (larger)");
  const std::wstring day = factsText({7, hosts::Moment{kEarly, hosts::Precision::day}}, {});
  EXPECT_EQ(day.size(), std::wstring(L"7 bytes, 2023-11-14").size());
}

}  // namespace
