#pragma once
#include <QPushButton>
#include <functional>
#include <optional>

#include "base/KeyChord.h"

namespace tarnwick {

/// Shows a shortcut, and records another one when it is pressed: the next keys that nobody types with. Escape
/// leaves the recording, Backspace removes the shortcut.
class ShortcutButton : public QPushButton {
 public:
  ShortcutButton();

  /// The recording begins or ends.
  std::function<void(bool recording)> onRecording;
  std::function<void(const std::optional<KeyChord>&)> onChord;

  bool isRecording() const { return isRecording_; }
  /// What it says while nothing is recorded.
  void show(const QString& keys);
  using QPushButton::show;

  /// A chord as users read it.
  static QString name(const KeyChord& chord);

 protected:
  bool event(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  void record(bool recording);

  bool isRecording_ = false;
  QString keys_;
};

}  // namespace tarnwick
