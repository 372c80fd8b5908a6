#include <cstdint>

#include "Check.h"
#include "dbus/BusReplies.h"

using namespace tarnwick;

/// The first byte is the size of the pieces in which the rest arrives.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const std::string_view bytes(reinterpret_cast<const char*>(data + 1), size - 1);
  BusReplies whole, pieces;
  const bool isUnderstood = whole.consume(bytes);
  bool arePiecesUnderstood = true;
  for (size_t at = 0; at < bytes.size(); at += 1 + data[0]) {
    arePiecesUnderstood = pieces.consume(bytes.substr(at, 1 + data[0]));
  }
  check(isUnderstood == arePiecesUnderstood, "understanding does not depend on how the bytes arrive");
  check(whole.count() == pieces.count(), "the count does not depend on how the bytes arrive");
  check(whole.count() <= bytes.size() / 16, "every reply has a header");
  return 0;
}
