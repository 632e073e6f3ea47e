// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/jobs/Mailbox.h"

#include <deque>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <utility>

#include "hosts/qxbrowse/ui/System.h"

namespace browse {
namespace {

constexpr UINT kLetterWaits = WM_APP;
constexpr wchar_t kMailboxClass[] = L"qxbrowse.mailbox";

}  // namespace

struct Mailbox::Letters : std::enable_shared_from_this<Letters> {
  HWND window = nullptr;
  std::mutex lock;
  std::deque<Letter> waiting;
  bool isTold = false;  // the window has a message that it has not got yet

  // With the lock.
  void tell() {
    if (!isTold && !waiting.empty()) isTold = PostMessageW(window, kLetterWaits, 0, 0) != FALSE;
  }

  // Tells of the next one first: a letter may show a dialog, whose loop has to read on.
  std::optional<Letter> take() {
    const std::lock_guard guard(lock);
    isTold = false;
    if (waiting.empty()) return {};
    Letter letter = std::move(waiting.front());
    waiting.pop_front();
    tell();
    return letter;
  }

  static LRESULT CALLBACK receive(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != kLetterWaits) return DefWindowProcW(window, message, wParam, lParam);
    auto* const letters = reinterpret_cast<Letters*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    const std::shared_ptr<Letters> kept = letters->shared_from_this();  // the letter may end the box
    if (const std::optional<Letter> letter = kept->take()) (*letter)();
    return 0;
  }
};

Mailbox::Mailbox() : m_letters(std::make_shared<Letters>()) {
  WNDCLASSW boxClass{};
  boxClass.lpfnWndProc = &Letters::receive;
  boxClass.hInstance = GetModuleHandleW(nullptr);
  boxClass.lpszClassName = kMailboxClass;
  RegisterClassW(&boxClass);
  m_letters->window = CreateWindowW(kMailboxClass, nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                    boxClass.hInstance, nullptr);
  if (m_letters->window == nullptr) throw std::runtime_error("the system makes no window");
  SetWindowLongPtrW(m_letters->window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(m_letters.get()));
}

Mailbox::~Mailbox() {
  std::deque<Letter> unread;
  const std::lock_guard guard(m_letters->lock);
  DestroyWindow(m_letters->window);
  unread.swap(m_letters->waiting);
}

void Mailbox::post(Letter letter) {
  const std::lock_guard guard(m_letters->lock);
  m_letters->waiting.push_back(std::move(letter));
  m_letters->tell();
}

void Mailbox::readUntil(const std::function<bool()>& isOver) {
  MSG message{};
  while (!isOver()) {
    if (GetMessageW(&message, nullptr, 0, 0) <= 0) return PostQuitMessage(static_cast<int>(message.wParam));
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
}

}  // namespace browse
