// SPDX-License-Identifier: MIT
#include "hosts/shared/PrivateFile.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>

#include "hosts/shared/windows/System.h"
// Only now:
#include <aclapi.h>

namespace hosts {
namespace {

// Groups that are never one person.
bool isManyPeople(PSID who) {
  static constexpr std::array<WELL_KNOWN_SID_TYPE, 4> kGroups = {WinWorldSid, WinAuthenticatedUserSid,
                                                                 WinBuiltinUsersSid, WinBuiltinGuestsSid};
  return std::ranges::any_of(kGroups,
                             [who](WELL_KNOWN_SID_TYPE group) { return IsWellKnownSid(who, group); });
}

bool letsManyRead(ACL* list, DWORD index) {
  void* entry = nullptr;
  if (!GetAce(list, index, &entry)) return false;
  auto* const allowed = static_cast<ACCESS_ALLOWED_ACE*>(entry);
  constexpr DWORD reading = FILE_READ_DATA | GENERIC_READ | GENERIC_ALL;
  return allowed->Header.AceType == ACCESS_ALLOWED_ACE_TYPE && (allowed->Mask & reading) != 0 &&
         isManyPeople(&allowed->SidStart);
}

}  // namespace

bool isPrivate(const std::filesystem::path& file) {
  ACL* list = nullptr;
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  if (GetNamedSecurityInfoW(file.c_str(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, &list,
                            nullptr, &descriptor) != ERROR_SUCCESS) {
    return false;
  }
  const std::unique_ptr<void, decltype(&LocalFree)> owner(descriptor, &LocalFree);
  if (list == nullptr) return false;  // everybody may do everything
  for (DWORD index = 0; index < list->AceCount; ++index) {
    if (letsManyRead(list, index)) return false;
  }
  return true;
}

std::string howToMakePrivate(const std::filesystem::path& file) {
  return "icacls \"" + file.string() + "\" /inheritance:r /grant:r %USERNAME%:F";
}

std::filesystem::path usualNetrc() {
  const wchar_t* const home = _wgetenv(L"USERPROFILE");
  return home != nullptr && *home != L'\0' ? std::filesystem::path(home) / "_netrc" : std::filesystem::path();
}

}  // namespace hosts
