// SPDX-License-Identifier: MIT
#include "support/Paths.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "framework/platform/code_page.h"
#include "framework/text/AsciiText.h"
#include "framework/text/HostText.h"

namespace {

bool isSeparator(char c) { return c == '/' || c == '\\'; }

void dropFirst(char* text) { std::memmove(text, text + 1, std::strlen(text)); }

// Calls visit(at) for each character of a path, of which some have two bytes.
template <class Visit>
void forEachCharacter(std::string_view path, Visit visit) {
  hosttext::forEachCharacter(path, platform::narrowCodePage(), visit);
}

// Where the last character of a text that is not empty begins.
std::size_t lastCharacter(std::string_view path) {
  std::size_t last = 0;
  forEachCharacter(path, [&last](std::size_t at) { last = at; });
  return last;
}

// The parts of a path as the C runtime's splitter finds them; each may be empty.
struct RawParts {
  std::string_view directory;  // drive and directory, with the last separator
  std::string_view name;       // without extension
  std::string_view extension;  // with its dot
};

RawParts splitRaw(std::string_view path) {
  std::size_t nameStart = path.size() > 1 && path[1] == ':' ? 2 : 0;
  forEachCharacter(path, [&](std::size_t at) {
    if (at >= nameStart && isSeparator(path[at])) nameStart = at + 1;
  });
  const std::string_view last = path.substr(nameStart);
  const std::size_t dot = last.rfind('.');
  const std::size_t nameLength = dot == std::string_view::npos ? last.size() : dot;
  return {path.substr(0, nameStart), last.substr(0, nameLength), last.substr(nameLength)};
}

void store(PathText* output, std::string_view first, std::string_view second, bool trim) {
  if (output == nullptr) return;
  output->clear();
  if (!output->append(first) || !output->append(second)) return;
  if (trim) TrimSlashes(output->data());
}

}  // namespace

bool TrimSlashes(char* path) noexcept {
  if (path == nullptr || *path == '\0') return false;
  if (path[0] == '\\' && path[1] != '\\' && path[1] != '\0') dropFirst(path);
  if (std::strcmp(path, "\\") == 0) {
    *path = '\0';
    return false;
  }
  const std::size_t last = lastCharacter(path);
  if (path[last] == '\\' || (path[last] == '/' && last > 0)) path[last] = '\0';
  return *path != '\0';
}

bool ToFtpPath(char* path) noexcept {
  if (path == nullptr || *path == '\0') return true;
  forEachCharacter(path, [path](std::size_t at) {
    if (path[at] == '\\') path[at] = '/';
  });
  if (path[1] == '/') dropFirst(path);
  TrimSlashes(path);
  return true;
}

bool SplitPath(const char* path, PathText* directory, PathText* fileName, PathText* extension) noexcept {
  PathText copy;
  const bool given = copy.assign(path);
  const RawParts parts = splitRaw(copy.c_str());
  store(directory, parts.directory, {}, true);
  store(fileName, parts.name, parts.extension, true);
  store(extension, parts.extension, {}, false);
  return given;
}

bool IsRemotePath(const char* path) noexcept {
  if (path == nullptr || *path == '\0') return false;
  if (path[1] == '\0') return path[0] == '/';
  return path[1] != ':' && !(path[0] == '\\' && path[1] == '\\');
}

bool IsSafeRemotePath(const char* path) noexcept {
  const std::string_view text(path);
  return text.size() < kPathCapacity && std::none_of(text.begin(), text.end(), ascii::isControl);
}

bool EqualNames(const char* left, const char* right) {
  return hosttext::equalPaths(left, right, platform::narrowCodePage());
}
