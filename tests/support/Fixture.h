// SPDX-License-Identifier: MIT
// Servers for tests. The program runs under tests/fixture/run-with-fixture; an object of these classes is one
// server that listens on loopback at a port of the system's choice, and that is stopped by the destructor.
// tests/fixture/README.md lists the keys of scripts, files and conditions.
// Every function may be called from any thread. A refused request (a misspelt key, ...) throws FixtureError.
#pragma once

#include <concepts>
#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace fixture {

// A value and no text, which would become one: a script's text is parsed.
template <typename Type>
concept Json = std::same_as<Type, nlohmann::json>;

struct FixtureError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

class Server {
 public:
  ~Server();
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  [[nodiscard]] const std::string& host() const { return host_; }
  [[nodiscard]] std::uint16_t port() const { return port_; }

  // What the server recorded so far, as the README's "log" has it.
  [[nodiscard]] nlohmann::json log(bool withEvents = false) const;

  // Waits until the condition (JSON, the README's "wait") holds. Throws FixtureError with the log after
  // `seconds`.
  void waitFor(std::string_view condition, int seconds = 60) const;

 protected:
  Server(const char* kind, const nlohmann::json& script);
  // Sends a request about this server and returns the answer.
  nlohmann::json ask(const char* op, const nlohmann::json& arguments) const;
  // The answer to the request that started the server.
  [[nodiscard]] nlohmann::json started() const;

 private:
  std::string answer_;
  std::string host_;
  int id_ = 0;
  std::uint16_t port_ = 0;
};

// A server whose files the test can make and look at. Paths are absolute, as the server shows them.
class FileServer : public Server {
 public:
  // Makes files, folders and links from JSON: {"/a.txt": "text", "/big": {"size": 5000, "seed": 7}, "/dir/":
  // {}}.
  void put(std::string_view files) const;
  void putText(const std::string& path, const std::string& text) const;
  [[nodiscard]] bool exists(const std::string& path) const;
  // REQUIRES: exists(path).
  [[nodiscard]] std::uint64_t size(const std::string& path) const;
  [[nodiscard]] std::int64_t modifiedAt(const std::string& path) const;
  [[nodiscard]] std::string content(const std::string& path) const;
  [[nodiscard]] std::string sha256(const std::string& path) const;
  // Whether the file is exactly the pattern (tests/support/Pattern.h) of this seed and size.
  [[nodiscard]] bool matches(const std::string& path, std::uint32_t seed, std::uint64_t size) const;
  [[nodiscard]] std::vector<std::string> names(const std::string& directory) const;

 protected:
  using Server::Server;
};

struct ControlConnection {
  int number = 0;  // From 1, in the order of their coming.
  std::string peer;
  std::vector<std::string> commands;
  int replies = 0;
  bool open = false;
  std::string closedBy;  // "client", "server", or empty while it is open.
};

struct DataConnection {
  int connection = 0;
  std::string verb;
  std::string mode;  // "passive" or "active"
  std::string peer;
  std::uint64_t bytes = 0;
  std::string how;  // "open", then "complete", "closed", "reset", "peer" or "aborted"
};

class ScriptedFtp : public FileServer {
 public:
  // `script` is JSON; {} is a well-behaved empty server.
  explicit ScriptedFtp(std::string_view script = "{}");
  explicit ScriptedFtp(const Json auto& script) : FileServer("ftp-script", script) {}

  // Command lines without line end, Latin-1 bytes as UTF-8: of all connections in the order of arrival, or of
  // one.
  [[nodiscard]] std::vector<std::string> commands() const;
  [[nodiscard]] std::vector<std::string> commands(int connection) const;
  // How many command lines had this verb.
  [[nodiscard]] int commandCount(std::string_view verb) const;
  // Replies sent, preliminary ones included; a multi-line reply is one.
  [[nodiscard]] int repliesSent() const;
  [[nodiscard]] std::vector<ControlConnection> connections() const;
  [[nodiscard]] std::vector<DataConnection> dataConnections() const;
  // Connections made to the trap listeners of "passive" rules.
  [[nodiscard]] int trapHits() const;
  // How many commands the script's rule (from 0) was used for.
  [[nodiscard]] int ruleFired(std::size_t rule) const;

