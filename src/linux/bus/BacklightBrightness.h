#pragma once
#include <QObject>
#include <optional>
#include <string>

#include "linux/bus/MessageBus.h"
#include "platform/DisplayBrightness.h"

namespace tarnwick {

/// The brightness of the built-in panel: read from the kernel's backlight class, written by the login daemon,
/// which lets the user of the session do so.
class BacklightBrightness : public DisplayBrightness {
 public:
  /// @param folder of the backlight class
  explicit BacklightBrightness(MessageBus& bus, std::string folder = "/sys/class/backlight")
      : bus_(bus), folder_(std::move(folder)) {}

  std::optional<double> current() const override;
  void set(double brightness) override;

 private:
  struct Panel {
    std::string name;
    /// Raw units.
    long maximum;
  };

  std::optional<Panel> findPanel() const;
  /// Raw units.
  std::optional<long> present() const;
  void write();
  void written(long raw);

  MessageBus& bus_;
  const std::string folder_;
  /// Receiver of the replies.
  QObject context_;
  mutable std::optional<Panel> panel_;
  /// What is wanted, until the kernel has it. Raw units.
  std::optional<long> wanted_;
  bool writing_ = false;
};

}  // namespace tarnwick
