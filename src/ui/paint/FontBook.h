#pragma once
#include <QFont>
#include <QFontMetricsF>
#include <QRawFont>

#include "ui/Font.h"

namespace tarnwick::ui {

/// The toolkit's fonts behind ours, made once each.
namespace fontBook {

struct Face {
  QFont font;
  QFontMetricsF metrics;
  /// Width of the widest digit.
  double digitWidth;
};
const Face& face(const Font& font);

/// The one font that draws the dingbats of the sparkle, whatever other fonts are installed.
const Face& sparkleFace(const Font& font);

/// The symbols' font, built into the program; 1 em is `size` pixels.
QRawFont symbols(double size);

}  // namespace fontBook
}  // namespace tarnwick::ui
