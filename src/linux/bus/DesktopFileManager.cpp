#include "linux/bus/DesktopFileManager.h"

#include <QDBusError>
#include <QProcess>
#include <filesystem>

#include "linux/files/FileList.h"

namespace tarnwick {

void DesktopFileManager::open(const FilePath& file) {
  // Its address: a path need not be text, as arguments are here.
  const QString address = QString::fromStdString(uriOfFile(file));
  if (!QProcess::startDetached("xdg-open", {address})) QProcess::startDetached("gio", {"open", address});
}

void DesktopFileManager::reveal(const FilePath& file) {
  const auto openFolder = [this, file] { open(std::filesystem::path(file).parent_path()); };
  if (!bus_.connection()) return openFolder();
  const QStringList files{QString::fromStdString(uriOfFile(file))};
  service_.call(
      "/org/freedesktop/FileManager1", "org.freedesktop.FileManager1", "ShowItems", {files, QString()},
      [](const QDBusMessage&) {},
      [openFolder](const QDBusMessage& error) {
        // One that is slow to start shows it in the end.
        if (QDBusError(error).type() != QDBusError::NoReply) openFolder();
      });
}

}  // namespace tarnwick
