#pragma once
#include <QDBusConnection>
#include <QObject>
#include <functional>
#include <optional>
#include <string>

#include "base/Scheduler.h"
#include "platform/DisplayBrightness.h"

namespace tarnwick {

/// The brightness of the built-in panel: read from the kernel's backlight class, written by the login daemon,
/// which lets the user of the session do so.
class BacklightBrightness : public DisplayBrightness {
 public:
  using BusOpener = std::function<QDBusConnection()>;

  /// @param folder of the backlight class
  /// @param openBus opens the system bus; called off the main thread
  explicit BacklightBrightness(Scheduler& scheduler, std::string folder = "/sys/class/backlight",
                               BusOpener openBus = &QDBusConnection::systemBus);

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

  Scheduler& scheduler_;
  const std::string folder_;
  const BusOpener openBus_;
  std::optional<QDBusConnection> bus_;
  Task opening_;
  /// Receiver of the replies.
  QObject context_;
  mutable std::optional<Panel> panel_;
  /// What is wanted, until the kernel has it. Raw units.
  std::optional<long> wanted_;
  bool writing_ = false;
};

}  // namespace tarnwick
