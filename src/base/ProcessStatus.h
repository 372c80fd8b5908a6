#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tarnwick {

/// What the kernel tells everybody of a process, in /proc/N/stat; its form is that of proc(5).
struct ProcessStatus {
  /// Of its program, cut to 15 bytes.
  std::string name;
  /// 0 when it has none in this namespace.
  int32_t parent = 0;

  static std::optional<ProcessStatus> parse(std::string_view line);
  /// None when there is no such process.
  static std::optional<ProcessStatus> of(int32_t process);
  friend bool operator==(const ProcessStatus&, const ProcessStatus&) = default;
};

}  // namespace tarnwick
