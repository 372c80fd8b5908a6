#pragma once
#include <optional>
#include <vector>

#include "base/FilePath.h"
#include "base/Observed.h"
#include "base/Scheduler.h"
#include "base/UserDefaults.h"

namespace tarnwick {

/// The shelf of files that the user dropped on the notch: references to them where they are, kept over
/// restarts.
class TrayStore : public ObservableObject {
 public:
  /// Takes up the stored list, and soon leaves out the files that are gone: nothing waits for a folder of the
  /// network that does not answer. They leave the store itself with the next change, so that a drive that is
  /// not there just now can still come back. Both arguments must outlive the store.
  TrayStore(Scheduler& scheduler, UserDefaults& defaults);

  /// Oldest first, without duplicates.
  Observed<std::vector<FilePath>> items{*this};

  /// Appends, in order, those that are not there yet.
  void add(const std::vector<FilePath>& files);
  void remove(const FilePath& file);
  void clear();

  /// An empty shelf for the demonstration, until its end. Meanwhile nothing is stored: the user's files stay
  /// as they are there.
  void showcaseBegin();
  void showcaseEnd();

 private:
  void save();

  UserDefaults& defaults_;
  /// The user's files, while a demonstration has taken their place.
  std::optional<std::vector<FilePath>> saved_;
  Task looking_;
};

}  // namespace tarnwick
