#pragma once

// A server on this machine that nobody may call, for tests that something stays away from it.

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>
#include <string>

namespace lk::test {

class LoopbackListener {
 public:
  // Throws std::runtime_error.
  LoopbackListener() : socket_(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* any = reinterpret_cast<sockaddr*>(&address);
    if (bind(socket_, any, size) != 0 || listen(socket_, 16) != 0 ||
        getsockname(socket_, any, &size) != 0) {
      throw std::runtime_error("no listener");
    }
    port_ = std::to_string(ntohs(address.sin_port));
  }
  ~LoopbackListener() { close(socket_); }
  LoopbackListener(const LoopbackListener&) = delete;
  LoopbackListener& operator=(const LoopbackListener&) = delete;

  const std::string& port() const { return port_; }

  // Since the last call.
  int visitors() const {
    int count = 0;
    for (int guest = 0; (guest = accept(socket_, nullptr, nullptr)) >= 0; ++count) close(guest);
    return count;
  }

 private:
  int socket_;
  std::string port_;
};

}  // namespace lk::test
