#include "platform/linux/window_facts.h"

#include <span>
#include <string_view>

#include "platform/linux/x_server.h"

namespace tintora::platform {

namespace {

void readOutline(TopLevel& topLevel, const xcb_shape_query_extents_reply_t* extents,
                 const xcb_shape_get_rectangles_reply_t* reply) {
  topLevel.outline = QRegion();
  if (extents == nullptr || reply == nullptr || extents->bounding_shaped == 0) return;
  // The rectangles are relative to the inside of the border.
  const QPoint inside = topLevel.bounds.topLeft() + QPoint(topLevel.border, topLevel.border);
  const std::span rectangles(xcb_shape_get_rectangles_rectangles(reply),
                             static_cast<std::size_t>(reply->rectangles_len));
  for (const xcb_rectangle_t& r : rectangles) {
    topLevel.outline += QRect(r.x, r.y, r.width, r.height).translated(inside) & topLevel.bounds;
  }
  // An empty shape hides the window; no shape shows all of it.
  if (topLevel.outline.isEmpty()) topLevel.hasPixels = false;
}

std::string_view textIn(const xcb_get_property_reply_t* reply) {
  if (reply == nullptr || reply->format != 8) return {};
  return {static_cast<const char*>(xcb_get_property_value(reply)),
          static_cast<std::size_t>(xcb_get_property_value_length(reply))};
}

// Returns true for a guard window. Some window managers that compose the screen keep minimised
// windows mapped, to draw thumbnails of them, beneath a window without pixels that covers the
// screen. Only its name identifies it.
bool isGuard(const xcb_get_window_attributes_reply_t& attributes,
             const xcb_get_property_reply_t* name) {
  return attributes._class == XCB_WINDOW_CLASS_INPUT_ONLY && attributes.override_redirect != 0 &&
         textIn(name).ends_with("guard window");
}

}  // namespace

std::uint32_t numberIn(const xcb_get_property_reply_t* reply, std::uint32_t otherwise) {
  if (reply == nullptr || reply->format != 32 || xcb_get_property_value_length(reply) != 4) {
    return otherwise;
  }
  return *static_cast<const std::uint32_t*>(xcb_get_property_value(reply));
}

Enquiry enquire(xcb_window_t window) {
  constexpr std::uint32_t longestName = 16;  // in units of 4 bytes
  return {window,
          xcb_get_window_attributes(x(), window),
          xcb_get_geometry(x(), window),
          xcb_shape_query_extents(x(), window),
          xcb_shape_get_rectangles(x(), window, XCB_SHAPE_SK_BOUNDING),
          xcb_get_property(x(), 0, window, xServer.windowOpacity, XCB_ATOM_CARDINAL, 0, 1),
          xcb_get_property(x(), 0, window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 0, longestName)};
}

void readAnswers(TopLevel& topLevel, const Enquiry& enquiry) {
  const Received<xcb_get_window_attributes_reply_t> attributes(
      xcb_get_window_attributes_reply(x(), enquiry.attributes, nullptr));
  const Received<xcb_get_geometry_reply_t> geometry(
      xcb_get_geometry_reply(x(), enquiry.geometry, nullptr));
  const Received<xcb_shape_query_extents_reply_t> extents(
      xcb_shape_query_extents_reply(x(), enquiry.extents, nullptr));
  const Received<xcb_shape_get_rectangles_reply_t> rectangles(
      xcb_shape_get_rectangles_reply(x(), enquiry.rectangles, nullptr));
  const Received<xcb_get_property_reply_t> opacity(
      xcb_get_property_reply(x(), enquiry.opacity, nullptr));
  const Received<xcb_get_property_reply_t> name(xcb_get_property_reply(x(), enquiry.name, nullptr));
  topLevel.hasPixels = false;
  if (!attributes || !geometry) return;
  topLevel.mapped = attributes->map_state != XCB_MAP_STATE_UNMAPPED;
  topLevel.unmanaged = attributes->override_redirect != 0;
  topLevel.isCover = topLevel.unmanaged && textIn(name.get()) == coverName;
  topLevel.isGuard = isGuard(*attributes, name.get());
  topLevel.border = geometry->border_width;
  topLevel.bounds = {geometry->x, geometry->y, geometry->width + 2 * topLevel.border,
                     geometry->height + 2 * topLevel.border};
  topLevel.hasPixels = attributes->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT;
  if (!topLevel.hasPixels) return;
  topLevel.depth = geometry->depth;
  topLevel.format = formatOf(attributes->visual);
  topLevel.opacity = numberIn(opacity.get(), 0xFFFFFFFF);
  readOutline(topLevel, extents.get(), rectangles.get());
}

}  // namespace tintora::platform
