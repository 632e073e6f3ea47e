// SPDX-License-Identifier: MIT
// The dialogs about sites and certificates, answered by a second thread.
#include <gmock/gmock.h>

#include <fstream>
#include <set>

#include "hosts/qxbrowse/sites/CertificateQuestion.h"
#include "hosts/qxbrowse/sites/Protection.h"
#include "hosts/qxbrowse/sites/Sites.h"
#include "tests/dialogs/Driver.h"
#include "tests/hosts/qxbrowse/SomeSites.h"
#include "tests/support/ScratchFolder.h"

namespace {

using namespace browse::connect_dialog;
using browse::Destination;
using browse::Encryption;
using browse::Site;
using browse::SiteFile;
using browse::Sites;
using dialog_test::drive;
using dialog_test::Driver;
using some_sites::kOtherPin;
using some_sites::kPin;
using some_sites::siteOf;
using testing::ElementsAre;
using testing::HasSubstr;

namespace question = browse::certificate_question;

class TheConnectDialog : public testing::Test {
 protected:
  std::optional<Destination> ask(const std::function<void(Driver&, HWND)>& answer) {
    return drive([this] { return sites.ask(nullptr); },
                 [&](Driver& user) { answer(user, user.waitForDialog()); });
  }

  static std::string text(const Driver& user, HWND dialog, int id) {
    return user.textOf(user.control(dialog, id));
  }
  static void type(const Driver& user, HWND dialog, int id, const std::string& what) {
    user.type(user.control(dialog, id), what);
  }
  static void choose(const Driver& user, HWND dialog, int index) {
    user.send(user.control(dialog, kSites), LB_SETCURSEL, static_cast<WPARAM>(index));
    user.send(dialog, WM_COMMAND, MAKEWPARAM(kSites, LBN_SELCHANGE));
  }
  static LRESULT siteCount(const Driver& user, HWND dialog) {
    return user.send(user.control(dialog, kSites), LB_GETCOUNT);
  }

