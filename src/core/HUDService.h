#pragma once
#include <array>
#include <optional>

#include "core/NotchModel.h"
#include "platform/DisplayBrightness.h"
#include "platform/MediaKeys.h"

namespace tarnwick {

struct Desktop;

/// Takes the volume, mute and brightness keys over while the user wants the notch to show those levels: it
/// makes the change itself and shows the indicator in place of the desktop's own.
class HUDService {
 public:
  /// Catches the keys if it may, and asks the user once, ever, if it may not. Model and desktop must outlive
  /// it.
  HUDService(NotchModel& model, const Desktop& desktop);
  ~HUDService();

  /// Catches the keys that it can get and does not have yet; with `prompt` it asks the user for the
  /// permission first.
  void startTap(bool prompt);
  /// The volume keys are caught.
  bool hasTap() const { return tap_.has_value(); }
  /// The session lets the volume keys be caught, whether or not they are.
  bool isTrusted() const;
  /// Shows the output's volume, or that it is muted.
  void showVolume();
  /// Does what a key stands for. @return false: the key is for the desktop
  bool handleMediaKey(const MediaKeyEvent& event);
  /// The same whether or not the keys are to be replaced: for who has asked for it by a command.
  bool carryOut(const MediaKeyEvent& event);

 private:
  void followSetting();
  void releaseKeys();
  bool changeBrightness(double step, bool down);

  NotchModel& model_;
  MediaKeys& keys_;
  DisplayBrightness& brightness_;
  /// Caught keys cannot always be passed on: those for the brightness are left alone where there is no
  /// brightness to change.
  std::optional<Subscription> brightnessTap_;
  std::optional<Subscription> tap_;
  std::array<Subscription, 4> listeners_;
};

}  // namespace tarnwick
