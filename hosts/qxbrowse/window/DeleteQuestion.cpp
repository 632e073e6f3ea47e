// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/window/DeleteQuestion.h"

#include <algorithm>

#include "hosts/qxbrowse/lists/Formats.h"
#include "hosts/qxbrowse/ui/Names.h"
#include "hosts/qxbrowse/ui/Texts.h"

namespace browse {
namespace {

constexpr std::size_t kMostNames = 10;

// A name as a part of a text: nobody's line breaks make another question of it.
std::wstring shownName(const Place& place) {
  std::wstring name = lastPart(place.path);
  std::ranges::replace_if(
      name, [](wchar_t unit) { return unit < L' '; }, L' ');
  return name;
}

std::wstring nameList(const std::vector<Place>& places) {
  const std::size_t shown = std::min(places.size(), kMostNames);
  std::wstring names;
  for (std::size_t i = 0; i < shown; ++i) names += shownName(places[i]) + L'\n';
  if (places.size() > shown) names += text(Text::askDeleteMore, {exactText(places.size() - shown)}) + L'\n';
  return names;
}

}  // namespace

std::wstring deleteQuestion(const std::vector<Place>& places, Side side) {
  const std::wstring question = places.size() == 1
                                    ? text(Text::askDeleteOne, {shownName(places.front())}) + L"\n"
                                    : text(Text::askDelete, {exactText(places.size()), nameList(places)});
  return question + L'\n' + text(side == Side::local ? Text::askDeleteLocal : Text::askDeleteServer);
}

}  // namespace browse
