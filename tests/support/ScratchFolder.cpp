// SPDX-License-Identifier: MIT
#include "tests/support/ScratchFolder.h"

#include <cstdlib>
#include <random>

namespace testing_support {
namespace {

// The fixture's folder (a name of the Unix side: drive Z: of a Wine prefix), which outlives even a killed
// program.
std::filesystem::path parentFolder() {
  const char* given = std::getenv("QX_FIXTURE_DIR");
  if (given == nullptr) return std::filesystem::temp_directory_path();
  const bool drives = std::filesystem::path::preferred_separator != '/';
  return std::filesystem::path((drives ? "Z:" : "") + std::string(given)).make_preferred();
}

}  // namespace

ScratchFolder::ScratchFolder() {
  const auto parent = parentFolder();
  std::random_device random;
  do {
    path_ = parent / ("qx-test-" + std::to_string(random()));
  } while (!std::filesystem::create_directory(path_));
}

ScratchFolder::~ScratchFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

}  // namespace testing_support
