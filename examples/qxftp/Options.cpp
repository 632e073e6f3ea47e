// SPDX-License-Identifier: MIT
#include "examples/qxftp/Options.h"

#include <charconv>
#include <stdexcept>

namespace {

std::uint32_t parsePort(const std::string& text) {
  std::uint32_t port = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
  if (error != std::errc() || end != text.data() + text.size() || port == 0 || port > 65535) {
    throw std::invalid_argument("not a port: " + text);
  }
  return port;
}

// True when `name` is a switch, which stands alone.
bool takeSwitch(Options& options, const std::string& name) {
  if (name == "--verbose") {
    options.verbose = true;
  } else if (name == "--passive" || name == "--active") {
    options.passive = name == "--passive";
  } else {
    return false;
  }
  return true;
}

void takeValue(Options& options, const std::string& name, const std::string& value) {
  if (name == "--library") {
    options.library = value;
  } else if (name == "--host") {
    options.host = value;
  } else if (name == "--user") {
    options.user = value;
  } else if (name == "--password") {
    options.password = value;
  } else if (name == "--port") {
    options.port = parsePort(value);
  } else {
    throw std::invalid_argument("no such option: " + name);
  }
}

}  // namespace

Options parseOptions(const std::vector<std::string>& words) {
  Options options;
  auto word = words.begin();
  for (; word != words.end() && word->starts_with("--"); ++word) {
    if (takeSwitch(options, *word)) continue;
    if (word + 1 == words.end()) throw std::invalid_argument(*word + " needs a value");
    takeValue(options, *word, *(word + 1));
    ++word;
  }
  if (word == words.end()) throw std::invalid_argument("no command");
  options.command = *word++;
  options.arguments.assign(word, words.end());
  return options;
}
