// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/pane/ReplaceQuestion.h"

#include <algorithm>

#include "hosts/qxbrowse/lists/Formats.h"
#include "hosts/qxbrowse/ui/Dialog.h"
#include "hosts/qxbrowse/ui/Names.h"

namespace browse {
namespace {

std::wstring targetPath(const Transfer& transfer) {
  if (transfer.direction == Direction::download) return transfer.local.wstring();
  return fromLibrary(transfer.direction == Direction::copy ? transfer.copy : transfer.remote.path);
}

// As a part of a text: a name's line breaks make no other text of it.
std::wstring oneLine(std::wstring name) {
  std::ranges::replace_if(
      name, [](wchar_t unit) { return unit < L' '; }, L' ');
  return name;
}

bool isAsked(const Transfer& transfer) { return transfer.replaces && !transfer.mayReplace; }

class ReplaceDialog : public Dialog {
  using enum replace_question::Control;

 public:
  // `more`: so many others are asked about after this one.
  ReplaceDialog(const Transfer& transfer, std::size_t more)
      : Dialog(Text::replaceTitle, 310, 128), m_transfer(transfer), m_more(more) {
    addText(kQuestion, {7, 7, 296, 26});
    addLabel(Text::replaceThere, {7, 38, 296, 9});
    addText(kThere, {17, 48, 286, 10});
    addLabel(Text::replaceComes, {7, 62, 296, 9});
    addText(kComes, {17, 72, 286, 10});
    addText(kMore, {7, 90, 296, 9});
    addButton(kReplace, Text::replaceOne, {7, 107, 54, 14});
    addButton(kReplaceAll, Text::replaceAll, {65, 107, 60, 14});
    addButton(kSkip, Text::replaceSkip, {129, 107, 54, 14}, BS_DEFPUSHBUTTON);
    addButton(kSkipAll, Text::replaceSkipAll, {187, 107, 60, 14});
    addButton(kCancel, Text::buttonCancel, {251, 107, 52, 14});
  }

 private:
  WORD begin() override {
    const std::wstring path = oneLine(targetPath(m_transfer));
    const FileFacts comes{m_transfer.size, m_transfer.time};
    setText(kQuestion, text(Text::replaceQuestion, {lastPart(path), path}));
    setText(kThere, factsText(*m_transfer.replaces, comes));
    setText(kComes, factsText(comes, *m_transfer.replaces));
    if (m_more > 0) setText(kMore, text(Text::replaceMore, {exactText(m_more)}));
    for (const WORD all : {kReplaceAll, kSkipAll}) EnableWindow(control(all), m_more > 0);
    return kSkip;  // Enter loses nothing
  }

  void command(WORD id, WORD notification) override {
    if (notification == BN_CLICKED) end(id);
  }

  const Transfer& m_transfer;
  const std::size_t m_more;
};

// What is left of them; nothing when the user cancels.
std::vector<Transfer> agreed(HWND owner, std::vector<Transfer> transfers) {
  using enum replace_question::Control;
  auto more = static_cast<std::size_t>(std::ranges::count_if(transfers, &isAsked));
  std::vector<Transfer> kept;
  INT_PTR answer = kSkip;
  for (Transfer& transfer : transfers) {
    if (isAsked(transfer)) {
      --more;
      const bool isForAll = answer == kReplaceAll || answer == kSkipAll;
      if (!isForAll) answer = ReplaceDialog(transfer, more).show(owner);
      if (answer != kReplace && answer != kReplaceAll && answer != kSkip && answer != kSkipAll) return {};
      if (answer == kSkip || answer == kSkipAll) continue;
      transfer.mayReplace = true;
    }
    kept.push_back(std::move(transfer));
  }
  return kept;
}

}  // namespace

std::wstring factsText(const FileFacts& facts, const FileFacts& other) {
  const std::wstring size =
      facts.size ? text(Text::sizeBytes, {exactText(*facts.size)}) : std::wstring(text(Text::replaceNoSize));
  std::wstring all = facts.time ? text(Text::replaceFacts, {size, momentText(*facts.time)}) : size;
  if (facts.time && other.time && hosts::isSurelyLater(*facts.time, *other.time)) {
    all += text(Text::replaceNewer);
  }
  if (facts.size && other.size && *facts.size > *other.size) all += text(Text::replaceLarger);
  return all;
}

void ReplaceQuestions::ask(HWND owner, std::vector<Transfer> transfers, Then then) {
  m_waiting.push_back({std::move(transfers), std::move(then)});
  if (m_isOpen) return;
  m_isOpen = true;
  while (!m_waiting.empty()) {
    Asked next = std::move(m_waiting.front());
    m_waiting.pop_front();
    next.then(agreed(owner, std::move(next.transfers)));
  }
  m_isOpen = false;
}

}  // namespace browse
