// SPDX-License-Identifier: MIT
#include "hosts/shared/LibraryFile.h"

#include <dlfcn.h>
#include <link.h>

#include <charconv>
#include <string_view>

namespace hosts {
namespace {

constexpr std::string_view kName = "libZRM_QXKT32x64.so";

// The loader has made the address of the texts absolute; the name is an offset into them.
std::string_view ownName(const link_map& library) {
  const char* texts = nullptr;
  std::size_t name = 0;
  for (const ElfW(Dyn)* entry = library.l_ld; entry->d_tag != DT_NULL; ++entry) {
    if (entry->d_tag == DT_STRTAB) texts = reinterpret_cast<const char*>(entry->d_un.d_ptr);
    if (entry->d_tag == DT_SONAME) name = entry->d_un.d_val;
  }
  return texts != nullptr && name != 0 ? texts + name : std::string_view();
}

}  // namespace

std::filesystem::path programFolder() {
  return std::filesystem::read_symlink("/proc/self/exe").parent_path();
}

std::vector<std::filesystem::path> libraryPlaces() {
  const std::filesystem::path folder = programFolder();
  return {folder / kName, folder / "../lib" / kName};
}

// "libZRM_QXKT32x64.so.1" is of version 1.
std::optional<FileVersion> versionOf(void* library) {
  link_map* map = nullptr;
  if (dlinfo(library, RTLD_DI_LINKMAP, &map) != 0) return {};
  std::string_view name = ownName(*map);
  if (!name.starts_with(kName)) return {};
  name.remove_prefix(kName.size());
  FileVersion version;
  const auto [end, error] = std::from_chars(name.data() + 1, name.data() + name.size(), version.major);
  if (!name.starts_with('.') || error != std::errc() || end != name.data() + name.size()) return {};
  return version;
}

}  // namespace hosts