  void waitForCommand(const std::string& verb, int count = 1) const;
  void waitForConnections(int count) const;
  // Until at least one control connection was made and none is open.
  void waitUntilAllClosed() const;
  // Until `count` scripted actions wait at the gate.
  void waitAtGate(const std::string& gate, int count = 1) const;

  void release(const std::string& gate) const;
  void hold(const std::string& gate) const;
  // Changes the given keys of the script from now on.
  void reconfigure(std::string_view script) const;
  // Closes the idle control connections, after `reply` if there is one; `how` is "fin" or "reset".
  void disconnect(const std::string& reply = {}, const std::string& how = "fin") const;
};

// A real FTP server program with a tree of its own, which the test may look at from outside.
class RealServer : public FileServer {
 public:
  // `kind`: "vsftpd", "pyftpdlib", "proftpd", "pure-ftpd", "inetutils-ftpd". Options are in the README.
  // Where this user cannot run such a server the test that asks for it ends here, as skipped.
  explicit RealServer(const char* kind, std::string_view options = "{}");

  [[nodiscard]] std::string user() const;
  [[nodiscard]] std::string password() const;
  // The folder below which the user may change things: "/pub".
  [[nodiscard]] std::string folder() const;
  [[nodiscard]] int connectionCount() const;
};

// A relay in front of another server. Whenever `every` bytes have moved over data connections it cuts them,
// their control connection, or a reply: each way once before one comes again, in an order of `seed`.
class CuttingRelay : public Server {
 public:
  CuttingRelay(const Server& behind, std::uint64_t every, std::uint32_t seed);

  // Bytes that data connections have brought to it, in both directions.
  [[nodiscard]] std::uint64_t moved() const;
  // The ways in which it has cut so far.
  [[nodiscard]] std::size_t waysSeen() const;
  // Replies that were cut in their middle.
  [[nodiscard]] std::size_t cutReplies() const;
};

// The scripted web server.
class ScriptedHttp : public Server {
 public:
  // `script` is JSON; {} answers every request with an empty 200.
  explicit ScriptedHttp(std::string_view script = "{}");
  explicit ScriptedHttp(const Json auto& script) : Server("http-script", script) {}

  // Every byte of the request heads, in the order of their coming.
  [[nodiscard]] std::vector<std::string> requests() const;
  [[nodiscard]] int connectionCount() const;
  void waitAtGate(const std::string& gate) const;
  void release(const std::string& gate) const;
};

// The scripted TLS server.
class ScriptedTls : public Server {
 public:
  // `script` is JSON; {} shakes hands and ends the connection.
  explicit ScriptedTls(std::string_view script = "{}");

  // SHA-256 of its certificate, in hex.
  [[nodiscard]] std::string fingerprint() const;

  void waitAtGate(const std::string& gate) const;
  void release(const std::string& gate) const;
  // Waits until `count` connections have ended.
  void waitUntilClosed(int count) const;
};

// A proxy; options and scripts are in the README.
class Proxy : public Server {
 public:
  // `kind`: "proxy-script", or the real "microsocks" (SOCKS5), "tinyproxy" (HTTP).
  explicit Proxy(const char* kind);
  Proxy(const char* kind, const nlohmann::json& options);

  // What it was asked for: "name:port"; of an HTTP proxy "CONNECT name:port" and "GET address".
  [[nodiscard]] std::vector<std::string> requests() const;
  // Waits until it was asked for at least so much. A real proxy tells of it a moment after it has answered.
  void waitForRequests(std::size_t count) const;
  // Of the scripted one.
  void waitAtGate(const std::string& gate) const;
  void release(const std::string& gate) const;
};

// Accepts and says nothing; or, with `accepts` false, lets even the connecting hang.
class Blackhole : public Server {
 public:
  explicit Blackhole(bool accepts = true, const std::string& host = "127.0.0.1");
};

// A port that is taken but refuses every connection.
class RefusedPort : public Server {
 public:
  explicit RefusedPort(const std::string& host = "127.0.0.1");
};

}  // namespace fixture
