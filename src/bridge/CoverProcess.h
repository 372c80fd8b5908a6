#pragma once
#include <functional>
#include <string>

#include "bridge/GLib.h"

namespace tarnwick {

/// One run of the program that fetches a cover and makes it small. Files may hang, and pictures may be made
/// to keep their reader busy: a process can be ended.
class CoverProcess {
 public:
  /// Gets a small PNG file; empty when there is no cover to be had.
  using Receiver = std::function<void(std::string picture)>;

  /// `receive` is told once, from the main loop, within half a minute.
  CoverProcess(const std::string& address, bool mayUseNetwork, Receiver receive);
  CoverProcess(const CoverProcess&) = delete;
  ~CoverProcess();

  /// Nobody waits for the cover any more: it ends at once, with or without one.
  void end();

 private:
  struct Child;

  void startChild(const std::string& address, bool mayUseNetwork);
  void finish(std::string picture);

  Receiver receive_;
  /// Null: there is none any more.
  Child* child_ = nullptr;
  Timer patience_;
};

}  // namespace tarnwick
