#pragma once
#include <QPointer>
#include <QScreen>
#include <QWidget>

#include "settings/SettingsView.h"

namespace tarnwick {

/// The settings window: an ordinary one, made when it is opened and gone when it is closed.
class SettingsWindow {
 public:
  /// All of `context` must outlive it.
  explicit SettingsWindow(SettingsContext context) : context_(std::move(context)) {}
  ~SettingsWindow() { delete window_; }

  /// Opens the window in the middle of that screen, or brings it to the front when it is open.
  void show(const QScreen* screen);

 private:
  const SettingsContext context_;
  QPointer<QWidget> window_;
};

}  // namespace tarnwick
