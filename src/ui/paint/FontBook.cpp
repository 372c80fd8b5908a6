#include "ui/paint/FontBook.h"

#include <QFile>
#include <map>
#include <tuple>

void loadTarnwickResources() { Q_INIT_RESOURCE(symbols); }

namespace tarnwick::ui::fontBook {
namespace {

const char* family(Design design, Weight weight) {
  switch (design) {
    // The medium weight is a family of its own.
    case Design::rounded:
      return weight == Weight::medium ? "Quicksand Medium" : "Quicksand";
    case Design::monospaced:
      return "JetBrains Mono";
    default:
      return "Inter";
  }
}

Face makeFace(const QString& name, const Font& wanted) {
  QFont font(name);
  font.setPixelSize(std::max(1, int(wanted.size + 0.5)));
  Weight weight = wanted.weight;
  // The rounded family has no semibold; its bold is lighter than most.
  if (wanted.design == Design::rounded && weight == Weight::semibold) weight = Weight::bold;
  font.setWeight(QFont::Weight(int(weight)));
  font.setHintingPreference(QFont::PreferNoHinting);
  font.setStyleStrategy(QFont::StyleStrategy(QFont::PreferAntialias | QFont::NoSubpixelAntialias));
  const QFontMetricsF metrics(font);
  double digit = 0;
  for (char c = '0'; c <= '9'; ++c) digit = std::max(digit, metrics.horizontalAdvance(QLatin1Char(c)));
  return {font, metrics, digit};
}

using Key = std::tuple<int, int, int, bool>;

const Face& cached(const Font& font, bool sparkle) {
  static std::map<Key, Face> faces;
  const Key key{int(font.size * 4), int(font.weight), int(font.design), sparkle};
  auto found = faces.find(key);
  if (found == faces.end()) {
    found =
        faces.emplace(key, makeFace(sparkle ? "DejaVu Sans" : family(font.design, font.weight), font)).first;
  }
  return found->second;
}

}  // namespace

const Face& face(const Font& font) { return cached(font, false); }

const Face& sparkleFace(const Font& font) { return cached(font, true); }

QRawFont symbols(double size) {
  static const QByteArray data = [] {
    loadTarnwickResources();
    QFile file(":/symbols.ttf");
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
  }();
  static QRawFont font(data, 24, QFont::PreferNoHinting);
  QRawFont sized = font;
  sized.setPixelSize(size);
  return sized;
}

}  // namespace tarnwick::ui::fontBook
