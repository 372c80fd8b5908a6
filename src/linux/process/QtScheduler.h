#pragma once
#include <QElapsedTimer>
#include <QObject>
#include <QThreadPool>
#include <QTimer>
#include <list>
#include <memory>

#include "base/Scheduler.h"

namespace tarnwick {

/// Time on the event loop of the running application, which must exist before it.
class QtScheduler : public Scheduler {
 public:
  QtScheduler();
  /// Waits for the work in the background to end.
  ~QtScheduler() override;

  Date now() const override { return Date::systemNow(); }
  double uptime() const override;
  Task after(double seconds, Work work) override;
  Task every(double seconds, Work work) override;
  Task post(Work work) override;
  Task background(Work work, Work thenOnMain) override;

 private:
  struct Repeating {
    Work work;
    double interval;
    double due;
    bool cancelled = false;
  };

  Task ownTimer(double seconds, bool once, Work work);
  void beat();
  void awaitNextBeat();

  QElapsedTimer clock_;
  /// Receiver of everything that is posted: when it dies, what is still on its way is dropped.
  QObject context_;
  QTimer beat_;
  bool beating_ = false;
  std::list<std::shared_ptr<Repeating>> repeating_;
  QThreadPool pool_;
};

}  // namespace tarnwick
