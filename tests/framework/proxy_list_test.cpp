// SPDX-License-Identifier: MIT
// The lists of Windows' settings, on either system.
#include "framework/platform/proxy_list.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using platform::ProxyTarget;

std::string told(const std::vector<platform::Proxy>& proxies) {
  constexpr const char* kKinds[] = {"direct", "http", "socks", "unsupported"};
  std::string text;
  for (const auto& proxy : proxies) {
    text.append(text.empty() ? "" : ", ").append(kKinds[static_cast<int>(proxy.kind)]);
    text.append(" ").append(proxy.host.empty() ? proxy.text : proxy.host + " " + std::to_string(proxy.port));
  }
  return text;
}

struct ListRow {
  const char* list;
  const char* http;
  const char* https;
  const char* ftp;
};

class ProxyList : public testing::TestWithParam<ListRow> {};

TEST_P(ProxyList, HasItsProxyForEachProtocol) {
  EXPECT_EQ(told(platform::proxiesOfList(GetParam().list, {"http", "host", 80})), GetParam().http);
  EXPECT_EQ(told(platform::proxiesOfList(GetParam().list, {"https", "host", 443})), GetParam().https);
  EXPECT_EQ(told(platform::proxiesOfList(GetParam().list, {"ftp", "host", 21})), GetParam().ftp);
}

constexpr const char* kAll = "http=a:1;https=b:2;ftp=c:3;socks=d:4";

INSTANTIATE_TEST_SUITE_P(
    Table, ProxyList,
    testing::Values(
        ListRow{"", "", "", ""}, ListRow{" ; ;", "", "", ""},
        // One for all, at the port of HTTP unless it is named.
        ListRow{"proxy:8080", "http proxy 8080", "http proxy 8080", "http proxy 8080"},
        ListRow{"proxy", "http proxy 80", "http proxy 80", "http proxy 80"},
        ListRow{"[::1]:8080", "http ::1 8080", "http ::1 8080", "http ::1 8080"},
        ListRow{"http://proxy:8080/", "http proxy 8080", "http proxy 8080", "http proxy 8080"},
        ListRow{"a:1;b:2", "http a 1, http b 2", "http a 1, http b 2", "http a 1, http b 2"},
        // One for each.
        ListRow{kAll, "http a 1", "http b 2", "http c 3"}, ListRow{"HTTP=a:1", "http a 1", "", ""},
        ListRow{"http=a:1 \t https=b:2\r\nftp=c:3", "http a 1", "http b 2", "http c 3"},
        ListRow{"ftp=c", "", "", "http c 80"}, ListRow{"ftp=c:1;ftp=d:2", "", "", "http c 1, http d 2"},
        ListRow{"gopher=g:70", "", "", ""}, ListRow{"http=;ftp=", "", "", ""},
        ListRow{"https=https://b:2", "", "http b 2", ""}, ListRow{"https=HTTPS://b", "", "http b 80", ""},
        ListRow{"http=http://a", "http a 80", "", ""},
        // An own entry, then one for all, then SOCKS.
        ListRow{"socks=d:4", "socks d 4", "socks d 4", "socks d 4"},
        ListRow{"socks=d;http=a:1", "http a 1", "socks d 1080", "socks d 1080"},
        ListRow{"socks=d:4;all:5", "http all 5", "http all 5", "http all 5"},
        ListRow{"all:5;ftp=c:3", "http all 5", "http all 5", "http c 3"},
        ListRow{"ftp=socks://d", "", "", "socks d 1080"},
        ListRow{"socks5://d:4", "socks d 4", "socks d 4", "socks d 4"},
        ListRow{"socks=socks5://d", "socks d 1080", "socks d 1080", "socks d 1080"},
        // Named, but not to be spoken to: none of them is passed over.
        ListRow{"ftp=ftp://gate:21", "", "", "unsupported ftp://gate:21"},
        ListRow{"socks=socks4://d", "unsupported socks4://d", "unsupported socks4://d",
                "unsupported socks4://d"},
        ListRow{"proxy:0", "unsupported proxy:0", "unsupported proxy:0", "unsupported proxy:0"}));

struct ExceptionRow {
  const char* list;
  ProxyTarget target;
  bool excepted;
};

class ProxyException : public testing::TestWithParam<ExceptionRow> {};

TEST_P(ProxyException, CoversWhatItNames) {
  EXPECT_EQ(platform::isExcepted(GetParam().list, GetParam().target), GetParam().excepted)
      << GetParam().list << " / " << GetParam().target.host;
}

