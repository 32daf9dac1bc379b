#include <corlith/test/LoopbackServer.h>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <system_error>

namespace corlith::test {

namespace {

constexpr std::size_t kChunk = 1 << 20;

[[noreturn]] void ThrowSystemError(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

// A TCP socket bound to a free port of 127.0.0.1; returns the port through `port`.
int BindLoopback(int& port) {
  const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (fd < 0) ThrowSystemError("socket");
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  if (::bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
      ::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
    const int error = errno;
    ::close(fd);
    throw std::system_error(error, std::generic_category(), "bind");
  }
  port = ntohs(address.sin_port);
  return fd;
}

bool SendAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t sent = ::send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
  return true;
}

std::string_view Reason(int status) {
  switch (status) {
    case 200:
      return "OK";
    case 404:
      return "Not Found";
    case 500:
      return "Internal Server Error";
    default:
      return "Status";
  }
}

// The value of Content-Length in a request's header block (0 when none).
std::size_t ContentLength(std::string_view headers) {
  std::string lower(headers);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](unsigned char c) { return static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c); });
  const std::size_t at = lower.find("\r\ncontent-length:");
  if (at == std::string::npos) return 0;
  std::size_t value = 0;
  for (std::size_t i = at + 17; i < lower.size(); ++i) {
    if (lower[i] == ' ') continue;
    if (lower[i] < '0' || lower[i] > '9') break;
    value = value * 10 + static_cast<std::size_t>(lower[i] - '0');
  }
  return value;
}

}  // namespace

LoopbackServer::LoopbackServer(LoopbackReply reply) : m_reply(std::move(reply)) {
  m_listener = BindLoopback(m_port);
  if (::listen(m_listener, 16) != 0 || ::pipe2(m_stop, O_CLOEXEC) != 0) {
    const int error = errno;
    ::close(m_listener);
    throw std::system_error(error, std::generic_category(), "listen");
  }
  m_thread = std::thread([this] { Serve(); });
}

LoopbackServer::~LoopbackServer() {
  const char stop = 's';
  while (::write(m_stop[1], &stop, 1) < 0 && errno == EINTR) {
  }
  m_thread.join();
  ::close(m_listener);
  ::close(m_stop[0]);
  ::close(m_stop[1]);
}

std::string LoopbackServer::Url(std::string_view path) const {
  return "http://127.0.0.1:" + std::to_string(m_port) + std::string(path);
}

std::vector<std::string> LoopbackServer::Requests() const {
  const std::lock_guard lock(m_mutex);
  return m_requests;
}

bool LoopbackServer::WaitReadable(int connection, int timeoutMs) const {
  pollfd watched[2] = {{connection, POLLIN, 0}, {m_stop[0], POLLIN, 0}};
  while (true) {
    const int ready = ::poll(watched, 2, timeoutMs);
    if (ready < 0 && errno == EINTR) continue;
    if (ready <= 0 || watched[1].revents != 0) return false;
    if (watched[0].revents != 0) return true;
  }
}

void LoopbackServer::Serve() {
  while (WaitReadable(m_listener)) {
    const int connection = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
    if (connection < 0) continue;
    std::string request;
    if (ReadRequest(connection, request)) {
      if (m_reply.record) {
        const std::lock_guard lock(m_mutex);
        m_requests.push_back(std::move(request));
      }
      ++m_count;
      Answer(connection);
    }
    ::close(connection);
  }
}

bool LoopbackServer::ReadRequest(int connection, std::string& request) {
  auto buffer = std::make_unique<char[]>(kChunk);
  std::size_t headerEnd = std::string::npos;
  std::size_t total = 0;  // the request's whole length, once the headers are in
  std::size_t received = 0;
  std::string head;  // the header block (and what came with it) when not recording
  std::string& kept = m_reply.record ? request : head;
  while (headerEnd == std::string::npos || received < total) {
    if (!WaitReadable(connection)) return false;
    const ssize_t got = ::recv(connection, buffer.get(), kChunk, 0);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return false;
    received += static_cast<std::size_t>(got);
    if (headerEnd == std::string::npos || m_reply.record)
      kept.append(buffer.get(), static_cast<std::size_t>(got));
    if (headerEnd == std::string::npos) {
      headerEnd = kept.find("\r\n\r\n");
      if (headerEnd != std::string::npos)
        total = headerEnd + 4 + ContentLength(kept.substr(0, headerEnd + 2));
    }
  }
  return true;
}

void LoopbackServer::Answer(int connection) {
  const std::string& body = m_reply.body;
  const std::string head =
      "HTTP/1.1 " + std::to_string(m_reply.status) + " " + std::string(Reason(m_reply.status)) +
      "\r\nContent-Length: " + std::to_string(body.size()) + "\r\nConnection: close\r\n\r\n";
  switch (m_reply.mode) {
    case LoopbackReply::Mode::Answer:
      if (!SendAll(connection, head) || !SendAll(connection, body)) return;
      break;
    case LoopbackReply::Mode::CloseMidBody:
      if (!SendAll(connection, head) ||
          !SendAll(connection, std::string_view(body).substr(0, body.size() / 2)))
        return;
      break;
    case LoopbackReply::Mode::Stall:
      if (!SendAll(connection, head)) return;
      break;
    case LoopbackReply::Mode::Silent:
      break;
  }
  // An orderly end: the client reads everything sent, then closes; a stalled or silent
  // answer waits for the client to give up. Whatever it still sends is dropped. A client
  // that never closes is left after a while, so the next connection is served.
  const bool waitForClient =
      m_reply.mode == LoopbackReply::Mode::Stall || m_reply.mode == LoopbackReply::Mode::Silent;
  if (!waitForClient) ::shutdown(connection, SHUT_WR);
  char drop[4096];
  while (WaitReadable(connection, waitForClient ? 60000 : 5000)) {
    const ssize_t got = ::recv(connection, drop, sizeof drop, 0);
    if (got == 0 || (got < 0 && errno != EINTR)) break;
  }
}

ReservedPort::ReservedPort() { m_socket = BindLoopback(m_port); }

ReservedPort::~ReservedPort() { ::close(m_socket); }

std::string ReservedPort::Url() const { return "http://127.0.0.1:" + std::to_string(m_port); }

}  // namespace corlith::test
