// The module that speaks with PulseAudio, on the event loop that the toolkit shares with GLib.
#include <pulse/glib-mainloop.h>
#include <pulse/pulseaudio.h>

#include <algorithm>
#include <map>
#include <string_view>
#include <utility>

#include "linux/sound/PulseClient.h"

namespace tarnwick {
namespace {

std::string_view text(const pa_proplist* properties, const char* key) {
  const char* value = pa_proplist_gets(properties, key);
  return value ? value : "";
}

/// @param info a sink's or a source's
template<typename Info>
AudioTransport transportOf(const Info& info, bool isHardware, bool isNetwork) {
  const std::string_view bus = text(info.proplist, PA_PROP_DEVICE_BUS);
  const std::string_view form = text(info.proplist, PA_PROP_DEVICE_FORM_FACTOR);
  const std::string_view driver = info.driver ? info.driver : "";
  const int port = info.active_port ? static_cast<int>(info.active_port->type) : PA_DEVICE_PORT_TYPE_UNKNOWN;
  if (bus == "bluetooth" || text(info.proplist, "device.api").starts_with("bluez")) {
    return AudioTransport::bluetooth;
  }
  // The same card may serve loudspeakers and a screen.
  if (port == PA_DEVICE_PORT_TYPE_HDMI || port == PA_DEVICE_PORT_TYPE_TV || form == "tv" ||
      text(info.proplist, "device.profile.name").starts_with("hdmi")) {
    return AudioTransport::display;
  }
  if (bus == "usb") return AudioTransport::usb;
  if (isNetwork || driver.starts_with("module-raop")) return AudioTransport::network;
  if (bus == "pci" || bus == "isa" || form == "internal") return AudioTransport::builtIn;
  return isHardware ? AudioTransport::unknown : AudioTransport::software;
}

template<typename Info>
bool isUnplugged(const Info& info) {
  const auto isEmpty = [](const auto* port) { return port->available == PA_PORT_AVAILABLE_NO; };
  return info.n_ports > 0 && std::all_of(info.ports, info.ports + info.n_ports, isEmpty);
}

template<typename Info>
PulseDevice describe(const Info& info, AudioScope scope, bool isHardware, bool isNetwork) {
  return {.scope = scope,
      .key = info.name,
      .name = info.description && *info.description ? info.description : info.name,
      .transport = transportOf(info, isHardware, isNetwork),
      .volume = pa_cvolume_max(&info.volume),
      .muted = info.mute != 0,
      .isUnplugged = isUnplugged(info)};
}

class LibpulseClient : public PulseClient {
 public:
  LibpulseClient() : loop_(pa_glib_mainloop_new(nullptr)) {
    pa_proplist* properties = pa_proplist_new();
    pa_proplist_sets(properties, PA_PROP_APPLICATION_NAME, "Tarnwick");
    pa_proplist_sets(properties, PA_PROP_APPLICATION_ID, "dev.tarnwick.Tarnwick");
    context_ = pa_context_new_with_proplist(pa_glib_mainloop_get_api(loop_), nullptr, properties);
    pa_proplist_free(properties);
  }

  ~LibpulseClient() override {
    pa_context_set_state_callback(context_, nullptr, nullptr);
    pa_context_set_subscribe_callback(context_, nullptr, nullptr);
    pa_context_disconnect(context_);
    pa_context_unref(context_);
    pa_glib_mainloop_free(loop_);
  }

