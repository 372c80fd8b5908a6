#pragma once
#include <vector>

#include "core/NotchPanel.h"
#include "support/MemoryDesktop.h"

namespace tarnwick {

/// A panel that keeps what it was told. A test calls its callbacks as the window would.
class MemoryPanel : public NotchPanel {
 public:
  explicit MemoryPanel(Pointer& pointer) : pointer_(pointer) {}

  void moveTo(const Screen& to) override { screen = to; }
  Size size() const override { return panelSize; }
  void orderFrontRegardless() override { shown = true; }
  Pointer& pointer() override { return pointer_; }
  void setPointerArea(const std::optional<Rect>& area) override {
    pointerArea = area;
    ++pointerAreaChanges;
  }
  void becomeKey() override { key = true; }
  void resignKey() override { resignations += std::exchange(key, false); }

  Size panelSize{940, 380};
  std::optional<Screen> screen;
  bool shown = false;
  bool key = false;
  int resignations = 0;
  /// The last area that was set; before that, everything.
  std::optional<Rect> pointerArea = Rect{-1e9, -1e9, 2e9, 2e9};
  int pointerAreaChanges = 0;

 private:
  Pointer& pointer_;
};

}  // namespace tarnwick
