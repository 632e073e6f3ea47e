// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/sites/SiteAddress.h"

#include <stdexcept>

#include "hosts/shared/Address.h"

namespace browse {
namespace {

// "ftpes://name;fingerprint=sha256:..." as it stands in a login. False: there is something else in it.
bool takeHost(Site& site, std::string_view host) {
  const std::size_t scheme = host.find("://");
  if (scheme != std::string_view::npos) {
    const auto encryption = encryptionFrom(host.substr(0, scheme));
    site.encryption = encryption.value_or(Encryption::none);
    host.remove_prefix(scheme + 3);
  }
  const std::size_t option = host.find(';');
  site.host = host.substr(0, option);
  if (option == std::string_view::npos) return true;
  constexpr std::string_view kPin = ";fingerprint=sha256:";
  host.remove_prefix(option);
  const auto pin = host.starts_with(kPin) ? pinFrom(host.substr(kPin.size())) : std::nullopt;
  site.pin = pin.value_or("");
  return pin.has_value();
}

}  // namespace

std::optional<Destination> destinationFrom(std::string_view text) {
  try {
    const hosts::Address address = hosts::parseAddress(text);
    Destination destination;
    Site& site = destination.site;
    if (!takeHost(site, address.login.host)) return std::nullopt;
    site.name = site.host;
    site.port = address.login.port;
    if (!address.login.user.empty()) site.user = address.login.user;
    site.remoteFolder = address.path;
    destination.password = address.login.password;
    return faultOf(site) ? std::nullopt : std::optional(destination);
  } catch (const std::invalid_argument&) {
    return std::nullopt;
  }
}

}  // namespace browse
