// SPDX-License-Identifier: MIT
#include "hosts/qxftp/MirrorPlan.h"

#include <gmock/gmock.h>

namespace qxftp {
namespace {

using namespace std::chrono_literals;
using hosts::Entry;
using hosts::Kind;
using hosts::Precision;
using hosts::Tree;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::chrono::sys_seconds kNoon = std::chrono::sys_days{std::chrono::year{2024} / 2 / 29} + 12h;

Entry file(const std::string& path, std::uint64_t size = 5, std::chrono::seconds after = 0s,
           Precision precision = Precision::second) {
  return {path, Kind::file, size, hosts::Moment{kNoon + after, precision}};
}

Entry folder(const std::string& path) { return {path, Kind::folder, 0, {}}; }

Tree tree(std::vector<Entry> entries) { return {std::move(entries), {}, false}; }

class PlannedMirror : public testing::Test {
 protected:
  // "get a (new)", in their order.
  std::vector<std::string> steps(const Tree& source, const Tree& target) {
    plan = planMirror(source, target, rules);
    std::vector<std::string> texts;
    for (const MirrorStep& step : plan.steps) {
      static constexpr const char* kNames[] = {"rm", "rmdir", "mkdir", "move"};
      texts.push_back(std::string(kNames[static_cast<int>(step.action)]) + " " + step.entry.path + " (" +
                      step.why + ")");
    }
    return texts;
  }

  std::vector<std::string> problems() const {
    std::vector<std::string> paths;
    for (const hosts::Problem& problem : plan.problems) paths.push_back(problem.path);
    return paths;
  }