const ProxyTarget kWeb{"http", "www.example.com", 80};
const ProxyTarget kFiles{"ftp", "ftp.example.com", 21};
const ProxyTarget kInside{"ftp", "server", 21};
const ProxyTarget kNumber{"ftp", "192.168.1.2", 21};
const ProxyTarget kSix{"ftp", "fe80::1", 2121};

INSTANTIATE_TEST_SUITE_P(
    Table, ProxyException,
    testing::Values(
        ExceptionRow{"", kWeb, false}, ExceptionRow{" ; ", kWeb, false}, ExceptionRow{"*", kWeb, true},
        // Names: whole, blind to case, with "*" for any part.
        ExceptionRow{"www.example.com", kWeb, true}, ExceptionRow{"WWW.Example.COM", kWeb, true},
        ExceptionRow{"example.com", kWeb, false}, ExceptionRow{"www.example.co", kWeb, false},
        ExceptionRow{"*.example.com", kWeb, true}, ExceptionRow{"*example.com", kWeb, true},
        ExceptionRow{"*.example.com", {"http", "example.com", 80}, false}, ExceptionRow{"www.*", kWeb, true},
        ExceptionRow{"w*.ex*le.*", kWeb, true},
        ExceptionRow{"*.example.com", {"http", "www.example.com.evil", 80}, false},
        ExceptionRow{"*.com.example.com", {"http", "www.com.com.example.com", 80}, true},
        ExceptionRow{"a;b www.example.com\tc", kWeb, true}, ExceptionRow{"a,www.example.com", kWeb, false},
        // Addresses, as they are written.
        ExceptionRow{"192.168.*", kNumber, true}, ExceptionRow{"192.168.1.2", kNumber, true},
        ExceptionRow{"192.168.1.*", {"ftp", "192.168.11.2", 21}, false}, ExceptionRow{"fe80::1", kSix, true},
        ExceptionRow{"[FE80::1]", kSix, true}, ExceptionRow{"[fe80::1]:2121", kSix, true},
        ExceptionRow{"[fe80::1]:21", kSix, false}, ExceptionRow{"fe80::*", kSix, true},
        ExceptionRow{"[fe80::*]", kSix, true},
        // Of one port, of one protocol.
        ExceptionRow{"www.example.com:80", kWeb, true}, ExceptionRow{"www.example.com:8080", kWeb, false},
        ExceptionRow{"*:21", kFiles, true}, ExceptionRow{"*:21", kWeb, false},
        ExceptionRow{"www.example.com:", kWeb, false}, ExceptionRow{"www.example.com:x", kWeb, false},
        ExceptionRow{"http://www.example.com", kWeb, true}, ExceptionRow{"HTTP://*.example.com", kWeb, true},
        ExceptionRow{"https://www.example.com", kWeb, false},
        ExceptionRow{"ftp://*.example.com", kFiles, true},
        ExceptionRow{"ftp://*.example.com:21", kFiles, true}, ExceptionRow{"ftp://*:22", kFiles, false},
        ExceptionRow{"http://*", kFiles, false}, ExceptionRow{"://*", kFiles, false},
        // Names without a dot.
        ExceptionRow{"<local>", kInside, true}, ExceptionRow{"<LOCAL>", kInside, true},
        ExceptionRow{"<local>", kWeb, false}, ExceptionRow{"<local>", kNumber, false},
        ExceptionRow{"<local>", kSix, false}, ExceptionRow{"*.test;<local>", kInside, true},
        ExceptionRow{"<-loopback>", kInside, false}));

TEST(ProxyException, OfTheOwnMachineIsThereByItself) {
  for (const char* host : {"localhost", "LOCALHOST", "localhost.", "a.localhost", "loopback", "127.0.0.1",
                           "127.8.9.10", "::1"}) {
    EXPECT_TRUE(platform::isOwnMachine(host)) << host;
  }
  for (const char* host :
       {"localhost.example.com", "mylocalhost", "127.0.0.1.example.com", "128.0.0.1", "::2", "fe80::1", ""}) {
    EXPECT_FALSE(platform::isOwnMachine(host)) << host;
  }
  EXPECT_TRUE(platform::includesOwnMachine("<local>;<-LOOPBACK>"));
  EXPECT_FALSE(platform::includesOwnMachine("<local>;loopback"));
}

}  // namespace
