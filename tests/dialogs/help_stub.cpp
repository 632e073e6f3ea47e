// SPDX-License-Identifier: MIT
#include "tests/dialogs/help_stub.h"

namespace {

HelpCalls g_calls{};

}  // namespace

extern "C" {

HWND WINAPI StubHtmlHelpA(HWND window, LPCSTR file, UINT command, DWORD_PTR data) {
  g_calls = {g_calls.count + 1, window, "", command, data};
  lstrcpynA(g_calls.file, file, sizeof g_calls.file);
  return kHelpWindow;
}

const HelpCalls* stubHelpCalls() { return &g_calls; }
}
