#include "platform/linux/framed_client.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "platform/linux/compositing.h"
#include "platform/linux/window_facts.h"
#include "platform/linux/x_server.h"

namespace tintora::platform {

namespace {

// Returns true if the window is a program's: each of those has a class. The window manager's state
// may be set only after the frame is shown.
bool isClient(xcb_window_t window) {
  const auto stateCookie = xcb_get_property(x(), 0, window, xServer.wmState, xServer.wmState, 0, 1);
  const auto classCookie =
      xcb_get_property(x(), 0, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 0, 1);
  const Received<xcb_get_property_reply_t> state(xcb_get_property_reply(x(), stateCookie, nullptr));
  const Received<xcb_get_property_reply_t> name(xcb_get_property_reply(x(), classCookie, nullptr));
  return (state && state->type != XCB_NONE) || (name && name->type != XCB_NONE);
}

xcb_window_t clientIn(xcb_window_t window, int deepest) {
  if (isClient(window)) return window;
  if (deepest == 0) return XCB_NONE;
  const Received<xcb_query_tree_reply_t> tree(
      xcb_query_tree_reply(x(), xcb_query_tree(x(), window), nullptr));
  if (!tree) return XCB_NONE;
  const std::span children(xcb_query_tree_children(tree.get()),
                           static_cast<std::size_t>(xcb_query_tree_children_length(tree.get())));
  for (const xcb_window_t child : children) {
    if (const xcb_window_t client = clientIn(child, deepest - 1)) return client;
  }
  return XCB_NONE;
}

QMargins extentsFrom(const xcb_get_property_reply_t* reply) {
  constexpr std::uint32_t sides = 4;
  if (reply == nullptr || reply->format != 32 || reply->value_len != sides) return {};
  const auto* const widths = static_cast<const std::uint32_t*>(xcb_get_property_value(reply));
  const auto width = [&](int side) { return static_cast<int>(widths[side]); };
  return {width(0), width(2), width(1), width(3)};  // the property has left, right, top, bottom
}

// Returns the edges of a frame that lie outside the client and the frame widths its manager
// reports.
QMargins unseenEdges(const TopLevel& topLevel, const QRect& client, const QMargins& extents) {
  const QRect seen = client.marginsAdded(extents);
  const QRect& all = topLevel.bounds;
  return {std::max(0, seen.left() - all.left()), std::max(0, seen.top() - all.top()),
          std::max(0, all.right() - seen.right()), std::max(0, all.bottom() - seen.bottom())};
}

void follow(TopLevel& topLevel, xcb_window_t client) {
  topLevel.client = client;
  const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
  xcb_change_window_attributes(x(), client, XCB_CW_EVENT_MASK, &events);
}

}  // namespace

void readFramedClient(TopLevel& topLevel) {
  topLevel.unseen = {};
  if (!isComposedByWindowManager() || !topLevel.hasPixels) return;
  constexpr int deepestFrame = 2;
  const xcb_window_t client = clientIn(topLevel.window, deepestFrame);
  if (client == XCB_NONE || client == topLevel.window) return;
  if (client != topLevel.client) follow(topLevel, client);
  const auto geometryCookie = xcb_get_geometry(x(), client);
  const auto placeCookie = xcb_translate_coordinates(x(), client, topLevel.window, 0, 0);
  const auto extentsCookie =
      xcb_get_property(x(), 0, client, xServer.frameExtents, XCB_ATOM_CARDINAL, 0, 4);
  const auto opacityCookie =
      xcb_get_property(x(), 0, client, xServer.windowOpacity, XCB_ATOM_CARDINAL, 0, 1);
  const Received<xcb_get_geometry_reply_t> geometry(
      xcb_get_geometry_reply(x(), geometryCookie, nullptr));
  const Received<xcb_translate_coordinates_reply_t> place(
      xcb_translate_coordinates_reply(x(), placeCookie, nullptr));
  const Received<xcb_get_property_reply_t> extents(
      xcb_get_property_reply(x(), extentsCookie, nullptr));
  const Received<xcb_get_property_reply_t> opacity(
      xcb_get_property_reply(x(), opacityCookie, nullptr));
  topLevel.opacity = numberIn(opacity.get(), topLevel.opacity);
  if (!geometry || !place || !extents || extents->value_len == 0) return;
  const QPoint inside = topLevel.bounds.topLeft() + QPoint(topLevel.border, topLevel.border);
  const QRect inner(inside + QPoint(place->dst_x, place->dst_y),
                    QSize(geometry->width, geometry->height));
  topLevel.unseen = unseenEdges(topLevel, inner, extentsFrom(extents.get()));
}

}  // namespace tintora::platform
