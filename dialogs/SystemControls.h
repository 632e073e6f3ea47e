// SPDX-License-Identifier: MIT
// The controls of the system's classic file dialogs.
#pragma once

inline constexpr int kReadOnlyBox = 1040;
inline constexpr int kFileTypeLabel = 1089;
inline constexpr int kFileNameLabel = 1090;
inline constexpr int kListArea = 1120;
inline constexpr int kFileTypeBox = 1136;
inline constexpr int kFileNameBox = 1148;
inline constexpr int kFileNameEdit = 1152;  // instead of the box in dialogs without places to go to
