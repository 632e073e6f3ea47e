// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/sites/SiteText.h"

#include <algorithm>
#include <charconv>

namespace browse {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// How a field of a site stands in the file. `read` answers what is wrong.
struct SiteField {
  std::string_view key;
  std::optional<Text> (*read)(Site&, std::string_view);
  std::string (*write)(const Site&);
};

template <std::string Site::*Member>
std::optional<Text> readText(Site& site, std::string_view value) {
  site.*Member = value;
  return std::nullopt;
}

template <std::string Site::*Member>
std::string writeText(const Site& site) {
  return site.*Member;
}

std::optional<Text> readPort(Site& site, std::string_view value) {
  const char* const end = value.data() + value.size();
  const auto [stop, error] = std::from_chars(value.data(), end, site.port);
  return error == std::errc() && stop == end ? std::nullopt : std::optional(Text::wrongPort);
}

std::optional<Text> readEncryption(Site& site, std::string_view value) {
  const auto encryption = encryptionFrom(value);
  site.encryption = encryption.value_or(Encryption::none);
  return encryption ? std::nullopt : std::optional(Text::brokenEncryption);
}

std::optional<Text> readPassive(Site& site, std::string_view value) {
  site.isPassive = value == "yes";
  return site.isPassive || value == "no" ? std::nullopt : std::optional(Text::brokenPassive);
}

std::optional<Text> readPin(Site& site, std::string_view value) {
  const auto pin = value.empty() ? std::optional<std::string>("") : pinFrom(value);
  site.pin = pin.value_or("");
  return pin ? std::nullopt : std::optional(Text::wrongPin);
}

constexpr SiteField kSiteFields[] = {
    {"host", readText<&Site::host>, writeText<&Site::host>},
    {"port", readPort, [](const Site& site) { return std::to_string(site.port); }},
    {"user", readText<&Site::user>, writeText<&Site::user>},
    {"encryption", readEncryption, [](const Site& site) { return std::string(nameOf(site.encryption)); }},
    {"passive", readPassive, [](const Site& site) { return std::string(site.isPassive ? "yes" : "no"); }},
    {"localFolder", readText<&Site::localFolder>, writeText<&Site::localFolder>},
    {"remoteFolder", readText<&Site::remoteFolder>, writeText<&Site::remoteFolder>},
    {"pin", readPin, writeText<&Site::pin>},
    {"password", readText<&Site::password>, writeText<&Site::password>},
};

const SiteField* fieldOf(std::string_view key) {
  const auto* const found = std::ranges::find(kSiteFields, key, &SiteField::key);
  return found != std::end(kSiteFields) ? found : nullptr;
}

}  // namespace

bool SiteText::Line::isComment() const {
  const std::size_t begin = text.find_first_not_of(" \t");
  return begin == std::string::npos || text[begin] == ';';
}

std::string_view SiteText::Line::key() const {
  return isComment() ? std::string_view() : std::string_view(text).substr(0, text.find('='));
}

std::string_view SiteText::Line::value() const { return std::string_view(text).substr(text.find('=') + 1); }

SiteText::SiteText(std::string_view text) {
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  for (std::size_t number = 1; !text.empty(); ++number) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    take(number, line);
  }
  static_cast<void>(sites());  // what is wrong is told at once
}

void SiteText::take(std::size_t number, std::string_view line) {
  if (line.find('\0') != std::string_view::npos) throw BrokenSites(number, Text::brokenBinary);
  if (line.starts_with('[')) return begin(number, line);
  Line taken{number, std::string(line)};
  if (taken.isComment()) {
    (m_parts.empty() ? m_head : m_parts.back().lines).push_back(std::move(taken));
    return;
  }
  if (m_parts.empty()) throw BrokenSites(number, Text::brokenNoSite);
  if (line.find('=') == std::string_view::npos) throw BrokenSites(number, Text::brokenNoValue);
  std::vector<Line>& lines = m_parts.back().lines;
  const auto isSame = [&](const Line& other) { return other.key() == taken.key(); };
  if (std::ranges::any_of(lines, isSame)) {
    throw BrokenSites(number, Text::brokenTwoValues);
  }
  lines.push_back(std::move(taken));
}

void SiteText::begin(std::size_t number, std::string_view line) {
  if (!line.ends_with(']')) throw BrokenSites(number, Text::brokenBracket);
  const std::string name(line.substr(1, line.size() - 2));
  if (name.empty()) throw BrokenSites(number, Text::wrongName);
  if (std::ranges::find(m_parts, name, &Part::name) != m_parts.end()) {
    throw BrokenSites(number, Text::brokenTwoSites);
  }
  m_parts.push_back({number, name, {}});
}

Site SiteText::Part::site() const {
  Site site;
  site.name = name;
  for (const Line& line : lines) {
    const SiteField* const field = fieldOf(line.key());
    const auto wrong = field != nullptr ? field->read(site, line.value()) : std::nullopt;
    if (wrong) throw BrokenSites(line.number, *wrong);
  }
  if (const auto fault = faultOf(site)) throw BrokenSites(number, *fault);
  return site;
}

std::vector<Site> SiteText::sites() const {
  std::vector<Site> sites;
  for (const Part& part : m_parts) sites.push_back(part.site());
  return sites;
}

void SiteText::Part::set(std::string_view key, std::string_view value) {
  const std::string text = std::string(key) + "=" + std::string(value);
  const auto line = std::ranges::find_if(lines, [&](const Line& other) { return other.key() == key; });
  if (line != lines.end()) {
    line->text = text;
    return;
  }
  // Blank lines at the end part this site from the next.
  auto end = lines.end();
  while (end != lines.begin() && std::prev(end)->isComment()) --end;
  lines.insert(end, {number, text});
}

SiteText::Part& SiteText::partOf(std::string_view name) {
  const auto part = std::ranges::find(m_parts, name, &Part::name);
  if (part != m_parts.end()) return *part;
  std::vector<Line>& before = m_parts.empty() ? m_head : m_parts.back().lines;
  const bool needsBlank = before.empty() ? !m_parts.empty() : !before.back().text.empty();
  if (needsBlank) before.push_back({0, ""});
  return m_parts.emplace_back(Part{0, std::string(name), {}});
}

void SiteText::put(const Site& site, std::string_view formerName) {
  if (!formerName.empty() && formerName != site.name) {
    remove(site.name);
    const auto former = std::ranges::find(m_parts, formerName, &Part::name);
    if (former != m_parts.end()) former->name = site.name;
  }
  Part& part = partOf(site.name);
  for (const SiteField& field : kSiteFields) part.set(field.key, field.write(site));
}

void SiteText::remove(std::string_view name) {
  std::erase_if(m_parts, [&](const Part& part) { return part.name == name; });
}

std::string SiteText::text() const {
  std::string text;
  const auto add = [&text](const std::vector<Line>& lines) {
    for (const Line& line : lines) text += line.text + "\r\n";
  };
  add(m_head);
  for (const Part& part : m_parts) {
    text += "[" + part.name + "]\r\n";
    add(part.lines);
  }
  return text;
}

}  // namespace browse
