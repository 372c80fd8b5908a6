#pragma once
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "base/FilePath.h"
#include "base/ObservableObject.h"

namespace tarnwick {

/// A process as somebody else has told of it.
struct ForeignProcess {
  int32_t number = 0;
  /// The number of the namespace in which it counts.
  uint64_t space = 0;

  friend bool operator==(const ForeignProcess&, const ForeignProcess&) = default;
};

/// Processes of the user's that others have started. One of another user, in another namespace or on another
/// machine is not known here.
class ForeignProcesses {
 public:
  struct Child {
    int32_t number;
    /// All of its arguments, the first few kilobytes, with blanks between them and in place of line breaks.
    std::string arguments;
  };
  virtual ~ForeignProcesses() = default;

  /// Calls `ended` from the main loop once the process has ended; never when it is not known.
  virtual Subscription watch(const ForeignProcess& process, std::function<void()> ended) = 0;
  /// The processes that it has started and that run; none when it is not known.
  virtual std::vector<Child> children(const ForeignProcess& process) = 0;
  /// Its number, that of its parent and so on; empty when it is not known.
  virtual std::vector<int32_t> ancestors(const ForeignProcess& process) = 0;
  /// A variable of the environment that it was started with; empty when it has none or is not known.
  virtual std::string variable(const ForeignProcess& process, const std::string& name) = 0;
  /// Whether that absolute path is a socket of the user's.
  virtual bool isOwnSocket(const FilePath& path) = 0;
};

}  // namespace tarnwick
