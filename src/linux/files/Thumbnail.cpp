#include "linux/files/Thumbnail.h"

#include <QCryptographicHash>
#include <QImage>
#include <QString>
#include <filesystem>

#include "linux/files/FileList.h"
#include "linux/files/XdgFolders.h"

namespace tarnwick {
namespace {

/// The first one has 128 pixels, which are more than the tray shows.
constexpr const char* sizes[] = {"normal", "large", "x-large", "xx-large"};

}  // namespace

std::vector<std::string> thumbnailsOf(const FilePath& file) {
  const QByteArray uri = QByteArray::fromStdString(uriOfFile(file));
  const std::string name = QCryptographicHash::hash(uri, QCryptographicHash::Md5).toHex().toStdString();
  std::vector<std::string> found;
  std::error_code error;
  for (const char* size : sizes) {
    const std::string path = XdgFolders().caches() + "/thumbnails/" + size + "/" + name + ".png";
    if (std::filesystem::exists(path, error)) found.push_back(path);
  }
  return found;
}

bool isThumbnailOf(const std::string& thumbnail, std::time_t modified) {
  const QString time = QImage(QString::fromStdString(thumbnail), "png").text("Thumb::MTime");
  return !time.isEmpty() && time.section('.', 0, 0).toLongLong() == modified;
}

}  // namespace tarnwick
