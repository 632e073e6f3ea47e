// SPDX-License-Identifier: MIT
// Asks what to think of a server whose certificate cannot be checked.
#pragma once

#include "hosts/qxbrowse/sites/Certificates.h"
#include "hosts/qxbrowse/sites/Site.h"
#include "hosts/qxbrowse/ui/System.h"

namespace browse {

enum class Trust { no, once, forGood };

// "No" is what Enter and Escape choose. A site with a pin is warned of: the server has changed.
Trust askAboutCertificate(HWND owner, const Site& site, const ShownCertificate& certificate);

namespace certificate_question {
enum : WORD { kNo = IDCANCEL, kForGood = 200, kOnce, kWarning, kFacts };
}

}  // namespace browse
