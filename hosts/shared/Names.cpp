// SPDX-License-Identifier: MIT
#include "hosts/shared/Names.h"

#include <algorithm>
#include <array>

#include "hosts/shared/Ascii.h"

namespace hosts {
namespace {

// Names of devices, whatever follows behind a dot.
bool isDevice(std::string_view name) {
  std::string base = withoutCase(name.substr(0, name.find('.')));
  base.erase(base.find_last_not_of(' ') + 1);
  static constexpr std::array kDevices = {"CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$"};
  if (std::ranges::find(kDevices, base) != kDevices.end()) return true;
  return base.size() == 4 && (base.starts_with("COM") || base.starts_with("LPT")) && base[3] >= '0' &&
         base[3] <= '9';
}

std::optional<std::string> whyNotOnWindows(std::string_view name) {
  if (name.find_first_of("<>:\"|?*") != std::string_view::npos) {
    return "Windows allows none of < > : \" | ? * in a name";
  }
  if (name.back() == '.' || name.back() == ' ') return "Windows drops a dot or a space at the end of a name";
  if (isDevice(name)) return "Windows has a device of this name";
  return {};
}

}  // namespace

std::optional<std::string> whyNotRemote(std::string_view name) {
  if (name.empty() || name == "." || name == "..") return "this is no name of its own";
  if (name.find_first_of("/\\") != std::string_view::npos) return "the name has a slash or a backslash in it";
  if (std::ranges::any_of(name, isControl)) return "the name has a control character in it";
  return {};
}

std::optional<std::string> whyNotLocal(std::string_view name, NameRules rules) {
  if (auto reason = whyNotRemote(name)) return reason;
  return rules == NameRules::windows ? whyNotOnWindows(name) : std::nullopt;
}

std::string folded(std::string_view name, NameRules rules) {
  return rules == NameRules::windows ? withoutCase(name) : std::string(name);
}

std::filesystem::path pathFromServer(std::string_view path) {
  std::filesystem::path::string_type local;
  for (;;) {
    const std::size_t end = path.find('/');
    local += nameFromServer(std::string(path.substr(0, end))).native();
    if (end == std::string_view::npos) return local;
    local += '/';
    path.remove_prefix(end + 1);
  }
}

std::string joined(std::string_view folder, std::string_view name) {
  std::string path(folder);
  if (!path.empty() && path.back() != '/') path += '/';
  return path.append(name);
}

std::string lastPart(std::string_view path) { return std::string(path.substr(path.rfind('/') + 1)); }

std::string folderOf(std::string_view path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string_view::npos) return {};
  return std::string(path.substr(0, std::max<std::size_t>(slash, 1)));
}

}  // namespace hosts
