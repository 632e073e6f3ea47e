// SPDX-License-Identifier: MIT
// Sites from and to the text of their file.
#include <gmock/gmock.h>

#include "hosts/qxbrowse/sites/SiteText.h"
#include "tests/hosts/qxbrowse/SomeSites.h"

namespace {

using browse::BrokenSites;
using browse::Encryption;
using browse::Site;
using browse::SiteText;
using browse::Text;
using some_sites::kPin;
using some_sites::siteOf;

Site fullSite() {
  Site site;
  site.name = "A [server]";
  site.host = "ftp.example.org";
  site.port = 2121;
  site.user = "J\xC3\xB6rg = me";
  site.encryption = Encryption::ftps;
  site.isPassive = false;
  site.localFolder = "C:\\letters ";
  site.remoteFolder = " /pub;1";
  site.pin = kPin;
  site.password = "AQAAANCM==";
  return site;
}

// The line and the reason of a text that is refused.
std::pair<std::size_t, Text> faultIn(std::string_view text) {
  try {
    const SiteText read(text);
  } catch (const BrokenSites& broken) {
    return {broken.line, broken.reason};
  }
  return {0, Text::programName};
}

TEST(SiteTexts, BringEachFieldBackAsItWas) {
  SiteText text("");
  text.put(fullSite());
  EXPECT_THAT(SiteText(text.text()).sites(), testing::ElementsAre(fullSite()));
}

TEST(SiteTexts, GiveASiteThatNamesItsHostAloneTheUsualRest) {
  const Site site = SiteText("[a]\nhost=h\n").sites().at(0);
  EXPECT_EQ(site, siteOf("a"));
  EXPECT_TRUE(site.isPassive);
}

TEST(SiteTexts, KeepWhatTheyDoNotKnow) {
  SiteText text("; mine\n\n[a]\nhost=h\ncolour=red\n; here\n\n[b]\nhost=i\n");
  Site changed = siteOf("a");
  changed.host = "j";
  text.put(changed);
  EXPECT_THAT(text.text(), testing::StartsWith("; mine\r\n\r\n[a]\r\nhost=j\r\ncolour=red\r\nport=21\r\n"));
  EXPECT_THAT(text.text(), testing::EndsWith("password=\r\n; here\r\n\r\n[b]\r\nhost=i\r\n"));
}

TEST(SiteTexts, KeepTheUnknownLinesOfASiteThatGetsAnotherName) {
  SiteText text("[a]\nhost=h\ncolour=red\n[b]\nhost=i\n");
  text.put(siteOf("b"), "a");
  EXPECT_THAT(text.text(), testing::StartsWith("[b]\r\nhost=h\r\ncolour=red\r\n"));
  EXPECT_EQ(text.sites().size(), 1U);
}

TEST(SiteTexts, AddANewSiteBehindABlankLine) {
  SiteText text("[a]\nhost=h\n");
  text.put(siteOf("b"));
  EXPECT_THAT(text.text(), testing::StartsWith("[a]\r\nhost=h\r\n\r\n[b]\r\nhost=h\r\n"));
}

TEST(SiteTexts, ForgetOneSite) {
  SiteText text("[a]\nhost=h\n[b]\nhost=i\n[c]\nhost=j\n");
  text.remove("b");
  EXPECT_EQ(text.text(), "[a]\r\nhost=h\r\n[c]\r\nhost=j\r\n");
}

TEST(SiteTexts, AreReadWithTheMarkAndTheLineEndsOfAnyEditor) {
  EXPECT_THAT(SiteText("\xEF\xBB\xBF[a]\nhost=h\r\n\r\n  \t\n  ; x\n[b]\r\nhost=h").sites(),
              testing::ElementsAre(siteOf("a"), siteOf("b")));
}

TEST(SiteTexts, TellTheLineAndTheReasonOfWhatIsBroken) {
  const std::vector<std::tuple<std::string, std::size_t, Text>> cases = {
      {"host=h\n", 1, Text::brokenNoSite},
      {"; x\n[a\nhost=h\n", 2, Text::brokenBracket},
      {"[a] \nhost=h\n", 1, Text::brokenBracket},
      {"[]\nhost=h\n", 1, Text::wrongName},
      {"[", 1, Text::brokenBracket},
      {"[a]\nhost=h\n[a]\nhost=h\n", 3, Text::brokenTwoSites},
      {"[a]\nhost\n", 2, Text::brokenNoValue},
      {"[a]\nhost=h\nhost=i\n", 3, Text::brokenTwoValues},
      {"\n[a]\n\nport=1\n", 2, Text::wrongHost},
      {"[a]\nhost=h;verify=no\n", 1, Text::wrongHost},
      {"[a]\nhost=ftps://h\n", 1, Text::wrongHost},
      {"[a]\nhost=h\nport=\n", 3, Text::wrongPort},
      {"[a]\nhost=h\nport=21x\n", 3, Text::wrongPort},
      {"[a]\nhost=h\nport=99999999999999\n", 3, Text::wrongPort},
      {"[a]\nhost=h\nport=0\n", 1, Text::wrongPort},
      {"[a]\nhost=h\nport=65536\n", 1, Text::wrongPort},
      {"[a]\nhost=h\nencryption=tls\n", 3, Text::brokenEncryption},
      {"[a]\nhost=h\npassive=1\n", 3, Text::brokenPassive},
      {"[a]\nhost=h\nencryption=ftps\npin=" + kPin + "0\n", 4, Text::wrongPin},
      {"[a]\nhost=h\npin=" + kPin + "\n", 1, Text::wrongPinPlain},
      {"[a]\nhost=h\nuser=a\tb\n", 1, Text::wrongText},
      {std::string("[a]\nhost=h\0\n", 12), 2, Text::brokenBinary},
  };
  for (const auto& [text, line, reason] : cases) {
    EXPECT_EQ(faultIn(text), std::pair(line, reason)) << text;
  }
}

TEST(SiteTexts, HaveNoSitesWhenTheyAreEmpty) {
  EXPECT_TRUE(SiteText("").sites().empty());
  EXPECT_TRUE(SiteText("; nothing yet\r\n").sites().empty());
}

TEST(ASite, BecomesALoginWithItsPin) {
  const Site site = fullSite();
  const qx::Login login = browse::loginOf(site, "secret");
  EXPECT_EQ(login.host, "ftps://ftp.example.org;fingerprint=sha256:" + kPin);
  EXPECT_EQ(login.port, 2121U);
  EXPECT_EQ(login.user, site.user);
  EXPECT_EQ(login.password, "secret");
  EXPECT_FALSE(login.isPassive);
  EXPECT_EQ(browse::loginOf(siteOf("a"), "").host, "h");
}

TEST(APin, IsReadAsToolsWriteIt) {
  std::string written;
  for (int pair = 0; pair < 32; ++pair) written += pair == 0 ? "AA" : ":aA";
  EXPECT_EQ(browse::pinFrom(written), kPin);
  EXPECT_FALSE(browse::pinFrom(kPin + "a"));
  EXPECT_FALSE(browse::pinFrom(kPin.substr(1)));
  EXPECT_FALSE(browse::pinFrom(std::string(64, 'g')));
}

}  // namespace
