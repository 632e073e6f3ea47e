// SPDX-License-Identifier: MIT
#include "framework/internet/tls/Certificate.h"

#include <gtest/gtest.h>

#include "tests/internet/DerWriter.h"

namespace {

using namespace std::string_literals;
using internet::Certificate;

// openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -days 3650 -set_serial 1
//   -subj '/C=DE/O=Example, Inc./CN=ftp.example.org' -addext
//   'subjectAltName=DNS:ftp.example.org,DNS:*.example.org,IP:192.0.2.1,IP:2001:db8::1,email:a@example.org'
constexpr std::string_view kMadeByOpenSsl =
    "30820213308201baa003020102020101300a06082a8648ce3d040302303f310b300906035504061302444531163014060355040a"
    "0c0d4578616d706c652c20496e632e3118301606035504030c0f6674702e6578616d706c652e6f7267301e170d32363131323231"
    "31343734325a170d3336313131393131343734325a303f310b300906035504061302444531163014060355040a0c0d4578616d70"
    "6c652c20496e632e3118301606035504030c0f6674702e6578616d706c652e6f72673059301306072a8648ce3d020106082a8648"
    "ce3d03010703420004eb7a654141da3fff803e6f84fb8837687978f2b37a7e5b7031608584253cb05042e6211b0ae900602fe196"
    "340a2630b5462df3fd0a1d6a37f717a15be5728d84a381a63081a3301d0603551d0e04160414769e5421b8c96879ecd519ee33bd"
    "9d3b75327361301f0603551d23041830168014769e5421b8c96879ecd519ee33bd9d3b75327361300f0603551d130101ff040530"
    "030101ff30500603551d1104493047820f6674702e6578616d706c652e6f7267820d2a2e6578616d706c652e6f72678704c00002"
    "01871020010db8000000000000000000000001810d61406578616d706c652e6f7267300a06082a8648ce3d040302034700304402"
    "206a408841e666eaaba29089f486b1d8186720628b42a7cbf037f915e20f10ede10220084564a8a4c28295114204313482e6b531"
    "df00115eba6c9b3b1f532d41f495d9";

std::string bytesOf(std::string_view digits) {
  std::string bytes;
  for (; !digits.empty(); digits.remove_prefix(2)) {
    bytes += static_cast<char>(std::stoi(std::string(digits.substr(0, 2)), nullptr, 16));
  }
  return bytes;
}

TEST(ReadCertificate, ReadsWhatAnotherToolHasMade) {
  const auto certificate = der::read(bytesOf(kMadeByOpenSsl));
  ASSERT_TRUE(certificate);
  EXPECT_EQ(certificate->subject, "CN=ftp.example.org, O=Example\\, Inc., C=DE");
  EXPECT_EQ(certificate->issuer, certificate->subject);
  EXPECT_EQ(certificate->notBefore, "2026-11-22 11:47:42 UTC");
  EXPECT_EQ(certificate->notAfter, "2036-11-19 11:47:42 UTC");
  EXPECT_EQ(certificate->commonName, "ftp.example.org");
  EXPECT_EQ(certificate->dnsNames, (std::vector<std::string>{"ftp.example.org", "*.example.org"}));
  ASSERT_EQ(certificate->addresses.size(), 2u);
  EXPECT_EQ(certificate->addresses[0], (std::vector<std::uint8_t>{192, 0, 2, 1}));
  EXPECT_EQ(certificate->addresses[1],
            (std::vector<std::uint8_t>{0x20, 0x01, 0x0d, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}));
}

TEST(ReadCertificate, RefusesEveryBeginningAndWhateverFollows) {
  const std::string whole = bytesOf(kMadeByOpenSsl);
  for (std::size_t size = 0; size < whole.size(); ++size) {
    EXPECT_FALSE(der::read(std::string_view(whole).substr(0, size))) << size;
  }
  EXPECT_FALSE(der::read(whole + '\0'));
  EXPECT_FALSE(der::read(whole + whole));
}

TEST(ReadCertificate, ReadsTextsInEachEncoding) {
  const struct {
    int tag;
    std::string bytes;
    std::string text;
  } cases[] = {
      {der::kUtf8, "M\xc3\xbcller \xe2\x82\xac \xf0\x9f\x98\x80",
       "M\xc3\xbcller \xe2\x82\xac \xf0\x9f\x98\x80"},
      {der::kPrintable, "Example Ltd", "Example Ltd"},
      {0x16, "ia5", "ia5"},
      {0x12, "0 1", "0 1"},
      {0x1a, "visible", "visible"},
      {0x14, "M\xfcller", "M\xc3\xbcller"},
      {0x1e, "\0M\0\xfc\x20\xac"s, "M\xc3\xbc\xe2\x82\xac"},
      {0x1e, "\xd8\x3d\xde\0"s, "??"},  // halves of a pair are no characters
      {0x1c, "\0\0\0M\0\1\xf6\0"s, "M\xf0\x9f\x98\x80"},
      {0x1c, "\xff\xff\xff\xff"s, "?"},
      {der::kUtf8, "a\0b\r\n\x7f\xc2\x9b\xc2\xa0z"s, "a?b????\xc2\xa0z"},
      {der::kUtf8, "\xff M\xc3\xbc", "? M??"},  // no UTF-8
      {der::kUtf8, "\xc2", "?"},
      {0x03, "bits", "?"},
  };
  for (const auto& example : cases) {
    der::Parts parts;
    parts.subject = der::sequence({der::attribute(der::kCommonName, example.tag, example.bytes)});
    const auto certificate = der::read(parts);
    ASSERT_TRUE(certificate) << example.text;
    EXPECT_EQ(certificate->commonName, example.text);
    EXPECT_EQ(certificate->subject, "CN=" + example.text);
  }
  for (const int tag : {0x1c, 0x1e}) {
    der::Parts parts;
    parts.subject = der::sequence({der::attribute(der::kCommonName, tag, "odd")});
    EXPECT_FALSE(der::read(parts)) << "no whole characters";
  }
}

TEST(ReadCertificate, ShowsNamesInTheUsualOrderAndForm) {
  const auto attribute = [](const std::string& objectId, std::string_view value) {
    return der::sequence({der::element(0x06, objectId), der::element(der::kUtf8, value)});
  };
  const std::string country = "\x55\x04\x06";
  const std::string domain = "\x09\x92\x26\x89\x93\xf2\x2c\x64\x01\x19";
  const std::string mail = "\x2a\x86\x48\x86\xf7\x0d\x01\x09\x01";
  const std::string unknown = "\x2b\x06\x01\x04\x01\x82\x37\x3c\x02\x01\x03";
  const struct {
    std::string levels;
    const char* text;
    const char* commonName;
  } cases[] = {
      {"", "", ""},
      {der::element(0x31, attribute(country, "DE")) + der::element(0x31, attribute(der::kCommonName, "a")) +
           der::element(0x31, attribute(der::kCommonName, "b")),
       "CN=b, CN=a, C=DE", "b"},
      {der::element(0x31, attribute(der::kCommonName, "a") + attribute(mail, "a@b")), "CN=a+emailAddress=a@b",
       "a"},
      {der::element(0x31, attribute(domain, "org")), "DC=org", ""},
      {der::element(0x31, attribute(unknown, "DE")), "1.3.6.1.4.1.311.60.2.1.3=DE", ""},
      {der::element(0x31, attribute("\x88\x37", "x")), "2.999=x", ""},
      {der::element(0x31, attribute(der::kOrganisation, "a,b+c\\d\"e<f>g;h")),
       "O=a\\,b\\+c\\\\d\\\"e\\<f\\>g\\;h", ""},
      {der::element(0x31, attribute(der::kCommonName, "a, CN=b")), "CN=a\\, CN=b", "a, CN=b"},
  };
  for (const auto& example : cases) {
    der::Parts parts;
    parts.subject = der::element(0x30, example.levels);
    const auto certificate = der::read(parts);
    ASSERT_TRUE(certificate) << example.text;
    EXPECT_EQ(certificate->subject, example.text);
    EXPECT_EQ(certificate->commonName, example.commonName);
  }
}

TEST(ReadCertificate, ReadsTimes) {
  const struct {
    std::string time;
    const char* shown;  // "": no time
  } cases[] = {
      {der::utcTime("491231235959Z"), "2049-12-31 23:59:59 UTC"},
      {der::utcTime("500101000000Z"), "1950-01-01 00:00:00 UTC"},
      {der::generalizedTime("20500101000000Z"), "2050-01-01 00:00:00 UTC"},
      {der::generalizedTime("99991231235959Z"), "9999-12-31 23:59:59 UTC"},
      {der::generalizedTime("20240229000000Z"), "2024-02-29 00:00:00 UTC"},
      {der::generalizedTime("20230229000000Z"), ""},
      {der::utcTime("261322100000Z"), ""},
      {der::utcTime("261100100000Z"), ""},
      {der::utcTime("261122240000Z"), ""},
      {der::utcTime("261122106000Z"), ""},
      {der::utcTime("261122100060Z"), ""},
      {der::utcTime("2611221000Z"), ""},
      {der::utcTime("261122100000+0100"), ""},
      {der::utcTime("26112210000-Z"), ""},
      {der::utcTime("261122100000z"), ""},
      {der::utcTime("20261122100000Z"), ""},
      {der::generalizedTime("20261122100000.5Z"), ""},
      {der::generalizedTime("261122100000Z"), ""},
      {der::element(0x0c, "261122100000Z"), ""},
      {der::utcTime(""), ""},
  };
  for (const auto& example : cases) {
    der::Parts parts;
    parts.notAfter = example.time;
    const auto certificate = der::read(parts);
    ASSERT_EQ(certificate.has_value(), *example.shown != '\0') << example.time;
    if (certificate) {
      EXPECT_EQ(certificate->notAfter, example.shown);
    }
  }
}

// What a certificate of these extensions is; none: no certificate.
std::optional<Certificate> withExtensions(std::initializer_list<std::string> extensions) {
  der::Parts parts;
  parts.extensions = der::sequence(extensions);
  return der::read(parts);
}

TEST(ReadCertificate, RefusesAlternativeNamesThatAreNone) {
  using der::address, der::alternativeNames, der::dnsName;
  EXPECT_TRUE(
      withExtensions({alternativeNames({dnsName("a"), der::element(0x81, "a@b"), address("\1\2\3\4")})}));
  EXPECT_TRUE(withExtensions({der::extension("\x55\x1d\x0f", "\3\2\5\xa0")})) << "of another kind";
  EXPECT_FALSE(withExtensions({alternativeNames({})}));
  EXPECT_FALSE(withExtensions({alternativeNames({dnsName("")})}));
  EXPECT_FALSE(withExtensions({alternativeNames({dnsName("ftp.example.org\0.evil.example"s)})}));
  EXPECT_FALSE(withExtensions({alternativeNames({dnsName("m\xc3\xbcller.example")})}));
  EXPECT_FALSE(withExtensions({alternativeNames({dnsName("a\r\nb")})}));
  EXPECT_FALSE(withExtensions({alternativeNames({address("\1\2\3")})}));
  EXPECT_FALSE(withExtensions({alternativeNames({address("\1\2\3\4\5\6\7\x8")})})) << "a network";
  EXPECT_FALSE(withExtensions({alternativeNames({dnsName("a")}), alternativeNames({dnsName("b")})}));
  EXPECT_FALSE(withExtensions({der::extension("\x55\x1d\x11", der::dnsName("a"))}));
  EXPECT_FALSE(withExtensions({der::sequence({der::element(0x06, "\x55\x1d\x11")})}));
}

TEST(ReadCertificate, RefusesWhatIsNotDer) {
  const auto withKey = [](const std::string& key) {
    der::Parts parts;
    parts.key = key;
    return der::read(parts);
  };
  EXPECT_TRUE(withKey("\x30\x02\x05\0"s));
  EXPECT_FALSE(withKey("\x30\x81\x02\x05\0"s)) << "a length in more bytes than it needs";
  EXPECT_FALSE(withKey("\x30\x82\0\x02\x05\0"s));
  EXPECT_FALSE(withKey("\x30\x82\0\x80"s + std::string(128, 'x')));
  EXPECT_TRUE(withKey("\x30\x81\x80"s + std::string(128, 'x')));
  EXPECT_FALSE(withKey("\x30\x80\x05\0\0\0"s)) << "a length that is told at the end";
  EXPECT_FALSE(withKey("\x30\x84\xff\xff\xff\xff"s)) << "more than there is";
  EXPECT_FALSE(withKey("\x30\x88\0\0\0\0\0\0\0\x02\x05\0"s));
  EXPECT_FALSE(withKey("\x3f\x30\0"s)) << "a tag of several bytes";
  EXPECT_FALSE(withKey("\x31\0"s)) << "something else";
  der::Parts parts;
  parts.behind = der::sequence({});
  EXPECT_FALSE(der::read(parts)) << "more than a certificate has";
  for (const std::string& objectId : {""s, "\x80\x01"s, "\x55\x84"s, std::string(10, '\xff') + '\1'}) {
    parts = {};
    parts.subject = der::sequence({der::attribute(objectId, der::kUtf8, "x")});
    EXPECT_FALSE(der::read(parts)) << "no object identifier";
  }
  parts = {};
  parts.subject = der::sequence({der::element(0x31, "")});
  EXPECT_FALSE(der::read(parts)) << "a level without an attribute";
}

TEST(ReadCertificate, HasABound) {
  const auto padded = [](std::size_t size) {
    der::Parts parts;
    parts.key = der::element(0x30, std::string(size, 'x'));
    return der::read(parts).has_value();
  };
  EXPECT_TRUE(padded(100'000));
  EXPECT_FALSE(padded(102'400));
}

TEST(IsMadeOutTo, ComparesNames) {
  const struct {
    const char* name;
    const char* server;
    bool matches;
  } cases[] = {
      {"ftp.example.org", "ftp.example.org", true},
      {"FTP.example.ORG", "ftp.Example.org", true},
      {"ftp.example.org", "ftp.example.org.", true},
      {"ftp.example.org", "ftp.example.org..", false},
      {"ftp.example.org.", "ftp.example.org", false},
      {"ftp.example.org", "example.org", false},
      {"ftp.example.org", "xftp.example.org", false},
      {"example.org", "ftp.example.org", false},
      {"localhost", "localhost", true},
      {"my_host.example.org", "my_host.example.org", true},
      {"*.example.org", "ftp.example.org", true},
      {"*.EXAMPLE.org", "ftp.example.ORG.", true},
      {"*.example.org", "xn--mller-kva.example.org", true},
      {"*.example.org", "example.org", false},
      {"*.example.org", ".example.org", false},
      {"*.example.org", "a.ftp.example.org", false},
      {"*.org", "example.org", false},
      {"*.", "org", false},
      {"*", "localhost", false},
      {"*", "ftp.example.org", false},
      {"f*.example.org", "ftp.example.org", false},
      {"*p.example.org", "ftp.example.org", false},
      {"ftp.*.org", "ftp.example.org", false},
      {"*.*.org", "ftp.example.org", false},
      {"*..org", "ftp..org", false},
      {"xn--*.example.org", "xn--mller-kva.example.org", false},
      {"xn--mller-kva.example", "xn--mller-kva.example", true},
      {"XN--MLLER-KVA.example", "xn--mller-kva.example", true},
      {"xn--mller-kva.example", "m\xc3\xbcller.example", false},
      {"ftp example", "ftp example", false},
      {"ftp.example.org", "ftp.example.org/", false},
      {"192.0.2.1", "192.0.2.1", false},
      {"*.0.2.1", "192.0.2.1", false},
      {"ftp.example.org", "", false},
      {"ftp.example.org", ".", false},
  };
  for (const auto& example : cases) {
    Certificate alternative;
    alternative.commonName = "other.example";
    alternative.dnsNames = {"first.example", example.name};
    EXPECT_EQ(isMadeOutTo(alternative, example.server), example.matches)
        << example.name << ' ' << example.server;
    Certificate common;
    common.commonName = example.name;
    EXPECT_EQ(isMadeOutTo(common, example.server), example.matches) << example.name << ' ' << example.server;
  }
  Certificate certificate;
  certificate.dnsNames = {"ftp.example.org"};
  EXPECT_FALSE(isMadeOutTo(certificate, "ftp.example.org\0"s));
  EXPECT_FALSE(isMadeOutTo(certificate, "ftp.example.org\0.evil.example"s));
}

TEST(IsMadeOutTo, ComparesAddressesByteByByte) {
  Certificate certificate;
  certificate.commonName = "192.0.2.9";
  certificate.addresses = {{192, 0, 2, 1}, {0x20, 0x01, 0x0d, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}};
  EXPECT_TRUE(isMadeOutTo(certificate, "192.0.2.1"));
  EXPECT_TRUE(isMadeOutTo(certificate, "2001:db8::1"));
  EXPECT_TRUE(isMadeOutTo(certificate, "2001:0DB8:0:0:0:0:0:1"));
  EXPECT_FALSE(isMadeOutTo(certificate, "192.0.2.2"));
  EXPECT_FALSE(isMadeOutTo(certificate, "::ffff:192.0.2.1"));
  EXPECT_FALSE(isMadeOutTo(certificate, "2001:db8::2"));
  EXPECT_FALSE(isMadeOutTo(certificate, "192.0.2.9")) << "a common name is no address";
  EXPECT_FALSE(isMadeOutTo(certificate, "192.0.2.1\0"s));
}

TEST(IsMadeOutTo, LooksAtTheCommonNameWhereThereIsNoAlternative) {
  Certificate certificate;
  certificate.commonName = "ftp.example.org";
  EXPECT_TRUE(isMadeOutTo(certificate, "ftp.example.org"));
  certificate.addresses = {{192, 0, 2, 1}};
  EXPECT_FALSE(isMadeOutTo(certificate, "ftp.example.org"));
  certificate.addresses.clear();
  certificate.dnsNames = {"other.example.org"};
  EXPECT_FALSE(isMadeOutTo(certificate, "ftp.example.org"));
  EXPECT_FALSE(isMadeOutTo(Certificate(), "ftp.example.org"));
}

// A common name that goes on behind a NUL is that of another server.
TEST(IsMadeOutTo, IsNotDeceivedByACommonNameWithANul) {
  der::Parts parts;
  parts.subject =
      der::sequence({der::attribute(der::kCommonName, der::kUtf8, "ftp.example.org\0.evil.example"s)});
  const auto certificate = der::read(parts);
  ASSERT_TRUE(certificate);
  EXPECT_EQ(certificate->commonName, "ftp.example.org?.evil.example");
  EXPECT_FALSE(isMadeOutTo(*certificate, "ftp.example.org"));
}

}  // namespace
