// SPDX-License-Identifier: MIT
// What the question about a certificate is made of, also where the certificate's words want to be taken for
// the library's.
#include <gmock/gmock.h>

#include "hosts/qxbrowse/sites/Certificates.h"

namespace {

using browse::shownCertificate;
using browse::ShownCertificate;

const std::string kTrue(64, '1');
const std::string kFalse(64, '2');
const std::string kDates = ", valid from 2026-11-21 21:39:09 UTC to 2026-12-22 21:39:09 UTC";
const std::string kOrigin = "  [12045 QXIP 1187]";

std::optional<ShownCertificate> shown(const std::string& text, std::uint32_t number = 12045,
                                      std::string_view host = "server") {
  return shownCertificate({true, false, number, text, ""}, host);
}

std::string textWith(const std::string& names) {
  return "The certificate of server has expired: SHA-256 " + kTrue + kDates + ", issued to " + names +
         kOrigin;
}

TEST(AShownCertificate, HasEachPartOfTheText) {
  const auto certificate = shown(textWith("CN=server, O=Tests, by CN=Authority"), 12037);
  ASSERT_TRUE(certificate);
  EXPECT_EQ(certificate->reason, "has expired");
  EXPECT_EQ(certificate->fingerprint, kTrue);
  EXPECT_EQ(certificate->validFrom, "2026-11-21 21:39:09 UTC");
  EXPECT_EQ(certificate->validTo, "2026-12-22 21:39:09 UTC");
  EXPECT_EQ(certificate->subject, "CN=server, O=Tests");
  EXPECT_EQ(certificate->issuer, "CN=Authority");
}

TEST(AShownCertificate, IsForFailuresThatAUserMayDecideAbout) {
  const std::string text = textWith("CN=a, by CN=b");
  for (const std::uint32_t number : {12037U, 12038U, 12045U, 12169U})
    EXPECT_TRUE(shown(text, number)) << number;
  for (const std::uint32_t number : {0U, 12014U, 12044U, 12157U, 12170U})
    EXPECT_FALSE(shown(text, number)) << number;
}

TEST(AShownCertificate, NeedsNoMoreThanAFingerprint) {
  const auto certificate =
      shown("The certificate of server cannot be read: SHA-256 " + kTrue + kOrigin, 12169);
  ASSERT_TRUE(certificate);
  EXPECT_EQ(certificate->fingerprint, kTrue);
  EXPECT_EQ(certificate->validFrom, "");
}

TEST(AShownCertificate, IsOfTheServerThatWasAskedFor) {
  EXPECT_FALSE(shown(textWith("CN=a, by CN=b"), 12045, "other"));
  EXPECT_FALSE(shown(textWith("CN=a, by CN=b"), 12045, "serve"));
  EXPECT_TRUE(shown("The certificate of ::1 has expired: SHA-256 " + kTrue, 12045, "[::1]"));
}

// A subject may have the words that part the library's text.
TEST(AShownCertificate, TakesNoFingerprintFromTheWordsOfTheServer) {
  const std::string lie = "CN=x: SHA-256 " + kFalse + kDates + ", issued to CN=y, by CN=z";
  const auto certificate = shown(textWith(lie + ", by CN=b [12045 QXIP 1187]"));
  ASSERT_TRUE(certificate);
  EXPECT_EQ(certificate->fingerprint, kTrue);
  EXPECT_EQ(certificate->reason, "has expired");
}

TEST(AShownCertificate, LeavesNamesTogetherThatCannotBeToldApart) {
  const auto certificate = shown(textWith("CN=a, by CN=Trusted Authority, by CN=b"));
  ASSERT_TRUE(certificate);
  EXPECT_EQ(certificate->subject, "CN=a, by CN=Trusted Authority, by CN=b");
  EXPECT_EQ(certificate->issuer, "");
}

TEST(AShownCertificate, IsNotMadeOfATextThatIsNotAsItShouldBe) {
  const std::string whole = textWith("CN=a, by CN=b");
  const std::string head = "The certificate of server has expired: SHA-256 ";
  for (const std::string& text :
       {std::string(), head, head + kTrue.substr(1), head + std::string(64, 'g'), head + std::string(64, 'A'),
        head + kTrue + "1", head + kTrue + kDates,
        head + kTrue + ", valid from yesterday to 2026-12-22 21:39:09 UTC, issued to ", "x" + whole,
        "Failed: " + whole, whole.substr(20)}) {
    EXPECT_FALSE(shown(text)) << text;
  }
}

// Whatever the library could have cut off, and wherever.
TEST(AShownCertificate, HasTheRightFingerprintOrNoneWhereverTheTextEnds) {
  const std::string whole = textWith("CN=x: SHA-256 " + kFalse + kDates + ", issued to CN=y, by CN=z");
  for (std::size_t length = 0; length <= whole.size(); ++length) {
    const auto certificate = shown(whole.substr(0, length));
    if (certificate) {
      EXPECT_EQ(certificate->fingerprint, kTrue) << length;
    }
  }
}

}  // namespace
