// What a media bridge writes: lines cut at any place, and states of any shape.
#include <cstddef>
#include <cstdint>

#include "Check.h"
#include "services/Base64.h"
#include "services/LineBuffer.h"
#include "services/MediaLine.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace tarnwick;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  LineBuffer whole, cut;
  const std::vector<std::string> lines = whole.append(bytes);
  std::vector<std::string> cutLines;
  for (size_t at = 0, step = 1; at < size; at += step, step = step * 2 % 7 + 1) {
    for (std::string& line : cut.append(bytes.substr(at, step))) cutLines.push_back(std::move(line));
  }
  check(lines == cutLines, "lines do not depend on how the bytes arrive");
  check(whole.data() == cut.data(), "what is left does not depend on how the bytes arrive");
  for (const std::string& line : lines) MediaLine::parse(line);
  decodeBase64(bytes);
  return 0;
}
