#pragma once
#include <optional>
#include <string>

#include "base/OncePerFrame.h"
#include "linux/bus/MessageBus.h"
#include "platform/DisplayBrightness.h"

namespace tarnwick {

/// The brightness of the built-in panel: read from the kernel's backlight class, written by the login daemon,
/// which lets the user of the session in the foreground do so. Nobody tells whether it would but by doing it:
/// the panel is given the brightness that it has.
class BacklightBrightness : public DisplayBrightness {
 public:
  /// @param folder of the backlight class
  BacklightBrightness(Scheduler& scheduler, MessageBus& bus, std::string folder = "/sys/class/backlight");

  std::optional<double> current() override;
  void set(double brightness) override;
  double unit() const override { return panel_ ? 1.0 / static_cast<double>(panel_->maximum) : 0; }
  Subscription observe(std::function<void()> onChange) override {
    return changes_.observe(std::move(onChange));
  }
  Subscription follow(std::function<void()> onChange) override;

 private:
  struct Panel {
    std::string name;
    /// Raw units.
    long maximum;
  };

  std::optional<Panel> findPanel() const;
  /// Raw units.
  std::optional<long> present();
  void tryWriting();
  void write();
  void setWritable(bool writable);

  MessageBus& bus_;
  BusService loginDaemon_;
  const std::string folder_;
  std::optional<Panel> panel_;
  bool writable_ = false;
  /// What is wanted, until the kernel has it. Raw units.
  std::optional<long> wanted_;
  bool writing_ = false;
  /// The session has changed meanwhile.
  bool retries_ = false;
  OncePerFrame pace_;
  ObservableObject changes_;
};

}  // namespace tarnwick
