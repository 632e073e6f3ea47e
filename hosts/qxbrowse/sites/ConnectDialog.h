// SPDX-License-Identifier: MIT
// The dialog that asks where to connect to: one of the sites, what the user types, or an address.
#pragma once

#include <optional>
#include <string>

#include "hosts/qxbrowse/sites/SiteFile.h"
#include "hosts/qxbrowse/ui/System.h"

namespace browse {

// A site with the password as the user has given it. A site that is not in the file is named after its host.
struct Destination {
  Site site;
  std::string password;
};

// None: the user has cancelled. Saves and forgets sites meanwhile; tells the user what the file does not
// take.
std::optional<Destination> askWhereTo(HWND owner, const SiteFile& file);

// The numbers of the controls, for whoever looks at the dialog from outside.
namespace connect_dialog {
enum : WORD {
  kConnect = IDOK,
  kCancel = IDCANCEL,
  kSites = 100,
  kNew,
  kSave,
  kDelete,
  kAddress,
  kName,
  kHost,
  kPort,
  kUser,
  kPassword,
  kKeepPassword,
  kEncryption,
  kPassive,
  kLocalFolder,
  kRemoteFolder,
  kPin,
  kState,
};
}  // namespace connect_dialog

}  // namespace browse
