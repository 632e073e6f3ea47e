// SPDX-License-Identifier: MIT
#include "hosts/shared/Library.h"

#include <algorithm>
#include <stdexcept>
#include <string>

#include "QXVersion.h"
#include "hosts/shared/LibraryFile.h"

namespace hosts {
namespace {

using Path = std::filesystem::path;

bool isThere(const Path& file) {
  std::error_code ignored;
  return std::filesystem::exists(file, ignored);
}

Path usualPlace() {
  const std::vector<Path> places = libraryPlaces();
  const auto found = std::ranges::find_if(places, isThere);
  return found != places.end() ? *found : places.front();
}

[[noreturn]] void fail(const Path& file, const std::string& why) {
  throw std::runtime_error("the library " + file.string() + " " + why);
}

// Versions of one major number work with each other, but an older one may lack what the headers tell of.
void checkVersion(const Path& file, const std::optional<FileVersion>& version) {
  if (!version) fail(file, "tells no version");
  if (version->major == QXIP_VERSION_MAJOR &&
      version->minor.value_or(QXIP_VERSION_MINOR) >= QXIP_VERSION_MINOR)
    return;
  const std::string minor = version->minor ? "." + std::to_string(*version->minor) : "";
  fail(file,
       "is of version " + std::to_string(version->major) + minor + ", this program needs " QXIP_VERSION);
}

}  // namespace

qx::Exports openLibrary(const Path& fileOrEmpty) {
  const Path file = fileOrEmpty.empty() ? usualPlace() : fileOrEmpty;
  if (!isThere(file)) fail(file, "is not there");
  // A name without a folder would be looked for elsewhere.
  auto loaded = qx::loadLibrary(std::filesystem::absolute(file));
  if (!loaded) fail(file, "cannot be used: " + loaded.report().text);
  checkVersion(file, versionOf(loaded->library.get()));
  return std::move(loaded).value();
}

}  // namespace hosts
