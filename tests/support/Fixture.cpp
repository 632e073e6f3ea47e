// SPDX-License-Identifier: MIT
#include "tests/support/Fixture.h"

#include <algorithm>
#include <cstdio>
#include <exception>

#include "tests/support/Base64.h"
#include "tests/support/Controller.h"

namespace fixture {
namespace {

using nlohmann::json;

json parsed(std::string_view text) {
  try {
    return json::parse(text);
  } catch (const json::exception& error) {
    throw FixtureError(std::string("no JSON: ") + error.what() + " in " + std::string(text));
  }
}

ControlConnection connectionOf(const json& entry) {
  const json& closedBy = entry.at("closed_by");
  return {entry.at("connection"), entry.at("peer"), entry.at("commands"),
          entry.at("replies"),    entry.at("open"), closedBy.is_null() ? "" : closedBy.get<std::string>()};
}

DataConnection dataConnectionOf(const json& entry) {
  return {entry.at("connection"), entry.at("verb"),  entry.at("mode"),
          entry.at("peer"),       entry.at("bytes"), entry.at("how")};
}

}  // namespace

Server::Server(const char* kind, const json& script) {
  const json answer = askController({{"op", "start"}, {"kind", kind}, {"script", script}});
  id_ = answer.at("id");
  host_ = answer.at("host");
  port_ = answer.at("port");
  answer_ = answer.dump();
}

Server::~Server() {
  try {
    ask("stop", json::object());
  } catch (const std::exception& error) {
    std::fprintf(stderr, "fixture: %s\n", error.what());
  }
}

json Server::ask(const char* op, const json& arguments) const {
  json request = arguments;
  request["op"] = op;
  request["id"] = id_;
  return askController(request);
}

json Server::started() const { return json::parse(answer_); }

json Server::log(bool withEvents) const { return ask("log", {{"events", withEvents}}); }

void Server::waitFor(std::string_view condition, int seconds) const {
  const json answer =
      askControllerApart({{"op", "wait"}, {"id", id_}, {"for", parsed(condition)}, {"timeout", seconds}});
  if (answer.at("met") == true) return;
  throw FixtureError("in " + std::to_string(seconds) + " s never " + std::string(condition) +
                     "; log: " + log(true).dump());
}

void FileServer::put(std::string_view files) const { ask("put", {{"files", parsed(files)}}); }

void FileServer::putText(const std::string& path, const std::string& text) const {
  ask("put", {{"files", {{path, text}}}});
}

bool FileServer::exists(const std::string& path) const { return ask("stat", {{"path", path}}).at("exists"); }

std::uint64_t FileServer::size(const std::string& path) const {
  return ask("stat", {{"path", path}}).at("size");
}

std::int64_t FileServer::modifiedAt(const std::string& path) const {
  return ask("stat", {{"path", path}}).at("mtime");
}

std::string FileServer::content(const std::string& path) const {
  return decodeBase64(ask("content", {{"path", path}}).at("base64").get<std::string>());
}

std::string FileServer::sha256(const std::string& path) const {
  return ask("sha256", {{"path", path}}).at("sha256");
}

bool FileServer::matches(const std::string& path, std::uint32_t seed, std::uint64_t size) const {
  return ask("matches", {{"path", path}, {"seed", seed}, {"size", size}}).at("matches");
}

std::vector<std::string> FileServer::names(const std::string& directory) const {
  return ask("list", {{"path", directory}}).at("names");
}

ScriptedFtp::ScriptedFtp(std::string_view script) : ScriptedFtp(parsed(script)) {}

std::vector<std::string> ScriptedFtp::commands() const { return log().at("commands"); }

std::vector<std::string> ScriptedFtp::commands(int connection) const {
  return connections().at(static_cast<std::size_t>(connection - 1)).commands;
}

int ScriptedFtp::commandCount(std::string_view verb) const {
  const auto all = commands();
  return static_cast<int>(std::count_if(all.begin(), all.end(), [verb](const std::string& line) {
    return line == verb || line.starts_with(std::string(verb) + ' ');
  }));
}

int ScriptedFtp::repliesSent() const {
  int sum = 0;
  for (const auto& connection : connections()) sum += connection.replies;
  return sum;
}

std::vector<ControlConnection> ScriptedFtp::connections() const {
  std::vector<ControlConnection> all;
  const json recorded = log();
  for (const json& entry : recorded.at("connections")) all.push_back(connectionOf(entry));
  return all;
}

std::vector<DataConnection> ScriptedFtp::dataConnections() const {
  std::vector<DataConnection> all;
  const json recorded = log();
  for (const json& entry : recorded.at("data")) all.push_back(dataConnectionOf(entry));
  return all;
}

int ScriptedFtp::trapHits() const { return log().at("traps"); }

int ScriptedFtp::ruleFired(std::size_t rule) const { return log().at("rules").at(rule).at("fired"); }

void ScriptedFtp::waitForCommand(const std::string& verb, int count) const {
  waitFor(json{{"command", verb}, {"count", count}}.dump());
}

void ScriptedFtp::waitForConnections(int count) const { waitFor(json{{"connections", count}}.dump()); }

void ScriptedFtp::waitUntilAllClosed() const { waitFor(R"({"connections": 1, "open": 0})"); }

void ScriptedFtp::waitAtGate(const std::string& gate, int count) const {
  waitFor(json{{"waiting", gate}, {"count", count}}.dump());
}

void ScriptedFtp::release(const std::string& gate) const { ask("release", {{"gate", gate}}); }

void ScriptedFtp::hold(const std::string& gate) const { ask("hold", {{"gate", gate}}); }

void ScriptedFtp::reconfigure(std::string_view script) const {
  ask("reconfigure", {{"script", parsed(script)}});
}

void ScriptedFtp::disconnect(const std::string& reply, const std::string& how) const {
  json request = {{"how", how}};
  if (!reply.empty()) request["reply"] = reply;
  ask("disconnect", request);
}

RealServer::RealServer(const char* kind, std::string_view options) : FileServer(kind, parsed(options)) {}

std::string RealServer::user() const { return started().at("user"); }

std::string RealServer::password() const { return started().at("password"); }

std::string RealServer::folder() const { return started().at("folder"); }

int RealServer::connectionCount() const { return log().at("connections"); }

CuttingRelay::CuttingRelay(const Server& behind, std::uint64_t every, std::uint32_t seed)
    : Server("cutting-relay", {{"port", behind.port()}, {"every", every}, {"seed", seed}}) {}

std::uint64_t CuttingRelay::moved() const { return log().at("moved"); }

std::size_t CuttingRelay::waysSeen() const {
  const json recorded = log();
  const json& cuts = recorded.at("cuts");
  return static_cast<std::size_t>(
      std::count_if(cuts.begin(), cuts.end(), [](const json& count) { return count > 0; }));
}

std::size_t CuttingRelay::cutReplies() const { return log().at("replies"); }

ScriptedHttp::ScriptedHttp(std::string_view script) : ScriptedHttp(parsed(script)) {}

std::vector<std::string> ScriptedHttp::requests() const {
  std::vector<std::string> all;
  const json recorded = log();
  for (const json& request : recorded.at("requests")) all.push_back(request.at("raw"));
  return all;
}

int ScriptedHttp::connectionCount() const { return log().at("connections"); }

void ScriptedHttp::waitAtGate(const std::string& gate) const { waitFor(json{{"waiting", gate}}.dump()); }

void ScriptedHttp::release(const std::string& gate) const { ask("release", {{"gate", gate}}); }

ScriptedTls::ScriptedTls(std::string_view script) : Server("tls-script", parsed(script)) {}

std::string ScriptedTls::fingerprint() const { return started().at("fingerprint"); }

void ScriptedTls::waitAtGate(const std::string& gate) const { waitFor(json{{"waiting", gate}}.dump()); }

void ScriptedTls::release(const std::string& gate) const { ask("release", {{"gate", gate}}); }

void ScriptedTls::waitUntilClosed(int count) const { waitFor(json{{"closed", count}}.dump()); }

Proxy::Proxy(const char* kind) : Proxy(kind, json::object()) {}

Proxy::Proxy(const char* kind, const json& options) : Server(kind, options) {}

std::vector<std::string> Proxy::requests() const { return log().at("requests"); }

void Proxy::waitForRequests(std::size_t count) const { waitFor(json{{"requests", count}}.dump()); }

void Proxy::waitAtGate(const std::string& gate) const { waitFor(json{{"waiting", gate}}.dump()); }

void Proxy::release(const std::string& gate) const { ask("release", {{"gate", gate}}); }

Blackhole::Blackhole(bool accepts, const std::string& host)
    : Server("tcp-blackhole", {{"accept", accepts}, {"host", host}}) {}

RefusedPort::RefusedPort(const std::string& host) : Server("refused-port", {{"host", host}}) {}

}  // namespace fixture
