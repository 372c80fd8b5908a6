#pragma once
#include "linux/bus/MessageBus.h"
#include "platform/FileManager.h"

namespace tarnwick {

/// The desktop's file manager, by the interface `org.freedesktop.FileManager1`, and its way of opening files.
class DesktopFileManager : public FileManager {
 public:
  explicit DesktopFileManager(MessageBus& sessionBus)
      : bus_(sessionBus), service_(sessionBus, "org.freedesktop.FileManager1", true) {}

  void open(const FilePath& file) override;
  /// Where nobody can show the file its folder is opened.
  void reveal(const FilePath& file) override;

 private:
  MessageBus& bus_;
  BusService service_;
};

}  // namespace tarnwick
