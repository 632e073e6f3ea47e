// SPDX-License-Identifier: MIT
// What the texts that name a server ask for, and those that are refused.
#include "framework/internet/tls/SecureHost.h"

#include <gtest/gtest.h>

#include <string>

#include "framework/internet/net/Failure.h"
#include "framework/platform/last_error.h"

namespace internet {
namespace {

const std::string kPin = "000102030405060708090a0b0c0d0e0f101112131415161718191A1B1C1D1EfF";

struct Good {
  std::string text;
  const char* name;
  Encryption encryption;
  bool pinned = false;
  bool verifies = true;
  bool onlyTls12 = false;
  bool tellsUploads = false;
};

const Good kGood[] = {
    {"ftp.example.org", "ftp.example.org", Encryption::none},
    {"[::1]", "::1", Encryption::none},
    {"", "", Encryption::none},
    {"ftpes://ftp.example.org", "ftp.example.org", Encryption::onDemand},
    {"ftps://ftp.example.org", "ftp.example.org", Encryption::fromStart},
    {"FtpES://Host", "Host", Encryption::onDemand},
    {"FTPS://Host", "Host", Encryption::fromStart},
    {"ftpes://[::1]", "::1", Encryption::onDemand},
    {"ftps://fe80::1%eth0;tls=1.2", "fe80::1%eth0", Encryption::fromStart, false, true, true},
    {"ftpes://h;verify=no", "h", Encryption::onDemand, false, false},
    {"ftpes://h;tls=1.2", "h", Encryption::onDemand, false, true, true},
    {"ftpes://h;fingerprint=sha256:" + kPin, "h", Encryption::onDemand, true},
    {"ftps://h;TLS=1.2;Verify=NO;FINGERPRINT=SHA256:" + kPin, "h", Encryption::fromStart, true, false, true},
    {"h;progress=uploads", "h", Encryption::none, false, true, false, true},
    {"[::1];Progress=Uploads", "::1", Encryption::none, false, true, false, true},
    {"ftpes://h;PROGRESS=UPLOADS;tls=1.2", "h", Encryption::onDemand, false, true, true, true},
    {"ftps://h;verify=no;progress=uploads", "h", Encryption::fromStart, false, false, false, true},
    // No scheme of ours: names that no server has.
    {";progress=uploads", ";progress=uploads", Encryption::none},
    {"h;progress=uploads;", "h;progress=uploads;", Encryption::none},
    {"h;progress=downloads", "h;progress=downloads", Encryption::none},
    {"h;verify=no", "h;verify=no", Encryption::none},
    {"https://h", "https://h", Encryption::none},
    {"ftpes:/h", "ftpes:/h", Encryption::none},
    {" ftpes://h", " ftpes://h", Encryption::none},
};

TEST(SecureHost, TellsNameAndProtection) {
  for (const Good& each : kGood) {
    const SecureHost host = parseFtpHost(each.text);
    EXPECT_EQ(host.name, each.name) << each.text;
    EXPECT_EQ(host.policy.encryption, each.encryption) << each.text;
    EXPECT_EQ(host.policy.fingerprint.has_value(), each.pinned) << each.text;
    EXPECT_EQ(host.policy.verifies, each.verifies) << each.text;
    EXPECT_EQ(host.policy.onlyTls12, each.onlyTls12) << each.text;
    EXPECT_EQ(host.tellsUploads, each.tellsUploads) << each.text;
  }
}

TEST(SecureHost, ReadsTheFingerprintByteByByte) {
  const auto fingerprint = parseFtpHost("ftpes://h;fingerprint=sha256:" + kPin).policy.fingerprint;
  ASSERT_TRUE(fingerprint);
  for (std::size_t i = 0; i + 1 < fingerprint->size(); ++i) EXPECT_EQ((*fingerprint)[i], i);
  EXPECT_EQ(fingerprint->back(), 0xff);
}

TEST(SecureHost, OfTheWebKnowsHttpsAlone) {
  EXPECT_EQ(parseHttpHost("https://www.example.org").policy.encryption, Encryption::fromStart);
  EXPECT_EQ(parseHttpHost("HTTPS://h;verify=no").name, "h");
  EXPECT_EQ(parseHttpHost("ftpes://h").name, "ftpes://h");
  EXPECT_EQ(parseHttpHost("www.example.org").policy.encryption, Encryption::none);
  EXPECT_EQ(parseHttpHost("h;progress=uploads").name, "h;progress=uploads");
  EXPECT_THROW(parseHttpHost("https://h;progress=uploads"), Failure);
}

struct Bad {
  std::string text;
  std::string told;
};

const Bad kBad[] = {
    {"ftpes://", "no server's name behind ftpes://"},
    {"ftps://;verify=no", "no server's name behind ftps://"},
    {"ftpes://h;", "unknown option '' behind the server's name"},
    {"ftpes://h;verify=no;", "unknown option '' behind the server's name"},
    {"ftpes://h;;verify=no", "unknown option '' behind the server's name"},
    {"ftpes://h;verify", "bad value in option 'verify' behind the server's name"},
    {"ftpes://h;verify=", "bad value in option 'verify=' behind the server's name"},
    {"ftpes://h;verify=yes", "bad value in option 'verify=yes' behind the server's name"},
    {"ftpes://h;verify=no ", "bad value in option 'verify=no ' behind the server's name"},
    {"ftpes://h; verify=no", "unknown option ' verify=no' behind the server's name"},
    {"ftpes://h;tls=1.1", "bad value in option 'tls=1.1' behind the server's name"},
    {"ftpes://h;tls=1.3", "bad value in option 'tls=1.3' behind the server's name"},
    {"ftpes://h;tls=1.2;tls=1.2", "second option 'tls=1.2' behind the server's name"},
    {"ftpes://h;verify=no;VERIFY=no", "second option 'VERIFY=no' behind the server's name"},
    {"ftpes://h;progress", "bad value in option 'progress' behind the server's name"},
    {"ftpes://h;progress=all", "bad value in option 'progress=all' behind the server's name"},
    {"ftpes://h;progress=uploads;progress=uploads",
     "second option 'progress=uploads' behind the server's name"},
    {"ftpes://h;port=990", "unknown option 'port=990' behind the server's name"},
    {"ftpes://h;fingerprint=" + kPin,
     "bad value in option 'fingerprint=" + kPin + "' behind the server's name"},
    {"ftpes://h;fingerprint=sha256:12",
     "bad value in option 'fingerprint=sha256:12' behind the server's name"},
    {"ftpes://h;fingerprint=sha256:g" + kPin.substr(1),
     "bad value in option 'fingerprint=sha256:g" + kPin.substr(1) + "' behind the server's name"},
    {"ftpes://h;fingerprint=sha256:" + kPin + "0",
     "bad value in option 'fingerprint=sha256:" + kPin + "0' behind the server's name"},
    {"ftpes://h;" + std::string(500, 'x'),
     "unknown option '" + std::string(100, 'x') + "' behind the server's name"},
};

TEST(SecureHost, RefusesWhatItDoesNotKnow) {
  for (const Bad& each : kBad) {
    try {
      parseFtpHost(each.text);
      ADD_FAILURE() << each.text;
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.error, platform::kErrorInvalidParameter) << each.text;
      EXPECT_EQ(failure.serverText, each.told) << each.text;
    }
  }
}

}  // namespace
}  // namespace internet
