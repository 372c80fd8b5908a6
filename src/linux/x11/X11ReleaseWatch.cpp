#include "linux/x11/X11ReleaseWatch.h"

#include <xcb/record.h>
#include <xcb/xcbext.h>

namespace tarnwick {
namespace {

/// XIPassiveUngrabDevice of the input extension, version 2.
constexpr uint16_t passiveUngrabDevice = 55;

/// What a reply is about (X Record Extension Protocol, "Enabling the Context").
enum Category : uint8_t { fromClient = 1, clientDied = 3 };

}  // namespace

X11ReleaseWatch::X11ReleaseWatch(const X11Connection& own, std::function<void()> onRelease)
    : connection_(xcb_connect(nullptr, nullptr)),
      ownClient_(xcb_get_setup(own)->resource_id_base),
      onRelease_(std::move(onRelease)) {
  const xcb_query_extension_reply_t* extension =
      xcb_connection_has_error(connection_) ? nullptr : xcb_get_extension_data(connection_, &xcb_record_id);
  if (!extension || !extension->present) return;
  const xcb_record_context_t context = xcb_generate_id(connection_);
  const xcb_record_client_spec_t clients = XCB_RECORD_CS_ALL_CLIENTS;
  xcb_record_range_t range = {};
  range.core_requests = {XCB_UNGRAB_KEY, XCB_UNGRAB_KEY};
  range.client_died = true;
  if (const auto input = own.inputOpcode()) {
    range.ext_requests = {{*input, *input}, {passiveUngrabDevice, passiveUngrabDevice}};
  }
  xcb_record_create_context(connection_, context, 0, 1, 1, &clients, &range);
  const auto cookie = xcb_record_enable_context(connection_, context);
  // The first reply says that it has begun.
  if (!owned(xcb_record_enable_context_reply(connection_, cookie, nullptr))) return;
  request_ = cookie.sequence;
  notifier_ = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection_), QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, &context_, [this] { read(); });
}

X11ReleaseWatch::~X11ReleaseWatch() { xcb_disconnect(connection_); }

void X11ReleaseWatch::read() {
  // Looking for events is what takes replies off the socket.
  while (owned(xcb_poll_for_event(connection_))) continue;
  void* next = nullptr;
  xcb_generic_error_t* error = nullptr;
  while (xcb_poll_for_reply(connection_, request_, &next, &error) && next) {
    const auto reply = owned(static_cast<xcb_record_enable_context_reply_t*>(next));
    const bool released = reply->category == fromClient || reply->category == clientDied;
    if (!released || reply->xid_base == ownClient_) continue;
    notifier_->setEnabled(false);
    return onRelease_();
  }
  std::free(error);
  if (xcb_connection_has_error(connection_)) notifier_->setEnabled(false);
}

}  // namespace tarnwick
