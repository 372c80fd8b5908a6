#include "linux/bus/BacklightWatch.h"

#include <fcntl.h>
#include <unistd.h>

namespace tarnwick {

BacklightWatch::BacklightWatch(const std::string& panel, std::function<void()> onChange)
    : onChange_(std::move(onChange)) {
  writes_.addPath(QString::fromStdString(panel + "/brightness"));
  QObject::connect(&writes_, &QFileSystemWatcher::fileChanged, &writes_, [this] { onChange_(); });
  // What keys do by way of the firmware nobody writes. The kernel tells of it on this file, as of something
  // exceptional, once after each time that it was read.
  actual_ = ::open((panel + "/actual_brightness").c_str(), O_RDONLY | O_CLOEXEC);
  if (!readAgain()) return;
  notifications_ = std::make_unique<QSocketNotifier>(actual_, QSocketNotifier::Exception);
  QObject::connect(notifications_.get(), &QSocketNotifier::activated, notifications_.get(), [this] {
    // A panel that has gone would be told of without end.
    if (!readAgain()) notifications_->setEnabled(false);
    onChange_();
  });
}

BacklightWatch::~BacklightWatch() {
  notifications_.reset();
  if (actual_ >= 0) ::close(actual_);
}

bool BacklightWatch::readAgain() {
  char value[32];
  return actual_ >= 0 && ::pread(actual_, value, sizeof value, 0) >= 0;
}

}  // namespace tarnwick
