#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/FilePath.h"

namespace tarnwick {

/// The windows of sway, which tells their processes over a socket of its own (sway-ipc(7)) only. What it does
/// not answer within a tenth of a second counts as not known.
class SwayWindows {
 public:
  /// @param socket as `SWAYSOCK` names it; empty: there is none
  explicit SwayWindows(FilePath socket) : socket_(std::move(socket)) {}

  bool areTold() const { return !socket_.empty(); }
  /// A window of the first of the processes that has any; the one that had the keyboard last.
  std::optional<uint32_t> windowOf(const std::vector<int32_t>& processes) const;
  void bringForward(uint32_t window) const;

 private:
  std::optional<std::string> ask(uint32_t type, std::string_view payload) const;

  FilePath socket_;
};

}  // namespace tarnwick
