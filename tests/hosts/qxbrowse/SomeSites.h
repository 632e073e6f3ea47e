// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "hosts/qxbrowse/sites/Site.h"

namespace some_sites {

inline const std::string kPin(64, 'a');
inline const std::string kOtherPin(64, 'b');

inline browse::Site siteOf(const std::string& name, const std::string& host = "h") {
  browse::Site site;
  site.name = name;
  site.host = host;
  return site;
}

}  // namespace some_sites
