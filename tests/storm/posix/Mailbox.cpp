// SPDX-License-Identifier: MIT
#include "tests/storm/Mailbox.h"

#include <glib.h>

extern "C" {

// GLib is not built for the thread sanitizer, which thus sees no order in what one thread allocates inside
// GLib and another frees there.
__attribute__((visibility("default"))) const char* __tsan_default_suppressions() {
  return "called_from_lib:libglib-2.0.so.0\n";
}

// A handler that throws through GLib leaves GLib's own record of the call behind.
__attribute__((visibility("default"))) const char* __lsan_default_suppressions() {
  return "leak:libglib-2.0.so.0\n";
}

}  // extern "C"

namespace storm {

struct Mailbox::Bell {
  static gboolean ring(void* mailbox) {
    static_cast<Mailbox*>(mailbox)->takeOne();
    return G_SOURCE_REMOVE;
  }
};

// The context opens a descriptor when it is first asked for.
Mailbox::Mailbox() { g_main_context_default(); }

Mailbox::~Mailbox() {
  while (g_idle_remove_by_data(this)) {
  }
}

void Mailbox::ring() { g_idle_add(&Bell::ring, this); }

}  // namespace storm
