#pragma once
#include <set>
#include <vector>

#include "platform/GlobalShortcuts.h"

namespace tarnwick {

/// Shortcuts of which some belong to another program.
struct MemoryShortcuts : GlobalShortcuts {
  MemoryShortcuts() { available = true; }
  void look() override { ++looks; }
  void set(const std::map<std::string, Wanted>& wanted) override {
    chords.clear();
    std::map<std::string, Result> outcome;
    for (const auto& [name, each] : wanted) {
      chords[name] = each.chord.text();
      outcome[name] = {foreign.contains(each.chord.text()) ? Result::State::taken : Result::State::works};
    }
    results = outcome;
    ++sets;
  }
  void pause(bool paused) override { isPaused = paused; }

  std::set<std::string> foreign;
  std::map<std::string, std::string> chords;
  bool isPaused = false;
  int looks = 0, sets = 0;
};

}  // namespace tarnwick
