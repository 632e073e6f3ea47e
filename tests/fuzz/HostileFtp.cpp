// SPDX-License-Identifier: MIT
#include "tests/fuzz/HostileFtp.h"

#include <algorithm>
#include <utility>

#include "framework/internet/net/InternetLimits.h"
#include "tests/fuzz/Invariants.h"

namespace fuzz {

using std::chrono::milliseconds;
using testing_support::MemoryLink;

namespace {

constexpr std::uint16_t kControlPort = 21;
constexpr std::uint16_t kFirstDataPort = 1000;  // the first session's

// The port of "|1|127.0.0.1|40001|" or "127,0,0,1,156,65".
std::uint16_t portOf(const std::string& argument) {
  unsigned before = 0;
  unsigned last = 0;
  for (const char c : argument) {
    if (c == ',') before = std::exchange(last, 0);
    if (c >= '0' && c <= '9') last = last * 10 + static_cast<unsigned>(c - '0');
    if (c == '|' && last > 1000) break;
    if (c == '|' || c == '.' || c == ':') last = 0;
  }
  return static_cast<std::uint16_t>(argument.find(',') == std::string::npos ? last : before * 256 + last);
}

bool is(std::string_view verb, std::initializer_list<std::string_view> verbs) {
  return std::find(verbs.begin(), verbs.end(), verb) != verbs.end();
}

}  // namespace

std::string HostileFtp::fileContent() const {
  std::string content(settings_.fileSize, '\0');
  for (std::size_t i = 0; i < content.size(); ++i) content[i] = static_cast<char>('a' + i % 23);
  return content;
}

std::size_t HostileFtp::portion(std::size_t most) {
  static constexpr std::size_t kPortions[] = {SIZE_MAX, SIZE_MAX, 1, 2, 7, 100};
  return std::min(most, choices_.from(kPortions));
}

void HostileFtp::later(std::function<void()> event) {
  network_->later(std::exchange(pause_, milliseconds(0)), std::move(event));
}

// --- Control connections ---

void HostileFtp::connecting(const Link& link, std::uint16_t port) {
  const unsigned manner = choices_.of(16);
  if (manner == 15) {
    link->state = MemoryLink::State::refused;
  } else if (manner < 14) {
    link->state = MemoryLink::State::established;
  } else if (choices_.of(2) == 1) {
    later([link] { link->state = MemoryLink::State::established; });
  }
  if (port == kControlPort) {
    const auto dataPort = static_cast<std::uint16_t>(kFirstDataPort + sessions_.size());
    sessions_.push_back(std::make_unique<Session>(Session{link, nullptr, 0, dataPort}));
    commands_.emplace_back().verb = "CONNECT";
    answer(*sessions_.back(), commands_.size() - 1);
  } else if (const std::size_t session = port - kFirstDataPort; session < sessions_.size()) {
    sessions_[session]->data = link;
  }
}

void HostileFtp::received(const Link& link) {
  const auto session =
      std::find_if(sessions_.begin(), sessions_.end(), [&](const auto& each) { return each->link == link; });
  if (session == sessions_.end()) {
    for (const TransferPtr& each : transfers_) {
      if (each->data == link) takeContent(each);
    }
    return;
  }
  for (std::size_t end = 0; (end = link->toServer.find("\r\n")) != std::string::npos;) {
    const std::string line = link->toServer.substr(0, end);
    link->toServer.erase(0, end + 2);
    take(**session, line);
  }
}

void HostileFtp::take(Session& session, std::string_view line) {
  require(!line.empty() && line.size() <= internet::kMaxArgument + 5);
  require(std::none_of(line.begin(), line.end(), [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 || byte == 0x7f;
  }));
  const std::size_t blank = line.find(' ');
  Command& command = commands_.emplace_back();
  command.verb = line.substr(0, blank);
  if (blank != std::string_view::npos) command.argument = line.substr(blank + 1);
  answer(session, commands_.size() - 1);
}

// As it should, two times of three.
void HostileFtp::answer(Session& session, std::size_t index) {
  static constexpr milliseconds kPauses[] = {milliseconds(100), milliseconds(1'000), milliseconds(7'000),
                                             milliseconds(40'000), milliseconds(3'600'000)};
  static constexpr int kRefusals[] = {425, 426, 450, 451, 500, 502, 503, 504, 522, 530, 550, 552};
  static constexpr int kMoreAsked[] = {331, 332, 350};
  const Link link = session.link;
  switch (choices_.of(32)) {
    case 21:
      pause_ = choices_.from(kPauses);
      return answerAsUsual(session, index);
    case 22:
      return reply(link, index, choices_.from(kRefusals), "No");
    case 23:
      for (unsigned i = choices_.of(256) * 5; i > 0; --i) reply(link, index, 110, "Wait");
      return answerAsUsual(session, index);
    case 24:
      return;
    case 25:
      return end(link, MemoryLink::End::ended);
    case 26:
      return end(link, MemoryLink::End::broken);
    case 27:
      return reply(link, index, 421, "Farewell");
    case 28:
      return reply(link, index, choices_.from(kMoreAsked), "And then?");
    case 29:
      return sayUnasked(link, choices_.text(choices_.of(100)));
    case 30:
      answerAsUsual(session, index);
      for (unsigned i = choices_.of(256); i > 0; --i) sayUnasked(link, "250 Unasked\r\n");
      return;
    case 31:
      // What asks whether lines were lost, answered as a transfer is, passes for the end of one.
      if (is(commands_[index].verb, {"NOOP", "PWD"})) orderly_ = false;
      return reply(link, index, 250, "Done otherwise");
    default:
      return answerAsUsual(session, index);
  }
}

void HostileFtp::answerAsUsual(Session& session, std::size_t index) {
  const Link link = session.link;
  const std::string verb = commands_[index].verb;
  const auto say = [&](int code, std::string_view text) { reply(link, index, code, text); };
  if (is(verb, {"RETR", "STOR", "LIST", "MLSD"})) return transfer(session, index);
  if (is(verb, {"EPSV", "PASV"})) return openPort(session, index);
  if (is(verb, {"EPRT", "PORT"})) session.port = portOf(commands_[index].argument);
  if (verb == "CONNECT") return say(220, "Ready");
  if (verb == "USER") return say(331, "Password?");
  if (verb == "PASS") return say(230, "Welcome");
  if (verb == "QUIT") return end(link, MemoryLink::End::ended);
  if (verb == "RNFR") return say(350, "To what?");
  if (verb == "PWD") return say(257, "\"/at" + std::to_string(index) + '"');
  if (verb == "SIZE") return say(213, std::to_string(settings_.fileSize));
  if (verb == "MDTM") return say(213, "20240229123456");
  if (verb == "CWD" && choices_.of(3) == 1) return say(550, "No such directory");
  const bool facts = is(verb, {"FEAT", "MLST"});
  if (facts && !settings_.features) return say(500, "Unknown");
  static constexpr std::string_view kTypes[] = {"file", "dir", "OS.unix=slink:/x", "cdir", "other"};
  if (verb == "FEAT") {
    return say(211, "-Features:\r\n MLST type*;size*;modify*;\r\n UTF8\r\n SIZE\r\n211 End");
  }
  if (verb == "MLST") {
    return say(250, "-Facts\r\n type=" + std::string(choices_.from(kTypes)) + ";size=5; f\r\n250 End");
  }
  const bool known = is(verb, {"OPTS", "TYPE", "NOOP", "CWD", "DELE", "RMD", "MKD", "RNTO", "EPRT", "PORT"});
  say(known ? 200 : 500, known ? "Done" : "Unknown");
}

void HostileFtp::openPort(Session& session, std::size_t index) {
  session.data.reset();
  session.port = 0;
  const unsigned port = session.dataPort;
  if (commands_[index].verb == "EPSV") {
    reply(session.link, index, 229, "Here (|||" + std::to_string(port) + "|)");
  } else {
    reply(session.link, index, 227,
          "Here (10,0,0,1," + std::to_string(port / 256) + ',' + std::to_string(port % 256) + ')');
  }
}

void HostileFtp::reply(const Link& link, std::size_t index, int code, std::string_view text) {
  later([this, link, index, code, text = std::string(text)] { arrive(link, index, code, text); });
}

// Each reply tells by its number whose it is. A text that begins with a hyphen makes one of several lines.
void HostileFtp::arrive(const Link& link, std::size_t index, int code, std::string_view text) {
  if (link->server != MemoryLink::End::open) return;
  link->toClient += std::to_string(code) + (text.starts_with('-') ? "" : " ");
  link->toClient += std::string(text) + " #" + std::to_string(index) + "\r\n";
  Command& command = commands_[index];
  if (command.first == 0) command.first = code;
  if (code >= 200) command.final = code;
}

void HostileFtp::sayUnasked(const Link& link, const std::string& text) {
  later([this, link, text] {
    orderly_ = false;
    if (link->server == MemoryLink::End::open) link->toClient += text;
  });
}

void HostileFtp::end(const Link& link, MemoryLink::End how) {
  later([link, how] {
    if (link->server == MemoryLink::End::open) link->server = how;
  });
}

}  // namespace fuzz
