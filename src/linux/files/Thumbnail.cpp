#include "linux/files/Thumbnail.h"

#include <QCryptographicHash>
#include <QImageReader>
#include <QString>
#include <filesystem>

#include "linux/files/FileList.h"
#include "linux/files/XdgFolders.h"

namespace tarnwick {
namespace {

/// 128 pixels are more than the tray shows.
constexpr const char* sizes[] = {"normal", "large", "x-large", "xx-large"};

bool isOf(const std::string& thumbnail, std::time_t modified) {
  QImageReader reader(QString::fromStdString(thumbnail), "png");
  return reader.text("Thumb::MTime").section('.', 0, 0).toLongLong() == modified;
}

}  // namespace

std::optional<std::string> thumbnailOf(const FilePath& file, std::time_t modified) {
  const std::string uri = uriOfFile(file);
  const QByteArray hash =
      QCryptographicHash::hash(QByteArray(uri.data(), qsizetype(uri.size())), QCryptographicHash::Md5)
          .toHex();
  std::error_code error;
  for (const char* size : sizes) {
    const std::string path =
        XdgFolders().caches() + "/thumbnails/" + size + "/" + hash.toStdString() + ".png";
    if (std::filesystem::exists(path, error) && isOf(path, modified)) return path;
  }
  return std::nullopt;
}

}  // namespace tarnwick
