// SPDX-License-Identifier: MIT
// Who may read a file, set by each system's own means.
#pragma once

#include <filesystem>

namespace test {

void makePrivate(const std::filesystem::path& file);
void letOthersRead(const std::filesystem::path& file);

}  // namespace test
