// SPDX-License-Identifier: MIT
// Progress as one line of a terminal.
#pragma once

#include <string>
#include <string_view>

#include "hosts/shared/TransferProgress.h"

namespace qxftp {

// "large.iso  45% [=====>      ] 4.5 MiB  1.2 MiB/s  0:12". Of several files the figures are those of all,
// and their number stands in front: "12/2000 large.iso  45% ...". At most `columns` wide: the name is
// shortened in its middle, a bar that finds no room is left out.
[[nodiscard]] std::string progressLine(const hosts::ProgressFigures& figures, std::size_t columns);

// "512 B", "1.5 KiB", "12.3 MiB".
[[nodiscard]] std::string bytesText(std::uint64_t bytes);
// "0:07", "12:34", "1:02:03".
[[nodiscard]] std::string durationText(std::chrono::seconds duration);

// How many columns a text of printable UTF-8 takes.
[[nodiscard]] std::size_t columnsOf(std::string_view text);
// Of at most so many columns, "long-na...end.txt".
[[nodiscard]] std::string shortened(const std::string& text, std::size_t columns);

}  // namespace qxftp
