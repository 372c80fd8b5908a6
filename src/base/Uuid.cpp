#include "base/Uuid.h"

#include <cstdio>
#include <random>

namespace tarnwick {

Uuid Uuid::random() {
  static std::mt19937_64 generator{(uint64_t{std::random_device{}()} << 32) | std::random_device{}()};
  Uuid uuid{generator(), generator()};
  uuid.high = (uuid.high & ~uint64_t{0xF000}) | 0x4000;
  uuid.low = (uuid.low & ~(uint64_t{3} << 62)) | (uint64_t{2} << 62);
  return uuid;
}

std::string Uuid::text() const {
  char text[37];
  std::snprintf(text, sizeof text, "%08x-%04x-%04x-%04x-%012llx", static_cast<unsigned>(high >> 32),
      static_cast<unsigned>(high >> 16 & 0xFFFF), static_cast<unsigned>(high & 0xFFFF),
      static_cast<unsigned>(low >> 48), static_cast<unsigned long long>(low & 0xFFFFFFFFFFFF));
  return text;
}

}  // namespace tarnwick
