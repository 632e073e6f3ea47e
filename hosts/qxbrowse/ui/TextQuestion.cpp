// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/ui/TextQuestion.h"

#include "hosts/qxbrowse/ui/DialogTemplate.h"
#include "hosts/qxbrowse/ui/Texts.h"
#include "hosts/qxbrowse/ui/WindowText.h"

namespace browse {
namespace {

constexpr WORD kTextId = 100;
constexpr WORD kQuestionId = 101;
constexpr int kMaxText = 4095;

struct Question {
  std::wstring text;
  const std::function<bool(const std::wstring&)>& isGood;
  bool isAnswered = false;  // a dialog that the end of the program has closed tells of an OK, too
};

std::wstring typed(HWND dialog) { return windowText(GetDlgItem(dialog, kTextId)); }

void start(HWND dialog, const Question& question) {
  SetWindowLongPtrW(dialog, DWLP_USER, reinterpret_cast<LONG_PTR>(&question));
  SendDlgItemMessageW(dialog, kTextId, EM_SETLIMITTEXT, kMaxText, 0);
  SetDlgItemTextW(dialog, kTextId, question.text.c_str());
}

void end(HWND dialog, Question& question, WORD button) {
  const std::wstring text = typed(dialog);
  if (button == IDOK && !question.isGood(text)) return;
  question.text = text;
  question.isAnswered = button == IDOK;
  EndDialog(dialog, button);
}

INT_PTR CALLBACK handle(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_INITDIALOG) {
    start(dialog, *reinterpret_cast<const Question*>(lParam));
    return TRUE;
  }
  auto* const question = reinterpret_cast<Question*>(GetWindowLongPtrW(dialog, DWLP_USER));
  if (message != WM_COMMAND || question == nullptr) return FALSE;
  const WORD id = LOWORD(wParam);
  if (id == kTextId) EnableWindow(GetDlgItem(dialog, IDOK), question->isGood(typed(dialog)));
  if (id == IDOK || id == IDCANCEL) end(dialog, *question, id);
  return TRUE;
}

}  // namespace

std::optional<std::wstring> askText(HWND owner, const std::wstring& question, const std::wstring& start,
                                    const std::function<bool(const std::wstring&)>& isGood) {
  DialogTemplate dialog(text(Text::programName), 260, 74);
  // The label in front of the edit is its name to a screen reader.
  dialog.add(ControlClass::label, kQuestionId, SS_LEFT | SS_NOPREFIX, {7, 7, 246, 20}, question);
  dialog.add(ControlClass::edit, kTextId, ES_AUTOHSCROLL | WS_BORDER | WS_TABSTOP, {7, 29, 246, 14}, {});
  dialog.add(ControlClass::button, IDOK, BS_DEFPUSHBUTTON | WS_TABSTOP, {149, 53, 50, 14},
             text(Text::buttonOk));
  dialog.add(ControlClass::button, IDCANCEL, BS_PUSHBUTTON | WS_TABSTOP, {203, 53, 50, 14},
             text(Text::buttonCancel));
  Question asked{start, isGood};
  dialog.show(owner, &handle, reinterpret_cast<LPARAM>(&asked));
  return asked.isAnswered ? std::optional(asked.text) : std::nullopt;
}

bool isGoodName(const std::wstring& name) {
  return !name.empty() && name != L"." && name != L".." && name.find_first_of(L"/\\") == std::wstring::npos;
}

}  // namespace browse
