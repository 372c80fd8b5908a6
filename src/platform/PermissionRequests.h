#pragma once
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "base/ObservableObject.h"
#include "platform/NotificationCenter.h"

namespace tarnwick {

/// What becomes of a request for a permission.
struct PermissionAnswer {
  enum class Behavior {
    /// It is left to the terminal.
    none,
    allow,
    deny
  };
  Behavior behavior = Behavior::none;
  /// Why it is denied.
  std::string message = {};

  friend bool operator==(const PermissionAnswer&, const PermissionAnswer&) = default;
};

/// What a tool that asks for a permission would be called with may be as long as that, in bytes of JSON.
inline constexpr size_t longestToolInput = 64 << 10;
/// The key of that in a request's event.
inline constexpr const char* toolInputKey = "tool_input";

/// Whether that tool asks for more than a permission, which only its terminal can answer.
inline bool isAnsweredInTerminal(std::string_view tool) {
  return tool == "AskUserQuestion" || tool == "ExitPlanMode";
}

/// Programs of the user's that ask for a permission and wait for the answer, each for one.
class PermissionRequests {
 public:
  struct Request {
    /// No two have the same, and none has 0.
    uint64_t number = 0;
    /// The hook event, and under `toolInputKey` what the tool would be called with.
    StringMap event;
  };
  virtual ~PermissionRequests() = default;

  /// Calls `asked` on the main thread with each request, in one order with the hook events. Each is to be
  /// answered.
  virtual Subscription observe(std::function<void(const Request&)> asked) = 0;
  /// Calls `gone` with the number of a request whose program has ended before the answer.
  virtual Subscription observeEnd(std::function<void(uint64_t number)> gone) = 0;
  /// Tells it to the program that has asked, which ends then. Nothing where it was answered before or is
  /// gone.
  virtual void answer(uint64_t number, const PermissionAnswer& answer) = 0;
};

}  // namespace tarnwick
