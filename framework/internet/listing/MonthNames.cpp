// SPDX-License-Identifier: MIT
// The abbreviated month names of the languages that servers speak, as the C library has them. A name that
// means different months in two languages has the month of the larger one ("lis": November, not the
// Croatians' October).
#include <array>
#include <string_view>

#include "framework/internet/listing/ListDialects.h"
#include "framework/text/AsciiText.h"

namespace internet {
namespace {

constexpr std::size_t kLongestName = 12;  // bytes

// In UTF-8, without the full stops that some countries write.
constexpr std::array<std::string_view, 12> kNames{
    "jan janv ene gen ian jaan tammi sty led saus oca янв яну січ јан Ιαν",
    "feb febr fév févr fev veebr helmi lut úno vas Şub фев лют феб Φεβ",
    "mar mars mär märz märts març marc márc mrt maalis bře kov мар бер Μαρ Μάρ",
    "apr avr avril april abr ápr huhti kwi dub bal nis апр кві Απρ",
    "may mai maj mei mag maig maí máj touko kvě geg май мая мај тра Μαϊ Μαΐ Μάι",
    "jun juin juni juny giu jún jūn iun juuni kesä cze čen birž haz июн юни јун чер Ιουν Ιούν",
    "jul juil juli lug júl jūl iul juuli heinä lip čec liep tem июл юли јул лип Ιουλ Ιούλ",
    "aug août aoû ago ag agu avg ágú elo sie srp rugp ağu авг сер Αυγ Αύγ",
    "sep sept set szept syys wrz zář rugs eyl сен сеп вер Σεπ",
    "oct okt ott out loka paź říj spal eki окт жов Οκτ",
    "nov nóv noi marras lis lapkr kas ноя ное нов лис Νοε Νοέ",
    "dec dez déc dic des dets joulu gru pro gruod ara дек дец гру Δεκ"};

bool hasName(std::string_view names, std::string_view name) noexcept {
  for (RowFields fields(names);;) {
    const std::string_view each = fields.next();
    if (each.empty()) return false;
    if (ascii::equalBlindToCase(each, name)) return true;
  }
}

int monthOf(std::string_view name) noexcept {
  for (std::size_t i = 0; i < kNames.size(); ++i) {
    if (hasName(kNames[i], name)) return static_cast<int>(i) + 1;
  }
  return 0;
}

// A text in Latin-1 as UTF-8.
class FromLatin1 {
 public:
  explicit FromLatin1(std::string_view text) noexcept {
    for (const char c : text) {
      const auto byte = static_cast<unsigned char>(c);
      if (byte >= 0x80) bytes_[size_++] = static_cast<char>(0xc0U | (byte >> 6U));
      bytes_[size_++] = byte < 0x80 ? c : static_cast<char>(0x80U | (byte & 0x3fU));
    }
  }
  [[nodiscard]] std::string_view text() const noexcept { return {bytes_.data(), size_}; }

 private:
  std::array<char, 2 * kLongestName> bytes_{};
  std::size_t size_ = 0;
};

}  // namespace

int monthOfLocalName(std::string_view name) noexcept {
  if (name.ends_with('.')) name.remove_suffix(1);
  for (const std::string_view article : {"d\u2019", "d'"}) {
    if (name.starts_with(article)) name.remove_prefix(article.size());
  }
  if (name.empty() || name.size() > kLongestName) return 0;
  const int month = monthOf(name);
  return month != 0 ? month : monthOf(FromLatin1(name).text());
}

}  // namespace internet
