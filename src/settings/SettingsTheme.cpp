#include "settings/SettingsTheme.h"

namespace tarnwick {
namespace {

QColor toolkitColor(const Color& color) {
  return QColor::fromRgbF(float(color.red), float(color.green), float(color.blue));
}

}  // namespace

SettingsTheme::SettingsTheme(const DesktopAppearance& appearance) {
  const bool dark = appearance.prefersDark;
  const auto pick = [dark](QRgb light, QRgb darkOne) { return QColor::fromRgba(dark ? darkOne : light); };
  window = pick(0xfff2f2f5, 0xff1d1d20);
  card = pick(0xffffffff, 0xff29292d);
  line = pick(0xffe4e4e9, 0xff38383d);
  text = pick(0xff1c1c1f, 0xfff2f2f4);
  secondary = pick(0xff6b6b73, 0xffa0a0a8);
  control = pick(0xffe5e5eb, 0xff3b3b41);
  track = pick(0xffd3d3da, 0xff4d4d54);
  allowed = pick(0xff1b7f3b, 0xff42d06a);
  problem = pick(0xffc02a20, 0xffff7a70);
  const auto& chosen = *appearance.accentColor;
  accent = chosen ? toolkitColor(*chosen) : pick(0xff0a6fe0, 0xff2f8fff);
}

QPalette SettingsTheme::palette() const {
  QPalette palette;
  palette.setColor(QPalette::Window, window);
  palette.setColor(QPalette::Base, card);
  palette.setColor(QPalette::WindowText, text);
  palette.setColor(QPalette::Text, text);
  palette.setColor(QPalette::ButtonText, text);
  palette.setColor(QPalette::Button, control);
  palette.setColor(QPalette::Mid, track);
  palette.setColor(QPalette::Highlight, accent);
  return palette;
}

QString SettingsTheme::styleSheet() const {
  return QString(R"(
    * { font-family: Inter; font-size: 13px; outline: none; }
    QScrollArea, #form { background: %1; border: none; }
    QLabel { color: %4; }
    #header { color: %5; font-weight: 600; padding: 0 2px; }
    #caption { color: %5; font-size: 12px; }
    #problem { color: %9; font-size: 12px; }
    #allowed { color: %8; }
    #card { background: %2; border: 1px solid %3; border-radius: 10px; }
    #line { background: %3; }
    QPushButton { color: %4; background: %6; border: 1px solid transparent; border-radius: 6px;
                  padding: 4px 12px; min-height: 18px; }
    QPushButton:hover { background: %7; }
    QPushButton:pressed { background: %3; }
    QPushButton:focus { border-color: %10; }
    QPushButton:disabled { color: %5; }
    QScrollBar:vertical { background: transparent; width: 10px; margin: 2px; }
    QScrollBar::handle:vertical { background: %7; border-radius: 3px; min-height: 32px; }
    QScrollBar::handle:vertical:disabled { background: transparent; }
    QScrollBar::add-line, QScrollBar::sub-line { height: 0; }
    QScrollBar::add-page, QScrollBar::sub-page { background: transparent; }
  )")
      .arg(window.name(), card.name(), line.name(), text.name(), secondary.name(), control.name(),
          track.name(), allowed.name(), problem.name())
      .arg(accent.name());
}

}  // namespace tarnwick
