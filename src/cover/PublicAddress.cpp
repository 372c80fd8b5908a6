#include "cover/PublicAddress.h"

#include <arpa/inet.h>
#include <netinet/in.h>

#include <cstdint>
#include <cstring>

namespace tarnwick {
namespace {

constexpr uint32_t ip(uint32_t a, uint32_t b, uint32_t c) { return a << 24 | b << 16 | c << 8; }

struct Range {
  uint32_t start;
  int bits;
};

constexpr Range specialRanges[] = {
    {ip(0, 0, 0), 8},
    {ip(10, 0, 0), 8},
    {ip(100, 64, 0), 10},
    {ip(127, 0, 0), 8},
    {ip(169, 254, 0), 16},
    {ip(172, 16, 0), 12},
    {ip(192, 0, 0), 24},
    {ip(192, 168, 0), 16},
    {ip(198, 18, 0), 15},
    {ip(224, 0, 0), 3},
};

bool isPublic(uint32_t address) {
  for (const Range& range : specialRanges) {
    if ((address ^ range.start) >> (32 - range.bits) == 0) return false;
  }
  return true;
}

bool isPublic(const in6_addr& address) {
  const auto word = [&](int index) {
    uint32_t value = 0;
    std::memcpy(&value, address.s6_addr + 4 * index, sizeof value);
    return ntohl(value);
  };
  // What a network without the older addresses has for them.
  if (word(0) == 0x0064ff9b && word(1) == 0 && word(2) == 0) return isPublic(word(3));
  // Of what is handed out to networks (2000::/3), some stands for older addresses (2001::/23, 2002::/16).
  return word(0) >> 29 == 1 && word(0) >> 9 != 0x20010000 >> 9 && word(0) >> 16 != 0x2002;
}

}  // namespace

bool isPublicAddress(const sockaddr& address) {
  if (address.sa_family == AF_INET) {
    return isPublic(ntohl(reinterpret_cast<const sockaddr_in&>(address).sin_addr.s_addr));
  }
  return address.sa_family == AF_INET6 && isPublic(reinterpret_cast<const sockaddr_in6&>(address).sin6_addr);
}

}  // namespace tarnwick
