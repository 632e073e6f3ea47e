// SPDX-License-Identifier: MIT
// A whole response, and the same one byte by byte: both ways it must come to the same, as far as it is one.
#include "framework/internet/http/HttpResponse.h"

#include <algorithm>
#include <string>

#include "framework/internet/net/InternetLimits.h"
#include "tests/fuzz/Invariants.h"

namespace {

struct Outcome {
  bool valid = true;
  bool whole = false;
  int status = 0;
  std::string raw;
  std::string body;
};

Outcome read(std::string_view text, std::size_t step) {
  Outcome outcome;
  internet::HttpResponse response;
  for (; outcome.valid && !text.empty(); text.remove_prefix(std::min(step, text.size()))) {
    outcome.valid = response.feed(text.substr(0, step));
    char block[64];
    while (const std::size_t count = response.take(block, sizeof block)) outcome.body.append(block, count);
    fuzz::require(response.available() == 0);
  }
  if (response.headComplete()) {
    outcome.status = response.head().status;
    outcome.raw = response.head().raw;
  }
  const bool complete = response.complete();
  outcome.whole = outcome.valid && response.endOfStream();
  fuzz::require(!complete || !outcome.valid || outcome.whole);
  return outcome;
}

void requireSound(const Outcome& outcome, std::string_view text) {
  fuzz::require(outcome.body.size() <= text.size() && outcome.raw.size() <= 2 * internet::kMaxHttpHead);
  if (outcome.status == 0) {
    fuzz::require(outcome.body.empty() && !outcome.whole);
    return;
  }
  fuzz::require(outcome.status >= 200 && outcome.status <= 999);
  fuzz::require(outcome.raw.starts_with("HTTP/1.") && outcome.raw.ends_with("\r\n\r\n"));
  fuzz::require(outcome.raw.find('\0') == std::string::npos);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = fuzz::textOf(data, size);
  const Outcome atOnce = read(text, std::max<std::size_t>(size, 1));
  requireSound(atOnce, text);
  const Outcome bytewise = read(text, 1);
  requireSound(bytewise, text);
  fuzz::require(atOnce.valid == bytewise.valid && atOnce.whole == bytewise.whole);
  fuzz::require(atOnce.status == bytewise.status && atOnce.raw == bytewise.raw);
  fuzz::require(atOnce.body == bytewise.body);
  return 0;
}
