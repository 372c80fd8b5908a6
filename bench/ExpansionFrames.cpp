// expansion-frames RATIO SESSIONS: opens the body on the list of that many sessions, over and over, and
// prints the milliseconds of processor time, all threads together, that each frame on the way takes: taking
// over what changed, moving, painting what is damaged, and copying that into the window's picture.
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <cstdio>
#include <cstdlib>
#include <ctime>

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
  void hook(const std::string& session, const std::string& event) { stage_.hook(session, event); }

  /// The next frames, as the window makes them; `tell` is given the time that each took.
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

 private:
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
  QImage image_{int(940 * ratio_), int(380 * ratio_), QImage::Format_ARGB32_Premultiplied};
  QImage window_ = image_.copy();
};

}  // namespace

int main(int count, char** arguments) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(count, arguments);
  Frames frames(std::atof(arguments[1]));
  const int sessions = std::atoi(arguments[2]);
  for (int session = 0; session < sessions; ++session) {
    frames.hook(std::to_string(session), session % 3 == 0 ? "Notification" : "UserPromptSubmit");
  }
  frames.play(120, [](double) {});
  for (int round = 0; round < 12; ++round) {
    frames.model().expand(Tab::claude);
    frames.play(45, [&](double time) {
      if (round > 1) std::printf("%.3f ", time);  // the first ones fill caches
    });
    frames.model().collapse();
    frames.play(60, [](double) {});
  }
  std::printf("\n");
}
