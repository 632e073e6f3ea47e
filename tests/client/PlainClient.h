// SPDX-License-Identifier: MIT
// A client whose slots are all the library's own.
#pragma once

#include "Src/QXIP.h"

class PlainClient final : public TQXIP {
 public:
  using TQXIP::TQXIP;
  ~PlainClient() = default;
};
