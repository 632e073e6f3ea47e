// SPDX-License-Identifier: MIT
#include "tests/storm/Mailbox.h"

#include "tests/unit/windows/TestWindow.h"

namespace storm {

struct Mailbox::Bell {
  TestWindow window;
};

Mailbox::Mailbox() : m_bell(new Bell{TestWindow([this](unsigned) { takeOne(); })}) {}

Mailbox::~Mailbox() = default;

void Mailbox::ring() { m_bell->window.post(0); }

}  // namespace storm
