#pragma once

// Which addresses belong to the public network.

#include <sys/socket.h>

#include <string>

namespace lk::part {

// Whether this address may be reached: not private, loopback, link-local, multicast, reserved or
// leading to such a one by translation. Other families than IPv4 and IPv6 may not.
bool isPublicAddress(const sockaddr& address);

// "192.0.2.1", "2001:db8::1"; empty for other families.
std::string numericAddress(const sockaddr& address);

}  // namespace lk::part
