// SPDX-License-Identifier: MIT
// The operations of the client that wait for a server, or that call their host.
#pragma once

#include <cstdint>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "Src/QXIP.h"

namespace lifetime {

class Host;

// Where an operation works: the servers, and a local file that is there (5 bytes) and one that is not.
struct Place {
  Host& host;
  std::string address;
  std::uint16_t ftpPort;
  std::uint16_t httpPort;
  std::string present;
  std::string absent;
  std::uint32_t retries = 1;
};

struct Operation {
  const char* name;
  std::function<std::uint32_t(TQXIP& client, const Place& place)> run;  // answers what the operation answers
  // What the host is called for in it, besides what only comes when a worker is slow enough.
  std::vector<std::string> calls;
  bool goesOnForEver = false;  // at a server that breaks off
};

std::vector<Operation> operations();

inline void PrintTo(const Operation& operation, std::ostream* out) { *out << operation.name; }

// What the servers have to have for them.
inline constexpr const char* kTree =
    R"({"/d/file": "content", "/d/other": "x", "/d/sub/": {}, "/d/empty/": {}})";

}  // namespace lifetime
