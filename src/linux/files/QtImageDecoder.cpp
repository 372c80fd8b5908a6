#include "linux/files/QtImageDecoder.h"

#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <filesystem>

namespace tarnwick {
namespace {

constexpr qint64 largestFile = 8 << 20;
/// A progressive JPEG has about ten scans. Each takes as long as the whole picture, in however few bytes.
constexpr qsizetype mostScans = 100;

/// By what the bytes begin with. Trying all readers in turn would load them all.
QByteArray formatOf(std::string_view bytes) {
  using namespace std::string_view_literals;
  if (bytes.starts_with("\x89PNG"sv)) return "png";
  if (bytes.starts_with("\xff\xd8\xff"sv)) return "jpeg";
  if (bytes.starts_with("GIF8"sv)) return "gif";
  if (bytes.starts_with("BM"sv)) return "bmp";
  if (bytes.starts_with("RIFF"sv) && bytes.substr(8).starts_with("WEBP"sv)) return "webp";
  return "";
}

bool hasTooManyScans(const QByteArray& bytes) { return bytes.count("\xff\xda") > mostScans; }

}  // namespace

std::optional<Image> QtImageDecoder::read(const QByteArray& bytes, const QByteArray& format) const {
  if (format.isEmpty() || (format == "jpeg" && hasTooManyScans(bytes))) return std::nullopt;
  QBuffer device;
  device.setData(bytes);
  device.open(QIODevice::ReadOnly);
  QImageReader reader(&device, format);
  reader.setAutoTransform(true);
  const QSize size = reader.size();
  const bool isDrawing = format == "svg";
  if (size.isEmpty() || (!isDrawing && qint64{size.width()} * size.height() > mostPixels_))
    return std::nullopt;
  if (size.width() > longestSide_ || size.height() > longestSide_ || isDrawing) {
    const QSize target = size.scaled(longestSide_, longestSide_, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
    reader.setScaledSize(target);
  }
  QImage picture = reader.read();
  if (picture.isNull()) return std::nullopt;
  picture.convertTo(QImage::Format_ARGB32_Premultiplied);
  auto pixels = std::make_shared<std::vector<uint32_t>>();
  pixels->reserve(static_cast<size_t>(picture.width()) * static_cast<size_t>(picture.height()));
  for (int row = 0; row < picture.height(); ++row) {
    const auto* line = reinterpret_cast<const uint32_t*>(picture.constScanLine(row));
    pixels->insert(pixels->end(), line, line + picture.width());
  }
  return Image{picture.width(), picture.height(), std::move(pixels)};
}

std::optional<Image> QtImageDecoder::decode(std::string_view bytes) const {
  return read(QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size())), formatOf(bytes));
}

std::optional<Image> QtImageDecoder::decodeFile(const std::string& path) const {
  QFile file(QString::fromStdString(path));
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error) || !file.open(QIODevice::ReadOnly)) return std::nullopt;
  const QByteArray bytes = file.read(largestFile);
  const std::string_view view(bytes.constData(), static_cast<size_t>(bytes.size()));
  return read(bytes, path.ends_with(".svg") ? "svg" : formatOf(view));
}

}  // namespace tarnwick
