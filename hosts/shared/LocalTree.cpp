// SPDX-License-Identifier: MIT
#include <algorithm>
#include <utility>

#include "hosts/shared/Names.h"
#include "hosts/shared/Trees.h"

namespace hosts {
namespace {

namespace fs = std::filesystem;

class LocalWalk {
 public:
  LocalWalk(fs::path folder, const Walk& walk) : m_folder(std::move(folder)), m_walk(walk) {}

  Tree run() {
    look(m_folder, "");
    return std::move(m_tree);
  }

 private:
  void problem(const std::string& path, const std::string& text) { m_tree.problems.push_back({path, text}); }

  bool isCancelled() {
    if (!m_tree.isCancelled && m_walk.isCancelled) m_tree.isCancelled = m_walk.isCancelled();
    return m_tree.isCancelled;
  }

  std::vector<fs::path> namesIn(const fs::path& folder, std::error_code& error) const {
    std::vector<fs::path> names;
    for (fs::directory_iterator entry(folder, error); !error && entry != fs::directory_iterator();
         entry.increment(error)) {
      names.push_back(entry->path().filename());
    }
    std::ranges::sort(names);
    return names;
  }

  void look(const fs::path& folder, const std::string& path) {
    if (isCancelled()) return;
    std::error_code error;
    const std::vector<fs::path> names = namesIn(folder, error);
    if (error) return problem(path, error.message());
    if (m_walk.looked) m_walk.looked(path, names.size());
    for (const fs::path& name : names) take(folder / name, path);
  }

  void take(const fs::path& file, const std::string& above) {
    const std::string name = nameForServer(file.filename());
    if (m_walk.leavesDotNamesOut && name.starts_with('.')) return;
    const std::string path = joined(above, name);
    std::error_code error;
    const LocalFacts facts = factsOf(file, m_walk.links, error);
    if (error) return problem(path, error.message());
    m_tree.entries.push_back({path, facts.kind, facts.kind == Kind::file ? facts.size : 0,
                              Moment{facts.changed, Precision::second}});
    if (facts.kind == Kind::folder && m_walk.isRecursive) goInto(file, path);
  }

  // A link that leads to a folder above would be followed for ever.
  void goInto(const fs::path& folder, const std::string& path) {
    std::error_code error;
    const auto isThis = [&](const fs::path& above) { return fs::equivalent(above, folder, error); };
    if (m_walk.links == Links::followed && std::ranges::any_of(m_above, isThis)) {
      return problem(path, "the link leads to a folder that it is in");
    }
    m_above.push_back(folder);
    look(folder, path);
    m_above.pop_back();
  }

  const fs::path m_folder;
  const Walk& m_walk;
  Tree m_tree;
  std::vector<fs::path> m_above{m_folder};  // and the folder that is being looked into
};

}  // namespace

Tree readLocalTree(const std::filesystem::path& folder, const Walk& walk) {
  return LocalWalk(folder, walk).run();
}

}  // namespace hosts
