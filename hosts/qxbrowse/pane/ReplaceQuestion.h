// SPDX-License-Identifier: MIT
// Asks before a transfer replaces a file, on either side.
#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "hosts/qxbrowse/jobs/Transfer.h"
#include "hosts/qxbrowse/ui/System.h"

namespace browse {

// The size and the time of a file, and what it has more than the other one: L"1,200 bytes, 2026-07-14 18:30
// (newer)".
std::wstring factsText(const FileFacts& facts, const FileFacts& other);

// One question after the other: transfers that come while one is open wait for their turn.
class ReplaceQuestions {
 public:
  using Then = std::function<void(std::vector<Transfer> agreed)>;

  // `then` gets those that replace nothing and those that the user agrees to, marked as such; none where the
  // user cancels. It is called before this returns, or before the call returns that shows an earlier
  // question.
  void ask(HWND owner, std::vector<Transfer> transfers, Then then);

 private:
  struct Asked {
    std::vector<Transfer> transfers;
    Then then;
  };
  std::deque<Asked> m_waiting;
  bool m_isOpen = false;
};

namespace replace_question {
enum Control : WORD {
  kCancel = IDCANCEL,
  kReplace = 200,
  kReplaceAll,
  kSkip,
  kSkipAll,
  kQuestion,
  kThere,
  kComes,
  kMore
};
}

}  // namespace browse
