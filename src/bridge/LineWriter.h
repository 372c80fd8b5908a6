#pragma once
#include <functional>
#include <string>

namespace tarnwick {

/// Writes lines to standard output without ever waiting for whoever reads them. Ends the process when nobody
/// does any more.
class LineWriter {
 public:
  /// `onIdle` is called when a line that had to wait is out.
  explicit LineWriter(std::function<void()> onIdle);

  /// Everything is out; only then may the next line be written.
  bool isIdle() const { return line_.empty(); }
  /// Takes a line with its line feed.
  void write(std::string line);

 private:
  bool writeOn();

  const std::function<void()> onIdle_;
  std::string line_;
  size_t written_ = 0;
};

}  // namespace tarnwick
