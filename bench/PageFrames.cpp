// page-frames RATIO SESSIONS [sessions]: with that many sessions and the demonstration's content on the
// pages, opens the body on each page over and over and slides between any two; or opens the sessions only.
// Prints a line for each way, its name before the milliseconds of processor time, all threads together, that
// the frames on it take: taking over what changed, moving, painting what is damaged, and copying that into
// the window's picture.
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

#include "showcase/Showcase.h"
#include "ui/paint/Painter.h"
#include "views/NotchStage.h"

using namespace tarnwick;

namespace {

double processorMilliseconds() {
  timespec time;
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

class Frames {
 public:
  explicit Frames(double ratio) : ratio_(ratio), stage_(ratio) {}

  NotchModel& model() { return stage_.model; }

  /// The demonstration's content for the pages, and that many sessions.
  void fill(int sessions) {
    showcase_.handle("begin", "en");
    showcase_.handle("play", "");
    for (int file = 0; file < 12; ++file) showcase_.handle("trayadd", std::to_string(file) + ".pdf");
    model().notes.setText("Some lines of text\nthat somebody has written,\nand a third one.\n");
    model().collapse();
    for (int session = 0; session < sessions; ++session) {
      stage_.hook(std::to_string(session), session % 3 == 0 ? "Notification" : "UserPromptSubmit");
    }
    play(120);
  }

  /// The next frames, as the window makes them.
  void play(int frames) {
    play(frames, [](double) {});
  }
  /// The same; prints the time that each took.
  void measure(int frames) {
    play(frames, [](double time) { std::printf(" %.3f", time); });
  }

 private:
  template<typename Tell>
  void play(int frames, Tell tell) {
    for (int frame = 0; frame < frames; ++frame) {
      stage_.desktop.scheduler.advance(1.0 / 60);
      const double began = processorMilliseconds();
      stage_.scene.frame();
      const auto damage = stage_.scene.takeDamage();
      for (const Rect& area : damage) paint(stage_.scene, image_, area);
      copyToWindow(damage);
      tell(processorMilliseconds() - began);
    }
  }

  void copyToWindow(const std::vector<Rect>& damage) {
    QPainter painter(&window_);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    for (const Rect& area : damage) {
      const QRectF pixels(area.x * ratio_, area.y * ratio_, area.width * ratio_, area.height * ratio_);
      painter.drawImage(pixels, image_, pixels);
    }
  }

  double ratio_;
  NotchStage stage_;
  Showcase showcase_{stage_.model, stage_.desktop.scheduler, stage_.desktop.folders};
  QImage image_{int(940 * ratio_), int(380 * ratio_), QImage::Format_ARGB32_Premultiplied};
  QImage window_ = image_.copy();
};

void open(Frames& frames, Tab tab, int rounds) {
  std::printf("opening-%s", std::string(rawValue(tab)).c_str());
  for (int round = 0; round < rounds; ++round) {
    frames.model().expand(tab);
    // The first ones fill caches.
    round < 2 ? frames.play(45) : frames.measure(45);
    frames.model().collapse();
    frames.play(60);
  }
  std::printf("\n");
}

void slide(Frames& frames, Tab from, Tab to) {
  std::printf("sliding-%s-%s", std::string(rawValue(from)).c_str(), std::string(rawValue(to)).c_str());
  for (int round = 0; round < 4; ++round) {
    frames.model().select(from);
    frames.play(60);
    frames.model().select(to);
    round < 1 ? frames.play(45) : frames.measure(45);
  }
  std::printf("\n");
}

}  // namespace

int main(int count, char** arguments) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(count, arguments);
  Frames frames(std::atof(arguments[1]));
  frames.fill(std::atoi(arguments[2]));
  open(frames, Tab::claude, 12);
  if (count > 3) return EXIT_SUCCESS;
  for (const Tab tab : allTabs) {
    if (tab != Tab::claude) open(frames, tab, 6);
  }
  frames.model().expand(Tab::home);
  frames.play(60);
  for (const Tab from : allTabs) {
    for (const Tab to : allTabs) {
      if (from != to) slide(frames, from, to);
    }
  }
}
