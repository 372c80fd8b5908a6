#pragma once
#include <QRect>
#include <memory>

#include "linux/wayland/WaylandClient.h"
#include "plasma-window-management.h"

namespace tarnwick {

/// The windows that org_kde_plasma_window_management tells of. KDE offers it to programs only whose installed
/// desktop entry asks for it.
class PlasmaToplevels : public Toplevels {
 public:
  /// The last version in which windows have numbers.
  static constexpr uint32_t version = 12;

  explicit PlasmaToplevels(org_kde_plasma_window_management* manager);
  ~PlasmaToplevels() override;

  std::vector<Toplevel> all() const override;
  void activate(uint32_t id) override;
  void giveBackKeyboard() override;

 private:
  struct Entry {
    PlasmaToplevels& list;
    org_kde_plasma_window* window;
    Toplevel toplevel;
    /// In the same points as the toolkit's screens.
    QRect geometry = {};
  };
  void add(uint32_t number);
  void remove(const Entry& entry);
  void setState(Entry& entry, uint32_t flags);
  void changed() const;

  static const org_kde_plasma_window_management_listener managerListener;
  static const org_kde_plasma_window_listener windowListener;
  org_kde_plasma_window_management* manager_;
  uint32_t lastId_ = 0;
  /// The window that has the keyboard, or had it last.
  uint32_t lastActive_ = 0;
  std::vector<std::unique_ptr<Entry>> entries_;
};

}  // namespace tarnwick
