// SPDX-License-Identifier: MIT
// What the tests of the finder share: entries as values, and searches that are read to their end.
#pragma once

#include <algorithm>
#include <cstdint>
#include <iomanip>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include "framework/internet/FtpFileFind.h"
#include "tests/internet/FtpTest.h"

namespace internet_tests {

struct Entry {
  std::string name;
  std::uint64_t size = 0;
  bool isDirectory = false;
  std::int64_t modified = 0;

  bool operator==(const Entry&) const = default;
};

inline void PrintTo(const Entry& entry, std::ostream* out) {
  *out << std::quoted(entry.name) << (entry.isDirectory ? " dir " : " ") << entry.size << " @"
       << entry.modified;
}

using Entries = std::vector<Entry>;
using Names = std::vector<std::string>;

// Walks to the last entry as hosts do: FindNextFile is false on the last one, which counts.
inline Entries readAll(CFtpFileFind& finder) {
  Entries entries;
  for (bool more = true; more;) {
    more = finder.FindNextFile();
    entries.push_back(
        {finder.GetFileName(), finder.GetLength(), finder.IsDirectory(), finder.GetLastWriteTime()});
  }
  return entries;
}

// What a search has come to.
struct Search {
  std::uint32_t error = 0;  // the last error of a search that found nothing
  Thrown thrown;
  Entries entries;
};

inline Search search(CFtpFileFind& finder, const std::string& pattern) {
  Search result;
  result.thrown = thrownBy([&] {
    result.error = errorOf([&] { return finder.FindFile(pattern.c_str(), internet::kFlagReload); });
    if (result.error == platform::kErrorSuccess) result.entries = readAll(finder);
  });
  finder.Close();
  return result;
}

inline Names namesOf(const Entries& entries) {
  Names names;
  for (const Entry& entry : entries) names.push_back(entry.name);
  return names;
}

class FindTest : public FtpTest {
 protected:
  // One search on a connection of its own.
  Search searchAt(const fixture::Server& server, const std::string& pattern) {
    const auto connection = connect(server);
    CFtpFileFind finder(connection.get());
    return search(finder, pattern);
  }

  // The names found, or the error in their place.
  Names namesAt(const fixture::Server& server, const std::string& pattern) {
    const Search result = searchAt(server, pattern);
    if (result.thrown.error != 0)
      return {"thrown " + std::to_string(result.thrown.error) + ' ' + result.thrown.text};
    if (result.error != 0) return {"error " + std::to_string(result.error)};
    return namesOf(result.entries);
  }

  // How many replies were waited for since the session began.
  [[nodiscard]] std::ptrdiff_t waits() const {
    return std::count(session.statuses.begin(), session.statuses.end(), internet::kStatusReceivingResponse);
  }
};

}  // namespace internet_tests
