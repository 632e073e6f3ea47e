// SPDX-License-Identifier: MIT
// What is read of TLS without keys: no size is above what is there, and it is all one how many records come
// at a time.
#include "framework/platform/tls_record.h"

#include "framework/text/AsciiText.h"
#include "tests/fuzz/Invariants.h"

namespace {

bool askedOneByOne(platform::TlsBytes records) {
  platform::HandshakeWatch watch;
  while (const std::size_t size = platform::recordSize(records).value_or(0)) {
    fuzz::require(size >= 5 && size <= records.size() && size <= platform::kLargestRecord);
    fuzz::require(platform::recordSize(records.first(size)) == size);
    watch.look(records.first(size));
    records = records.subspan(size);
  }
  return watch.certificateAsked();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const platform::TlsBytes records(data, size);
  platform::HandshakeWatch watch;
  watch.look(records);
  fuzz::require(watch.certificateAsked() == askedOneByOne(records));
  const std::string alert = platform::alertText(records);
  fuzz::require(alert.empty() || (alert.find("alert ") != std::string::npos && ascii::isAscii(alert)));
  return 0;
}
