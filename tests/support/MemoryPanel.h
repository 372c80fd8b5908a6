#pragma once
#include <vector>

#include "core/NotchPanel.h"

namespace tarnwick {

/// A panel that keeps what it was told. A test calls its callbacks as the window would.
class MemoryPanel : public NotchPanel {
 public:
  void setFrame(const Rect& frame) override { frame_ = frame; }
  Rect frame() const override { return frame_; }
  void orderFrontRegardless() override { shown = true; }
  void setPointerArea(const std::optional<Rect>& area) override {
    pointerArea = area;
    ++pointerAreaChanges;
  }
  bool isKey() const override { return key; }
  void resignKey() override {
    key = false;
    ++resignations;
  }

  bool shown = false;
  bool key = false;
  int resignations = 0;
  /// The last area that was set; before that, everything.
  std::optional<Rect> pointerArea = Rect{-1e9, -1e9, 2e9, 2e9};
  int pointerAreaChanges = 0;

 private:
  Rect frame_;
};

}  // namespace tarnwick
