#pragma once
#include <QFileSystemWatcher>
#include <QSocketNotifier>
#include <functional>
#include <memory>
#include <string>

namespace tarnwick {

/// Tells when the brightness of a panel may have changed, as long as it exists: when a program has written
/// it, and when the machine has done so by itself.
class BacklightWatch {
 public:
  /// @param panel its folder in the backlight class
  BacklightWatch(const std::string& panel, std::function<void()> onChange);
  ~BacklightWatch();

 private:
  bool readAgain();

  const std::function<void()> onChange_;
  QFileSystemWatcher writes_;
  int actual_ = -1;
  std::unique_ptr<QSocketNotifier> notifications_;
};

}  // namespace tarnwick
