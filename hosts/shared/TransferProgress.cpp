// SPDX-License-Identifier: MIT
#include "hosts/shared/TransferProgress.h"

#include <algorithm>
#include <cmath>

namespace hosts {
namespace {

using Seconds = std::chrono::duration<double>;

constexpr Seconds kShortest{0.2};  // between two measurements
constexpr Seconds kRemembered{4};  // what is older counts little

}  // namespace

std::optional<unsigned> Amount::percent() const {
  if (!all) return {};
  if (done >= *all) return 100;
  return static_cast<unsigned>(100.0 * static_cast<double>(done) / static_cast<double>(*all));
}

TransferProgress::TransferProgress(std::uint64_t files, std::optional<std::uint64_t> bytes)
    : m_files(files), m_bytes(bytes) {}

void TransferProgress::begin(const std::string& name, std::optional<std::uint64_t> size, Time now) {
  m_name = name;
  m_size = size;
  m_moved = 0;
  if (!m_measuredAt) m_measuredAt = now;
}

void TransferProgress::moved(std::uint64_t bytes, Time now) {
  m_moved = bytes;
  measure(now);
}

void TransferProgress::end(bool isDone, Time now) {
  if (isDone && m_size) m_moved = *m_size;
  measure(now);
  if (!isDone && m_bytes && m_size) *m_bytes -= std::min(*m_bytes, *m_size - std::min(*m_size, m_moved));
  m_bytesBefore += m_moved;
  m_moved = 0;
  m_size.reset();
  m_name.clear();
  ++m_filesDone;
}

void TransferProgress::measure(Time now) {
  const std::uint64_t bytes = m_bytesBefore + m_moved;
  if (!m_measuredAt || now - *m_measuredAt < kShortest) return;
  const Seconds passed = now - *m_measuredAt;
  const double came = static_cast<double>(bytes) - static_cast<double>(m_measuredBytes);
  const double share = m_isMeasured ? 1 - std::exp(-(passed / kRemembered)) : 1;
  m_rate += share * (std::max(came, 0.0) / passed.count() - m_rate);  // fewer: a transfer began anew
  m_isMeasured = true;
  m_measuredAt = now;
  m_measuredBytes = bytes;
}

Amount TransferProgress::amount(std::uint64_t done, std::optional<std::uint64_t> all) const {
  Amount amount{done, all, {}};
  if (!all || m_rate < 1) return amount;
  const auto missing = static_cast<double>(*all - std::min(*all, done));
  amount.left = std::chrono::seconds(static_cast<std::int64_t>(std::ceil(missing / m_rate)));
  return amount;
}

ProgressFigures TransferProgress::at(Time now) {
  measure(now);
  return {.name = m_name,
          .file = amount(m_moved, m_size),
          .total = amount(m_bytesBefore + m_moved, m_bytes),
          .filesDone = m_filesDone,
          .filesInAll = m_files,
          .rate = m_rate};
}

}  // namespace hosts
