#pragma once
#include <memory>

#include "linux/wayland/WaylandClient.h"
#include "wlr-foreign-toplevel-management.h"

namespace tarnwick {

/// The windows that zwlr_foreign_toplevel_management_v1 tells of.
class WlrToplevels : public Toplevels {
 public:
  explicit WlrToplevels(zwlr_foreign_toplevel_manager_v1* manager);
  ~WlrToplevels() override;

  std::vector<Toplevel> all() const override;
  void activate(uint32_t id) override;
  void giveBackKeyboard() override {}

 private:
  struct Entry {
    WlrToplevels& list;
    zwlr_foreign_toplevel_handle_v1* handle;
    Toplevel toplevel;
    std::vector<wl_output*> outputs = {};
    /// Since the last time that the compositor told everything.
    bool wasActivated = false;
  };
  void add(zwlr_foreign_toplevel_handle_v1* handle);
  void remove(const Entry& entry);
  void changed() const;

  static const zwlr_foreign_toplevel_manager_v1_listener managerListener;
  static const zwlr_foreign_toplevel_handle_v1_listener handleListener;
  zwlr_foreign_toplevel_manager_v1* manager_;
  uint32_t lastId_ = 0;
  std::vector<std::unique_ptr<Entry>> entries_;
};

}  // namespace tarnwick
