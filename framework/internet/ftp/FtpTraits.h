// SPDX-License-Identifier: MIT
// What is known of a server, kept for the life of the process, per host, port and user, and shared by all
// threads. The cache is locked; a connection works on a copy and writes back what it learns.
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace internet {

struct FtpTraits {
  bool featuresKnown = false;  // FEAT was answered, whatever the answer; the next five tell what it offered
  bool featuresTold = false;   // anything at all
  bool mlst = false;           // MLST and MLSD
  bool size = false;
  bool mdtm = false;
  bool utf8 = false;
  std::optional<bool> utf8ByOption;   // else, whether it took OPTS UTF8 ON; none = not asked
  bool noExtendedPassive = false;     // EPSV is not known there, or its ports cannot be reached
  bool extendedPassiveWorks = false;  // a data connection through EPSV was made
  bool noExtendedActive = false;      // EPRT is not known there
  bool singleLines = false;           // of several lines in one packet it takes the first alone
  bool takesPackets = false;          // it has answered each of several lines in one packet
  bool takesLoginPackets = false;     // also where PASS was one of them
  bool aloneAtLogin = false;   // it turns down a login with other lines in its packet, or answers oddly
  bool asksPassword = false;   // it has answered USER with 331
  bool activeWorks = false;    // a data connection to a port that EPRT told was made
  bool onlyTls12 = false;      // over a newer TLS it takes no data connection of ours
  bool takesFreshTls = false;  // it takes data connections that resume no session
  bool noSize = false;         // SIZE is not known there, whatever FEAT has told
  std::optional<int> zone;     // seconds that the clocks of its listings are ahead of UTC
  int zoneQuestions = 0;       // that have not told the zone

  [[nodiscard]] bool speaksUtf8() const noexcept { return utf8 || utf8ByOption.value_or(false); }
};

// All feature lines of the reply to FEAT; unknown ones are skipped. Keeps the other members of `traits`.
void readFeatures(const std::string& replyText, FtpTraits& traits);

FtpTraits cachedTraits(const std::string& key);
// `change` runs under the cache's lock on what is known now, so that two threads do not undo each other's
// facts.
void changeCachedTraits(const std::string& key, const std::function<void(FtpTraits&)>& change);
void forgetCachedTraits();  // all of them; tests start clean

}  // namespace internet
