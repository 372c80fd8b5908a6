#include "linux/files/QtImageDecoder.h"

#include <QBuffer>
#include <QFile>
#include <QImageReader>

namespace tarnwick {
namespace {

/// Twice as large as the notch shows a cover at pixel ratio 2, for whoever magnifies it.
constexpr int largestSide = 400;
/// What some formats must be unpacked to before they can be made smaller.
constexpr qint64 mostPixels = 64'000'000;

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

std::optional<Image> readFrom(QIODevice& device, const QByteArray& format) {
  if (format.isEmpty()) return std::nullopt;
  QImageReader reader(&device, format);
  reader.setAutoTransform(true);
  const QSize size = reader.size();
  if (size.isEmpty() || qint64{size.width()} * size.height() > mostPixels) return std::nullopt;
  if (size.width() > largestSide || size.height() > largestSide || format == "svg") {
    const QSize target = size.scaled(largestSide, largestSide, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
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

}  // namespace

std::optional<Image> QtImageDecoder::decode(std::string_view bytes) const {
  QByteArray data = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
  QBuffer device(&data);
  device.open(QIODevice::ReadOnly);
  return readFrom(device, formatOf(bytes));
}

std::optional<Image> QtImageDecoder::decodeFile(const std::string& path) const {
  if (path.empty()) return std::nullopt;
  QFile file(QString::fromStdString(path));
  if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
  const QByteArray start = file.peek(16);
  const bool drawing = path.ends_with(".svg");
  return readFrom(file, drawing ? "svg" : formatOf({start.constData(), static_cast<size_t>(start.size())}));
}

}  // namespace tarnwick
