// SPDX-License-Identifier: MIT
#include "tests/internet/BreakingFtp.h"

#include <algorithm>

namespace internet_tests {

using testing_support::MemoryLink;

namespace {

constexpr std::uint32_t kReplies = 40;  // of so many one is cut
constexpr std::size_t kNever = SIZE_MAX;

}  // namespace

void BreakingFtp::connecting(const Link& link, std::uint16_t port) {
  link->state = MemoryLink::State::established;
  if (port == kControlPort) {
    transfer_.reset();
    position_ = 0;
    reply(link, "220 Ready");
  } else {
    data_ = link;
  }
}

void BreakingFtp::received(const Link& link) {
  if (transfer_ && link == transfer_->data) return transfer_->late ? void() : take(*transfer_);
  for (std::size_t size = 0; (size = link->toServer.find("\r\n")) != std::string::npos;) {
    const std::string line = link->toServer.substr(0, size);
    link->toServer.erase(0, size + 2);
    answer(link, line);
  }
}

void BreakingFtp::answer(const Link& link, const std::string& line) {
  const std::string verb = line.substr(0, line.find(' '));
  if (verb == "USER") return reply(link, "331 Password?");
  if (verb == "EPSV") return reply(link, "229 Here (|||1000|)");
  if (verb == "PWD") return reply(link, "257 \"/\"");
  if (verb == "SIZE" && abilities_.tellsSize)
    return reply(link, "213 " + std::to_string(file.content.size()));
  if (verb == "MDTM" && abilities_.tellsTime) return reply(link, "213 " + file.time);
  if (verb == "FEAT" || verb == "SIZE" || verb == "MDTM") return reply(link, "500 What?");
  if (verb == "RETR" || verb == "STOR") return begin(link, verb == "STOR");
  if (verb != "REST") return reply(link, "200 Done");
  if (abilities_.restarts == Restarts::none) return reply(link, "502 No");
  position_ = std::stoul(line.substr(5));
  reply(link, "350 From there");
}

// The line may break in it, or just behind it.
void BreakingFtp::reply(const Link& link, const std::string& text) {
  if (link->server != MemoryLink::End::open) return;
  link->toClient += text + "\r\n";
  if (!happens(kReplies)) return;
  ++breaks;
  link->toClient.resize(link->toClient.size() - choices_.of(text.size() + 2));
  end(link, happens(2) ? MemoryLink::End::ended : MemoryLink::End::broken);
}

void BreakingFtp::end(const Link& link, MemoryLink::End how) {
  if (link->server == MemoryLink::End::open) link->server = how;
}

std::size_t BreakingFtp::breakAfter(std::size_t most) { return happens(2) ? kNever : choices_.of(most + 1); }

void BreakingFtp::begin(const Link& link, bool upload) {
  std::size_t start = std::exchange(position_, 0);
  const Restarts restarting = abilities_.restarts;
  if (upload && start > 0 && restarting == Restarts::downloads) return reply(link, "451 Not from there");
  if (start > 0) ++restarts;
  if (restarting == Restarts::inWords || (upload && restarting == Restarts::uploadsInWords)) start = 0;
  if (upload) file.content.resize(std::min(start, file.content.size()));
  transfer_ = {link, data_, upload, breakAfter(60'000), happens(2)};
  reply(link, "150 Here it comes");
  if (!upload) send(*transfer_, start);
}

void BreakingFtp::send(Transfer& transfer, std::size_t start) {
  const std::string rest = file.content.substr(std::min(start, file.content.size()));
  transfer.data->toClient = rest.substr(0, transfer.room);
  if (transfer.room < rest.size()) return breakOff(transfer);
  end(transfer.data, MemoryLink::End::ended);
  reply(transfer.control, "226 Done");
}

void BreakingFtp::take(Transfer& transfer) {
  std::string& sent = transfer.data->toServer;
  const std::size_t taken = std::min(transfer.room, sent.size());
  file.content.append(sent, 0, taken);
  const bool all = taken == sent.size();
  sent.clear();
  if (transfer.room != kNever) transfer.room -= taken;
  if (!all) breakOff(transfer);
}

// The client may hear of it at both ends, or at one of them. What was sent and not read turns an end into a
// reset; what the server makes of an upload whose line was cut may be that it is complete. Without a size
// nobody could tell.
void BreakingFtp::breakOff(Transfer& transfer) {
  ++breaks;
  const bool orderly = !transfer.upload && happens(2);
  end(transfer.data, orderly ? MemoryLink::End::ended : MemoryLink::End::broken);
  switch (choices_.of(3)) {
    case 0:
      return end(transfer.control, MemoryLink::End::broken);
    case 1:
      return reply(transfer.control, "426 Broken off");
    default:
      return reply(transfer.control, transfer.upload && abilities_.tellsSize ? "226 Done" : "426 Broken off");
  }
}

void BreakingFtp::left(const Link& link) {
  if (!transfer_ || link != transfer_->data || !transfer_->upload) return;
  if (link->server == MemoryLink::End::open) take(*transfer_);
  if (link->server != MemoryLink::End::open) return;
  end(link, MemoryLink::End::ended);
  reply(transfer_->control, link->clientBroken ? "426 Broken off" : "226 Done");
}

}  // namespace internet_tests
