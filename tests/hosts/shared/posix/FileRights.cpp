// SPDX-License-Identifier: MIT
#include "tests/hosts/shared/FileRights.h"

namespace test {

using std::filesystem::perms;

void makePrivate(const std::filesystem::path& file) {
  std::filesystem::permissions(file, perms::owner_read | perms::owner_write);
}

void letOthersRead(const std::filesystem::path& file) {
  std::filesystem::permissions(file, perms::owner_read | perms::owner_write | perms::others_read);
}

}  // namespace test
