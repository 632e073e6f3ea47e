// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/sites/Sites.h"

#include <algorithm>

#include "hosts/qxbrowse/sites/CertificateQuestion.h"
#include "hosts/qxbrowse/sites/SiteMessages.h"

namespace browse {
namespace {

// A site of this name that is about another server keeps its name.
std::string freeName(const std::vector<Site>& sites, const Site& site) {
  std::string name = site.name;
  for (int number = 2;; ++number) {
    const auto same = std::ranges::find(sites, name, &Site::name);
    if (same == sites.end() ||
        (same->host == site.host && same->port == site.port && same->user == site.user)) {
      return name;
    }
    name = site.name + " (" + std::to_string(number) + ")";
  }
}

}  // namespace

std::optional<Destination> Sites::ask(HWND owner) {
  auto destination = askWhereTo(owner, m_file);
  if (!destination) return destination;
  Site& site = destination->site;
  const auto once = m_pinsOfThisRun.find({site.host, site.port});
  const bool isAccepted = once != m_pinsOfThisRun.end() && site.encryption != Encryption::none;
  if (site.pin.empty() && isAccepted) site.pin = once->second;
  return destination;
}

std::optional<Destination> Sites::askAfterFailure(HWND owner, Destination failed, const qx::Report& report) {
  Site& site = failed.site;
  const auto certificate = shownCertificate(report, site.host);
  if (!certificate) return std::nullopt;
  const Trust trust = askAboutCertificate(owner, site, *certificate);
  if (trust == Trust::no) return std::nullopt;
  site.pin = certificate->fingerprint;
  if (trust == Trust::once) m_pinsOfThisRun[{site.host, site.port}] = site.pin;
  if (trust == Trust::forGood) keep(owner, site);
  return failed;
}

// The rest of a site that is in the file stays as it is there.
void Sites::keep(HWND owner, const Site& site) const {
  withSites(owner, m_file, [&] {
    const std::vector<Site> sites = m_file.sites();
    Site kept = site;
    kept.name = freeName(sites, site);
    const auto same = std::ranges::find(sites, kept.name, &Site::name);
    if (same != sites.end()) kept = *same;
    kept.encryption = site.encryption;
    kept.pin = site.pin;
    m_file.put(kept);
  });
}

}  // namespace browse
