#include "cover/CoverBytes.h"

#include <QByteArray>
#include <QUrl>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "cover/WebFetch.h"
#include "linux/files/FileList.h"

namespace tarnwick {
namespace {

std::string contentsOfFile(const std::string& address) {
  const auto path = fileOfUri(address);
  std::error_code error;
  // A pipe or a device may have no end.
  if (!path || !std::filesystem::is_regular_file(*path, error)) return "";
  if (std::filesystem::file_size(*path, error) > largestCover || error) return "";
  std::ifstream file(*path, std::ios::binary);
  std::string bytes(largestCover, '\0');
  file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  bytes.resize(static_cast<size_t>(file.gcount()));
  return bytes;
}

/// RFC 2397.
std::string contentsOfDataAddress(const std::string& address) {
  const size_t comma = address.find(',');
  if (comma == std::string::npos) return "";
  QByteArray bytes = QByteArray::fromPercentEncoding(QByteArray::fromStdString(address.substr(comma + 1)));
  if (address.substr(0, comma).ends_with(";base64")) bytes = QByteArray::fromBase64(bytes);
  return static_cast<size_t>(bytes.size()) <= largestCover ? bytes.toStdString() : "";
}

}  // namespace

std::string coverBytes(const std::string& address, bool mayUseNetwork) {
  const QString scheme =
      QString::fromStdString(address.substr(0, std::min(address.find(':'), size_t{10}))).toLower();
  if (scheme == "file") return contentsOfFile(address);
  if (scheme == "data") return contentsOfDataAddress(address);
  if (mayUseNetwork && (scheme == "http" || scheme == "https")) return fetchFromWeb(address, largestCover);
  return "";
}

}  // namespace tarnwick