  const testing_support::ScratchFolder scratch;
  const std::filesystem::path path = scratch.path() / "sites.ini";
  const SiteFile file{path};
  Sites sites{path};
};

TEST_F(TheConnectDialog, ConnectsToTheFirstSiteByEnter) {
  file.put(siteOf("one", "first"));
  file.put(siteOf("two", "second"));
  const auto to = ask([](Driver& user, HWND dialog) {
    EXPECT_EQ(text(user, dialog, kHost), "first");
    user.press(dialog, static_cast<int>(LOWORD(user.send(dialog, DM_GETDEFID))));
  });
  ASSERT_TRUE(to);
  EXPECT_EQ(to->site, siteOf("one", "first"));
}

TEST_F(TheConnectDialog, ShowsTheSiteThatIsChosen) {
  Site second = siteOf("two", "second");
  second.port = 2121;
  second.encryption = Encryption::ftpes;
  second.isPassive = false;
  second.localFolder = "C:\\x";
  second.remoteFolder = "/pub";
  second.pin = kPin;
  file.put(siteOf("one"));
  file.put(second);
  const auto to = ask([](Driver& user, HWND dialog) {
    choose(user, dialog, 1);
    user.press(dialog, kConnect);
  });
  ASSERT_TRUE(to);
  EXPECT_EQ(to->site, second);
}

TEST_F(TheConnectDialog, AnswersNothingWhenItIsCancelled) {
  EXPECT_FALSE(ask([](Driver& user, HWND dialog) { user.press(dialog, kCancel); }));
}

TEST_F(TheConnectDialog, TakesAnAddressInPlaceOfTheFields) {
  const auto to = ask([](Driver& user, HWND dialog) {
    type(user, dialog, kAddress, "ftpes://me:se%20cret@[::1]:2121/pub/a");
    EXPECT_EQ(text(user, dialog, kUser), "me");
    user.press(dialog, kConnect);
  });
  ASSERT_TRUE(to);
  EXPECT_EQ(to->site.host, "[::1]");
  EXPECT_EQ(to->site.port, 2121U);
  EXPECT_EQ(to->site.encryption, Encryption::ftpes);
  EXPECT_EQ(to->site.remoteFolder, "/pub/a");
  EXPECT_EQ(to->password, "se cret");
  EXPECT_EQ(browse::loginOf(to->site, "").host, "ftpes://[::1]");
  EXPECT_FALSE(std::filesystem::exists(path));
}

// An address in the field of the host was none to it.
TEST_F(TheConnectDialog, TakesAWholeAddressInPlaceOfTheHost) {
  Site site = siteOf("mine");
  site.localFolder = "C:\\x";
  file.put(site);
  const auto to = ask([](Driver& user, HWND dialog) {
    type(user, dialog, kHost, " <ftpes://anna@other.example.org:2121/pub> ");
    user.press(dialog, kConnect);
  });
  ASSERT_TRUE(to);
  site.host = "other.example.org";
  site.port = 2121;
  site.user = "anna";
  site.encryption = Encryption::ftpes;
  site.remoteFolder = "/pub";
  EXPECT_EQ(to->site, site) << "the rest stays";
  EXPECT_EQ(file.sites().at(0).host, siteOf("mine").host) << "nobody has saved it";
}

TEST_F(TheConnectDialog, TakesBlanksAroundAnAddressForNoPartOfIt) {
  const auto to = ask([](Driver& user, HWND dialog) {
    type(user, dialog, kAddress, "  ftp://example.org ");
    user.press(dialog, kConnect);
  });
  ASSERT_TRUE(to);
  EXPECT_EQ(to->site.host, "example.org");
}

TEST_F(TheConnectDialog, TellsThatWhatIsChangedIsNotSaved) {
  file.put(siteOf("one", "first"));
  const auto to = ask([](Driver& user, HWND dialog) {
    EXPECT_EQ(text(user, dialog, kState), "");
    type(user, dialog, kPassword, "secret");
    EXPECT_EQ(text(user, dialog, kState), "") << "a password that is not kept is no part of the site";
    type(user, dialog, kUser, "anna");
    EXPECT_THAT(text(user, dialog, kState), HasSubstr("Not saved"));
    user.press(dialog, kSave);
    user.waitUntil("the star to go", [&] { return text(user, dialog, kState).empty(); });
    type(user, dialog, kUser, "berta");
    user.press(dialog, kConnect);
  });
  ASSERT_TRUE(to);
  EXPECT_EQ(to->site.user, "berta") << "the fields as they are";
  EXPECT_EQ(file.sites().at(0).user, "anna");
}

// The changes were gone as soon as another site was chosen.
TEST_F(TheConnectDialog, AsksWhetherToSaveBeforeItShowsAnotherSite) {
  file.put(siteOf("one", "first"));
  file.put(siteOf("two", "second"));
  for (const int answer : {IDNO, IDYES}) {
    ask([answer](Driver& user, HWND dialog) {
      type(user, dialog, kUser, "anna");
      PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(kNew, BN_CLICKED), 0);
      user.press(user.waitForBox(dialog), answer);
      user.waitUntil("empty fields", [&] { return text(user, dialog, kHost).empty(); });
      user.press(dialog, kCancel);
    });
    EXPECT_EQ(file.sites().at(0).user, answer == IDYES ? "anna" : siteOf("one").user);
  }
}

TEST_F(TheConnectDialog, TakesNoAddressThatSwitchesTheChecksOff) {
  EXPECT_FALSE(ask([](Driver& user, HWND dialog) {
    type(user, dialog, kAddress, "ftpes://example.org/;verify=no");
    user.press(dialog, kConnect);
    EXPECT_THAT(user.answerBox(dialog).text, HasSubstr("address"));
    user.press(dialog, kCancel);
  }));
}

TEST_F(TheConnectDialog, SavesASiteWithoutItsPasswordUnlessThatIsAskedFor) {
  ask([this](Driver& user, HWND dialog) {
    user.send(dialog, WM_COMMAND, kNew);
    type(user, dialog, kName, "mine");
    type(user, dialog, kHost, "example.org");
    type(user, dialog, kPassword, "secret");
    user.press(dialog, kSave);
    user.waitUntil("a site in the list", [&] { return siteCount(user, dialog) == 1; });
    EXPECT_THAT(file.sites(), ElementsAre(siteOf("mine", "example.org")));
    user.send(user.control(dialog, kKeepPassword), BM_SETCHECK, BST_CHECKED);
    user.press(dialog, kSave);
    user.waitUntil("a password in the file", [&] { return !file.sites().at(0).password.empty(); });
    user.press(dialog, kCancel);
  });
  EXPECT_EQ(browse::unprotect(file.sites().at(0).password), "secret");
  const auto to = ask([](Driver& user, HWND dialog) { user.press(dialog, kConnect); });
  EXPECT_EQ(to->password, "secret");
}

