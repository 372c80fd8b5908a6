#pragma once
#include <vector>

#include "base/FilePath.h"
#include "base/Observed.h"
#include "base/UserDefaults.h"

namespace tarnwick {

/// The shelf of files that the user dropped on the notch: references to them where they are, kept over
/// restarts.
class TrayStore : public ObservableObject {
 public:
  /// Takes up the stored list without the files that are gone. They leave the store itself with the next
  /// change, so that a drive that is not there just now can still come back. `defaults` must outlive the
  /// store.
  explicit TrayStore(UserDefaults& defaults);

  /// Oldest first, without duplicates.
  Observed<std::vector<FilePath>> items{*this};

  /// Appends, in order, those that are not there yet.
  void add(const std::vector<FilePath>& files);
  void remove(const FilePath& file);
  void clear();

 private:
  void save();

  UserDefaults& defaults_;
};

}  // namespace tarnwick
