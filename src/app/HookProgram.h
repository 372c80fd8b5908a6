#pragma once
#include <QProcess>
#include <memory>

#include "cli/HookInstaller.h"
#include "platform/HookSetup.h"

namespace tarnwick {

/// The hooks as the command sets them up: a child of ours, which cannot hold up the overlay.
class HookProgram : public HookSetup {
 public:
  /// @param home as of `HookInstaller`
  /// @param command the absolute path of Tarnwick
  HookProgram(const std::string& home, const std::string& command)
      : command_(QString::fromStdString(command)), installer_(home, command) {}

  bool isInstalled() const override { return installer_.isInstalled(); }
  void setInstalled(bool installed, std::function<void(const std::string& problem)> then) override;

 private:
  const QString command_;
  const HookInstaller installer_;
  std::unique_ptr<QProcess> process_;
};

}  // namespace tarnwick
