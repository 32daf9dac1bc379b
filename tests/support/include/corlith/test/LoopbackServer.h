// A small HTTP server on 127.0.0.1 for tests and benchmarks: it records each request's
// raw bytes (headers and the body its Content-Length announces) and answers as told,
// or misbehaves as told (stalls, cuts the body). ReservedPort is a port nobody listens on.
// POSIX sockets and the standard library only.
#pragma once

#include <atomic>
#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace corlith::test {

/// How the server answers every request.
struct LoopbackReply {
  enum class Mode {
    Answer,        ///< the status line, Content-Length and the whole body, then close
    Stall,         ///< the status line and headers announcing the body, then nothing
    CloseMidBody,  ///< the headers announcing the body, half of it, then close
    Silent,        ///< nothing at all, until the client gives up
  };
  // A constructor rather than an aggregate: GCC 12 at -O3 warns falsely about the body
  // of aggregates in the tests' tables.
  LoopbackReply(Mode mode_ = Mode::Answer, int status_ = 200, std::string body_ = {}, bool record_ = true)
      : mode(mode_), status(status_), body(std::move(body_)), record(record_) {}

  Mode mode;
  int status;
  std::string body;
  /// Keep the requests' bytes (Requests()); off for large bodies read only to be discarded.
  bool record;
};

/// Serves one connection after the other on a thread of its own, from construction
/// until destruction (which stops it and joins the thread, a stalled answer included).
class LoopbackServer {
 public:
  /// Listens on a free port of 127.0.0.1. Throws std::system_error when it cannot.
  explicit LoopbackServer(LoopbackReply reply = {});
  ~LoopbackServer();
  LoopbackServer(const LoopbackServer&) = delete;
  LoopbackServer& operator=(const LoopbackServer&) = delete;

  int Port() const { return m_port; }
  /// "http://127.0.0.1:PORT" followed by `path` (which starts with "/").
  std::string Url(std::string_view path = "/") const;
  /// The raw bytes of every request read completely so far, oldest first.
  std::vector<std::string> Requests() const;
  /// How many requests were read completely (recorded or not).
  std::size_t RequestCount() const { return m_count.load(); }

 private:
  void Serve();
  // Reads one request; false when the connection ended first or the server stops.
  bool ReadRequest(int connection, std::string& request);
  void Answer(int connection);
  // Waits until `connection` can be read; false when the server stops first or
  // `timeoutMs` (-1: none) passes.
  bool WaitReadable(int connection, int timeoutMs = -1) const;

  LoopbackReply m_reply;
  int m_listener = -1;
  int m_stop[2] = {-1, -1};  // a pipe: the destructor writes, poll wakes
  int m_port = 0;
  mutable std::mutex m_mutex;
  std::vector<std::string> m_requests;
  std::atomic<std::size_t> m_count{0};
  std::thread m_thread;
};

/// A port of 127.0.0.1 held bound but never listened on, so a connection to it is
/// refused at once for as long as the object lives.
class ReservedPort {
 public:
  /// Throws std::system_error when no port can be bound.
  ReservedPort();
  ~ReservedPort();
  ReservedPort(const ReservedPort&) = delete;
  ReservedPort& operator=(const ReservedPort&) = delete;

  int Port() const { return m_port; }
  /// "http://127.0.0.1:PORT".
  std::string Url() const;

 private:
  int m_socket = -1;
  int m_port = 0;
};

}  // namespace corlith::test