  MirrorRules rules{.localNames = hosts::NameRules::posix, .now = kNoon + 24h};
  MirrorPlan plan;
};

class MirrorUp : public PlannedMirror {
 protected:
  MirrorUp() { rules.direction = Direction::up; }
};

TEST_F(PlannedMirror, MakesFoldersBeforeWhatIsInThem) {
  const Tree source = tree({file("a"), folder("empty"), folder("sub"), file("sub/b", 7)});
  EXPECT_THAT(steps(source, tree({})),
              ElementsAre("move a (new)", "mkdir empty (new)", "mkdir sub (new)", "move sub/b (new)"));
  EXPECT_EQ(plan.bytes, 12U);
}

TEST_F(PlannedMirror, MovesNothingThatIsThere) {
  const Tree both = tree({file("a"), folder("sub"), file("sub/b")});
  EXPECT_THAT(steps(both, both), IsEmpty());
  EXPECT_EQ(plan.same, 2U);
}

TEST_F(PlannedMirror, MovesWhatHasAnotherSizeOrTime) {
  const Tree there = tree({file("size", 5), file("time"), file("older")});
  EXPECT_THAT(steps(tree({file("size", 6), file("time", 5, 60s), file("older", 5, -60s)}), there),
              ElementsAre("move size (size)", "move time (time)", "move older (time)"));
}

// A listing shows minutes, and days of older files; what was moved then must not be moved again.
TEST_F(PlannedMirror, TimesAreComparedAsExactlyAsTheListingTellsThem) {
  const Tree there = tree({file("minute", 5, 59s), file("day", 5, 14h)});
  EXPECT_THAT(
      steps(tree({file("minute", 5, 0s, Precision::minute), file("day", 5, 0s, Precision::day)}), there),
      IsEmpty());
  EXPECT_THAT(steps(tree({file("minute", 5, -60s, Precision::minute)}), there),
              ElementsAre("move minute (time)"));
}

TEST_F(PlannedMirror, WithoutATimeTheSizeDecides) {
  Entry unknown = file("a");
  unknown.time.reset();
  EXPECT_THAT(steps(tree({unknown}), tree({file("a")})), IsEmpty());
  unknown.size = 6;
  EXPECT_THAT(steps(tree({unknown}), tree({file("a")})), ElementsAre("move a (size)"));
}

TEST_F(MirrorUp, WhatWasUploadedLaterIsTheSame) {
  EXPECT_THAT(steps(tree({file("a")}), tree({file("a", 5, 3h)})), IsEmpty());
  EXPECT_THAT(steps(tree({file("a", 5, 4h)}), tree({file("a", 5, 3h)})), ElementsAre("move a (time)"));
}

TEST_F(MirrorUp, ATimeInTheFutureSaysNothing) {
  EXPECT_THAT(steps(tree({file("a", 5, 25h)}), tree({file("a")})), IsEmpty());
}

// A server that shows the clock of another zone has all uploads older than their files.
TEST_F(MirrorUp, AServersClockThatIsBehindIsTakenIntoAccount) {
  const Tree here = tree({file("a"), file("changed", 5, 3h)});
  const Tree there = tree({file("a", 5, 1h - 5h), file("changed", 5, 1h - 5h)});
  EXPECT_THAT(steps(here, there), ElementsAre("move a (time)", "move changed (time)"));
  EXPECT_TRUE(mayBeAMatterOfZones(plan, there));
  rules.serverAhead = -5h;
  EXPECT_THAT(steps(here, there), ElementsAre("move changed (time)"));
}

TEST_F(MirrorUp, NoZoneExplainsDays) {
  const Tree there = tree({file("a", 5, -48h), file("b", 4)});
  steps(tree({file("a"), file("b")}), there);
  EXPECT_FALSE(mayBeAMatterOfZones(plan, there));
}

TEST_F(PlannedMirror, RemovesOnlyWhenAskedTo) {
  const Tree there = tree({file("a"), folder("old"), folder("old/deep"), file("old/deep/b"), file("z")});
  EXPECT_THAT(steps(tree({file("a")}), there), IsEmpty());
  rules.deletes = true;
  EXPECT_THAT(steps(tree({file("a")}), there), ElementsAre("rm z (gone)", "rm old/deep/b (gone)",
                                                           "rmdir old/deep (gone)", "rmdir old (gone)"));
  EXPECT_EQ(plan.removals(), 4U);
}

// A server's folder can be a link, and then nothing that seems to be in it may go.
TEST_F(MirrorUp, RemovalsTellTheTopmostFolderThatGoes) {
  rules.deletes = true;
  const Tree there = tree({file("a"), folder("b"), file("b/in"), folder("kept"), file("kept/gone"),
                           folder("kept/old"), folder("kept/old/deep"), file("kept/old/deep/c")});
  steps(tree({file("b"), folder("kept")}), there);
  std::vector<std::string> told;
  for (const MirrorStep& step : plan.steps) told.push_back(step.entry.path + " in " + step.within);
  EXPECT_THAT(told,
              ElementsAre("b/in in b", "b in b", "b in ", "kept/old/deep/c in kept/old",
                          "kept/old/deep in kept/old", "kept/old in kept/old", "kept/gone in ", "a in "));
}

// What a folder has that could not be listed would look as if it was gone.
TEST_F(PlannedMirror, RemovesNothingWhenAListingIsIncomplete) {
  rules.deletes = true;
  Tree source = tree({folder("sub")});
  source.problems.push_back({"sub", "550"});
  EXPECT_THAT(steps(source, tree({folder("sub"), file("sub/a"), file("z")})), IsEmpty());
  EXPECT_TRUE(plan.isTooVagueToDelete);
  EXPECT_THAT(problems(), ElementsAre("sub"));
  source.problems.clear();
  source.isCancelled = true;
  EXPECT_THAT(steps(source, tree({folder("sub"), file("z")})), IsEmpty());
}

TEST_F(PlannedMirror, RefusesWhatIsInTheWay) {
  const Tree source = tree({file("a"), folder("b"), file("b/in")});
  const Tree there = tree({folder("a"), file("a/in"), file("b")});
  EXPECT_THAT(steps(source, there), IsEmpty());
  EXPECT_THAT(problems(), ElementsAre("a", "b"));
}

TEST_F(PlannedMirror, RemovesWhatIsInTheWayFirstWhenAskedTo) {
  rules.deletes = true;
  const Tree source = tree({file("a"), folder("b"), file("b/in")});
  const Tree there = tree({folder("a"), file("a/in"), file("b")});
  EXPECT_THAT(steps(source, there), ElementsAre("rm a/in (kind)", "rmdir a (kind)", "move a (kind)",
                                                "rm b (kind)", "mkdir b (kind)", "move b/in (new)"));
}

TEST_F(PlannedMirror, AFileTakesThePlaceOfALinkAndAFolderDoesNot) {
  Tree there = tree({file("a"), file("b")});
  for (Entry& entry : there.entries) entry.kind = Kind::link;
  EXPECT_THAT(steps(tree({file("a"), folder("b"), file("b/in")}), there), ElementsAre("move a (kind)"));
  EXPECT_THAT(problems(), ElementsAre("b")) << "what is below would be written to where the link leads";
}

TEST_F(PlannedMirror, RefusesNamesThatTheSystemCannotHaveWithAllBelowThem) {
  rules.localNames = hosts::NameRules::windows;
  const Tree source =
      tree({file("CON"), file("a:b"), folder("dot."), file("dot./in"), folder("dot./d"), file("ok")});
  EXPECT_THAT(steps(source, tree({})), ElementsAre("move ok (new)"));
  EXPECT_THAT(problems(), ElementsAre("CON", "a:b", "dot."));
}

TEST_F(PlannedMirror, ARefusedNameIsNotGone) {
  rules.localNames = hosts::NameRules::windows;
  rules.deletes = true;
  EXPECT_THAT(steps(tree({file("README"), file("readme")}), tree({file("ReadMe")})), IsEmpty());
  EXPECT_THAT(problems(), ElementsAre("readme"));
}

// The one that is here was compared with the other one, and sent in its own one's place again and again.
TEST_F(MirrorUp, OfNamesThatAreOneHereTheServersOwnOneCounts) {
  rules.localNames = hosts::NameRules::windows;
  EXPECT_THAT(steps(tree({file("readme", 5)}), tree({file("README", 6), file("readme", 5)})), IsEmpty());
  EXPECT_THAT(steps(tree({file("readme", 5)}), tree({file("README", 6)})), ElementsAre("move readme (size)"));
}

TEST_F(MirrorUp, RefusesWhatTheLibraryWouldTakeForAPath) {
  EXPECT_THAT(steps(tree({file("a\\b"), file("CON")}), tree({})), ElementsAre("move CON (new)"));
  EXPECT_THAT(problems(), ElementsAre("a\\b"));
}

TEST_F(MirrorUp, RefusesWhatIsNoFile) {
  Tree source = tree({file("pipe")});
  source.entries[0].kind = Kind::other;
  EXPECT_THAT(steps(source, tree({})), IsEmpty());
  EXPECT_THAT(problems(), ElementsAre("pipe"));
}

}  // namespace
}  // namespace qxftp