TEST_F(TheConnectDialog, AsksAgainForAPasswordThatAnotherUserHasProtected) {
  Site site = siteOf("mine");
  site.password = "AQAAANCMnd8BFdERjHoAwE/Cl+s=";
  file.put(site);
  const auto to = ask([](Driver& user, HWND dialog) {
    EXPECT_EQ(text(user, dialog, kPassword), "");
    type(user, dialog, kPassword, "typed");
    user.press(dialog, kConnect);
  });
  ASSERT_TRUE(to);
  EXPECT_EQ(to->password, "typed");
}

TEST_F(TheConnectDialog, GivesASiteAnotherNameAndForgetsOneWhenAsked) {
  file.put(siteOf("one"));
  file.put(siteOf("two"));
  ask([this](Driver& user, HWND dialog) {
    choose(user, dialog, 1);
    type(user, dialog, kName, "three");
    user.press(dialog, kSave);
    user.waitUntil("the new name", [&] { return file.sites().at(1).name == "three"; });
    choose(user, dialog, 0);
    user.press(dialog, kDelete);
    user.press(user.waitForBox(dialog), IDYES);
    user.waitUntil("one site", [&] { return siteCount(user, dialog) == 1; });
    user.press(dialog, kCancel);
  });
  EXPECT_THAT(file.sites(), ElementsAre(siteOf("three")));
}

TEST_F(TheConnectDialog, ReplacesAnotherSiteOnlyWhenThatIsWanted) {
  file.put(siteOf("one", "first"));
  file.put(siteOf("two", "second"));
  ask([](Driver& user, HWND dialog) {
    type(user, dialog, kName, "two");
    user.press(dialog, kSave);
    user.press(user.waitForBox(dialog), IDNO);
    user.press(dialog, kCancel);
  });
  EXPECT_THAT(file.sites(), ElementsAre(siteOf("one", "first"), siteOf("two", "second")));
}

TEST_F(TheConnectDialog, TellsWhatIsWrongWithASite) {
  ask([](Driver& user, HWND dialog) {
    type(user, dialog, kHost, "example.org;verify=no");
    user.press(dialog, kConnect);
    EXPECT_THAT(user.answerBox(dialog).text, HasSubstr("host"));
    type(user, dialog, kHost, "example.org");
    type(user, dialog, kPort, "70000");
    user.press(dialog, kConnect);
    EXPECT_THAT(user.answerBox(dialog).text, HasSubstr("65535"));
    user.press(dialog, kCancel);
  });
}

TEST_F(TheConnectDialog, TellsOfABrokenFileAndSetsItAsideOnlyWhenThatIsWanted) {
  const std::string broken = "[a]\nhost=h\nport=many\n";
  std::ofstream(path) << broken;
  const auto open = [this](int answer) {
    drive([this] { return sites.ask(nullptr); },
          [&](Driver& user) {
            const HWND box = user.waitForBox(nullptr);
            EXPECT_THAT(user.textOf(user.control(box, 0xFFFF)),
                        testing::AllOf(HasSubstr("sites.ini"), HasSubstr("Line 3")));
            user.press(box, answer);
            user.waitUntilGone(box);
            if (answer == IDYES) {
              EXPECT_THAT(user.answerBox(nullptr).text, HasSubstr("sites.broken-1.ini"));
            }
            user.press(user.waitForDialog("Connect to a server"), kCancel);
          });
  };
  open(IDNO);
  EXPECT_TRUE(std::filesystem::exists(path));
  open(IDYES);
  EXPECT_FALSE(std::filesystem::exists(path));
  EXPECT_TRUE(std::filesystem::exists(scratch.path() / "sites.broken-1.ini"));
}

TEST_F(TheConnectDialog, HasAKeyForEachFieldAndNoneTwice) {
  ask([](Driver& user, HWND dialog) {
    std::multiset<char> keys;
    for (HWND each = GetWindow(dialog, GW_CHILD); each != nullptr; each = GetWindow(each, GW_HWNDNEXT)) {
      const std::string caption = user.textOf(each);
      const std::size_t mark = caption.find('&');
      if (mark != std::string::npos) keys.insert(static_cast<char>(std::tolower(caption.at(mark + 1))));
    }
    EXPECT_EQ(keys.size(), 17U);
    for (const char key : keys) EXPECT_EQ(keys.count(key), 1U) << key;
    user.press(dialog, kCancel);
  });
}

// --- the question about a certificate
// -------------------------------------------------------------------------

qx::Report reportOf(const std::string& pin, std::uint32_t number = 12045) {
  return {
      true, false, number,
      "The certificate of h comes from nobody: SHA-256 " + pin +
          ", valid from 2026-11-21 21:39:09 UTC to 2026-12-22 21:39:09 UTC, issued to CN=h, by CN=me  [12045 "
          "QXIP 1187]",
      ""};
}

