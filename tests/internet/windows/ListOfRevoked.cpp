// SPDX-License-Identifier: MIT
// Wine takes lists from the cache of what programs have fetched.
#include "tests/internet/ListOfRevoked.h"

#include <windows.h>
// Behind windows.h.
#include <wininet.h>

#include <array>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "tests/support/ScratchFolder.h"

namespace internet::tls_testing {

void haveListOfRevoked(const std::string& url) {
  std::ifstream file(testing_support::fixtureFolder() / "certificates/authority.crl", std::ios::binary);
  const std::string list{std::istreambuf_iterator<char>(file), {}};
  std::array<char, MAX_PATH> path{};
  const auto size = static_cast<DWORD>(list.size());
  const bool room = CreateUrlCacheEntryA(url.c_str(), size, "crl", path.data(), 0) != FALSE;
  std::ofstream(path.data(), std::ios::binary) << list;
  FILETIME never{};
  never.dwHighDateTime = 0x7fffffff;
  if (!room || !CommitUrlCacheEntryA(url.c_str(), path.data(), never, {}, NORMAL_CACHE_ENTRY, nullptr, 0,
                                     nullptr, nullptr)) {
    throw std::runtime_error("the system does not take the tests' list");
  }
}

}  // namespace internet::tls_testing
