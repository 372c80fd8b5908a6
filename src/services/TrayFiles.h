#pragma once
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/Image.h"
#include "base/Observed.h"
#include "base/Scheduler.h"
#include "platform/DeviceSharing.h"
#include "platform/FileIcons.h"
#include "platform/FileManager.h"

namespace tarnwick {

/// What is known of a file: nothing at first.
struct FileLook {
  std::optional<Image> icon;
  /// There is no such file any more. The icon is that of before.
  bool isGone = false;

  friend bool operator==(const FileLook&, const FileLook&) = default;
};

/// The files of the tray as the desktop knows them: how they look, and what can be done with them. Nothing
/// waits for a folder that does not answer, and what lies elsewhere is seen all the same.
class TrayFiles {
 public:
  /// The arguments must outlive it.
  TrayFiles(Scheduler& scheduler, FileIcons& icons, FileManager& manager, DeviceSharing& sharing)
      : scheduler_(scheduler), icons_(icons), manager_(manager), sharing_(sharing) {}

  /// As far as it is known now. Whoever reads it is told of more.
  const FileLook& look(const FilePath& file);
  /// While they are on show the files are looked at again and again.
  void setOnShow(bool onShow);
  /// Forgets all but these.
  void keep(const std::vector<FilePath>& files);

  /// Nothing for one that is gone.
  void open(const FilePath& file);
  void reveal(const FilePath& file);
  std::vector<SharingTarget> targets() { return sharing_.targets(); }
  /// Sends those that are not gone.
  void send(const std::vector<FilePath>& files, const std::string& target);

 private:
  struct Known : ObservableObject {
    Observed<FileLook> look{*this};
    std::optional<uint64_t> version;
    /// It is to be looked at as soon as that is possible.
    bool waits = true;
  };
  struct Seen;

  bool isGone(const FilePath& file) const;
  void lookAtAll();
  void lookAtThoseThatWait();
  void lookAt(const std::string& folder, std::vector<FilePath> files);
  void adopt(const Seen& seen);

  Scheduler& scheduler_;
  FileIcons& icons_;
  FileManager& manager_;
  DeviceSharing& sharing_;
  std::map<FilePath, std::unique_ptr<Known>> known_;
  /// The looks that are under way, one a folder.
  std::map<std::string, Task> looking_;
  Task next_, again_;
};

}  // namespace tarnwick
