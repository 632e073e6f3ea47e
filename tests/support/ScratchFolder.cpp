// SPDX-License-Identifier: MIT
#include "tests/support/ScratchFolder.h"

#include <cstdlib>
#include <random>

namespace testing_support {
namespace {

// The fixture's folder outlives even a killed program.
std::filesystem::path parentFolder() {
  auto given = fixtureFolder();
  return given.empty() ? std::filesystem::temp_directory_path() : given;
}

}  // namespace

std::filesystem::path fixtureFolder() {
  const char* given = std::getenv("QX_FIXTURE_DIR");
  if (given == nullptr) return {};
  // A name of the Unix side is one of drive Z: in a Wine prefix.
  const bool lacksDrive = std::filesystem::path::preferred_separator != '/' && *given == '/';
  return std::filesystem::path((lacksDrive ? "Z:" : "") + std::string(given)).make_preferred();
}

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