  void connect() override {
    pa_context_set_state_callback(context_, &LibpulseClient::stateChanged, this);
    pa_context_set_subscribe_callback(
        context_,
        [](pa_context*, pa_subscription_event_type_t, uint32_t, void* self) { of(self).onChange(); }, this);
    // Whether there is a daemon is for the session to say.
    if (pa_context_connect(context_, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0) close();
  }

  void fetch() override {
    snapshot_ = {};
    missingReplies_ = 3;
    drop(pa_context_get_server_info(context_, &LibpulseClient::serverInfo, this));
    drop(pa_context_get_sink_info_list(context_, &LibpulseClient::sinkInfo, this));
    drop(pa_context_get_source_info_list(context_, &LibpulseClient::sourceInfo, this));
  }

  void setVolume(AudioScope scope, const std::string& key, uint32_t volume) override {
    const auto known = channels_.find({scope, key});
    // Keeps the balance.
    pa_cvolume channels;
    if (known != channels_.end()) {
      channels = known->second;
      pa_cvolume_scale(&channels, volume);
    } else {
      pa_cvolume_set(&channels, 1, volume);
    }
    const auto set =
        scope == AudioScope::output
            ? pa_context_set_sink_volume_by_name
            : pa_context_set_source_volume_by_name;
    drop(set(context_, key.c_str(), &channels, &LibpulseClient::written, this));
  }

  void setMuted(AudioScope scope, const std::string& key, bool muted) override {
    const auto set =
        scope == AudioScope::output ? pa_context_set_sink_mute_by_name : pa_context_set_source_mute_by_name;
    drop(set(context_, key.c_str(), muted, &LibpulseClient::written, this));
  }

  void setDefault(AudioScope scope, const std::string& key) override {
    const auto set =
        scope == AudioScope::output ? pa_context_set_default_sink : pa_context_set_default_source;
    drop(set(context_, key.c_str(), nullptr, nullptr));
  }

 private:
  static LibpulseClient& of(void* self) { return *static_cast<LibpulseClient*>(self); }

  /// Answers come through the callbacks; the handle is of no use.
  static void drop(pa_operation* operation) {
    if (operation) pa_operation_unref(operation);
  }

  static void stateChanged(pa_context* context, void* self) {
    switch (pa_context_get_state(context)) {
      case PA_CONTEXT_READY: {
        const int devices =
            PA_SUBSCRIPTION_MASK_SINK | PA_SUBSCRIPTION_MASK_SOURCE | PA_SUBSCRIPTION_MASK_SERVER;
        drop(pa_context_subscribe(context, static_cast<pa_subscription_mask_t>(devices), nullptr, nullptr));
        of(self).onChange();
        break;
      }
      case PA_CONTEXT_FAILED:
      case PA_CONTEXT_TERMINATED:
        of(self).close();
        break;
      default:
        break;
    }
  }

  static void serverInfo(pa_context*, const pa_server_info* info, void* self) {
    if (info) {
      of(self).snapshot_.defaultOutput = info->default_sink_name ? info->default_sink_name : "";
      of(self).snapshot_.defaultInput = info->default_source_name ? info->default_source_name : "";
    }
    of(self).replied(info != nullptr);
  }

  static void sinkInfo(pa_context*, const pa_sink_info* info, int end, void* self) {
    if (end) return of(self).replied(end > 0);
    of(self).add(
        describe(*info, AudioScope::output, info->flags & PA_SINK_HARDWARE, info->flags & PA_SINK_NETWORK),
        info->volume);
  }

  static void sourceInfo(pa_context*, const pa_source_info* info, int end, void* self) {
    if (end) return of(self).replied(end > 0);
    // What an output plays is nothing that a user would choose to speak into.
    if (info->monitor_of_sink != PA_INVALID_INDEX) return;
    of(self).add(
        describe(*info, AudioScope::input, info->flags & PA_SOURCE_HARDWARE, info->flags & PA_SOURCE_NETWORK),
        info->volume);
  }

  static void written(pa_context*, int, void* self) { of(self).onWritten(); }

  void add(PulseDevice device, const pa_cvolume& channels) {
    channels_[{device.scope, device.key}] = channels;
    snapshot_.devices.push_back(std::move(device));
  }

  void replied(bool good) {
    // A daemon that no longer answers is none.
    if (!good) return close();
    if (--missingReplies_ == 0) onSnapshot(snapshot_);
  }

  void close() {
    if (!std::exchange(closed_, true)) onClosed();
  }

  pa_glib_mainloop* loop_;
  pa_context* context_;
  PulseSnapshot snapshot_;
  int missingReplies_ = 0;
  bool closed_ = false;
  std::map<std::pair<AudioScope, std::string>, pa_cvolume> channels_;
};

}  // namespace
}  // namespace tarnwick

extern "C" tarnwick::PulseClient* tarnwickMakePulseClient() { return new tarnwick::LibpulseClient; }
