// SPDX-License-Identifier: MIT
// How far transfers are, one after the other: bytes, rate and the time left, of a file and of all. Figures
// without a display. One thread at a time.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace hosts {

struct Amount {
  std::uint64_t done = 0;
  std::optional<std::uint64_t> all;  // none: not known
  std::optional<std::chrono::seconds> left;

  // 0 to 100; of nothing all is done. None where it is not known.
  std::optional<unsigned> percent() const;
};

struct ProgressFigures {
  std::string name;   // of the file; "" between two of them
  Amount file = {};   // bytes
  Amount total = {};  // bytes of all files
  std::uint64_t filesDone = 0;
  std::uint64_t filesInAll = 0;
  double rate = 0;  // bytes a second, of the last seconds
};

class TransferProgress {
 public:
  using Time = std::chrono::steady_clock::time_point;

  // `bytes` is none when the sizes of some are not known.
  TransferProgress(std::uint64_t files, std::optional<std::uint64_t> bytes);

  void begin(const std::string& name, std::optional<std::uint64_t> size, Time now);
  // So many bytes of the file are there.
  void moved(std::uint64_t bytes, Time now);
  // The file has ended. What has not come of one that failed counts no longer among the bytes of all.
  void end(bool isDone, Time now);

  ProgressFigures at(Time now);

 private:
  void measure(Time now);
  Amount amount(std::uint64_t done, std::optional<std::uint64_t> all) const;

  const std::uint64_t m_files;
  std::optional<std::uint64_t> m_bytes;
  std::uint64_t m_filesDone = 0;
  std::uint64_t m_bytesBefore = 0;  // of files that have ended
  std::string m_name;
  std::optional<std::uint64_t> m_size;
  std::uint64_t m_moved = 0;

  // The rate: what came since the last measurement counts by its share of the last seconds.
  bool m_isMeasured = false;
  std::optional<Time> m_measuredAt;
  std::uint64_t m_measuredBytes = 0;
  double m_rate = 0;
};

}  // namespace hosts
