#include "platform/linux/compositing.h"

#include <xcb/composite.h>
#include <xcb/xfixes.h>

#include "platform/linux/x_server.h"

namespace tintora::platform {

namespace {

struct Compositing {
  bool composited = false;
  bool byWindowManager = false;
  xcb_window_t overlay = XCB_NONE;
};
Compositing compositing;

xcb_window_t windowManager() {
  const Received<xcb_get_property_reply_t> reply(
      xcb_get_property_reply(x(),
                             xcb_get_property(x(), 0, xServer.screen->root,
                                              xServer.supportingWmCheck, XCB_ATOM_WINDOW, 0, 1),
                             nullptr));
  if (!reply || reply->format != 32 || xcb_get_property_value_length(reply.get()) != 4) {
    return XCB_NONE;
  }
  return *static_cast<const xcb_window_t*>(xcb_get_property_value(reply.get()));
}

// Returns true if two windows were created over the same connection to the server.
bool haveSameOwner(xcb_window_t a, xcb_window_t b) {
  return ((a ^ b) & ~xcb_get_setup(x())->resource_id_mask) == 0;
}

xcb_window_t askForOverlay() {
  const Received<xcb_composite_get_overlay_window_reply_t> reply(
      xcb_composite_get_overlay_window_reply(
          x(), xcb_composite_get_overlay_window(x(), xServer.screen->root), nullptr));
  if (!reply) return XCB_NONE;
  xcb_composite_release_overlay_window(x(), xServer.screen->root);
  return reply->overlay_win;
}

void setOwner(xcb_window_t owner) {
  compositing.overlay = owner != XCB_NONE ? askForOverlay() : xcb_window_t{XCB_NONE};
  compositing.composited = owner != XCB_NONE;
  compositing.byWindowManager = owner != XCB_NONE && haveSameOwner(owner, windowManager());
}

}  // namespace

void followCompositing() {
  const std::uint32_t events = XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                               XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                               XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE;
  xcb_xfixes_select_selection_input(x(), xServer.screen->root, xServer.compositingManager, events);
  const Received<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
      x(), xcb_get_selection_owner(x(), xServer.compositingManager), nullptr));
  setOwner(reply ? reply->owner : xcb_window_t{XCB_NONE});
}

bool followCompositing(const xcb_generic_event_t& event) {
  if ((event.response_type & 0x7F) != xServer.selectionNotify) return false;
  const auto& notify = reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(event);
  if (notify.selection != xServer.compositingManager) return false;
  setOwner(notify.owner);
  return true;
}

bool isComposited() {
  return compositing.composited;
}

xcb_window_t overlayWindow() {
  return compositing.overlay;
}

bool isComposedByWindowManager() {
  return compositing.byWindowManager;
}

}  // namespace tintora::platform
