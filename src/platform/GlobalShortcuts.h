#pragma once
#include <functional>
#include <map>
#include <string>

#include "base/KeyChord.h"
#include "base/Observed.h"

namespace tarnwick {

/// Keys that mean something to this program whichever program has the keyboard.
class GlobalShortcuts : public ObservableObject {
 public:
  struct Wanted {
    KeyChord chord;
    /// What it does, for a desktop that asks the user.
    std::string description;
    friend bool operator==(const Wanted&, const Wanted&) = default;
  };
  struct Result {
    enum class State {
      asking,
      works,
      /// Another program has the keys, or they are not on the keyboard.
      taken,
      /// The desktop or the user does not want it.
      refused
    };
    State state = State::asking;
    /// The keys in the desktop's own words, where it has told or lets the user choose others.
    std::string keys = {};
    friend bool operator==(const Result&, const Result&) = default;
  };
  virtual ~GlobalShortcuts() = default;

  /// Whether this session has such keys, as far as it is known; see `look`.
  Observed<bool> available{*this, false};
  /// What has become of those that were set last, by name.
  Observed<std::map<std::string, Result>> results{*this};
  /// One of them was pressed, by its name.
  std::function<void(const std::string& name)> onPress;

  /// Finds out whether the session has them, where that costs something.
  virtual void look() = 0;
  /// From now on these and no others, by name.
  virtual void set(const std::map<std::string, Wanted>& wanted) = 0;
  /// Lets the keys go where they would be kept from the recording of new ones, or takes them again.
  virtual void pause(bool /*paused*/) {}
};

}  // namespace tarnwick
