// SPDX-License-Identifier: MIT
// A dialog's template in memory, so that its texts come from the table and no resource has any.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "hosts/qxbrowse/ui/System.h"

namespace browse {

// The classes of controls that a template knows by number.
enum class ControlClass : std::uint16_t {
  button = 0x80,
  edit = 0x81,
  label = 0x82,
  list = 0x83,
  comboBox = 0x85
};

struct DialogArea {
  short x, y, width, height;  // in dialog units
};

class DialogTemplate {
 public:
  // In the dialogs' own font, centred over the owner.
  DialogTemplate(const std::wstring& title, short width, short height);

  void add(ControlClass kind, WORD id, DWORD style, const DialogArea& area, const std::wstring& text);

  // Modal; answers what the dialog ended with, -1 where it could not be shown.
  INT_PTR show(HWND owner, DLGPROC handle, LPARAM parameter) const;

 private:
  void append(const void* data, std::size_t size);
  void append(const std::wstring& text);
  void align();

  std::vector<unsigned char> m_bytes;
};

}  // namespace browse
