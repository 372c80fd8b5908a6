#include <cstdint>

#include "Check.h"
#include "base/Utf8.h"
#include "cli/RemoteEvent.h"

using namespace tarnwick;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const auto event = readRemoteLine({reinterpret_cast<const char*>(data), size});
  if (!event) return 0;
  for (const auto& [key, value] : *event) {
    check(value.size() <= 16384 + 300 && isValidUtf8(value), "every text of an event is short and valid");
    check(key != "process" && key != "transcript_path", "nothing of this machine is named");
  }
  check(event->contains(machineKey), "it is known to be from elsewhere");
  check(event->at("session_id").starts_with("elsewhere,"), "it is none of this machine's");
  // What is told on is taken in as it was.
  StringMap told = *event;
  const std::string line = remoteLine(told, told.at(machineKey));
  check(line.find('\n') == line.size() - 1, "an event is one line");
  const auto again = readRemoteLine(line);
  check(again.has_value(), "what we write can be read");
  for (const auto& [key, value] : told) {
    if (key != "session_id") check(again->at(key) == value, "a text arrives as it was sent");
  }
  return 0;
}
