#include "Modules/network/Addresses.h"

#include <arpa/inet.h>
#include <netinet/in.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include "Modules/PartGuard.h"

namespace lk::part {

namespace {

// Addresses whose first `length` bits are those of `start`.
struct Block {
  uint32_t start;
  unsigned length;

  bool contains(uint32_t address) const { return (address ^ start) >> (32U - length) == 0; }
};

// The registry of IPv4 addresses for special purposes, and multicast.
constexpr std::array<Block, 15> kSpecial4 = {{{0x00000000, 8},   // this network
                                              {0x0A000000, 8},   // private
                                              {0x64400000, 10},  // between a provider and its users
                                              {0x7F000000, 8},   // loopback
                                              {0xA9FE0000, 16},  // link-local
                                              {0xAC100000, 12},  // private
                                              {0xC0000000, 24},  // protocols
                                              {0xC0000200, 24},  // documentation
                                              {0xC0586300, 24},  // relays to IPv6
                                              {0xC0A80000, 16},  // private
                                              {0xC6120000, 15},  // benchmarks
                                              {0xC6336400, 24},  // documentation
                                              {0xCB007100, 24},  // documentation
                                              {0xE0000000, 4},   // multicast
                                              {0xF0000000, 4}}};  // reserved, broadcast

// Of IPv6 one block is handed out to the public network, with these holes, by the first 32 bits.
constexpr Block kGlobal6 = {0x20000000, 3};
constexpr std::array<Block, 4> kSpecial6 = {{{0x20010000, 23},  // protocols, tunnels
                                             {0x20010DB8, 32},  // documentation
                                             {0x20020000, 16},  // tunnels that name an IPv4 address
                                             {0x3FFF0000, 20}}};  // documentation

constexpr std::array<uint8_t, 12> kMapped = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF};
constexpr std::array<uint8_t, 12> kTranslated = {0, 0x64, 0xFF, 0x9B, 0, 0, 0, 0, 0, 0, 0, 0};

uint32_t bigEndian(const uint8_t* bytes) {
  return static_cast<uint32_t>(bytes[0]) << 24U | static_cast<uint32_t>(bytes[1]) << 16U |
         static_cast<uint32_t>(bytes[2]) << 8U | static_cast<uint32_t>(bytes[3]);
}

bool isPublic4(uint32_t address) {
  return std::ranges::none_of(kSpecial4, [&](Block block) { return block.contains(address); });
}

bool isPublic6(const uint8_t* bytes) {
  const auto startsWith = [&](const std::array<uint8_t, 12>& start) {
    return std::equal(start.begin(), start.end(), bytes);
  };
  if (startsWith(kMapped) || startsWith(kTranslated)) return isPublic4(bigEndian(bytes + 12));
  const uint32_t first = bigEndian(bytes);
  return kGlobal6.contains(first) &&
         std::ranges::none_of(kSpecial6, [&](Block block) { return block.contains(first); });
}

// A copy: the bytes of a general address need not lie as its own kind wants them.
template <typename Address>
Address addressAs(const sockaddr& address) {
  Address copy;
  std::memcpy(&copy, &address, sizeof(copy));
  return copy;
}

}  // namespace

bool isPublicAddress(const sockaddr& address) {
  if (address.sa_family == AF_INET) {
    return isPublic4(ntohl(addressAs<sockaddr_in>(address).sin_addr.s_addr));
  }
  return address.sa_family == AF_INET6 &&
         isPublic6(addressAs<sockaddr_in6>(address).sin6_addr.s6_addr);
}

std::string numericAddress(const sockaddr& address) {
  std::array<char, INET6_ADDRSTRLEN> text = {};
  if (address.sa_family == AF_INET) {
    const auto internet = addressAs<sockaddr_in>(address);
    inet_ntop(AF_INET, &internet.sin_addr, text.data(), text.size());
  } else if (address.sa_family == AF_INET6) {
    const auto internet = addressAs<sockaddr_in6>(address);
    inet_ntop(AF_INET6, &internet.sin6_addr, text.data(), text.size());
  }
  return text.data();
}

}  // namespace lk::part

bool larkspireIsPublicAddress(const char* address) noexcept {
  sockaddr_storage place = {};
  auto& internet = reinterpret_cast<sockaddr_in&>(place);
  auto& internet6 = reinterpret_cast<sockaddr_in6&>(place);
  if (inet_pton(AF_INET, address, &internet.sin_addr) == 1) {
    place.ss_family = AF_INET;
  } else if (inet_pton(AF_INET6, address, &internet6.sin6_addr) == 1) {
    place.ss_family = AF_INET6;
  }
  return lk::part::isPublicAddress(reinterpret_cast<const sockaddr&>(place));
}