// What Enter presses.
HWND focusIn(HWND dialog) {
  GUITHREADINFO info{};
  info.cbSize = sizeof info;
  GetGUIThreadInfo(GetWindowThreadProcessId(dialog, nullptr), &info);
  return info.hwndFocus;
}

class TheCertificateQuestion : public TheConnectDialog {
 protected:
  std::optional<Destination> askAbout(const Site& site, int answer, std::string* facts = nullptr,
                                      std::string* warning = nullptr) {
    return drive(
        [&] {
          return sites.askAfterFailure(nullptr, {site, "secret"}, reportOf(kPin));
        },
        [&](Driver& user) {
          const HWND dialog = user.waitForDialog();
          if (facts != nullptr) *facts = text(user, dialog, question::kFacts);
          if (warning != nullptr) *warning = text(user, dialog, question::kWarning);
          user.press(dialog, answer != 0 ? answer : GetDlgCtrlID(focusIn(dialog)));
        });
  }

  static Site encrypted() {
    Site site = siteOf("mine");
    site.encryption = Encryption::ftpes;
    return site;
  }
};

TEST_F(TheCertificateQuestion, ShowsWhatTheCertificateSays) {
  std::string facts;
  EXPECT_FALSE(askAbout(encrypted(), question::kNo, &facts));
  for (const char* part : {"AA:AA:AA", "comes from nobody", "2026-11-21", "2026-12-22", "CN=h", "CN=me"}) {
    EXPECT_THAT(facts, HasSubstr(part));
  }
}

TEST_F(TheCertificateQuestion, IsAnsweredByNoWhereEnterIsPressed) {
  file.put(encrypted());
  EXPECT_FALSE(askAbout(encrypted(), 0));
  EXPECT_EQ(file.sites().at(0).pin, "");
}

TEST_F(TheCertificateQuestion, PutsThePinIntoTheSiteForGood) {
  Site site = encrypted();
  site.remoteFolder = "/kept";
  file.put(site);
  const auto to = askAbout(encrypted(), question::kForGood);
  ASSERT_TRUE(to);
  EXPECT_EQ(to->site.pin, kPin);
  EXPECT_EQ(to->password, "secret");
  site.pin = kPin;
  EXPECT_THAT(file.sites(), ElementsAre(site));
}

TEST_F(TheCertificateQuestion, RemembersAServerThatWasNoSiteUnderAFreeName) {
  Site other = siteOf("mine", "another");
  file.put(other);
  ASSERT_TRUE(askAbout(encrypted(), question::kForGood));
  ASSERT_EQ(file.sites().size(), 2U);
  EXPECT_EQ(file.sites().at(0), other);
  EXPECT_EQ(file.sites().at(1).name, "mine (2)");
  EXPECT_EQ(file.sites().at(1).pin, kPin);
}

TEST_F(TheCertificateQuestion, AcceptsOnceForThisRunAndNotInTheFile) {
  file.put(encrypted());
  const auto to = askAbout(encrypted(), question::kOnce);
  ASSERT_TRUE(to);
  EXPECT_EQ(to->site.pin, kPin);
  EXPECT_EQ(file.sites().at(0).pin, "");
  const auto again = ask([](Driver& user, HWND dialog) { user.press(dialog, kConnect); });
  EXPECT_EQ(again->site.pin, kPin);
  Sites nextRun(path);
  const auto next = drive([&] { return nextRun.ask(nullptr); },
                          [](Driver& user) { user.press(user.waitForDialog(), kConnect); });
  EXPECT_EQ(next->site.pin, "");
}

TEST_F(TheCertificateQuestion, WarnsWithBothFingerprintsOfAServerThatHasChanged) {
  Site site = encrypted();
  site.pin = kOtherPin;
  std::string facts;
  std::string warning;
  EXPECT_FALSE(askAbout(site, 0, &facts, &warning));
  EXPECT_THAT(warning, HasSubstr("WARNING"));
  EXPECT_THAT(facts, testing::AllOf(HasSubstr("AA:AA"), HasSubstr("BB:BB")));
}

TEST_F(TheCertificateQuestion, IsNotAskedAboutOtherFailures) {
  EXPECT_FALSE(sites.askAfterFailure(nullptr, {encrypted(), ""}, reportOf(kPin, 12170)));
  EXPECT_FALSE(sites.askAfterFailure(nullptr, {encrypted(), ""}, {true, false, 12014, "refused", ""}));
}

}  // namespace
