#include "linux/x11/ScrollDevices.h"

#include <xcb/xinput.h>

#include <algorithm>
#include <cstring>

namespace tarnwick {

ScrollDevices::ScrollDevices(X11Connection& connection) : connection_(connection) {
  if (!connection_.inputOpcode()) return;
  struct {
    xcb_input_event_mask_t head{0, 1};  // all devices
    uint32_t mask = XCB_INPUT_XI_EVENT_MASK_PROPERTY | XCB_INPUT_XI_EVENT_MASK_HIERARCHY;
  } selection;
  xcb_input_xi_select_events(connection_, connection_.root(), 1, &selection.head);
  xcb_flush(connection_);
  events_ = connection_.onEvent([this](const xcb_generic_event_t& event) {
    const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
    if ((event.response_type & 0x7f) == XCB_GE_GENERIC && generic.extension == connection_.inputOpcode() &&
        (generic.event_type == XCB_INPUT_PROPERTY || generic.event_type == XCB_INPUT_HIERARCHY)) {
      traits_.clear();
    }
  });
}

const ScrollDevices::Traits& ScrollDevices::traits(uint16_t device) {
  const auto known = traits_.find(device);
  return known != traits_.end() ? known->second : traits_.emplace(device, read(device)).first->second;
}

ScrollDevices::Traits ScrollDevices::read(uint16_t device) const {
  Traits traits;
  if (const auto natural = property(device, "libinput Natural Scrolling Enabled"); !natural.empty()) {
    traits.natural = natural.front() != 0;
    // Two fingers, an edge, a held button: with none of them there is only a wheel to scroll with.
    const auto methods = property(device, "libinput Scroll Method Enabled");
    traits.smooth = std::any_of(methods.begin(), methods.end(), [](uint8_t enabled) { return enabled != 0; });
  }
  const auto distance = property(device, "libinput Scrolling Pixel Distance");
  if (uint32_t pixels = 0; distance.size() == sizeof pixels) {
    std::memcpy(&pixels, distance.data(), sizeof pixels);
    if (pixels > 0) traits.pointsPerClick = pixels;
  }
  return traits;
}

std::vector<uint8_t> ScrollDevices::property(uint16_t device, const char* name) const {
  if (!connection_.inputOpcode()) return {};
  const auto reply = owned(xcb_input_xi_get_property_reply(connection_,
      xcb_input_xi_get_property(
          connection_, device, 0, connection_.atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, 16),
      nullptr));
  if (!reply || reply->num_items == 0) return {};
  // The items follow the fixed part of the reply.
  const auto* bytes = reinterpret_cast<const uint8_t*>(reply.get() + 1);
  return {bytes, bytes + reply->num_items * (reply->format / 8u)};
}

}  // namespace tarnwick
