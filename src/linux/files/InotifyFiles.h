#pragma once
#include <QSocketNotifier>
#include <map>
#include <memory>

#include "base/Descriptor.h"
#include "base/Scheduler.h"
#include "platform/GrowingFiles.h"

namespace tarnwick {

/// Growing files, followed by the kernel's change notices (inotify(7)) and read off the main thread.
class InotifyFiles : public GrowingFiles {
 public:
  /// `scheduler` must outlive it.
  explicit InotifyFiles(Scheduler& scheduler) : scheduler_(scheduler) {}
  Subscription follow(const FilePath& file, std::function<void(const std::string& line)> line) override;
  Subscription followWhole(const FilePath& file, std::function<void(const std::string& text)> told) override;

 private:
  class Followed;

  Subscription follow(const FilePath& file, std::function<void(const std::string&)> told, bool whole);
  void watch(const std::shared_ptr<Followed>& followed);
  void takeNotices();

  Scheduler& scheduler_;
  // Opened when there is a file to follow.
  Descriptor notices_;
  std::unique_ptr<QSocketNotifier> notifier_;
  /// By the kernel's number of the watch: two paths may lead to one file.
  std::multimap<int, std::weak_ptr<Followed>> watched_;
};

}  // namespace tarnwick
