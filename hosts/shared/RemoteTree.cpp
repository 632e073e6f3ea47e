// SPDX-License-Identifier: MIT
#include <algorithm>
#include <functional>

#include "hosts/shared/Entries.h"
#include "hosts/shared/Names.h"
#include "hosts/shared/Trees.h"

namespace hosts {
namespace {

// So many folders above with the same content tell that a link leads back. Real folders of one name in each
// other can look alike, but not so many, and not down to the time.
constexpr std::ptrdiff_t kAlikeAbove = 3;

// That the library lists.
constexpr std::size_t kLongestListed = 255;

using Entries = std::vector<QXDirEntry>;

// What is in a folder, in one number: names, kinds, sizes and times.
std::size_t contentOf(const Entries& entries) {
  std::string text;
  for (const QXDirEntry& entry : entries) {
    text.append(entry.szName).push_back(entry.bIsDirectory != 0 ? '/' : '\0');
    text.append(reinterpret_cast<const char*>(&entry.ftLastWriteTime), sizeof entry.ftLastWriteTime);
    const std::uint64_t size = sizeOf(entry);
    text.append(reinterpret_cast<const char*>(&size), sizeof size);
  }
  return std::hash<std::string>{}(text);
}

class RemoteWalk {
 public:
  RemoteWalk(qx::Client& client, ListingWatch& watch, const std::string& folder, const Walk& walk)
      : m_client(client), m_watch(watch), m_folder(folder.empty() ? "/" : folder), m_walk(walk) {}

  Tree run() {
    look("");
    return std::move(m_tree);
  }

 private:
  void problem(const std::string& path, const std::string& text) { m_tree.problems.push_back({path, text}); }

  bool isCancelled() {
    if (!m_tree.isCancelled && m_walk.isCancelled) m_tree.isCancelled = m_walk.isCancelled();
    return m_tree.isCancelled;
  }

  void look(const std::string& path) {
    if (isCancelled()) return;
    const std::string folder = path.empty() ? m_folder : joined(m_folder, path);
    if (folder.size() > kLongestListed)
      return problem(path, "a path of more than 255 bytes cannot be listed");
    m_watch.begin();
    auto listing = m_client.list(folder, "*");
    if (!listing && isCancelled()) return;
    if (!listing) return problem(path, listing.report().text);
    if (!m_watch.hasCome()) return problem(path, whyNothingCame());
    Entries entries = std::move(listing).value();
    sortByName(entries);
    if (m_walk.looked) m_walk.looked(path, entries.size());
    const std::size_t content = contentOf(entries);
    if (!entries.empty() && leadsBack(content)) return problem(path, "a link leads back to a folder above");
    m_above.push_back(content);
    take(path, entries);
    m_above.pop_back();
  }

  std::string whyNothingCame() const {
    return m_watch.refusal().empty() ? "the server has sent no listing" : m_watch.refusal();
  }

  bool leadsBack(std::size_t content) const { return std::ranges::count(m_above, content) >= kAlikeAbove; }

  void take(const std::string& above, const Entries& entries) {
    // The watch tells of the latest listing, so all of this one comes before the next.
    std::vector<Entry> taken;
    for (const QXDirEntry& entry : entries) takeEntry(above, entry, taken);
    for (const Entry& entry : taken) {
      m_tree.entries.push_back(entry);
      if (entry.kind == Kind::folder && m_walk.isRecursive) look(entry.path);
    }
  }

  void takeEntry(const std::string& above, const QXDirEntry& entry, std::vector<Entry>& taken) {
    const std::string path = joined(above, entry.szName);
    if (const auto reason = whyNotRemote(entry.szName)) return problem(path, *reason);
    taken.push_back({path, entry.bIsDirectory != 0 ? Kind::folder : Kind::file, sizeOf(entry), {}});
    if (unitsOf(entry.ftLastWriteTime) == 0) return;
    taken.back().time = {momentOf(entry.ftLastWriteTime), m_watch.precisionOf(entry)};
  }

  qx::Client& m_client;
  ListingWatch& m_watch;
  const std::string m_folder;
  const Walk& m_walk;
  Tree m_tree;
  std::vector<std::size_t> m_above;  // the contents of the folders above
};

}  // namespace

Tree readRemoteTree(qx::Client& client, ListingWatch& watch, const std::string& folder, const Walk& walk) {
  return RemoteWalk(client, watch, folder, walk).run();
}

qx::Result<bool> removeIfLink(qx::Client& client, ListingWatch& watch, const std::string& path) {
  watch.begin();
  const auto removed = client.remove(path);
  if (!removed && !watch.hasRefused("DELE")) return {std::nullopt, removed.report()};
  return {static_cast<bool>(removed), {}};
}

}  // namespace hosts
