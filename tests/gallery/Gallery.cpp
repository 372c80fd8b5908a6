// Renders what the notch can show, to be looked at: view-gallery FOLDER
// Contact sheets in both languages and sharpnesses, and films of what moves.
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <functional>
#include <iostream>
#include <string>
#include <vector>

#include "base/L10n.h"
#include "support/ForcedLanguage.h"
#include "views/NotchStage.h"

using namespace tarnwick;

namespace {

struct Exhibit {
  const char* name;
  std::function<void(NotchStage&)> prepare;
};

Banner bannerOf(const char* icon, Color tint, std::string title, std::string subtitle,
                std::optional<CrabMood> crab = {}) {
  return {
      .icon = icon, .tint = tint, .title = std::move(title), .subtitle = std::move(subtitle), .crab = crab};
}

Image sampleArtwork() {
  auto pixels = std::make_shared<std::vector<uint32_t>>();
  for (unsigned y = 0; y < 64; ++y) {
    for (unsigned x = 0; x < 64; ++x)
      pixels->push_back(0xff000000 | (255 - y) << 16 | (x * 3) << 8 | (60 + 2 * y));
  }
  return {64, 64, pixels};
}

Exhibit indicator(const char* name, Transient transient) {
  return {name, [transient](NotchStage& stage) { stage.model.show(transient, 60); }};
}

void work(NotchStage& stage, int count) {
  for (int i = 0; i < count; ++i) {
    stage.hook("s" + std::to_string(i), "UserPromptSubmit", {{"cwd", "/x/shop"}});
  }
}

void wait(NotchStage& stage) {
  stage.hook("w", "Notification",
             {{"cwd", "/x/website"}, {"message", "Claude needs your permission to use Bash"}});
  stage.model.dismissBanner();
}

std::vector<Exhibit> compact() {
  return {
      {"idle", [](NotchStage&) {}},
      {"idle hovered", [](NotchStage& s) { s.model.setHovering(true); }},
      {"one working", [](NotchStage& s) { work(s, 1); }},
      {"three working", [](NotchStage& s) { work(s, 3); }},
      {"twelve working, hovered",
       [](NotchStage& s) {
         work(s, 12);
         s.model.setHovering(true);
       }},
      {"waiting", [](NotchStage& s) { wait(s); }},
      {"playing, no artwork",
       [](NotchStage& s) {
         s.model.media.title = "Song";
         s.model.media.playing = true;
       }},
      {"playing",
       [](NotchStage& s) {
         s.model.media.title = "Song";
         s.model.media.playing = true;
         s.model.media.artwork = sampleArtwork();
         s.model.media.accent = Color{0.95, 0.4, 0.5};
       }},
      indicator("volume 0", Transient::hud(HUDKind::volume, 0)),
      indicator("volume 20", Transient::hud(HUDKind::volume, 0.2)),
      indicator("volume 50", Transient::hud(HUDKind::volume, 0.5)),
      indicator("volume 60", Transient::hud(HUDKind::volume, 0.6)),
      indicator("volume 100", Transient::hud(HUDKind::volume, 1)),
      indicator("mute", Transient::hud(HUDKind::mute, 0.5)),
      indicator("brightness 30", Transient::hud(HUDKind::brightness, 0.3)),
      indicator("brightness 80", Transient::hud(HUDKind::brightness, 0.8)),
      indicator("charging 76", Transient::power(true, 76)),
      indicator("unplugged 100", Transient::power(false, 100)),
      indicator("unplugged 5", Transient::power(false, 5)),
      indicator("low power on", Transient::lowPowerMode(true)),
      indicator("low power off", Transient::lowPowerMode(false)),
      indicator("earbuds 84", Transient::device("AirPods Pro", "airpodspro", 84, true)),
      indicator("keyboard", Transient::device("Logitech MX Keys for Business", "keyboard", {}, true)),
      indicator("mouse off", Transient::device("Souris sans fil", "magicmouse", {}, false)),
      indicator("headphones 9", Transient::device("WH-1000XM5", "headphones", 9, true)),
  };
}

Exhibit bannerExhibit(const char* name, Banner banner) {
  return {name, [banner](NotchStage& stage) { stage.model.present(banner, 60); }};
}

void sessions(NotchStage& s) {
  s.hook("d", "UserPromptSubmit", {{"cwd", "/x/tarnwick"}});
  s.play(134);
  s.hook("d", "Stop", {{"cwd", "/x/tarnwick"}});
  s.model.dismissBanner();
  s.play(70);
  s.hook("i", "SessionStart", {{"cwd", "/x/notes"}});
  s.hook(
      "a", "PreToolUse",
      {{"cwd", "/x/a-project-with-a-rather-long-name-that-goes-on"},
       {"tool_name", "Bash"},
       {"tool_detail", "npm run build -- --mode production --report --verbose && npm test -- --coverage"}});
  s.play(75);
  wait(s);
}

void open(NotchStage& s, Tab tab) {
  withAnimation(notchOpen, [&] { s.model.expand(tab); });
  s.settle();
}

std::vector<Exhibit> opened() {
  return {
      bannerExhibit("done", bannerOf("checkmark.circle.fill", colors::green, "tarnwick",
                                     tr("Done in 2m14s", "Terminé en 2m14s"), CrabMood::happy)),
      bannerExhibit("waiting",
                    bannerOf("hand.raised.fill", colors::yellow, "website",
                             tr("Permission needed: Bash", "Permission demandée : Bash"), CrabMood::waiting)),
      bannerExhibit("battery",
                    bannerOf("battery.25percent", colors::red, tr("Low battery", "Batterie faible"),
                             tr("10% left", "10 % restants"))),
      bannerExhibit(
          "long",
          bannerOf("calendar", colors::blue,
                   "Weekly review of everything that happened in the project since last week",
                   tr("Starts in 4 min · 3:00 PM, in the large room on the second floor, bring coffee",
                      "Commence dans 4 min · 15:00, dans la grande salle du deuxième étage"))),
      {"no sessions", [](NotchStage& s) { open(s, Tab::claude); }},
      {"sessions",
       [](NotchStage& s) {
         sessions(s);
         open(s, Tab::claude);
       }},
      {"sessions, scrolled, battery, hovered row",
       [](NotchStage& s) {
         sessions(s);
         s.model.power.hasBattery = true;
         s.model.power.level = 64;
         open(s, Tab::claude);
         const auto row = s.inspector->text("website");
         s.inspector->scroll(*row, {0, -200});
         s.settle();
         if (const auto moon = s.inspector->symbol("moon.zzz.fill")) s.inspector->hover(*moon);
       }},
      {"only working, charging",
       [](NotchStage& s) {
         work(s, 2);
         s.model.power.hasBattery = true;
         s.model.power.level = 100;
         s.model.power.pluggedIn = true;
         open(s, Tab::claude);
       }},
      {"hovered settings",
       [](NotchStage& s) {
         open(s, Tab::notes);
         s.inspector->hover(*s.inspector->symbol("gearshape.fill"));
       }},
      {"hovered tab",
       [](NotchStage& s) {
         open(s, Tab::tray);
         s.inspector->hover(*s.inspector->symbol("house.fill"));
       }},
      {"pressed clear",
       [](NotchStage& s) {
         sessions(s);
         open(s, Tab::claude);
         const auto clear = s.inspector->control(tr("Clear finished", "Effacer les terminées"));
         s.inspector->hover(*clear);
         s.inspector->press(*clear);
       }},
      {"home with music",
       [](NotchStage& s) {
         s.model.media.title = "Song";
         s.model.media.accent = Color{0.95, 0.4, 0.5};
         open(s, Tab::home);
       }},
  };
}

/// The top of the window, as wide as `width`, on something like a wallpaper.
QImage photograph(NotchStage& stage, double ratio, double width, double height) {
  QImage window(int(940 * ratio), int(380 * ratio), QImage::Format_ARGB32_Premultiplied);
  window.fill(Qt::transparent);
  stage.scene->frame();
  stage.scene->paint(window, {0, 0, 940, 380});
  QImage picture(int(width * ratio), int(height * ratio), QImage::Format_RGB32);
  QPainter painter(&picture);
  QLinearGradient wallpaper(0, 0, picture.width(), picture.height());
  wallpaper.setColorAt(0, QColor(150, 170, 190));
  wallpaper.setColorAt(1, QColor(215, 205, 200));
  painter.fillRect(picture.rect(), wallpaper);
  painter.drawImage(QPointF(-(window.width() - picture.width()) / 2, 0), window);
  return picture;
}

struct Film {
  const char* name;
  std::function<void(NotchStage&)> prepare, act;
};

std::vector<Film> films() {
  const auto openClaude = [](NotchStage& s) {
    withAnimation(notchOpen, [&] { s.model.expand(Tab::claude); });
  };
  return {
      {"expand", [](NotchStage& s) { work(s, 2); }, openClaude},
      {"collapse",
       [openClaude](NotchStage& s) {
         work(s, 2);
         openClaude(s);
       },
       [](NotchStage& s) { s.model.collapse(); }},
      {"tab", [](NotchStage& s) { sessions(s), open(s, Tab::claude); },
       [](NotchStage& s) { s.model.select(Tab::notes); }},
      {"banner", [](NotchStage& s) { work(s, 1); },
       [](NotchStage& s) {
         s.hook("s0", "Stop", {{"cwd", "/x/shop"}});
       }},
      {"indicator", [](NotchStage& s) { work(s, 1); },
       [](NotchStage& s) { s.model.show(Transient::hud(HUDKind::volume, 0.7), 60); }},
  };
}

void hang(const std::vector<Exhibit>& exhibits, Size each, double ratio, const QString& file) {
  constexpr int columns = 2, gap = 8;
  const int width = int(each.width * ratio), height = int(each.height * ratio);
  const int rows = (int(exhibits.size()) + columns - 1) / columns;
  QImage sheet(columns * (width + gap), rows * (height + gap), QImage::Format_RGB32);
  sheet.fill(Qt::white);
  QPainter painter(&sheet);
  for (int i = 0; i < int(exhibits.size()); ++i) {
    NotchStage stage(ratio);
    exhibits[size_t(i)].prepare(stage);
    stage.settle();
    // The bars of the equalizer happen to be level just now.
    stage.play(0.5);
    painter.drawImage(QPoint(i % columns * (width + gap), i / columns * (height + gap)),
                      photograph(stage, ratio, each.width, each.height));
  }
  painter.end();
  if (!sheet.save(file)) std::cerr << "cannot write " << file.toStdString() << "\n";
}

/// A film as a strip of pictures, a twenty-fifth of a second apart.
void show(const Film& film, const QString& file) {
  constexpr int pictures = 16, columns = 2, width = 600, height = 190, gap = 8;
  NotchStage stage;
  film.prepare(stage);
  stage.settle();
  film.act(stage);
  QImage strip(columns * (width + gap), pictures / columns * (height + gap), QImage::Format_RGB32);
  strip.fill(Qt::white);
  QPainter painter(&strip);
  for (int i = 0; i < pictures; ++i) {
    const QPoint place(i / (pictures / columns) * (width + gap), i % (pictures / columns) * (height + gap));
    painter.drawImage(place, photograph(stage, 1, width, height));
    stage.play(1.0 / 25);
  }
  painter.end();
  if (!strip.save(file)) std::cerr << "cannot write " << file.toStdString() << "\n";
}

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(argc, argv);
  if (argc != 2) {
    std::cerr << "usage: view-gallery FOLDER\n";
    return 2;
  }
  for (const Film& film : films()) show(film, QString("%1/film-%2.png").arg(argv[1], film.name));
  for (const char* language : {"en", "fr"}) {
    const ForcedLanguage forced(language);
    for (const int ratio : {1, 2}) {
      const QString name = QString("%1/%3-%2.png").arg(argv[1]).arg(ratio);
      hang(compact(), {480, 44}, ratio, name.arg(QString("compact-") + language));
      hang(opened(), {600, 200}, ratio, name.arg(QString("opened-") + language));
    }
  }
}
