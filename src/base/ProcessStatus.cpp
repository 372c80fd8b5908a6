#include "base/ProcessStatus.h"

#include <fcntl.h>
#include <unistd.h>

#include <charconv>

#include "base/Descriptor.h"

namespace tarnwick {

std::optional<ProcessStatus> ProcessStatus::parse(std::string_view line) {
  // A name may hold brackets and blanks; nothing behind it does. Behind it come a blank, the state, a blank.
  const size_t begin = line.find('('), end = line.rfind(')');
  if (begin == line.npos || end == line.npos || end < begin || line.size() < end + 5) return std::nullopt;
  ProcessStatus status{std::string(line.substr(begin + 1, end - begin - 1)), 0};
  const auto parsed = std::from_chars(line.data() + end + 4, line.data() + line.size(), status.parent);
  return parsed.ec == std::errc() ? std::optional(status) : std::nullopt;
}

std::optional<ProcessStatus> ProcessStatus::of(int32_t process) {
  const std::string path = "/proc/" + std::to_string(process) + "/stat";
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  char text[512];
  const ssize_t length = file < 0 ? -1 : ::read(file, text, sizeof text);
  return length <= 0 ? std::nullopt : parse({text, static_cast<size_t>(length)});
}

}  // namespace tarnwick
