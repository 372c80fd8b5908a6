#pragma once
#include <optional>
#include <string>

#include "linux/bus/MessageBus.h"
#include "platform/DisplayBrightness.h"

namespace tarnwick {

/// The brightness of the built-in panel: read from the kernel's backlight class, written by the login daemon,
/// which lets the user of the session in the foreground do so. Nobody tells whether it would but by doing it:
/// the panel is given the brightness that it has.
class BacklightBrightness : public DisplayBrightness {
 public:
  /// @param folder of the backlight class
  explicit BacklightBrightness(MessageBus& bus, std::string folder = "/sys/class/backlight");

  std::optional<double> current() override;
  void set(double brightness) override;
  Subscription observe(std::function<void()> onChange) override {
    return changes_.observe(std::move(onChange));
  }

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
  void write(long raw);
  void setWritable(bool writable);

  MessageBus& bus_;
  BusService loginDaemon_;
  const std::string folder_;
  std::optional<Panel> panel_;
  bool writable_ = false;
  /// What is wanted, until the kernel has it. Raw units.
  std::optional<long> wanted_;
  bool writing_ = false;
  ObservableObject changes_;
};

}  // namespace tarnwick
